# SPDX-License-Identifier: Apache-2.0
"""The demo with a keyring and a finger reader that need no hardware.

usage: run_demo.py BIN [--pictures DIR] [OPTION OF korvane-demo …]

Enter in the terminal is the enrolled finger, x and Enter another one. The card service and the keyring outlive the
demo's window, so that it can be opened again as a returning cardholder's. With --pictures both visits play by
themselves into pictures.
"""

import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import threading

from virtual_devices import DIES_WITH_PARENT, VirtualDevices


class CardService:
    """One for all visits: a service knows the tokens that it gave."""

    def __init__(self, programs, folder):
        ca = folder / "ca.pem"
        self.process = subprocess.Popen([programs / "korvane-sandbox", "--ca-out", ca], text=True, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, preexec_fn=DIES_WITH_PARENT)
        told = json.loads(self.process.stdout.readline())
        self.options = ["--service", told["url"], "--key", told["key"], "--iv-url", told["ivUrl"], "--ca", str(ca)]


def open_demo(command, environment, **keywords):
    return subprocess.Popen(command, env={**os.environ, **environment}, text=True, preexec_fn=DIES_WITH_PARENT, **keywords)


def play(command, devices, pictures):
    """Both visits; touches the reader when a tour asks for it. Answers the exit status."""
    environment = {**devices.environment, "QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}
    for visit, options in (("first-visit", []), ("next-visit", ["--next-visit"])):
        tour = ["--finger-tour", str(pathlib.Path(pictures) / visit), *options]
        demo = open_demo([*command, *tour], environment, stdout=subprocess.PIPE)
        for line in demo.stdout:
            print(line, end="", flush=True)
            if line.startswith("Finger: "):
                devices.touch(line.split()[1])
        if demo.wait() != 0:
            return demo.returncode
    print(f"The pictures of both visits are in {pictures}.")
    return 0


def converse(command, devices):
    """A window and a terminal, visit after visit."""
    print("Enter: touch the reader with the enrolled finger.  x, Enter: with another one.  q, Enter: quit.\n"
          "Close the window and press Enter to come back as a cardholder whose token is in the keyring.", flush=True)
    demo = open_demo(command, devices.environment)
    for line in sys.stdin:
        if line.strip() == "q":
            break
        if demo.poll() is not None:
            print("Opening the demo again, as a cardholder who comes back.", flush=True)
            demo = open_demo(command, devices.environment)
        elif devices.armed():
            devices.touch("wrong" if line.strip() == "x" else "right")
        else:
            print("The reader waits for a finger only while the sheet is in sight.", flush=True)
    demo.terminate()
    demo.wait()
    return 0


def main():
    programs, options = pathlib.Path(sys.argv[1]), sys.argv[2:]
    pictures = options[1] if options[:1] == ["--pictures"] else None
    for number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, lambda *_: sys.exit(1))
    with tempfile.TemporaryDirectory(prefix="korvane-") as folder, VirtualDevices() as devices:
        service = CardService(programs, pathlib.Path(folder))
        command = [programs / "korvane-demo", "--biometrics", "on", *service.options, *options[2 if pictures else 0:]]
        try:
            return play(command, devices, pictures) if pictures else converse(command, devices)
        except KeyboardInterrupt:
            return 1
        finally:
            service.process.terminate()
            service.process.wait()


if __name__ == "__main__":
    sys.exit(main())
