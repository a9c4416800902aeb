// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class SetPinJourney : public JourneyFixture {
  protected:
    std::string show() { return start(JourneyKind::setPIN); }
};

TEST_F(SetPinJourney, SetsThePinAfterAWeakOneAndAMismatch) {
    show();
    EXPECT_FALSE(enabled("back"));
    type("123");
    EXPECT_EQ(tap("sdk.setpin.button"), "not enabled");
    insert("4");
    EXPECT_EQ(tap("sdk.setpin.button"), "YouCanDoBetterView");
    EXPECT_EQ(tap("sdk.youcandobetter.button"), "EnterCardPINView");
    EXPECT_EQ(filled(), 4);
    insert("1");
    EXPECT_EQ(filled(), 1) << "the next digit begins another PIN";
    type("1357");
    EXPECT_EQ(tap("sdk.setpin.button"), "ConfirmCardPINView");
    type("1358");
    EXPECT_EQ(tap("sdk.confirmpin.button"), "ConfirmCardPINView");
    EXPECT_EQ(screen().message, "sdk.error.matchpin.message");
    EXPECT_EQ(calls("pinSet"), 0);
    EXPECT_EQ(tap("back"), "EnterCardPINView");
    EXPECT_EQ(filled(), 4);
    tap("sdk.setpin.button");
    type("1357");
    EXPECT_EQ(screen().message, "");
    EXPECT_EQ(tap("sdk.confirmpin.button"), "SuccessPinSetView");
    EXPECT_EQ(sent("pinSet", "encryptedPIN"), "1357");
    EXPECT_TRUE(printedLine("autoNavToView: SuccessPinSetView"));
    EXPECT_EQ(config.pendingPin, "");
    tap("sdk.success.setpin.button");
    EXPECT_EQ(closed, "SUCCESS");
}

TEST_F(SetPinJourney, ExpiredTokenAtSubmissionResubmitsAfterTheSmsStepAndNotOnTheWayBack) {
    show();
    next("pinSet", refusal(500, "failure: expired token"));
    EXPECT_EQ(enterAndConfirm("2580"), "SMSExplainView");
    EXPECT_EQ(tap("back"), "ConfirmCardPINView");
    EXPECT_EQ(calls("pinSet"), 1);
    next("pinSet", result("Failure: Invalid Token"));
    EXPECT_EQ(tap("sdk.confirmpin.button"), "SMSExplainView");
    EXPECT_EQ(config.pendingPin, "2580");
    EXPECT_EQ(verifyBySMS(), "SuccessPinSetView");
    EXPECT_EQ(calls("pinSet"), 3);
    EXPECT_EQ(sent("pinSet", "encryptedPIN"), "2580");
    EXPECT_EQ(stack(), (Views{"SetPIN", "EnterCardPINView", "ConfirmCardPINView", "SuccessPinSetView"}));
}

TEST_F(SetPinJourney, AFailedSubmissionEndsOnTheErrorPageAndAStaleIvIsRenewedWhereTheHostHasOne) {
    const std::pair<UrlReply, std::string> cases[] = {
        {result("Failure: No such card"), "UhOhTryAgainView"},
        {{0, "", "reset"}, "UhOhTryAgainView"},
        {refusal(500, "Failure: Invalid offsetId"), "SuccessPinSetView"},
        {result("failure: IV IS EXPIRED"), "SuccessPinSetView"},
    };
    for (const auto& [reply, view] : cases) {
        show();
        next("pinSet", reply);
        EXPECT_EQ(enterAndConfirm("2580"), view) << reply.status << reply.body;
        EXPECT_EQ(config.pendingPin, "");
    }
    show();
    hostSuppliesIvs = false;
    next("pinSet", refusal(500, "Failure: Invalid offsetId"));
    EXPECT_EQ(enterAndConfirm("2580"), "UhOhTryAgainView");
    EXPECT_EQ(config.pendingPin, "");
}

TEST_F(SetPinJourney, NothingIsAcceptedWhileThePinIsOnItsWayAndAJourneyThatIsGoneIsNeverTouched) {
    show();
    hang("pinSet");
    enterAndConfirm("2580");
    EXPECT_TRUE(screen().spinner);
    EXPECT_EQ(tap("back"), "not enabled");
    EXPECT_EQ(tap("sdk.confirmpin.button"), "not enabled");
    EXPECT_EQ(type("1111"), "not enabled");
    EXPECT_EQ(calls("pinSet"), 1);
    const std::size_t request = device.urlSession->startedCount() - 1;
    journey.reset();
    EXPECT_EQ(config.pendingPin, "");
    device.urlSession->reply(request, result("Success"));
    settle();
    EXPECT_FALSE(printedLine("autoNavToView: SuccessPinSetView"));
}

TEST_F(SetPinJourney, ObserverIsToldOnceForManyChangesAndOfNoDigits) {
    show();
    int told = 0;
    journey->onChange([&] { ++told; });
    journey->insertText("1");
    journey->insertText("2");
    EXPECT_EQ(told, 0);
    settle();
    EXPECT_EQ(told, 1);
    EXPECT_THAT(state(), Not(HasSubstr("12")));
    EXPECT_EQ(screen().passcode->visibleDigits, "");
}

}  // namespace
}  // namespace korvane
