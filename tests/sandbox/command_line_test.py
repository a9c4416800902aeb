# SPDX-License-Identifier: Apache-2.0
"""What korvane-sandbox does with its arguments, its output and its signals."""

import json
import os
import signal
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)


class CommandLine(unittest.TestCase):
    def rules(self, text):
        file = tempfile.NamedTemporaryFile("w", suffix=".json")
        self.addCleanup(file.close)
        file.write(text)
        file.flush()
        return file.name

    def test_serves_until_it_is_told(self):
        key = "AAAAAAAAAAAAAAAAAAAAAA=="
        with tempfile.TemporaryDirectory() as folder:
            for number in (signal.SIGTERM, signal.SIGINT):
                ca = os.path.join(folder, "ca.pem")
                program = subprocess.Popen([PROGRAM, "--ca-out", ca, "--key", key, "--verbose"], text=True,
                                           stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.addCleanup(program.communicate)
                self.addCleanup(program.kill)
                told = json.loads(program.stdout.readline())
                self.assertEqual(told, {"url": told["url"], "ca": ca, "key": key, "ivUrl": told["url"] + "/host/iv"})
                answer = subprocess.run(["curl", "-sS", "--cacert", ca, "-X", "POST", told["ivUrl"]],
                                        capture_output=True, check=True).stdout
                self.assertIn("ivId", json.loads(answer))
                program.send_signal(number)
                self.assertEqual(program.wait(20), 0)
                self.assertIn("/host/iv 200", program.stderr.read())

    def test_refuses_what_it_does_not_understand(self):
        cases = {"unknown option --colour": ["--colour"], "--port needs a value": ["--port"],
                 "--port takes a whole number from 0 to 65535": ["--port", "65536"], "--port takes": ["--port", "12x"],
                 "--iv-seconds takes": ["--iv-seconds", "0"], "--seed takes": ["--seed", "-1"],
                 "--db takes a value": ["--db", ""], "--http has no certificate": ["--http", "--ca-out", "ca.pem"],
                 "not 16, 24 or 32": ["--key", "AAAA"], "--http is for the loopback": ["--http", "--listen", "0.0.0.0"],
                 "cannot read /none": ["--fault", "/none"], "(line 2, column 1)": ["--fault", self.rules("[\n")],
                 "rule 2: unexpected key \"x\"": ["--fault", self.rules('[{"endpoint":"*","status":500},{"x":1}]')]}
        for message, arguments in cases.items():
            run = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=20)
            self.assertEqual((run.stdout, run.returncode), ("", 1 if "--key" in arguments else 2), arguments)
            self.assertIn(message, run.stderr)
        usage = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
        self.assertIn("Usage: korvane-sandbox", usage)


if __name__ == "__main__":
    unittest.main()
