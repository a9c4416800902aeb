# SPDX-License-Identifier: Apache-2.0
"""The log of every journey, masked: none of the secrets that went through the component is in it."""

import os
import sqlite3
import tempfile
import unittest

from driver import Journey, Sandbox

PIN = "2806"


class MaskedLog(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.database = os.path.join(folder.name, "service.db")
        self.sandbox = Sandbox("--db", self.database)
        self.addCleanup(self.sandbox.stop)

    def log_of(self, kind, card, log="masked"):
        """Runs the journey to its end; the secrets that it used, and what it logged."""
        stored = self.sandbox.card(card)
        journey = Journey(self.sandbox, kind=kind, card=card, options=("--log", log))
        self.addCleanup(journey.process.stderr.close)
        journey.verify_by_sms(self.sandbox)
        secrets = {PIN, card, stored["pan"], stored["cvv"], self.sandbox.code(), self.sandbox.told["key"]}
        if kind == "activate":
            journey.shows("ActivateCardAndSetPIN_NoNav")
            journey.tap("sdk.cardarrived.start")
            journey.prove_possession(stored)
        if kind != "card":
            journey.enter_and_confirm(PIN)
        journey.shows({"set-pin": "SuccessPinSetView", "activate": "SuccessCardActivatedAndPinSetView"}.get(kind, "CardImage_NoNav"))
        journey.tap({"set-pin": "sdk.success.setpin.button", "activate": "sdk.success.cardActivatedAndSetPin.button"}.get(kind, "xmark"))
        journey.closes()
        with sqlite3.connect(self.database) as service:
            secrets |= {text for text, in service.execute("SELECT text FROM tokens")}
        return secrets, "".join(journey.log)

    def test_no_secret_is_in_the_masked_log_of_any_journey(self):
        for kind, card in (("set-pin", "card-physical-active"), ("activate", "card-physical-new"), ("card", "card-virtual-active")):
            with self.subTest(kind=kind):
                secrets, log = self.log_of(kind, card)
                self.assertGreater(len(secrets), 6)  # the service's tokens are among them
                self.assertEqual([secret for secret in secrets if secret in log], [])
                for line in ("decPciToken: •••\n", "inside (middlelayer) doGetCardStatus( ... )\n", "\n200\n",
                             "viewToShow: SMSExplainView\n"):
                    self.assertIn(line, log)

    def test_the_log_in_clear_has_them(self):
        secrets, log = self.log_of("set-pin", "card-physical-active", log="clear")
        self.assertGreater(sum(secret in log for secret in secrets), 3)


if __name__ == "__main__":
    unittest.main(verbosity=2)
