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
    type("12345");
    EXPECT_EQ(calls("pciTokenSubmission"), 0);
    EXPECT_EQ(insert("6"), "EnterSMSCodeView");
    EXPECT_EQ(screen().message, "sdk.sms.code.incorrect");
    EXPECT_EQ(filled(), 0);
    type("1");
    EXPECT_EQ(screen().message, "");
    EXPECT_EQ(type("222222"), "EnterCardPINView");
    EXPECT_EQ(calls("pciTokenSubmission"), 2);
    EXPECT_EQ(sent("pciTokenSubmission", "encryptedTwoFactorCode"), "222222");
    EXPECT_EQ(sent("pciTokenSubmission", "encryptedPciSmsToken"), "sms-token");
    EXPECT_EQ(config.twoFactorCode + config.currentPciToken, "pci-token");
}

TEST_F(SmsStep, ResendWaitsForItsDeadlineAndClearsTheBoxes) {
    using std::chrono_literals::operator""s;
    using std::chrono_literals::operator""ms;
    toCodeScreen();
    for (const auto& [time, seconds] :
         {std::pair{1ms, "resendSeconds=30 "}, {28'999ms, "resendSeconds=1 "}}) {
        pass(time);
        EXPECT_THAT(state(), HasSubstr(seconds));
        EXPECT_FALSE(enabled("sdk.sms.code.resend"));
    }
    pass(1s);
    type("123");
    EXPECT_EQ(tap("sdk.sms.code.resend"), "EnterSMSCodeView");
    EXPECT_EQ(calls("pciTokenRequest"), 2);
    EXPECT_EQ(screen().toast, "sdk.sms.code.resent");
    EXPECT_EQ(filled(), 0);
    EXPECT_THAT(state(), HasSubstr("resendSeconds=30 "));
    pass(10s);
    EXPECT_EQ(screen().toast, "");

    pass(20s);
    next("pciTokenRequest", {500, "", ""});
    type("123");
    tap("sdk.sms.code.resend");
    EXPECT_EQ(screen().toast, "errors.generic.api");
    EXPECT_EQ(filled(), 3);
    EXPECT_TRUE(enabled("sdk.sms.code.resend"));
}

TEST_F(SmsStep, LeavingCancelsTheSubmissionAndStartsTheStepAgain) {
    toCodeScreen();
    hang("pciTokenSubmission");
    type("123456");
    EXPECT_TRUE(screen().spinner);
    EXPECT_EQ(tap("back"), "SMSExplainView");
    EXPECT_TRUE(device.urlSession->wasCancelled(device.urlSession->startedCount() - 1));
    EXPECT_TRUE(printedLine("Forcing SMS flow reset..."));
    EXPECT_EQ(config.decryptedPciSmsToken + config.twoFactorCode, "");
    // A spent SMS token starts it again too.
    next("pciTokenSubmission", result("Failure: Invalid Token"));
    EXPECT_EQ(verifyBySMS(), "SMSExplainView");
    EXPECT_EQ(screen().toast, "sdk.sms.code.expired");
    EXPECT_EQ(verifyBySMS(), "EnterCardPINView");
}

TEST_F(SmsStep, FailedSubmissionCanBeRepeatedWithTheSameCode) {
    for (const UrlReply& failure : {UrlReply{500, "", ""}, UrlReply{0, "", "reset"},
                                    UrlReply{200, "no JSON", ""}, result("Failure: Locked")}) {
        toCodeScreen();
        next("pciTokenSubmission", failure);
        EXPECT_EQ(type("123456"), "UhOhTryAgainWithErrorMsgView");
        EXPECT_EQ(tap("sdk.registration.errorPage.button"), "EnterSMSCodeView");
        EXPECT_EQ(filled(), 6);
        EXPECT_EQ(tap("sdk.sms.code.button"), "EnterCardPINView");
    }
}

TEST_F(SmsStep, FailedRequestShowsThePageThatLeadsBack) {
    toExplanation();
    next("pciTokenRequest", {500, "", ""});
    EXPECT_EQ(tap("sdk.sms.explain.button"), "UhOhTryAgainWithErrorMsgView");
    EXPECT_EQ(calls("pciTokenRequest"), 1);
    EXPECT_EQ(tap("sdk.registration.errorPage.button"), "SMSExplainView");
    hang("pciTokenRequest");
    tap("sdk.sms.explain.button");
    EXPECT_EQ(tap("sdk.sms.explain.button"), "not enabled") << "one code at a time";
    EXPECT_EQ(calls("pciTokenRequest"), 2);
}

TEST_F(SmsStep, RequestUnderAStaleIvIsRepeatedOnceUnderAFreshOne) {
    const UrlReply expired = result("Failure: IV is expired");
    for (const UrlReply& stale : {expired, refusal(400, "Failure: Invalid offsetId")}) {
        toExplanation();
        const int before = calls("pciTokenRequest");
        const int ivsBefore = ivsSupplied;
        next("pciTokenRequest", stale);
        EXPECT_EQ(tap("sdk.sms.explain.button"), "EnterSMSCodeView");
        EXPECT_EQ(calls("pciTokenRequest") - before, 2);
        EXPECT_EQ(ivsSupplied - ivsBefore, 1);
    }
    toExplanation();
    next("pciTokenRequest", expired);
    hostSuppliesIvs = false;
    EXPECT_EQ(tap("sdk.sms.explain.button"), "UhOhTryAgainWithErrorMsgView");
}

}  // namespace
}  // namespace korvane
