# SPDX-License-Identifier: Apache-2.0
"""The PCI token's road on the console: a real keyring, a real finger daemon with a virtual reader, process after process."""

import time
import unittest

from driver import PATIENCE, Journey, Sandbox
from virtual_devices import VirtualDevices

TOKEN, TIMEOUT = "KorvaneSDKPCIToken", "KorvaneSDKPCITokenBioTimeout"


class Custody(unittest.TestCase):
    def setUp(self):
        self.sandbox = Sandbox()
        self.addCleanup(self.sandbox.stop)
        self.devices = VirtualDevices().__enter__()
        self.addCleanup(self.devices.__exit__)

    def start(self, biometrics="on"):
        """A process of its own."""
        journey = Journey(self.sandbox, options=["--biometrics", biometrics], environment=self.devices.environment)
        self.addCleanup(journey.process.kill)
        return journey

    def leave(self, journey):
        journey.command("quit")
        self.assertEqual(journey.ends(), 5)

    def custody(self, journey):
        journey.command("custody")
        event = journey.next(lambda e: e["event"] == "custody")
        return event["tokenInMemory"], event["timerPciExpired"]

    def test_finger_in_place_of_sms_until_the_time_is_up_or_biometrics_go_off(self):
        journey = self.start()  # a first visit: the check is declined, an SMS code gives the token
        journey.next(lambda e: "reason" in e)
        journey.tap("sdk.biometrics.cancel")
        journey.verify_by_sms(self.sandbox)
        journey.shows("EnterCardPINView")
        self.assertEqual(self.devices.items().keys(), {TOKEN, TIMEOUT})
        self.assertEqual(self.custody(journey), (True, False))
        self.leave(journey)

        requests = self.sandbox.requests()["pciTokenRequest"]
        self.devices.set_item(TIMEOUT, "4")  # the one timer of the tests that runs on the real clock
        journey = self.start()
        self.devices.touch("wrong")
        journey.next(lambda e: e.get("message") == "sdk.biometrics.nomatch")
        self.devices.touch()
        journey.shows("EnterCardPINView")
        self.assertEqual(self.custody(journey), (True, False))
        self.assertEqual(self.sandbox.requests()["pciTokenRequest"], requests)

        end = time.monotonic() + PATIENCE
        while "handlePCITokenClearTimer - setting SdkConfig timerPciExpired to true\n" not in journey.log:
            self.assertLess(time.monotonic(), end)
            time.sleep(0.05)
        self.assertEqual(self.custody(journey), (False, True))
        self.assertEqual(self.devices.items().keys(), {TOKEN, TIMEOUT})
        journey.enter_and_confirm("1357")
        journey.shows("SMSExplainView")
        self.leave(journey)

        journey = self.start(biometrics="off")
        journey.shows("SMSExplainView")
        self.assertFalse(self.devices.items())
        self.leave(journey)


if __name__ == "__main__":
    unittest.main(verbosity=2, warnings="ignore")
