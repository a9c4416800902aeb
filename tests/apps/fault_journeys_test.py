# SPDX-License-Identifier: Apache-2.0
"""Every kind of fault rule and every magic card, met by a journey that ends on the page it should show."""

import time
import unittest

from driver import Journey, Sandbox

TRY_AGAIN, MESSAGE, EXPLAIN, SUCCESS = "UhOhTryAgainView", "UhOhTryAgainWithErrorMsgView", "SMSExplainView", "SuccessPinSetView"
FREEZE = "sdk.cardviewer.card.activateAndSetPin."
EXPIRED = "Failure: Expired Token"

# The rule (endpoint "pinSet" and one use unless it says more), the page in the end, the requests to the endpoint.
RULES = [
    ({"status": 418}, TRY_AGAIN, 1),
    ({"endpoint": "getCardStatus", "status": 500}, "EnterCardPINView", 2),  # no token yet: the SMS step, and again
    ({"endpoint": "getBearerToken", "status": 401}, TRY_AGAIN, 1),
    ({"result": "FAILURE: no such thing"}, TRY_AGAIN, 1),
    ({"result": EXPIRED.upper()}, EXPLAIN, 1),
    ({"result": EXPIRED, "status": 500}, EXPLAIN, 1),
    ({"result": "Failure: IV is expired", "status": 200}, SUCCESS, 2),
    ({"result": "Failure: other", "status": 403}, TRY_AGAIN, 1),
    ({"body": "<html>"}, TRY_AGAIN, 1),
    ({"body": "{}"}, TRY_AGAIN, 1),
    ({"without": "encryptedResult"}, TRY_AGAIN, 1),
    ({"expireIv": True, "count": 3}, SUCCESS, 4),
    ({"unknownIv": True}, SUCCESS, 2),
    ({"expirePciToken": True}, EXPLAIN, 1),
    ({"expireBearer": True}, SUCCESS, 2),
    ({"reset": True}, TRY_AGAIN, 1),
    ({"cutAfter": 10}, TRY_AGAIN, 1),
    ({"resetAfter": 10}, TRY_AGAIN, 1),
    ({"dripBytes": 8, "dripMs": 20}, SUCCESS, 1),
    ({"delayMs": 700}, SUCCESS, 1),
    ({"unknownIv": True, "percent": 60, "seed": 6, "count": "forever"}, SUCCESS, 3),
    ({"endpoint": "*", "card": "card-virtual-active", "reset": True}, SUCCESS, 1),  # another card's
]
HANGING_RULE = {"endpoint": "pinSet", "hang": True}

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

    def test_every_kind_of_rule(self):
        keys = {key["key"] for key in self.sandbox.ask("GET", "/host/faults/keys")}
        self.assertEqual(keys - {key for rule, _, _ in RULES for key in rule} - set(HANGING_RULE), set())
        for given, view, requests in RULES:
            with self.subTest(rule=given):
                self.sandbox.ask("POST", "/host/reset")
                rule = {"endpoint": "pinSet", **given}
                self.sandbox.fault(**rule)
                steps = {"getBearerToken": "", "getCardStatus": "sms"}.get(rule["endpoint"], "sms pin")
                journey = self.walk("set-pin", "card-physical-active", steps)
                endpoint = "pinSet" if rule["endpoint"] == "*" else rule["endpoint"]
                _, entries = self.assert_ends(journey, view, "card-physical-active", endpoint, requests)
                acted = 0 if "card" in rule else requests - 1 if view == SUCCESS and requests > 1 else 1
                self.assertEqual([entry["fault"] for entry in entries if "fault" in entry], [rule] * acted)
                stays = "card" in rule or rule.get("count") == "forever"
                self.assertEqual(len(self.sandbox.ask("GET", "/host/faults")), 1 if stays else 0)

    def test_every_magic_card(self):
        self.assertEqual(set(self.magic), {*MAGIC, *HANGING, *ENDLESS})
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
                journey = self.walk("set-pin", card, "")
                event = journey.reaches(showSpinner=True)
                self.assertEqual(event["stack"], ["SetPIN"])
                deadline = time.monotonic() + 30
                while self.sandbox.requests()["getCardStatus"] < 30:
                    self.assertLess(time.monotonic(), deadline)
                self.assertEqual([e["view"] for e in journey.seen if e["event"] == "screen"][-1], event["view"])
                self.assertEqual(journey.ends(), 5)  # it hears the end of its input all the same

    def test_a_service_that_never_answers_is_given_up(self):
        self.sandbox.fault(**HANGING_RULE, card="card-physical-active")
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
