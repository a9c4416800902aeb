// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class FreezeSwitch : public Viewer {
  protected:
    /// Answers the question that the switch asks; tells the view that is then shown.
    std::string answerQuestion(const std::string& button) {
        tap(freezeSwitch);
        return tap(freezing + button);
    }
    std::string freeze() { return answerQuestion("freezeCardPopup.freezeButton"); }
    std::string unfreeze() { return answerQuestion("unFreezeCardPopup.unFreezeButton"); }
};

TEST_F(FreezeSwitch, FreezesAndUnfreezesAfterAsking) {
    for (const std::string status : {"A1", "P2"}) {
        show(status);
        const int before = calls("cardStatus");
        tap(freezeSwitch);
        ASSERT_TRUE(screen().popup);
        EXPECT_EQ(screen().controls.size(), 2u) << "the popup's own";
        EXPECT_THAT(state(), HasSubstr("isCardFrozenShowToggleOn=true"));
        tap(freezing + "freezeCardPopup.cancelButton");
        EXPECT_THAT(state(), HasSubstr("isCardFrozen=false showToggleOff=true"));

        freeze();
        EXPECT_EQ(sent("cardStatus", "encryptedStatus"), "BT");
        EXPECT_TRUE(card().frozen);
        EXPECT_EQ(card().message, (Views{"sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header",
                                         "sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader"}));
        EXPECT_EQ(card().button, "");
        tap(freezeSwitch);
        EXPECT_THAT(state(), HasSubstr("isCardFrozenShowToggleOff=true"));
        tap(freezing + "unFreezeCardPopup.cancelButton");
        EXPECT_THAT(state(), HasSubstr("isCardFrozen=true showToggleOff=false"));
        unfreeze();
        EXPECT_EQ(sent("cardStatus", "encryptedStatus"), status);
        EXPECT_FALSE(card().frozen);
        EXPECT_TRUE(card().message.empty());
        EXPECT_EQ(calls("cardStatus"), before + 2);
    }
}

TEST_F(FreezeSwitch, StaysWhereItWasWhenTheCallFailsAndStaleIvsAreNoFailure) {
    show();
    const auto renewed = [this](const std::string& call) {
        return printedLine("Success getting new iV - re-calling reEntrantSetCardStatus" + call);
    };
    next("cardStatus", refusal(403, "failure: iv is expired"));
    next("cardStatus", refusal(400, "Failure: Invalid offsetId"));
    freeze();
    EXPECT_TRUE(card().frozen && renewed("FreezeGuts"));
    next("cardStatus", result("Failure: IV is expired"));
    next("cardStatus", refusal(403, "Failure: IV is expired"));
    unfreeze();
    EXPECT_FALSE(card().frozen);
    EXPECT_TRUE(renewed("UnFreezeGuts"));

    show("BT");
    EXPECT_TRUE(card().frozen && card().activated);
    hostSuppliesIvs = false;
    for (const UrlReply& failure : {result("Failure: No"), refusal(500, "Failure: No"),
                                    refusal(403, "Failure: IV is expired"), UrlReply{0, "", "reset"}}) {
        next("cardStatus", failure);
        config.currentPciToken = "held";
        unfreeze();
        EXPECT_EQ(toast(), "errors.generic.api");
        EXPECT_TRUE(card().frozen && enabled(freezeSwitch));
        pass(std::chrono::seconds(4));
        EXPECT_EQ(toast(), "");
    }
    const int before = calls("cardStatus");
    hang("cardStatus");
    unfreeze();
    EXPECT_TRUE(screen().spinner);
    EXPECT_EQ(tap(freezeSwitch), "not enabled");
    EXPECT_EQ(calls("cardStatus"), before + 1);
    tap("xmark");
    EXPECT_EQ(closed, "CANCELED");
}

TEST_F(FreezeSwitch, SpentTokenGoesThroughTheSmsStepAndTheCallIsDone) {
    for (const UrlReply& spent : {result("Failure: Expired Token"), UrlReply{500, "", ""}}) {
        show();
        config.currentPciToken.clear();
        next("cardStatus", spent);
        tap(reveal);
        EXPECT_EQ(freeze(), "SMSExplainView");
        const int before = calls("cardStatus");
        const int fetched = calls("cardImage");
        tap("back");
        EXPECT_EQ(row(number), "################");
        EXPECT_FALSE(card().frozen);
        EXPECT_EQ(calls("cardStatus"), before);

        next("cardStatus", spent);
        freeze();
        verifyBySMS();
        EXPECT_EQ(stack(), (Views{"GetCardImage", "CardImage_NoNav"}));
        EXPECT_TRUE(card().frozen);
        EXPECT_EQ(calls("cardImage"), fetched) << "the viewer is the one that asked";
    }
}

}  // namespace
}  // namespace korvane
