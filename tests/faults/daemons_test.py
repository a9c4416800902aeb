# SPDX-License-Identifier: Apache-2.0
"""The keyring and the finger daemon killed, stopped and started again at each step of a visit. Whatever happens, the
visit goes on to the PIN entry, by the finger or by SMS, the log tells why, and the console answers."""

import os
import signal
import sys
import time
import unittest

from driver import PATIENCE, Journey, Sandbox
from virtual_devices import FPRINT, VirtualDevices, wait_until

# Seconds that an answer may take on a busy machine. A daemon that hangs is waited for longer.
AT_ONCE = 0.9
NO_KEYRING, NOT_KEPT, NO_MATCH = ("KeychainCommunicator.get pci token failed", "Error KeychainCommunicator.set pci token",
                                  "evaluate policy 'success' is false")
KEPT, FOUND = "Success writing pci token to keychain", "Setting SdkConfg.sharedInstance.currentPciToken"


class Devices(VirtualDevices):
    def kill(self, name):
        self.processes[name].kill()
        self.processes.pop(name).wait()
        bus, owned = (self.session, "org.freedesktop.secrets") if name == "keyring" else (self.system, FPRINT)
        wait_until(lambda: not bus.name_has_owner(owned), "it does not go")

    def stop(self, name):
        self.processes[name].send_signal(signal.SIGSTOP)

    def restart(self, name):
        self.kill(name)
        if name == "keyring":
            return self.start_keyring()
        self._daemon(name, "/usr/libexec/fprintd", "-t", **self.reader_environment())
        self._wait_for(self.system, FPRINT)


# The steps of a visit, and what happens to a daemon there: whether the finger leads to the card, and what is told.
BEFORE, PROMPT, CODE = "before the visit", "while a finger is wanted", "while the code is typed"
LOST, UNKEPT, TOKEN, REFUSED, SMS = (False, [NO_KEYRING, NOT_KEPT]), (False, [NOT_KEPT]), (True, [FOUND]), (False, [NO_MATCH, KEPT]), (False, [KEPT])
STEPS = {
    ("keyring", BEFORE): {"kill": LOST, "stop": LOST, "restart": TOKEN},
    ("keyring", PROMPT): {"kill": LOST, "stop": LOST, "restart": TOKEN},
    ("keyring", CODE): {"kill": UNKEPT, "stop": UNKEPT, "restart": SMS},
    ("fprintd", BEFORE): {"kill": SMS, "stop": SMS, "restart": TOKEN},
    ("fprintd", PROMPT): {"kill": REFUSED, "stop": REFUSED, "restart": REFUSED},
    ("fprintd", CODE): {"kill": SMS, "stop": SMS, "restart": SMS},
}


class Daemons(unittest.TestCase):
    def setUp(self):
        self.sandbox = Sandbox()
        self.addCleanup(self.sandbox.stop)

    def reach(self, journey, view):
        """Goes on asking until the view is shown, at rest. How long an answer took is how long a tap had to wait."""
        end, shown = time.monotonic() + PATIENCE, {}
        while shown.get("view") != view or shown["state"].get("showSpinner"):
            begin = time.monotonic()
            self.assertLess(begin, end, f"{view} does not come")
            journey.command("custody")
            journey.next(lambda e: e["event"] == "custody")
            self.longest = max(self.longest, time.monotonic() - begin)
            shown = next((event for event in reversed(journey.seen) if event["event"] == "screen"), {})

    def visit(self, devices, daemon="", step="", what="", finger=False, lines=()):
        hit = lambda here: step == here and getattr(devices, what)(daemon)
        self.longest = 0
        hit(BEFORE)
        journey = Journey(self.sandbox, options=["--biometrics", "on"], environment=devices.environment)
        self.addCleanup(journey.end)
        if (daemon, step) != ("fprintd", BEFORE) or what == "restart":
            journey.next(lambda e: "reason" in e)
            wait_until(devices.armed, "the reader is not armed")
            hit(PROMPT)
            if (daemon, step, what) == ("fprintd", PROMPT, "stop"):
                journey.tap("sdk.biometrics.cancel")
            elif (daemon, step) != ("fprintd", PROMPT):
                devices.touch()
        if not finger:
            self.reach(journey, "SMSExplainView")
            journey.tap("sdk.sms.explain.button")
            self.reach(journey, "EnterSMSCodeView")
            hit(CODE)
            journey.type(self.sandbox.code())
        self.reach(journey, "EnterCardPINView")
        journey.command("quit")
        self.assertEqual(journey.ends(), 5)
        for line in lines:
            self.assertTrue([told for told in journey.log if told.startswith(line)], line)

    def test_each_step(self):
        cases = [(*where, what, *outcome) for where, happens in STEPS.items() for what, outcome in happens.items()
                 if where[1] == PROMPT or "KORVANE_FULL" in os.environ]
        for case in cases:
            with self.subTest(case=case), Devices() as devices:
                if case[1] != CODE:
                    self.visit(devices)  # which leaves a token to be found
                self.visit(devices, *case)
                print(f"{' '.join(case[:3])}: the longest answer took {self.longest:.2f} s", file=sys.stderr)
                self.assertLess(self.longest, AT_ONCE)


if __name__ == "__main__":
    unittest.main(verbosity=2, warnings="ignore")
