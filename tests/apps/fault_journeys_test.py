# SPDX-License-Identifier: Apache-2.0
"""Every magic card, and with them every kind of fault, met by a journey that ends on the page it should show."""

import time
import unittest

from driver import Journey, Sandbox

TRY_AGAIN, MESSAGE, EXPLAIN, SUCCESS = "UhOhTryAgainView", "UhOhTryAgainWithErrorMsgView", "SMSExplainView", "SuccessPinSetView"
FREEZE = "sdk.cardviewer.card.activateAndSetPin."

# The magic card, the journey, the steps up to the fault, the page in the end, the requests to the endpoint in fault.
MAGIC = {
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
HANGING = {"fault-hang": ("set-pin", "", TRY_AGAIN, 1), "fault-pin-hang": ("set-pin", "sms pin", TRY_AGAIN, 1)}
# Asked again for ever, deliberately: the service says each time that a new IV or bearer token will do.
ENDLESS = {"fault-iv-expired", "fault-iv-unknown", "fault-bearer-expired"}


class FaultJourneys(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sandbox = Sandbox()
        cls.addClassCleanup(cls.sandbox.stop)

    def setUp(self):
        self.sandbox.ask("POST", "/host/reset")
        self.magic = {card["id"]: card for card in self.sandbox.ask("GET", "/host/magic")}

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

    def assert_ends(self, journey, view, card, endpoint, requests):
        event = journey.shows(view)
        journal = self.sandbox.ask("GET", f"/host/journal?card={card}&endpoint={endpoint}")
        self.assertEqual(len(journal["entries"]), requests)
        if view == TRY_AGAIN:
            journey.tap("sdk.errorPage.tryagain.button")
            self.assertEqual(journey.closes(), ("FAILURE", 4))
        return event, journal["entries"]

    def test_every_magic_card(self):
        self.assertEqual(set(self.magic), {*MAGIC, *HANGING, *ENDLESS})
        shown = {key for card in self.magic.values() for key in card["fault"]}
        keys = {key["key"] for key in self.sandbox.ask("GET", "/host/faults/keys")}
        self.assertEqual(keys - shown, {"delayMs", "percent", "seed"})  # which CardServiceTest shows
        for card, (kind, steps, view, requests) in MAGIC.items():
            with self.subTest(card=card):
                journey = self.walk(kind, card, steps)
                if card == "fault-code-refused":
                    journey.next(lambda e: e.get("state", {}).get("message") == "sdk.sms.code.incorrect")
                event, _ = self.assert_ends(journey, view, card, self.magic[card]["fault"]["endpoint"], requests)
                if card == "fault-pin-reset":
                    self.assertEqual(self.sandbox.card(card)["pin"], "1470")
                if card == "fault-no-image":
                    self.assertFalse(event["state"]["isCardImageLoaded"])

    def test_what_is_asked_again_for_ever_shows_that_it_works_and_can_be_left(self):
        for card in sorted(ENDLESS):
            with self.subTest(card=card):
                self.sandbox.ask("POST", "/host/reset")  # and so the count of requests
                journey = self.walk("set-pin", card, "")
                event = journey.reaches(showSpinner=True)
                self.assertEqual(event["stack"], ["SetPIN"])
                deadline = time.monotonic() + 30
                while self.sandbox.requests()["getCardStatus"] < 30:
                    self.assertLess(time.monotonic(), deadline)
                self.assertEqual([e["view"] for e in journey.seen if e["event"] == "screen"][-1], event["view"])
                self.assertEqual(journey.ends(), 5)  # it hears the end of its input all the same

    def test_a_service_that_never_answers_is_given_up(self):
        self.sandbox.fault(endpoint="pinSet", hang=True, card="card-physical-active")
        waiting = [(self.walk(kind, card, steps), view, card, self.magic[card]["fault"]["endpoint"], requests)
                   for card, (kind, steps, view, requests) in HANGING.items()]
        waiting.append((self.walk("set-pin", "card-physical-active", "sms pin"), TRY_AGAIN, "card-physical-active", "pinSet", 1))
        time.sleep(30)  # the session's time-out is 60 s
        for journey, view, *_ in waiting:
            self.assertNotIn(view, [event.get("view") for event in journey.seen])
        for case in waiting:
            self.assert_ends(*case)


if __name__ == "__main__":
    unittest.main(verbosity=2)
