# SPDX-License-Identifier: Apache-2.0
"""The set-PIN journey on the console against the card service over HTTPS."""

import subprocess
import sys
import unittest

from driver import PROGRAMS, Journey, Sandbox


class OnTheConsole(unittest.TestCase):
    def setUp(self):
        self.sandbox = Sandbox()
        self.journeys = []

    def tearDown(self):
        for journey in self.journeys:
            journey.process.kill()
            journey.process.wait()
            for pipe in (journey.process.stdin, journey.process.stdout, journey.process.stderr):
                pipe.close()
        self.sandbox.stop()

    def start(self, *arguments, **keywords):
        self.journeys.append(Journey(self.sandbox, *arguments, **keywords))
        return self.journeys[-1]

    def at_pin_entry(self, **keywords):
        journey = self.start(**keywords)
        journey.verify_by_sms(self.sandbox)
        journey.shows("EnterCardPINView")
        return journey


class SetPin(OnTheConsole):
    def test_first_run_with_no_tokens_sets_the_pin(self):
        journey = self.start()
        journey.verify_by_sms(self.sandbox)
        self.assertEqual(journey.shows("EnterCardPINView")["stack"], ["SetPIN", "EnterCardPINView"])
        journey.enter_and_confirm("1357")
        journey.shows("SuccessPinSetView")
        journey.tap("sdk.success.setpin.button")
        self.assertEqual(journey.closes(), ("SUCCESS", 0))
        self.assertEqual(self.sandbox.card("card-physical-active")["pin"], "1357")
        log = "".join(journey.log)
        self.assertIn("Got 401... calling reAuthClosure...", log)
        self.assertIn("Success! Got new bearer token... now re-calling getCardStatus...", log)
        self.assertEqual(self.sandbox.requests()["getBearerToken"], 1)

    def test_weak_pin_and_mismatch_are_told_and_submit_nothing(self):
        journey = self.at_pin_entry()
        journey.type("1234")
        journey.tap("sdk.setpin.button")
        journey.shows("YouCanDoBetterView")
        journey.tap("sdk.youcandobetter.button")
        journey.shows("EnterCardPINView")
        journey.type("2580")
        journey.tap("sdk.setpin.button")
        journey.shows("ConfirmCardPINView")
        journey.type("2581")
        journey.tap("sdk.confirmpin.button")
        event = journey.next(lambda e: e.get("state", {}).get("pinsDontMatch"))
        self.assertEqual(event["state"]["message"], "sdk.error.matchpin.message")
        self.assertEqual(self.sandbox.requests()["pinSet"], 0)
        journey.type("2580")
        journey.tap("sdk.confirmpin.button")
        journey.shows("SuccessPinSetView")
        self.assertEqual(self.sandbox.card("card-physical-active")["pin"], "2580")

    def test_wrong_sms_code_and_resend(self):
        journey = self.start()
        journey.shows("SMSExplainView")
        journey.tap("sdk.sms.explain.button")
        journey.shows("EnterSMSCodeView")
        first = self.sandbox.code()
        journey.type("000000" if first != "000000" else "111111")
        event = journey.next(lambda e: e.get("state", {}).get("message"))
        self.assertEqual((event["view"], event["state"]["digits"]), ("EnterSMSCodeView", 0))
        journey.tap("sdk.sms.code.resend")
        self.assertIn("not enabled", journey.error())
        journey.next(lambda e: {"id": "sdk.sms.code.resend", "kind": "button", "enabled": True} in e.get("controls", []))
        journey.tap("sdk.sms.code.resend")
        self.assertEqual(journey.next(lambda e: e["event"] == "toast")["id"], "sdk.sms.code.resent")
        self.assertEqual(self.sandbox.requests()["pciTokenRequest"], 2)
        journey.type(self.sandbox.code())
        journey.shows("EnterCardPINView")

    def test_expired_pci_token_at_submission_returns_and_resubmits_without_a_tap(self):
        journey = self.at_pin_entry()
        self.sandbox.fault(endpoint="pinSet", expirePciToken=True)
        journey.enter_and_confirm("1470")
        journey.verify_by_sms(self.sandbox)
        event = journey.shows("SuccessPinSetView")
        self.assertEqual(event["stack"], ["SetPIN", "EnterCardPINView", "ConfirmCardPINView", "SuccessPinSetView"])
        self.assertEqual(self.sandbox.card("card-physical-active")["pin"], "1470")

    def test_expired_iv_in_the_middle_is_replaced(self):
        journey = self.at_pin_entry()
        self.sandbox.fault(endpoint="pinSet", expireIv=True)
        journey.enter_and_confirm("1470")
        journey.shows("SuccessPinSetView")
        self.assertEqual(self.sandbox.requests()["pinSet"], 2)
        self.assertIn("refreshed the IV... now recalling doPinSet\n", journey.log)

    def test_failures_of_the_first_call_end_on_the_page_that_the_text_names(self):
        cases = [
            ({"status": 500}, "SMSExplainView"),  # with an empty token
            ({"status": 418}, "UhOhTryAgainView"),
            ({"reset": True}, "UhOhTryAgainView"),
            ({"body": "<html>not JSON</html>"}, "UhOhTryAgainView"),
            ({"result": "Failure: No such card"}, "UhOhTryAgainView"),
        ]
        for rule, view in cases:
            with self.subTest(rule=rule):
                # The bearer token is renewed first: the second status call meets the rule.
                self.sandbox.fault(endpoint="getCardStatus", status=401)
                self.sandbox.fault(endpoint="getCardStatus", **rule)
                journey = self.start()
                journey.shows(view)
                if view == "UhOhTryAgainView":
                    journey.tap("sdk.errorPage.tryagain.button")
                    self.assertEqual(journey.closes(), ("FAILURE", 4))

    def test_failures_of_the_submission_end_on_the_error_page(self):
        for rule in ({"status": 418}, {"reset": True}, {"body": "[]"}, {"status": 500, "result": "Failure: Down"}):
            with self.subTest(rule=rule):
                journey = self.at_pin_entry()
                self.sandbox.fault(endpoint="pinSet", **rule)
                journey.enter_and_confirm("1470")
                journey.shows("UhOhTryAgainView")

    def test_failed_renewal_ends_on_the_error_page(self):
        self.sandbox.fault(endpoint="getBearerToken", status=401)
        self.start().shows("UhOhTryAgainView")

    def test_service_that_is_not_there_or_not_trusted(self):
        self.start(service="https://127.0.0.1:9").shows("UhOhTryAgainView")
        other = Sandbox()
        try:
            journey = self.start(service=other.url)
            journey.shows("UhOhTryAgainView")
            self.assertEqual(other.requests()["getCardStatus"], 0)
        finally:
            other.stop()


class Activate(OnTheConsole):
    def test_card_that_is_not_active_yet_is_activated_from_the_set_pin_journey(self):
        journey = self.start(card="card-physical-new")
        journey.verify_by_sms(self.sandbox)
        journey.shows("CardIsNotYetActivatedView")
        journey.tap("sdk.cardnotactivated.button.one")
        journey.shows("ActivateCardAndSetPIN_NoNav")
        journey.tap("sdk.cardarrived.start")
        card = self.sandbox.card("card-physical-new")
        journey.shows("EnterCardLastFourView")
        journey.type(card["pan"][-4:])
        journey.tap("sdk.activatecard.lastfourdigits.button")
        journey.shows("EnterCardCVVView")
        journey.type(card["cvv"])
        journey.tap("sdk.activatecard.cvv.button")
        journey.enter_and_confirm("1357")
        journey.shows("SuccessCardActivatedAndPinSetView")
        card = self.sandbox.card("card-physical-new")
        self.assertEqual((card["status"], card["pin"]), ("A1", "1357"))


class Commands(OnTheConsole):
    def test_what_cannot_be_done_is_told_and_changes_nothing(self):
        journey = self.at_pin_entry()
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
        self.assertTrue(journey.next(lambda e: e.get("state", {}).get("digits") == 2))
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
