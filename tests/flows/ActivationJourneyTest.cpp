// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class ActivationJourney : public JourneyFixture {};

TEST_F(ActivationJourney, EveryTypeOfCardIsActivatedFromBothPlaces) {
    const std::tuple<JourneyKind, std::string, std::string> places[] = {
        {JourneyKind::activateCardAndSetPIN, "sdk.cardarrived.start", "ActivateCardAndSetPIN_NoNav"},
        {JourneyKind::getCardImage, activate, "CardImage_NoNav"}};
    const std::pair<std::string, std::string> types[] = {{"physical", "physical"},
                                                         {"paywallet", "physical"},
                                                         {"sticker", "physical"},
                                                         {"virtual", "virtual"},
                                                         {"wearable", "wearable"}};
    for (const auto& [kind, button, place] : places) {
        for (const auto& [type, activated] : types) {
            SCOPED_TRACE(place + " " + type);
            const std::string endpoint = activated + "CardActivationAndPinSet";
            const int before = calls(endpoint);
            config.currentCardType = eKorvaneCardType::none;
            EXPECT_EQ(start(kind, "P2", type), place);
            const std::string first = activated == "physical" ? "EnterCardLastFourView" : "EnterCardPINView";
            EXPECT_EQ(tap(button), first);
            EXPECT_EQ(tap("back"), place);
            tap(button);
            if (activated == "physical") {
                this->type("1111");
                EXPECT_EQ(tap("sdk.activatecard.lastfourdigits.button"), "EnterCardCVVView");
                EXPECT_EQ(tap("back"), first) << "the digits can be put right";
                this->type("4242");
                tap("sdk.activatecard.lastfourdigits.button");
                this->type("123");
                EXPECT_EQ(tap("sdk.activatecard.cvv.button"), "EnterCardPINView");
            }
            EXPECT_EQ(enterAndConfirm("2580"), "SuccessCardActivatedAndPinSetView");
            EXPECT_EQ(calls(endpoint) - before, 1);
            EXPECT_EQ(sent(endpoint, "encryptedPIN"), "2580");
            tap("sdk.success.cardActivatedAndSetPin.button");
            EXPECT_EQ(closed, "SUCCESS");
            journey.reset();
            EXPECT_EQ(config.enteredLastFour + config.enteredCvv, "");
        }
    }
    EXPECT_EQ(sent("physicalCardActivationAndPinSet", "encryptedLastFourOfPan"), "4242");
    EXPECT_EQ(sent("physicalCardActivationAndPinSet", "encryptedCVV"), "123");
}

TEST_F(ActivationJourney, ActiveCardLetsOnlyItsPinBeSet) {
    start(JourneyKind::activateCardAndSetPIN, "BT");
    EXPECT_EQ(tap("sdk.cardactivated.button.two"), "EnterCardPINView");
    EXPECT_EQ(enterAndConfirm("2580"), "SuccessPinSetView");
    EXPECT_EQ(calls("pinSet"), 1);
}

TEST_F(ActivationJourney, InsideTheSetPinJourneyItActivatesAndBackLeadsOut) {
    EXPECT_EQ(start(JourneyKind::setPIN, "P2"), "CardIsNotYetActivatedView");
    EXPECT_EQ(tap("sdk.cardnotactivated.button.one"), "ActivateCardAndSetPIN_NoNav");
    EXPECT_EQ(stack(), (Views{"SetPIN", "CardIsNotYetActivatedView", "ActivateCardAndSetPIN_NoNav",
                              "ActivateCardAndSetPIN_NoNav"}));
    tap("sdk.cardarrived.start");
    EXPECT_EQ(tap("back"), "ActivateCardAndSetPIN_NoNav");
    EXPECT_FALSE(config.setPinOnly);
}

}  // namespace
}  // namespace korvane
