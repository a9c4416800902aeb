# SPDX-License-Identifier: Apache-2.0
"""Journeys on the console against the card service over HTTPS, with their logs masked: none of the secrets that went
through the component is in one."""

import json
import os
import sqlite3
import subprocess
import tempfile
import unittest

from driver import HOSTILE_IV_ANSWERS, PROGRAMS, IvServer, Journey, Sandbox


class Journeys(unittest.TestCase):
    def setUp(self):
        self.database = os.path.join(self.enterContext(tempfile.TemporaryDirectory()), "service.db")
        self.sandbox = Sandbox("--db", self.database)
        self.addCleanup(self.sandbox.stop)

    def start(self, kind="set-pin", card="card-physical-active", log="masked", **keywords):
        journey = Journey(self.sandbox, kind, card, ("--log", log), **keywords)
        self.addCleanup(journey.end)
        journey.verify_by_sms(self.sandbox)
        return journey

    def end(self, journey, button, card, pin):
        """The secrets that are in the log of the journey, which this button ends with success."""
        journey.tap(button)
        self.assertEqual(journey.closes(), ("SUCCESS", 0))
        stored = self.sandbox.card(card)
        with sqlite3.connect(self.database) as service:
            tokens = {text for text, in service.execute("SELECT text FROM tokens")}
        self.assertGreater(len(tokens), 1)
        self.assertEqual(stored["pin"], pin)
        secrets = {card, pin, stored["pan"], stored["cvv"], self.sandbox.code(), self.sandbox.told["key"], *tokens}
        return [secret for secret in secrets if secret in "".join(journey.log)]

    def test_a_pin_is_submitted_again_when_token_and_iv_have_expired(self):
        journey = self.start()
        self.sandbox.fault(endpoint="pinSet", expirePciToken=True)
        self.sandbox.fault(endpoint="pinSet", expireIv=True)
        journey.enter_and_confirm("2580")
        journey.verify_by_sms(self.sandbox)
        event = journey.shows("SuccessPinSetView")  # submitted without a further tap
        self.assertEqual(event["stack"], ["SetPIN", "EnterCardPINView", "ConfirmCardPINView", "SuccessPinSetView"])
        self.assertEqual(self.sandbox.requests()["pinSet"], 3)
        self.assertEqual(self.end(journey, "sdk.success.setpin.button", "card-physical-active", "2580"), [])
        self.assertEqual(self.sandbox.requests()["getBearerToken"], 1)
        for line in ("decPciToken: •••\n", "inside (middlelayer) doGetCardStatus( ... )\n", "200\n",
                     "viewToShow: SMSExplainView\n", "refreshed the IV... now recalling doPinSet\n"):
            self.assertIn(line, journey.log)

    def test_values_are_shown_and_kept_nowhere_but_copied_and_taken_back_at_the_end(self):
        details, name = "sdk.cardviewer.device.details.", "card-paywallet-active"
        folder = self.enterContext(tempfile.TemporaryDirectory())
        places = "HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"
        journey = self.start("card", name, folder=folder, environment=dict.fromkeys(places, folder))
        card = self.sandbox.card(name)
        self.assertTrue(journey.shows("CardImage_NoNav")["state"]["isCardImageLoaded"])
        journey.tap(details + "reveal")
        shown = json.dumps(journey.reaches(detailsRevealed=True))
        self.assertFalse(card["pan"] in shown or card["cvv"] in shown)
        self.assertEqual(journey.copied(details + "cardNumber"), card["pan"])
        self.assertEqual(journey.toast(), "sdk.copiedToClipboard")
        self.assertEqual(journey.copied(details + "cvv"), card["cvv"])
        self.assertEqual(self.end(journey, "xmark", name, card["pin"]), [])
        self.assertEqual(os.listdir(folder), [], "files are left on the disk")
        emptied = {"event": "pasteboard", "text": ""}
        self.assertTrue(emptied in journey.seen or journey.next(emptied.__eq__))

    def test_log_in_clear_and_disclosure_in_the_language_of_the_process(self):
        for locale, word in (("es_MX.UTF-8", "tarjeta"), ("en_GB.UTF-8", "card"), ("C", "card")):
            journey = self.start("card", "card-virtual-active", "clear", environment={"LC_ALL": locale})
            self.assertIn(word, journey.shows("CardImage_NoNav")["state"]["disclosureText"])
        journey.tap("sdk.cardviewer.device.details.reveal")
        self.assertGreater(len(self.end(journey, "xmark", "card-virtual-active", "4830")), 4)

    def test_whatever_is_answered_for_an_iv_leads_to_a_page(self):
        for what, answer in HOSTILE_IV_ANSWERS.items():
            with self.subTest(what):
                server = IvServer(answer)
                self.addCleanup(server.stop)
                journey = Journey(self.sandbox, iv_url=server.url)
                self.addCleanup(journey.end)
                journey.shows("UhOhTryAgainView")

    def test_exit_statuses_of_bad_arguments(self):
        good = ["set-pin", "--card", "c", "--service", "https://localhost:1", "--key", "AAAA"]
        for arguments in ([], ["dance"], good[:3], good + ["--pin", "1"], good + ["--ca"], good[:-1] + ["!"]):
            run = subprocess.run([PROGRAMS / "korvane-journey", *arguments], capture_output=True, text=True,
                                 stdin=subprocess.DEVNULL)
            self.assertEqual(run.returncode, 2, arguments)
            self.assertIn("korvane-journey: ", run.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
