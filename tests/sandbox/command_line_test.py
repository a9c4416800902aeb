# SPDX-License-Identifier: Apache-2.0
"""What korvane-sandbox does with its arguments, its output and its signals."""

import json
import os
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)


class CommandLine(unittest.TestCase):
    def start(self, program, *arguments):
        process = subprocess.Popen([program, *arguments], text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process, json.loads(process.stdout.readline())

    def assert_refused(self, status, message, *command):
        run = subprocess.run(command, capture_output=True, text=True, timeout=20)
        self.assertEqual((run.stdout, run.returncode), ("", status), command)
        self.assertIn(message, run.stderr)

    def test_serves_until_it_is_told(self):
        key = "AAAAAAAAAAAAAAAAAAAAAA=="
        ca = os.path.join(self.enterContext(tempfile.TemporaryDirectory()), "ca.pem")
        for number in (signal.SIGTERM, signal.SIGINT):
            program, told = self.start(PROGRAM, "--ca-out", ca, "--key", key, "--verbose")
            self.assertEqual(told, {"url": told["url"], "ca": ca, "key": key, "ivUrl": told["url"] + "/host/iv"})
            subprocess.run(["curl", "-sS", "--cacert", ca, "-X", "POST", told["ivUrl"]], capture_output=True, check=True)
            program.send_signal(number)
            self.assertEqual(program.wait(20), 0)
            self.assertIn("/host/iv 200", program.stderr.read())

    def test_refuses_what_it_does_not_understand_or_cannot_use(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        text, rules, ca = (os.path.join(folder, name) for name in ("text", "rules.json", "tls/ca.pem"))
        os.mkdir(os.path.dirname(ca))
        for path, content in ((text, "[\n"), (rules, '[{"endpoint":"*","status":500},{"x":1}]'), (ca, "none"), (ca[:-4] + "-key.pem", "")):
            pathlib.Path(path).write_text(content + "\n" * 100)
        with socket.create_server(("127.0.0.1", 0)) as taken:
            for status, message, *arguments in [
                    (2, "unknown option --colour", "--colour"), (2, "--port needs a value", "--port"),
                    (2, "--port takes a whole number from 0 to 65535", "--port", "65536"), (2, "--seed takes", "--seed", "12x"),
                    (2, "--http has no certificate", "--http", "--ca-out", "ca.pem"), (2, "cannot read /none", "--fault", "/none"), (2, "cannot read /none", "--picture", "/none"),
                    (2, "--http is for the loopback", "--http", "--listen", "0.0.0.0"), (1, "not 16, 24 or 32", "--key", "AAAA"),
                    (2, "(line 102, column 1)", "--fault", text), (2, "rule 2: unexpected key \"x\"", "--fault", rules),
                    (1, "not a database", "--db", text), (1, "neither address nor name", "--listen", "a,DNS:b"),
                    (1, "holds no certificate", "--tls-dir", folder + "/tls"), (1, "cannot make the directory", "--tls-dir", text + "/tls"),
                    (1, "cannot listen", "--port", str(taken.getsockname()[1]))]:
                self.assert_refused(status, message, PROGRAM, *arguments)

    def test_the_wire_makes_its_fault_and_refuses_what_it_cannot_mean(self):
        wire = PROGRAM.replace("sandbox", "wire")
        to = self.start(PROGRAM, "--http")[1]["url"].removeprefix("http://")
        for fault, statuses in {"": (0, 0), "refuse": (7, 7), "--times 1 reset 0": (56, 0), "--skip 1 close 0": (0, 52),
                                "stall 9": (28, 28), "drip 99 1": (0, 0), f"reply {__file__}": (1, 1)}.items():
            program, told = self.start(wire, "--to", to, *fault.split())
            url = f"http://127.0.0.1:{told['port']}/host/cards"
            asked = [subprocess.run(["curl", "-sm2", "-o/dev/null", url], check=False).returncode for _ in statuses]
            program.terminate()
            self.assertEqual((tuple(asked), program.wait(20)), (statuses, 0), fault)
            self.assertEqual(program.stderr.read().count("bytes to the service"), 0 if fault == "refuse" else 2)
        for message, arguments in {"--to is missing": "", "--to takes HOST:PORT": "--to x", "no such fault": "--to x:1 melt",
                                   "reset takes 1 value": "--to x:1 reset", "at least 1 byte": "--to x:1 drip 0 1",
                                   "cannot read /none": "--to x:1 reply /none"}.items():
            self.assert_refused(2, message, wire, *arguments.split())


if __name__ == "__main__":
    unittest.main()
