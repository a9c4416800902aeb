# SPDX-License-Identifier: Apache-2.0
"""The host of the guide shows the first page of its journey, with its log masked."""

import os
import pathlib
import subprocess
import sys

PROGRAMS = pathlib.Path(sys.argv[1])
os.environ["KORVANE_BIN"] = str(PROGRAMS)
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "apps"))

from driver import Sandbox  # noqa: E402


def main():
    sandbox = Sandbox()
    iv = sandbox.ask("POST", "/host/iv", {})
    host = subprocess.Popen(
        [PROGRAMS / "docs-controller", sandbox.url, sandbox.told["key"], iv["ivId"], iv["iv"], sandbox.ca],
        env={**os.environ, "QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"},
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    lines = []
    for line in host.stdout:
        lines.append(line)
        if line == "viewToShow: SMSExplainView\n":
            break
    host.kill()
    host.wait()
    sandbox.stop()
    shown = bool(lines) and lines[-1] == "viewToShow: SMSExplainView\n"
    masked = "cardId: •••\n" in lines
    print("shown, with its log masked" if shown and masked else "".join(lines))
    return 0 if shown and masked else 1


if __name__ == "__main__":
    sys.exit(main())
