// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class PinJourneys : public JourneyFixture {
  protected:
    std::string show() { return start(JourneyKind::setPIN); }
};

TEST_F(PinJourneys, SetsThePinAfterAWeakOneAndAMismatch) {
    show();
    walk({"type 123 > back=off", "sdk.setpin.button > not enabled", "insert 4",
          "sdk.setpin.button > YouCanDoBetterView", "sdk.youcandobetter.button > EnterCardPINView, filled=4",
          // the next digit begins another PIN
          "insert 1 > filled=1", "type 1357", "sdk.setpin.button > ConfirmCardPINView", "type 1358",
          "sdk.confirmpin.button > ConfirmCardPINView, message=sdk.error.matchpin.message, filled=0, calls "
          "pinSet=0",
          "back > EnterCardPINView, filled=4", "sdk.setpin.button",
          "type 1357 > message=", "sdk.confirmpin.button > SuccessPinSetView, pinSet.PIN=1357, typed=",
          "sdk.success.setpin.button > closed=SUCCESS"});
    EXPECT_TRUE(printedLine("autoNavToView: SuccessPinSetView"));
}

TEST_F(PinJourneys, ExpiredTokenAtSubmissionResubmitsAfterTheSmsStepAndNotOnTheWayBack) {
    show();
    next("pinSet", refusal(500, "failure: expired token"));
    next("pinSet", result("Failure: Invalid Token"));
    EXPECT_EQ(enterAndConfirm(), "SMSExplainView");
    walk({"back > ConfirmCardPINView, calls pinSet=1", "sdk.confirmpin.button > SMSExplainView, typed=2580"});
    EXPECT_EQ(verifyBySMS(), "SuccessPinSetView");
    see("calls pinSet=3, pinSet.PIN=2580, "
        "stack=SetPIN/EnterCardPINView/ConfirmCardPINView/SuccessPinSetView");
}

TEST_F(PinJourneys, AFailedSubmissionEndsOnTheErrorPageAndAStaleIvIsRenewedWhereTheHostHasOne) {
    const std::tuple<UrlReply, bool, std::string> cases[] = {
        {result("Failure: No such card"), true, "UhOhTryAgainView"},
        {{0, "", "reset"}, true, "UhOhTryAgainView"},
        {refusal(500, "Failure: Invalid offsetId"), true, "SuccessPinSetView"},
        {result("failure: IV IS EXPIRED"), true, "SuccessPinSetView"},
        {refusal(500, "Failure: Invalid offsetId"), false, "UhOhTryAgainView"},
    };
    for (const auto& [reply, supplied, view] : cases) {
        show();
        hostSuppliesIvs = supplied;
        next("pinSet", reply);
        EXPECT_EQ(enterAndConfirm(), view) << reply.status << reply.body;
        see("typed=");
    }
}

TEST_F(PinJourneys, NothingIsAcceptedWhileThePinIsOnItsWayAndAJourneyThatIsGoneIsNeverTouched) {
    show();
    hang("pinSet");
    enterAndConfirm();
    walk({"back > not enabled, showSpinner=true", "sdk.confirmpin.button > not enabled",
          "type 1111 > not enabled, calls pinSet=1"});
    journey.reset();
    EXPECT_EQ(config.pendingPin, "");
    device.urlSession->reply(device.urlSession->startedCount() - 1, result("Success"));
    settle();
    EXPECT_FALSE(printedLine("autoNavToView: SuccessPinSetView"));
}

TEST_F(PinJourneys, ObserverIsToldOnceForManyChangesAndOfNoDigits) {
    show();
    int told = 0;
    journey->onChange([&] { ++told; });
    for (const char* const digit : {"1", "2"}) journey->insertText(digit);
    EXPECT_EQ(told, 0);
    settle();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(screen().passcode->visibleDigits, "");
}

TEST_F(PinJourneys, EveryTypeOfCardIsActivatedFromBothPlaces) {
    const std::tuple<JourneyKind, std::string, std::string> places[] = {
        {JourneyKind::activateCardAndSetPIN, "sdk.cardarrived.start", "ActivateCardAndSetPIN_NoNav"},
        {JourneyKind::getCardImage, "onCardButton", "CardImage_NoNav"}};
    const std::pair<std::string, std::string> types[] = {{"physical", "physical"},
                                                         {"paywallet", "physical"},
                                                         {"sticker", "physical"},
                                                         {"virtual", "virtual"},
                                                         {"wearable", "wearable"}};
    for (const auto& [kind, button, place] : places) {
        for (const auto& [type, activated] : types) {
            SCOPED_TRACE(place + " " + type);
            config.currentCardType = eKorvaneCardType::none;
            EXPECT_EQ(start(kind, "P2", type), place);
            const bool physical = activated == "physical";
            const std::string first = physical ? "EnterCardLastFourView" : "EnterCardPINView";
            walk({button + " > " + first, "back > " + place, button});
            const std::string endpoint = activated + "CardActivationAndPinSet";
            if (physical) {
                walk({"type 1111", "sdk.activatecard.lastfourdigits.button > EnterCardCVVView",
                      "back > " + first, "type 4242", "sdk.activatecard.lastfourdigits.button", "type 123",
                      "sdk.activatecard.cvv.button > EnterCardPINView"});
            }
            EXPECT_EQ(enterAndConfirm(), "SuccessCardActivatedAndPinSetView");
            see("calls " + endpoint + "=1, " + endpoint + ".PIN=2580");
            if (physical) see(endpoint + ".LastFourOfPan=4242, " + endpoint + ".CVV=123");
            walk({"sdk.success.cardActivatedAndSetPin.button > closed=SUCCESS"});
            journey.reset();
            EXPECT_EQ(config.enteredLastFour + config.enteredCvv, "");
        }
    }
}

TEST_F(PinJourneys, ActiveCardLetsOnlyItsPinBeSet) {
    start(JourneyKind::activateCardAndSetPIN, "BT");
    walk({"sdk.cardactivated.button.two > EnterCardPINView"});
    EXPECT_EQ(enterAndConfirm(), "SuccessPinSetView");
    see("calls pinSet=1");
}

TEST_F(PinJourneys, InsideTheSetPinJourneyItActivatesAndBackLeadsOut) {
    EXPECT_EQ(start(JourneyKind::setPIN, "P2"), "CardIsNotYetActivatedView");
    walk(
        {"sdk.cardnotactivated.button.one > ActivateCardAndSetPIN_NoNav, stack=SetPIN/"
         "CardIsNotYetActivatedView/ActivateCardAndSetPIN_NoNav/ActivateCardAndSetPIN_NoNav",
         "sdk.cardarrived.start", "back > ActivateCardAndSetPIN_NoNav"});
    EXPECT_FALSE(config.setPinOnly);
}

}  // namespace
}  // namespace korvane
