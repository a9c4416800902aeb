# SPDX-License-Identifier: Apache-2.0
"""A path that the explorer prints leads the real console and the real service to the same view."""

import json
import subprocess
import unittest

from driver import PROGRAMS, Journey, Sandbox

VIEWS = ["SuccessPinSetView", "UhOhTryAgainWithErrorMsgView", "CardAlreadyActivatedView", "UhOhTryAgainView"]


class Replay(unittest.TestCase):
    def replay(self, sandbox, path):
        for line in path.splitlines():
            command, _, rest = line.partition(" ")
            if command == "fault":
                sandbox.fault(**json.loads(rest))
            elif command == "journey":
                kind, card = rest.split()
                known = sandbox.card(card)
                journey = Journey(sandbox, kind=kind, card=card)
                self.addCleanup(journey.end)
            elif command == "wait":
                journey.shows(rest)
            elif command != "#":
                real = {"6603": known["pan"][-4:], "731": known["cvv"][:3]}.get(rest, rest)
                journey.command(f"{command} {sandbox.code(card) if rest == '350912' else real}")

    def test_printed_paths_lead_the_real_thing_to_the_same_views(self):
        sandbox = Sandbox()
        self.addCleanup(sandbox.stop)
        for view in VIEWS:
            with self.subTest(view=view):
                sandbox.ask("POST", "/host/reset")
                path = subprocess.run([PROGRAMS / "korvane_explorer", "--path", view], capture_output=True, text=True, check=True).stdout
                self.assertTrue(path.endswith(f"wait {view}\n"), path)
                self.replay(sandbox, path)


if __name__ == "__main__":
    unittest.main()
