// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "sdk/SdkConfig.h"
#include "tests/flows/ScriptedService.h"

namespace korvane {
namespace {

using Views = std::vector<std::string>;

class SetPinJourney : public testing::Test {
  protected:
    DrivenJourney& start() {
        journey_ = std::make_unique<DrivenJourney>(service, JourneyKind::setPIN);
        return *journey_;
    }

    ScriptedService service;
    SdkConfig& config = SdkConfig::sharedInstance();

  private:
    std::unique_ptr<DrivenJourney> journey_;
};

TEST_F(SetPinJourney, SetsThePinAndClosesWithSuccess) {
    service.hang("getCardStatus");
    DrivenJourney& journey = start();
    EXPECT_EQ(journey.view(), "SetPIN");
    EXPECT_TRUE(journey.journey->screen().spinner);
    service.device.urlSession->reply(0, service.refusal(400, "FAILURE: invalid TOKEN"));
    service.settle();
    EXPECT_EQ(journey.view(), "SMSExplainView");
    EXPECT_EQ(config.viewToShowAfterSMSVerify, "SetPIN_NoNav");

    journey.verifyBySMS();
    EXPECT_EQ(service.sent("pciTokenSubmission", "encryptedTwoFactorCode"), "123456");
    EXPECT_EQ(journey.view(), "EnterCardPINView");
    EXPECT_EQ(journey.journey->screen().stack, (Views{"SetPIN", "EnterCardPINView"}));
    EXPECT_TRUE(config.setPinOnly);
    EXPECT_FALSE(journey.enabled("back"));

    journey.enterAndConfirm("1357");
    EXPECT_EQ(service.sent("pinSet", "encryptedPIN"), "1357");
    EXPECT_EQ(service.sent("pinSet", "encryptedPciToken"), "pci-token");
    EXPECT_EQ(journey.view(), "SuccessPinSetView");
    EXPECT_TRUE(service.device.console->has("autoNavToView: SuccessPinSetView"));
    EXPECT_EQ(config.pendingPin, "");

    journey.tap("sdk.success.setpin.button");
    EXPECT_EQ(journey.closed, (Views{"SUCCESS"}));
}

TEST_F(SetPinJourney, FirstViewFollowsTheAnswerToTheStatusCall) {
    struct Case {
        UrlReply reply;
        std::string pciToken;
        std::string view;
    };
    const Case cases[] = {
        {service.result("Failure: Expired Token"), "held", "SMSExplainView"},
        {service.result("FAILURE: EXPIRED TOKEN"), "held", "SMSExplainView"},
        {service.result("Failure: Expired Token "), "held", "UhOhTryAgainView"},
        {service.refusal(403, "Failure: Invalid Token"), "held", "SMSExplainView"},
        {service.refusal(500, "Failure: Invalid Token"), "held", "SMSExplainView"},
        {service.refusal(500, "Failure: Something"), "held", "UhOhTryAgainView"},
        {{500, "", ""}, "", "SMSExplainView"},
        {{400, "", ""}, "", "UhOhTryAgainView"},
        {{418, "", ""}, "", "UhOhTryAgainView"},
        // Only the payload of 400, 403 and 500 speaks for the service.
        {service.refusal(418, "Failure: Invalid Token"), "held", "UhOhTryAgainView"},
        {{0, "", "connection reset"}, "", "UhOhTryAgainView"},
        {{200, "<html>", ""}, "held", "UhOhTryAgainView"},
        {{200, "{}", ""}, "held", "UhOhTryAgainView"},
    };
    for (const Case& each : cases) {
        config.currentPciToken = each.pciToken;
        service.next("getCardStatus", each.reply);
        const DrivenJourney& journey = start();
        EXPECT_EQ(journey.view(), each.view)
            << each.reply.status << " " << each.reply.body << each.reply.failure;
        EXPECT_EQ(journey.journey->screen().toast,
                  each.view == "UhOhTryAgainView" ? "errors.generic.api" : "");
        EXPECT_FALSE(journey.journey->screen().spinner);
    }
    EXPECT_EQ(service.device.console->count("Forcing SMSExplainView"), 1u);
}

TEST_F(SetPinJourney, FirstViewFollowsTypeAndStatusOfTheCard) {
    const std::array<std::array<std::string, 3>, 5> cases{{{"physical", "A1", "EnterCardPINView"},
                                                           {"PHYSICAL", "P2", "CardIsNotYetActivatedView"},
                                                           {"virtual", "P2", "EnterCardPINView"},
                                                           {"physical", "p2", "EnterCardPINView"},
                                                           {"physical", "BT", "EnterCardPINView"}}};
    for (const auto& [type, status, view] : cases) {
        service.cardType = type;
        service.cardStatus = status;
        EXPECT_EQ(start().view(), view) << type << " " << status;
        EXPECT_EQ(config.decCardStatus, "");
    }
    service.cardStatus = "P2";
    DrivenJourney& journey = start();
    journey.tap("sdk.cardnotactivated.button.two");
    EXPECT_EQ(journey.closed, (Views{"CANCELED"}));
    journey.tap("sdk.cardnotactivated.button.one");
    EXPECT_EQ(journey.journey->screen().stack.back(), "ActivateCardAndSetPIN_NoNav");
    EXPECT_FALSE(config.setPinOnly);
    journey.journey->perform("back");
}

TEST_F(SetPinJourney, StaleIvInTheAnswersPayloadIsRenewedAndTheDecisionRunAgain) {
    service.next("getCardStatus", service.refusal(500, "failure: iv is expired"));
    service.next("getCardStatus", service.refusal(400, "Failure: Invalid offsetId"));
    config.currentPciToken = "held";
    EXPECT_EQ(start().view(), "EnterCardPINView");
    EXPECT_EQ(service.calls("getCardStatus"), 3);
    EXPECT_EQ(service.ivsSupplied, 3);
    EXPECT_TRUE(service.device.console->has(
        "iv expired: Got new iv -- re-calling doAppearGuts -- SetPinAppearStruct"));
    EXPECT_TRUE(service.device.console->has(
        "iv invalid: Got new iv -- re-calling doAppearGuts -- SetPinAppearStruct"));
}

TEST_F(SetPinJourney, HostWithoutIvsEndsOnThePageThatSaysSo) {
    service.hostSuppliesIvs = false;
    DrivenJourney& journey = start();
    EXPECT_EQ(journey.view(), "UhOhTryAgainView");
    journey.tap("sdk.errorPage.tryagain.button");
    EXPECT_EQ(journey.closed, (Views{"FAILURE"}));
}

TEST_F(SetPinJourney, WeakPinIsWarnedOfAndTheNextDigitBeginsAnother) {
    DrivenJourney& journey = start();
    EXPECT_FALSE(journey.enabled("sdk.setpin.button"));
    journey.type("123");
    EXPECT_FALSE(journey.enabled("sdk.setpin.button"));
    EXPECT_EQ(journey.tap("sdk.setpin.button"), Journey::Outcome::notEnabled);
    journey.journey->insertText("4");
    journey.tap("sdk.setpin.button");
    EXPECT_EQ(journey.view(), "YouCanDoBetterView");
    journey.tap("sdk.youcandobetter.button");
    EXPECT_EQ(journey.view(), "EnterCardPINView");
    EXPECT_EQ(journey.journey->screen().passcode->filled, 4);
    journey.journey->insertText("9");
    EXPECT_EQ(journey.journey->screen().passcode->filled, 1);
}

TEST_F(SetPinJourney, DifferentEntriesAreToldInlineAndSubmitNothing) {
    DrivenJourney& journey = start();
    journey.type("1357");
    journey.tap("sdk.setpin.button");
    journey.type("1358");
    journey.tap("sdk.confirmpin.button");
    EXPECT_EQ(journey.view(), "ConfirmCardPINView");
    EXPECT_EQ(journey.journey->screen().message, "sdk.error.matchpin.message");
    EXPECT_EQ(service.calls("pinSet"), 0);
    journey.tap("back");
    EXPECT_EQ(journey.view(), "EnterCardPINView");
    EXPECT_EQ(journey.journey->screen().passcode->filled, 4);
    journey.tap("sdk.setpin.button");
    journey.type("1357");
    EXPECT_EQ(journey.journey->screen().message, "");
    journey.tap("sdk.confirmpin.button");
    EXPECT_EQ(journey.view(), "SuccessPinSetView");
}

TEST_F(SetPinJourney, ExpiredTokenAtSubmissionReturnsAndResubmitsWithoutATap) {
    DrivenJourney& journey = start();
    service.next("pinSet", service.refusal(500, "failure: expired token"));
    journey.enterAndConfirm("2580");
    EXPECT_EQ(journey.view(), "SMSExplainView");
    EXPECT_EQ(config.pendingPin, "2580");
    journey.verifyBySMS();
    EXPECT_EQ(service.calls("pinSet"), 2);
    EXPECT_EQ(service.sent("pinSet", "encryptedPIN"), "2580");
    EXPECT_EQ(journey.journey->screen().stack,
              (Views{"SetPIN", "EnterCardPINView", "ConfirmCardPINView", "SuccessPinSetView"}));
}

TEST_F(SetPinJourney, BackFromTheSmsStepDoesNotResubmit) {
    DrivenJourney& journey = start();
    service.next("pinSet", service.result("Failure: Invalid Token"));
    journey.enterAndConfirm("2580");
    EXPECT_EQ(journey.view(), "SMSExplainView");
    journey.tap("back");
    EXPECT_EQ(journey.view(), "ConfirmCardPINView");
    EXPECT_EQ(service.calls("pinSet"), 1);
    EXPECT_TRUE(journey.enabled("sdk.confirmpin.button"));
}

TEST_F(SetPinJourney, EveryFailureOfTheSubmissionEndsInAMove) {
    const std::pair<UrlReply, std::string> cases[] = {
        {service.result("Failure: No such card"), "UhOhTryAgainView"},
        {{418, "", ""}, "UhOhTryAgainView"},
        {{0, "", "reset"}, "UhOhTryAgainView"},
        {{200, "not JSON", ""}, "UhOhTryAgainView"},
        {service.refusal(500, "Failure: Invalid offsetId"), "SuccessPinSetView"},
        {service.result("failure: IV IS EXPIRED"), "SuccessPinSetView"},
    };
    for (const auto& [reply, view] : cases) {
        DrivenJourney& journey = start();
        service.next("pinSet", reply);
        journey.enterAndConfirm("2580");
        EXPECT_EQ(journey.view(), view) << reply.status << reply.body;
        EXPECT_EQ(config.pendingPin, "");
    }
}

TEST_F(SetPinJourney, NothingIsAcceptedWhileThePinIsOnItsWay) {
    DrivenJourney& journey = start();
    service.hang("pinSet");
    journey.enterAndConfirm("2580");
    EXPECT_TRUE(journey.journey->screen().spinner);
    for (const char* const control : {"back", "sdk.confirmpin.button"}) {
        EXPECT_EQ(journey.tap(control), Journey::Outcome::notEnabled) << control;
    }
    EXPECT_EQ(journey.type("1111"), Journey::Outcome::notEnabled);
    EXPECT_EQ(service.calls("pinSet"), 1);
}

TEST_F(SetPinJourney, JourneyThatIsGoneIsNeverTouched) {
    DrivenJourney& journey = start();
    service.hang("pinSet");
    journey.enterAndConfirm("2580");
    const std::size_t request = service.device.urlSession->startedCount() - 1;
    journey.journey.reset();
    EXPECT_EQ(config.pendingPin, "");
    service.device.urlSession->reply(request, service.result("Success"));
    service.settle();
    EXPECT_FALSE(service.device.console->has("autoNavToView: SuccessPinSetView"));
}

TEST_F(SetPinJourney, HostMayDestroyTheJourneyFromInsideTheNotification) {
    DrivenJourney& journey = start();
    journey.enterAndConfirm("2580");
    const auto observation = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo&) { journey.journey.reset(); });
    EXPECT_EQ(journey.journey->perform("sdk.success.setpin.button"), Journey::Outcome::done);
    EXPECT_EQ(journey.journey, nullptr);
}

TEST_F(SetPinJourney, SheetTakesThePlaceOfTheScreensControls) {
    DrivenJourney& journey = start();
    journey.tap("sdk.setpin.fourdigits");
    ASSERT_TRUE(journey.journey->screen().sheet);
    EXPECT_EQ(journey.type("1"), Journey::Outcome::notEnabled);
    EXPECT_EQ(journey.tap("sdk.setpin.button"), Journey::Outcome::noSuchControl);
    journey.tap("sdk.setpin.fourdigits.info.button");
    EXPECT_FALSE(journey.journey->screen().sheet);
}

TEST_F(SetPinJourney, ObserverIsToldOnceForManyChanges) {
    DrivenJourney& journey = start();
    int told = 0;
    journey.journey->onChange([&] { ++told; });
    journey.journey->insertText("1");
    journey.journey->insertText("2");
    EXPECT_EQ(told, 0);
    service.settle();
    EXPECT_EQ(told, 1);
    for (const StateField& field : journey.journey->screen().state) {
        const auto* const text = std::get_if<std::string>(&field.value);
        EXPECT_TRUE(!text || text->find("12") == std::string::npos) << field.name;
    }
    EXPECT_EQ(journey.journey->screen().passcode->visibleDigits, "");
}

}  // namespace
}  // namespace korvane
