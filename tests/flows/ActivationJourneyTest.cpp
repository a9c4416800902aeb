// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "sdk/SdkConfig.h"
#include "tests/flows/ScriptedService.h"

namespace korvane {
namespace {

using Views = std::vector<std::string>;

class ActivationJourney : public testing::Test {
  protected:
    DrivenJourney& start(const std::string& type, const std::string& status) {
        service.cardType = type;
        service.cardStatus = status;
        journey_ = std::make_unique<DrivenJourney>(service, JourneyKind::activateCardAndSetPIN);
        return *journey_;
    }

    ScriptedService service;
    SdkConfig& config = SdkConfig::sharedInstance();

  private:
    std::unique_ptr<DrivenJourney> journey_;
};

TEST_F(ActivationJourney, PhysicalCardProvesPossessionFirst) {
    DrivenJourney& journey = start("physical", "P2");
    EXPECT_EQ(journey.view(), "ActivateCardAndSetPIN_NoNav");
    journey.tap("sdk.cardarrived.start");
    EXPECT_EQ(journey.view(), "EnterCardLastFourView");
    journey.type("1111");
    journey.tap("sdk.activatecard.lastfourdigits.button");
    EXPECT_EQ(journey.view(), "EnterCardCVVView");
    journey.tap("back");
    journey.type("4242");
    journey.tap("sdk.activatecard.lastfourdigits.button");
    journey.type("123");
    journey.tap("sdk.activatecard.cvv.button");
    journey.enterAndConfirm("2580");
    EXPECT_EQ(service.sent("physicalCardActivationAndPinSet", "encryptedLastFourOfPan"), "4242");
    EXPECT_EQ(service.sent("physicalCardActivationAndPinSet", "encryptedCVV"), "123");
    EXPECT_EQ(service.sent("physicalCardActivationAndPinSet", "encryptedPIN"), "2580");
    EXPECT_EQ(journey.view(), "SuccessCardActivatedAndPinSetView");
    journey.tap("sdk.success.cardActivatedAndSetPin.button");
    EXPECT_EQ(journey.closed, (Views{"SUCCESS"}));
}

TEST_F(ActivationJourney, OtherCardsGoStraightToThePinAndTheirOwnEndpoint) {
    for (const std::string type : {"virtual", "wearable"}) {
        DrivenJourney& journey = start(type, "P2");
        journey.tap("sdk.cardarrived.start");
        EXPECT_EQ(journey.view(), "EnterCardPINView");
        EXPECT_TRUE(journey.enabled("back"));
        journey.enterAndConfirm("2580");
        EXPECT_EQ(service.calls(type + "CardActivationAndPinSet"), 1);
        EXPECT_EQ(journey.view(), "SuccessCardActivatedAndPinSetView");
    }
}

TEST_F(ActivationJourney, ActiveCardLetsOnlyItsPinBeSet) {
    for (const char* const status : {"A1", "BT"}) {
        DrivenJourney& journey = start("physical", status);
        EXPECT_EQ(journey.view(), "CardAlreadyActivatedView");
        EXPECT_FALSE(config.setPinOnly);
        journey.tap("sdk.cardactivated.button.two");
        journey.enterAndConfirm("2580");
        EXPECT_EQ(journey.view(), "SuccessPinSetView");
    }
    EXPECT_EQ(service.calls("pinSet"), 2);
}

TEST_F(ActivationJourney, ClosesAsCanceled) {
    start("physical", "P2").tap("xmark");
    DrivenJourney& unfinished = start("physical", "P2");
    unfinished.tap("xmark");
    EXPECT_EQ(unfinished.closed, (Views{"CANCELED"}));
    DrivenJourney& active = start("physical", "A1");
    active.tap("sdk.cardactivated.button.one");
    EXPECT_EQ(active.closed, (Views{"CANCELED"}));
}

TEST_F(ActivationJourney, SmsStepComesBackToTheStartPage) {
    service.next("getCardStatus", service.result("Failure: Invalid Token"));
    DrivenJourney& journey = start("physical", "P2");
    EXPECT_EQ(config.viewToShowAfterSMSVerify, "ActivateCardAndSetPIN_NoNav");
    EXPECT_TRUE(service.device.console->has(".onAppear in ActivateCardAndSetPIN"));
    journey.verifyBySMS();
    EXPECT_EQ(journey.journey->screen().stack,
              (Views{"ActivateCardAndSetPIN", "ActivateCardAndSetPIN_NoNav"}));
}

TEST_F(ActivationJourney, InsideTheSetPinJourneyItActivatesAndBackLeadsOut) {
    service.cardStatus = "P2";
    DrivenJourney journey(service, JourneyKind::setPIN);
    EXPECT_EQ(journey.view(), "CardIsNotYetActivatedView");
    journey.tap("sdk.cardnotactivated.button.one");
    for (const char* const line :
         {".onAppear in ActivateCardAndSetPIN_NoNav",
          "ActivateCardAndSetPIN_NoNav - onAppear - SdkConfig.sharedInstance.cardId = card-1",
          "ActivateCardAndSetPIN_NoNav - onAppear - self.cardID = card-1"}) {
        EXPECT_TRUE(service.device.console->has(line)) << line;
    }
    EXPECT_EQ(journey.journey->screen().stack,
              (Views{"SetPIN", "CardIsNotYetActivatedView", "ActivateCardAndSetPIN_NoNav",
                     "ActivateCardAndSetPIN_NoNav"}));
    journey.tap("sdk.cardarrived.start");
    journey.tap("back");
    EXPECT_EQ(journey.view(), "ActivateCardAndSetPIN_NoNav");
    EXPECT_FALSE(config.setPinOnly);
}

}  // namespace
}  // namespace korvane
