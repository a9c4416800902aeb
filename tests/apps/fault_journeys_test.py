# SPDX-License-Identifier: Apache-2.0
"""Every magic card, and with them every kind of fault, met by a journey that ends on the page it should show."""

import unittest

from driver import Journey, Sandbox

TRY_AGAIN, MESSAGE, EXPLAIN, SUCCESS = "UhOhTryAgainView", "UhOhTryAgainWithErrorMsgView", "SMSExplainView", "SuccessPinSetView"
FREEZE = "sdk.cardviewer.card.activateAndSetPin."

# The magic card, the journey, the steps up to the fault, the page in the end, the requests to the endpoint in fault.
MAGIC = {
    "fault-hang": ("set-pin", "", TRY_AGAIN, 1), "fault-pin-hang": ("set-pin", "sms pin", TRY_AGAIN, 1),  # after a minute
    "fault-unknown-card": ("set-pin", "", TRY_AGAIN, 1), "fault-400": ("set-pin", "", TRY_AGAIN, 1),
    "fault-403": ("activate", "", TRY_AGAIN, 1), "fault-500": ("card", "sms", TRY_AGAIN, 2),
    "fault-503": ("card", "", TRY_AGAIN, 1), "fault-no-json": ("set-pin", "", TRY_AGAIN, 1),
    "fault-no-status": ("set-pin", "sms", TRY_AGAIN, 3), "fault-no-type": ("activate", "sms", TRY_AGAIN, 3),
    "fault-cut": ("set-pin", "", TRY_AGAIN, 2), "fault-reset": ("set-pin", "", TRY_AGAIN, 1),
    "fault-reset-midway": ("set-pin", "", TRY_AGAIN, 2), "fault-slow": ("set-pin", "sms pin", SUCCESS, 3),
    "fault-token-expired": ("set-pin", "sms", EXPLAIN, 3), "fault-sms-refused": ("set-pin", "ask", MESSAGE, 2),
    "fault-code-refused": ("set-pin", "sms", "EnterSMSCodeView", 1), "fault-code-expired": ("set-pin", "sms", EXPLAIN, 1),
    "fault-code-500": ("set-pin", "sms", MESSAGE, 1), "fault-pin-refused": ("set-pin", "sms pin", TRY_AGAIN, 1),
    "fault-pin-token-expired": ("set-pin", "sms pin", EXPLAIN, 1), "fault-pin-reset": ("set-pin", "sms pin", TRY_AGAIN, 1),
    "fault-activation-refused": ("activate", "sms proof pin", TRY_AGAIN, 1),
    "fault-image-refused": ("card", "sms", TRY_AGAIN, 1), "fault-no-image": ("card", "sms", "CardImage_NoNav", 1),
    "fault-freeze-refused": ("card", "sms freeze", "CardImage_NoNav", 1),
}
# Asked again for ever, deliberately: the service says each time that a new IV or bearer token will do.
ENDLESS = {"fault-iv-expired", "fault-iv-unknown", "fault-bearer-expired"}


class FaultJourneys(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sandbox = Sandbox()
        cls.addClassCleanup(cls.sandbox.stop)
        cls.magic = {card["id"]: card for card in cls.sandbox.ask("GET", "/host/magic")}

    def walk(self, kind, card, steps):
        journey = Journey(self.sandbox, kind=kind, card=card)
        self.addCleanup(journey.end)
        for step in steps.split():
            if step == "ask":
                journey.at(EXPLAIN, "sdk.sms.explain.button")
            elif step == "sms":
                journey.verify_by_sms(self.sandbox, card)
            elif step == "proof":
                journey.at("ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start")
                journey.prove_possession(self.sandbox.card(card))
            elif step == "pin":
                journey.enter_and_confirm("1470")
            elif step == "freeze":
                journey.shows("CardImage_NoNav")
                journey.tap(FREEZE + "freezeMyCard", FREEZE + "freezeCardPopup.freezeButton")
                self.assertEqual(journey.toast(), "errors.generic.api")
        return journey

    def assert_ends(self, journey, card, view, requests):
        event = journey.shows(view)
        endpoint = self.magic[card]["fault"]["endpoint"]
        journal = self.sandbox.ask("GET", f"/host/journal?card={card}&endpoint={endpoint}")
        self.assertEqual(len(journal["entries"]), requests)
        if view == TRY_AGAIN:
            journey.tap("sdk.errorPage.tryagain.button")
            self.assertEqual(journey.closes(), ("FAILURE", 4))
        if card == "fault-pin-reset":
            self.assertEqual(self.sandbox.card(card)["pin"], "1470")
        if card == "fault-no-image":
            self.assertFalse(event["state"]["isCardImageLoaded"])

    def test_every_magic_card(self):
        self.assertEqual(set(self.magic), {*MAGIC, *ENDLESS})
        cases = [(self.walk(kind, card, steps), card, *end) for card, (kind, steps, *end) in MAGIC.items()]
        for case in cases:
            with self.subTest(card=case[1]):
                self.assert_ends(*case)

    def test_what_is_asked_again_for_ever_shows_that_it_works_and_can_be_left(self):
        for card in sorted(ENDLESS):
            with self.subTest(card=card):
                self.sandbox.ask("POST", "/host/reset")  # and so the count of requests
                journey = self.walk("set-pin", card, "")
                journey.reaches(showSpinner=True)
                while self.sandbox.requests()["getCardStatus"] < 30:
                    pass
                self.assertEqual(journey.ends(), 5)  # it hears the end of its input all the same


if __name__ == "__main__":
    unittest.main(verbosity=2)
