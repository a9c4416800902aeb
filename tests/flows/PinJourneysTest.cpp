// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class SmsStep : public JourneyFixture {
  protected:
    /// Starts the set-PIN journey, which needs the step.
    void toExplanation() {
        next("getCardStatus", result("Failure: Invalid Token"));
        ASSERT_EQ(start(), "SMSExplainView");
    }
    void toCodeScreen() {
        toExplanation();
        ASSERT_EQ(tap("sdk.sms.explain.button"), "EnterSMSCodeView");
    }
};

TEST_F(SmsStep, ResendWaitsForItsDeadlineAndClearsTheBoxes) {
    toCodeScreen();
    walk({"wait 0.001 > resendSeconds=30, resend=off", "wait 28.999 > resendSeconds=1, resend=off", "wait 1",
          "type 123",
          "resend > EnterSMSCodeView, calls pciTokenRequest=2, toast=sdk.sms.code.resent, filled=0",
          "wait 0 > resendSeconds=30", "wait 10 > toast=", "wait 20", "type 123"});
    next("pciTokenRequest", {500, "", ""});
    walk({"resend > toast=errors.generic.api, filled=3, resend=on"});
}

TEST_F(SmsStep, LeavingCancelsTheSubmissionAndStartsTheStepAgain) {
    toCodeScreen();
    hang("pciTokenSubmission");
    walk({"type 123456 > showSpinner=true", "back > SMSExplainView, typed="});
    EXPECT_TRUE(device.urlSession->wasCancelled(device.urlSession->startedCount() - 1));
    EXPECT_EQ(state().decryptedPciSmsToken, "");
    // A spent SMS token starts it again too.
    next("pciTokenSubmission", result("Failure: Invalid Token"));
    EXPECT_EQ(verifyBySMS(), "SMSExplainView");
    see("toast=sdk.sms.code.expired");
    EXPECT_EQ(verifyBySMS(), "EnterCardPINView");
}

TEST_F(SmsStep, FailedSubmissionCanBeRepeatedWithTheSameCode) {
    for (const UrlReply& failure : {UrlReply{500, "", ""}, UrlReply{200, "no JSON", ""}}) {
        toCodeScreen();
        next("pciTokenSubmission", failure);
        walk({"type 123456 > UhOhTryAgainWithErrorMsgView",
              "sdk.registration.errorPage.button > EnterSMSCodeView, filled=6",
              "sdk.sms.code.button > EnterCardPINView"});
    }
}

TEST_F(SmsStep, RequestUnderAStaleIvIsRepeatedOnceUnderAFreshOne) {
    const UrlReply expired = result("Failure: IV is expired");
    for (const UrlReply& stale : {expired, refusal(400, "Failure: Invalid offsetId")}) {
        toExplanation();
        const int before = ivsSupplied;
        next("pciTokenRequest", stale);
        walk({"sdk.sms.explain.button > EnterSMSCodeView, calls pciTokenRequest=2"});
        EXPECT_EQ(ivsSupplied - before, 1);
    }
    toExplanation();
    config.ivByteArray.resize(12);  // enciphers nothing, and nothing can be read that would tell
    walk({"sdk.sms.explain.button > EnterSMSCodeView, calls pciTokenRequest=2"});
    toExplanation();
    next("pciTokenRequest", expired);
    hostSuppliesIvs = false;
    EXPECT_EQ(tap("sdk.sms.explain.button"), "UhOhTryAgainWithErrorMsgView");
}

class PinJourneys : public JourneyFixture {};

TEST_F(PinJourneys, SetsThePinAfterAWeakOneAndAMismatch) {
    start();
    walk({"type 123 > back=off", "sdk.setpin.button > not enabled", "insert 4",
          "sdk.setpin.button > YouCanDoBetterView", "sdk.youcandobetter.button > EnterCardPINView, filled=4",
          // the next digit begins another PIN
          "insert 1 > filled=1", "type 1357", "sdk.setpin.button > ConfirmCardPINView", "type 1358",
          "sdk.confirmpin.button > ConfirmCardPINView, message=sdk.error.matchpin.message, filled=0, calls "
          "pinSet=0",
          "back > EnterCardPINView, filled=4", "sdk.setpin.button",
          "type 1357 > message=", "sdk.confirmpin.button > SuccessPinSetView, pinSet.PIN=1357, typed=",
          "sdk.success.setpin.button > closed=SUCCESS"});
    EXPECT_TRUE(device.console->has("autoNavToView: SuccessPinSetView"));
}

TEST_F(PinJourneys, ExpiredTokenAtSubmissionResubmitsAfterTheSmsStepAndNotOnTheWayBack) {
    start(JourneyKind::activateCardAndSetPIN, "BT");  // of an active card only the PIN can be set
    walk({"sdk.cardactivated.button.two > EnterCardPINView"});
    next("pinSet", refusal(500, "failure: expired token"));
    next("pinSet", result("Failure: Invalid Token"));
    EXPECT_EQ(enterAndConfirm(), "SMSExplainView");
    walk({"back > ConfirmCardPINView, calls pinSet=1", "sdk.confirmpin.button > SMSExplainView, typed=2580"});
    EXPECT_EQ(verifyBySMS(), "SuccessPinSetView");
    see("calls pinSet=3, pinSet.PIN=2580, "
        "stack=ActivateCardAndSetPIN/CardAlreadyActivatedView/EnterCardPINView/ConfirmCardPINView/"
        "SuccessPinSetView");
}

TEST_F(PinJourneys, AFailedSubmissionEndsOnTheErrorPage) {
    for (const UrlReply& reply : {result("Failure: No such card"), UrlReply{0, "", "reset"},
                                  refusal(500, "Failure: Invalid offsetId")}) {
        start();
        hostSuppliesIvs = false;
        next("pinSet", reply);
        EXPECT_EQ(enterAndConfirm(), "UhOhTryAgainView") << reply.status << reply.body;
        see("typed=");
    }
}

TEST_F(PinJourneys, WhileThePinIsOnItsWayNothingButBackIsAcceptedAndThatEndsTheReruns) {
    start();
    hang("pinSet");
    enterAndConfirm();
    walk({"sdk.confirmpin.button > not enabled, showSpinner=true", "type 1111 > not enabled, calls pinSet=1",
          "back > EnterCardPINView, filled=4, typed="});
    device.urlSession->reply(device.urlSession->startedCount() - 1, result("Failure: IV is expired"));
    settle();
    see("EnterCardPINView, calls pinSet=1");
}

TEST_F(PinJourneys, EveryTypeOfCardIsActivatedFromBothPlaces) {
    for (const auto& [kind, button] : {std::pair{JourneyKind::activateCardAndSetPIN, "sdk.cardarrived.start"},
                                       {JourneyKind::getCardImage, "onCardButton"}}) {
        for (const std::string type : {"physical", "paywallet", "sticker", "virtual", "wearable"}) {
            SCOPED_TRACE(button + (" " + type));
            start(kind, "P2", type);
            const bool physical = type != "virtual" && type != "wearable";
            const std::string endpoint = (physical ? "physical" : type) + "CardActivationAndPinSet";
            tap(button);
            if (physical) {
                walk({"type 1111", "sdk.activatecard.lastfourdigits.button > EnterCardCVVView",
                      "back > EnterCardLastFourView", "type 4242", "sdk.activatecard.lastfourdigits.button",
                      "type 123", "sdk.activatecard.cvv.button"});
            }
            EXPECT_EQ(enterAndConfirm(), "SuccessCardActivatedAndPinSetView");
            see("calls " + endpoint + "=1, " + endpoint + ".PIN=2580");
            if (physical) see(endpoint + ".LastFourOfPan=4242, " + endpoint + ".CVV=123");
        }
    }
}

}  // namespace
}  // namespace korvane
