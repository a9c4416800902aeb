// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "sdk/SdkConfig.h"
#include "tests/flows/ScriptedService.h"

namespace korvane {
namespace {

class SmsStep : public testing::Test {
  protected:
    SmsStep() { service.next("getCardStatus", service.result("Failure: Invalid Token")); }

    /// Starts the set-PIN journey, which needs the step; goes on to the code screen.
    void toCodeScreen() {
        journey.emplace(service, JourneyKind::setPIN);
        journey->tap("sdk.sms.explain.button");
        ASSERT_EQ(journey->view(), "EnterSMSCodeView");
    }

    ScriptedService service;
    SdkConfig& config = SdkConfig::sharedInstance();
    std::optional<DrivenJourney> journey;
};

TEST_F(SmsStep, CodeIsSubmittedOnceItIsWhole) {
    toCodeScreen();
    journey->type("12345");
    EXPECT_EQ(service.calls("pciTokenSubmission"), 0);
    journey->journey->insertText("6");
    service.settle();
    EXPECT_EQ(service.calls("pciTokenSubmission"), 1);
    EXPECT_EQ(service.sent("pciTokenSubmission", "encryptedPciSmsToken"), "sms-token");
    EXPECT_EQ(journey->view(), "EnterCardPINView");
    EXPECT_EQ(config.twoFactorCode, "");
    EXPECT_EQ(config.currentPciToken, "pci-token");
}

TEST_F(SmsStep, WrongCodeIsToldInlineAndClearsTheBoxes) {
    toCodeScreen();
    service.next("pciTokenSubmission", service.result("failure: incorrect sms VERIFICATION code"));
    journey->type("111111");
    EXPECT_EQ(journey->view(), "EnterSMSCodeView");
    EXPECT_EQ(journey->journey->screen().message, "sdk.sms.code.incorrect");
    EXPECT_EQ(journey->journey->screen().passcode->filled, 0);
    journey->type("1");
    EXPECT_EQ(journey->journey->screen().message, "");
    journey->type("222222");
    EXPECT_EQ(journey->view(), "EnterCardPINView");
}

TEST_F(SmsStep, ResendWaitsForItsDeadlineAndClearsTheBoxes) {
    toCodeScreen();
    EXPECT_EQ(journey->state("resendSeconds"), "30");
    EXPECT_FALSE(journey->enabled("sdk.sms.code.resend"));
    service.device.timers->advance(std::chrono::milliseconds(1));
    EXPECT_EQ(journey->state("resendSeconds"), "30");
    service.device.timers->advance(std::chrono::milliseconds(28'999));
    EXPECT_EQ(journey->state("resendSeconds"), "1");
    EXPECT_FALSE(journey->enabled("sdk.sms.code.resend"));
    service.device.timers->advance(std::chrono::seconds(1));
    EXPECT_TRUE(journey->enabled("sdk.sms.code.resend"));

    journey->type("123");
    journey->tap("sdk.sms.code.resend");
    EXPECT_EQ(service.calls("pciTokenRequest"), 2);
    EXPECT_EQ(journey->journey->screen().toast, "sdk.sms.code.resent");
    EXPECT_EQ(journey->journey->screen().passcode->filled, 0);
    EXPECT_EQ(journey->state("resendSeconds"), "30");
    service.device.timers->advance(std::chrono::seconds(10));
    EXPECT_EQ(journey->journey->screen().toast, "");

    service.device.timers->advance(std::chrono::seconds(20));
    service.next("pciTokenRequest", {500, "", ""});
    journey->type("123");
    journey->tap("sdk.sms.code.resend");
    EXPECT_EQ(journey->journey->screen().toast, "errors.generic.api");
    EXPECT_EQ(journey->journey->screen().passcode->filled, 3);
    EXPECT_TRUE(journey->enabled("sdk.sms.code.resend"));
}

TEST_F(SmsStep, LeavingCancelsTheSubmissionAndStartsTheStepAgain) {
    toCodeScreen();
    service.hang("pciTokenSubmission");
    journey->type("123456");
    const std::size_t submission = service.device.urlSession->startedCount() - 1;
    EXPECT_TRUE(journey->journey->screen().spinner);
    EXPECT_EQ(journey->tap("back"), Journey::Outcome::done);
    EXPECT_TRUE(service.device.urlSession->wasCancelled(submission));
    EXPECT_TRUE(service.device.console->has("Forcing SMS flow reset..."));
    EXPECT_EQ(journey->view(), "SMSExplainView");
    EXPECT_EQ(config.decryptedPciSmsToken, "");
    EXPECT_EQ(config.twoFactorCode, "");
    journey->verifyBySMS();
    EXPECT_EQ(journey->view(), "EnterCardPINView");
}

TEST_F(SmsStep, SpentSmsTokenStartsTheStepAgain) {
    toCodeScreen();
    service.next("pciTokenSubmission", service.result("Failure: Invalid Token"));
    journey->type("123456");
    EXPECT_EQ(journey->view(), "SMSExplainView");
    EXPECT_EQ(journey->journey->screen().toast, "sdk.sms.code.expired");
}

TEST_F(SmsStep, FailedSubmissionCanBeRepeatedWithTheSameCode) {
    for (const UrlReply& failure :
         {UrlReply{500, "", ""}, UrlReply{0, "", "reset"}, UrlReply{200, "no JSON", ""},
          UrlReply{200, "{}", ""}, service.result("Failure: Locked")}) {
        toCodeScreen();
        service.next("pciTokenSubmission", failure);
        journey->type("123456");
        EXPECT_EQ(journey->view(), "UhOhTryAgainWithErrorMsgView");
        journey->tap("sdk.registration.errorPage.button");
        EXPECT_EQ(journey->view(), "EnterSMSCodeView");
        EXPECT_EQ(journey->journey->screen().passcode->filled, 6);
        journey->tap("sdk.sms.code.button");
        EXPECT_EQ(journey->view(), "EnterCardPINView");
        service.next("getCardStatus", service.result("Failure: Invalid Token"));
    }
}

TEST_F(SmsStep, FailedRequestShowsThePageThatLeadsBack) {
    journey.emplace(service, JourneyKind::setPIN);
    service.next("pciTokenRequest", {500, "", ""});
    journey->tap("sdk.sms.explain.button");
    EXPECT_EQ(journey->view(), "UhOhTryAgainWithErrorMsgView");
    EXPECT_EQ(service.calls("pciTokenRequest"), 1);
    journey->tap("sdk.registration.errorPage.button");
    EXPECT_EQ(journey->view(), "SMSExplainView");
    EXPECT_TRUE(journey->enabled("sdk.sms.explain.button"));
}

TEST_F(SmsStep, RequestUnderAStaleIvIsRepeatedOnceUnderAFreshOne) {
    for (const UrlReply& stale :
         {service.result("Failure: IV is expired"), service.refusal(400, "Failure: Invalid offsetId")}) {
        service.next("getCardStatus", service.result("Failure: Invalid Token"));
        const int ivsBefore = service.ivsSupplied;
        const int callsBefore = service.calls("pciTokenRequest");
        journey.emplace(service, JourneyKind::setPIN);
        service.next("pciTokenRequest", stale);
        journey->tap("sdk.sms.explain.button");
        EXPECT_EQ(journey->view(), "EnterSMSCodeView");
        EXPECT_EQ(service.calls("pciTokenRequest") - callsBefore, 2);
        EXPECT_GT(service.ivsSupplied, ivsBefore);
    }
    service.next("getCardStatus", service.result("Failure: Invalid Token"));
    journey.emplace(service, JourneyKind::setPIN);
    service.next("pciTokenRequest", service.result("Failure: IV is expired"));
    service.hostSuppliesIvs = false;
    journey->tap("sdk.sms.explain.button");
    EXPECT_EQ(journey->view(), "UhOhTryAgainWithErrorMsgView");
}

TEST_F(SmsStep, SecondTapWhileTheCodeIsRequestedDoesNothing) {
    journey.emplace(service, JourneyKind::setPIN);
    service.hang("pciTokenRequest");
    journey->tap("sdk.sms.explain.button");
    EXPECT_EQ(journey->tap("sdk.sms.explain.button"), Journey::Outcome::notEnabled);
    EXPECT_EQ(service.calls("pciTokenRequest"), 1);
}

TEST_F(SmsStep, LoopsThroughTheStepDoNotGrowTheStack) {
    toCodeScreen();
    for (int i = 0; i < 20; ++i) {
        service.next("getCardStatus", service.result("Failure: Expired Token"));
        journey->type("123456");
        ASSERT_EQ(journey->view(), "SMSExplainView");
        EXPECT_EQ(journey->journey->screen().stack, (std::vector<std::string>{"SetPIN", "SMSExplainView"}));
        journey->tap("sdk.sms.explain.button");
    }
}

}  // namespace
}  // namespace korvane
