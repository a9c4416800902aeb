# SPDX-License-Identifier: Apache-2.0
"""The journeys on the console against the card service over HTTPS."""

import json
import subprocess
import sys
import unittest

from driver import PROGRAMS, Journey, Sandbox


class OnTheConsole(unittest.TestCase):
    def setUp(self):
        self.sandbox = Sandbox()
        self.addCleanup(self.sandbox.stop)

    def start(self, *arguments, verified=False, **keywords):
        journey = Journey(self.sandbox, *arguments, **keywords)
        self.addCleanup(journey.end)
        if verified:
            journey.verify_by_sms(self.sandbox)
        return journey

    def assert_ends(self, journey, button, result="SUCCESS", status=0):
        journey.tap(button)
        self.assertEqual(journey.closes(), (result, status))

    def assert_fails(self, journey):
        journey.shows("UhOhTryAgainView")
        self.assert_ends(journey, "sdk.errorPage.tryagain.button", "FAILURE", 4)

    def assert_card(self, card, status, pin):
        stored = self.sandbox.card(card)
        self.assertEqual((stored["status"], stored["pin"]), (status, pin))


class SetPin(OnTheConsole):
    def test_pin_is_set_once_everything_is_right(self):
        journey = self.start()
        journey.at("SMSExplainView", "sdk.sms.explain.button")
        journey.shows("EnterSMSCodeView")
        journey.type("000000" if self.sandbox.code() != "000000" else "111111")
        event = journey.next(lambda e: e.get("state", {}).get("message"))
        self.assertEqual((event["view"], event["state"]["digits"]), ("EnterSMSCodeView", 0))
        journey.type(self.sandbox.code())
        journey.at("EnterCardPINView", "sdk.setpin.button", "1234")
        journey.at("YouCanDoBetterView", "sdk.youcandobetter.button")
        journey.enter_and_confirm("2580", "2581")
        self.assertEqual(journey.reaches(pinsDontMatch=True)["state"]["message"], "sdk.error.matchpin.message")
        self.assertEqual(self.sandbox.requests()["pinSet"], 0)
        self.sandbox.fault(endpoint="pinSet", expirePciToken=True)
        self.sandbox.fault(endpoint="pinSet", expireIv=True)
        journey.at("ConfirmCardPINView", "sdk.confirmpin.button", "2580")
        journey.verify_by_sms(self.sandbox)
        event = journey.shows("SuccessPinSetView")  # submitted without a further tap
        self.assertEqual(event["stack"], ["SetPIN", "EnterCardPINView", "ConfirmCardPINView", "SuccessPinSetView"])
        self.assertEqual(self.sandbox.requests()["pinSet"], 3)
        self.assert_ends(journey, "sdk.success.setpin.button")
        self.assert_card("card-physical-active", "A1", "2580")
        self.assertEqual(self.sandbox.requests()["getBearerToken"], 1)
        self.assertIn("refreshed the IV... now recalling doPinSet\n", journey.log)

    def test_service_that_is_not_there_or_not_trusted(self):
        self.assert_fails(self.start(service="https://127.0.0.1:9"))
        other = Sandbox()
        self.addCleanup(other.stop)
        self.assert_fails(self.start(service=other.url))
        self.assertEqual(other.requests()["getCardStatus"], 0)


class Activate(OnTheConsole):
    def begin(self, card, kind="activate"):
        return self.start(kind=kind, card=card, verified=True)

    def test_each_type_is_activated_and_gets_its_pin(self):
        for kind in ("physical", "virtual", "wearable"):
            with self.subTest(kind=kind):
                card = f"card-{kind}-new"
                journey = self.begin(card)
                journey.at("ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start")
                if kind == "physical":  # what was typed first is overwritten on the way back
                    journey.at("EnterCardLastFourView", "sdk.activatecard.lastfourdigits.button", "0000")
                    journey.at("EnterCardCVVView", "back")
                    journey.prove_possession(self.sandbox.card(card))
                journey.enter_and_confirm("1357")
                journey.shows("SuccessCardActivatedAndPinSetView")
                self.assert_ends(journey, "sdk.success.cardActivatedAndSetPin.button")
                self.assert_card(card, "A1", "1357")

    def test_wrong_proof_of_possession_activates_nothing(self):
        card = self.sandbox.card("card-physical-new")
        for name in ("pan", "cvv"):
            journey = self.begin(card["id"])
            journey.at("ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start")
            journey.prove_possession({**card, name: "".join(str((int(digit) + 1) % 10) for digit in card[name])})
            journey.enter_and_confirm("1357")
            self.assert_fails(journey)
            self.assert_card(card["id"], "P2", "")


class CardViewer(OnTheConsole):
    DETAILS = "sdk.cardviewer.device.details."
    FREEZING = "sdk.cardviewer.card.activateAndSetPin."
    ACTIVATE = "sdk.cardviewer.activateAndSetPin.onCardButton"

    def view(self, card="card-physical-active", **keywords):
        journey = self.start(kind="card", card=card, verified=True, **keywords)
        return journey, journey.shows("CardImage_NoNav")

    def answer_popup(self, journey, popup, button):
        journey.tap(self.FREEZING + "freezeMyCard", f"{self.FREEZING}{popup}CardPopup.{button}Button")

    def test_every_kind_of_card_shows_what_can_be_done_with_it(self):
        cases = {"card-physical-active": (True, False, True), "card-virtual-frozen": (True, True, True),
                 "card-wearable-new": (False, False, True), "card-paywallet-active": (True, False, True),
                 "card-unknown-status": (False, False, False), "card-unknown-type": (True, False, True)}
        for card, flags in cases.items():
            with self.subTest(card=card):
                journey, event = self.view(card)
                self.assertEqual(event["stack"], ["GetCardImage", "CardImage_NoNav"])
                names = ("isCardActivated", "isCardFrozen", "isWantingToListen", "isCardImageLoaded")
                self.assertEqual(tuple(event["state"][name] for name in names), (*flags, True))
                controls = [control["id"] for control in event["controls"]]
                self.assertEqual(self.ACTIVATE in controls, card.endswith("-new"))
                stored = self.sandbox.card(card)
                journey.tap(self.DETAILS + "reveal")
                shown = json.dumps(journey.reaches(detailsRevealed=True))
                self.assertFalse(stored["pan"] in shown or stored["cvv"] in shown)
                self.assert_ends(journey, "xmark")

    def test_values_are_copied_and_taken_back_at_the_end(self):
        journey, _ = self.view("card-paywallet-active")
        card = self.sandbox.card("card-paywallet-active")
        self.assertEqual(journey.copied(self.DETAILS + "cardNumber"), card["pan"])
        self.assertEqual(journey.toast(), "sdk.copiedToClipboard")
        self.assertEqual(journey.copied(self.DETAILS + "cvv"), card["cvv"])
        journey.tap("xmark")
        self.assertEqual(journey.next(lambda e: e["event"] == "close")["result"], "SUCCESS")
        self.assertEqual(journey.next(lambda e: e["event"] == "pasteboard")["text"], "")
        self.assertEqual(journey.ends(), 0)

    def test_freezing_follows_the_service_and_a_stale_iv_or_token_is_no_failure(self):
        journey, _ = self.view("card-virtual-new")
        self.sandbox.fault(endpoint="setCardStatus", reset=True)
        self.answer_popup(journey, "freeze", "freeze")
        self.assertEqual(journey.toast(), "errors.generic.api")
        journey.next(lambda e: e["event"] == "screen" and "toastMsgId" not in e["state"])
        self.assertEqual(self.sandbox.card("card-virtual-new")["status"], "P2")
        self.sandbox.fault(endpoint="setCardStatus", status=403, result="Failure: IV is expired")
        self.sandbox.fault(endpoint="setCardStatus", expireIv=True)
        self.answer_popup(journey, "freeze", "freeze")
        journey.reaches(isCardFrozen=True)
        self.assertEqual(self.sandbox.card("card-virtual-new")["status"], "BT")
        self.sandbox.fault(endpoint="setCardStatus", expirePciToken=True)
        self.answer_popup(journey, "unFreeze", "unFreeze")
        journey.verify_by_sms(self.sandbox)
        journey.reaches(isCardFrozen=False)
        self.assertEqual(self.sandbox.card("card-virtual-new")["status"], "P2")

    def test_disclosure_is_in_the_language_of_the_process(self):
        for locale, word in (("es_MX.UTF-8", "tarjeta"), ("en_GB.UTF-8", "card"), ("C", "card")):
            _, event = self.view(environment={"LC_ALL": locale})
            self.assertIn(word, event["state"]["disclosureText"])


class Commands(OnTheConsole):
    def test_what_cannot_be_done_is_told_and_changes_nothing(self):
        journey = self.start(verified=True)
        before = journey.shows("EnterCardPINView")
        for command, message in [("tap nothing", "there is no nothing on EnterCardPINView"),
                                 ("tap sdk.setpin.button", "not enabled: sdk.setpin.button on EnterCardPINView"),
                                 ("type 12x4", "digits only in the digit boxes on EnterCardPINView"),
                                 ("jump", "no such command: jump"),
                                 ("wait SuccessPinSetView 0.2", "SuccessPinSetView did not come; still on EnterCardPINView"),
                                 ("wait SuccessPinSetView soon", "wait takes a view's name and, if you like, seconds")]:
            journey.command(command)
            self.assertEqual(journey.error(), message)
        self.assertEqual(journey.shows("EnterCardPINView"), before)
        journey.type("135")
        journey.command("erase")
        journey.command("state")
        journey.reaches(digits=2)
        self.assertEqual(journey.ends(), 5)

    def test_exit_statuses_of_bad_arguments(self):
        good = ["set-pin", "--card", "c", "--service", "https://localhost:1", "--key", "AAAA"]
        for arguments in ([], ["dance"], good[:3], good + ["--pin", "1"], good + ["--ca"], good[:-1] + ["!"],
                          good + ["--biometrics", "maybe"]):
            run = subprocess.run([PROGRAMS / "korvane-journey", *arguments], capture_output=True, text=True,
                                 stdin=subprocess.DEVNULL)
            self.assertEqual(run.returncode, 2, arguments)
            self.assertIn("korvane-journey: ", run.stderr)
        self.assertEqual(subprocess.run([PROGRAMS / "korvane-journey", "--help"], capture_output=True).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v", *sys.argv[1:]])
