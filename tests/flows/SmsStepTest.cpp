// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class SmsStep : public JourneyFixture {
  protected:
    /// Starts the set-PIN journey, which needs the step.
    void toExplanation() {
        next("getCardStatus", result("Failure: Invalid Token"));
        ASSERT_EQ(start(JourneyKind::setPIN), "SMSExplainView");
    }
    void toCodeScreen() {
        toExplanation();
        ASSERT_EQ(tap("sdk.sms.explain.button"), "EnterSMSCodeView");
    }
};

TEST_F(SmsStep, CodeIsSubmittedOnceItIsWholeAndAWrongOneIsToldInline) {
    toCodeScreen();
    next("pciTokenSubmission", result("failure: incorrect sms VERIFICATION code"));
    walk({"type 12345 > calls pciTokenSubmission=0",
          "insert 6 > EnterSMSCodeView, message=sdk.sms.code.incorrect, filled=0",
          "type 1 > message=", "type 222222 > EnterCardPINView, calls pciTokenSubmission=2"});
    see("pciTokenSubmission.TwoFactorCode=222222, pciTokenSubmission.PciSmsToken=sms-token");
    EXPECT_EQ(config.twoFactorCode + config.currentPciToken, "pci-token");
}

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
    EXPECT_TRUE(printedLine("Forcing SMS flow reset..."));
    EXPECT_EQ(config.decryptedPciSmsToken, "");
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

TEST_F(SmsStep, FailedRequestShowsThePageThatLeadsBack) {
    toExplanation();
    next("pciTokenRequest", {500, "", ""});
    hang("pciTokenRequest");
    walk({"sdk.sms.explain.button > UhOhTryAgainWithErrorMsgView, calls pciTokenRequest=1",
          "sdk.registration.errorPage.button > SMSExplainView", "sdk.sms.explain.button",
          "sdk.sms.explain.button > not enabled, calls pciTokenRequest=2"});
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
    next("pciTokenRequest", expired);
    hostSuppliesIvs = false;
    EXPECT_EQ(tap("sdk.sms.explain.button"), "UhOhTryAgainWithErrorMsgView");
}

}  // namespace
}  // namespace korvane
