// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/flows/ViewerFixture.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Views = std::vector<std::string>;

TEST_F(Viewer, FreezesAndUnfreezesAfterAsking) {
    const std::pair<const char*, const char*> cases[] = {{"A1", "A1"}, {"P2", "P2"}};
    for (const auto& [status, afterwards] : cases) {
        DrivenJourney& journey = start(status);
        const int calls = service.calls("cardStatus");
        EXPECT_EQ(journey.tap(freezeSwitch), Journey::Outcome::done);
        ASSERT_TRUE(journey.journey->screen().popup);
        EXPECT_EQ(journey.journey->screen().controls.size(), 2u) << "the popup's own";
        EXPECT_EQ(journey.state("isCardFrozenShowToggleOn"), "true");
        journey.tap(freezing + "freezeCardPopup.cancelButton");
        EXPECT_EQ(service.calls("cardStatus"), calls);
        EXPECT_EQ(journey.state("isCardFrozen") + journey.state("showToggleOff"), "falsetrue");

        journey.tap(freezeSwitch);
        journey.tap(freezeButton);
        EXPECT_EQ(service.sent("cardStatus", "encryptedStatus"), "BT");
        EXPECT_TRUE(card().frozen);
        EXPECT_EQ(card().message, (Views{"sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header",
                                         "sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader"}));
        EXPECT_EQ(card().button, "");
        EXPECT_EQ(journey.state("showToggleOff"), "false");

        journey.tap(freezeSwitch);
        EXPECT_EQ(journey.state("isCardFrozenShowToggleOff"), "true");
        journey.tap(freezing + "unFreezeCardPopup.cancelButton");
        EXPECT_TRUE(card().frozen);
        journey.tap(freezeSwitch);
        journey.tap(unFreezeButton);
        EXPECT_EQ(service.sent("cardStatus", "encryptedStatus"), afterwards);
        EXPECT_FALSE(card().frozen);
        EXPECT_TRUE(card().message.empty());
        EXPECT_EQ(service.calls("cardStatus"), calls + 2);
    }
}

TEST_F(Viewer, FailedFreezeLeavesTheSwitchWhereItWas) {
    DrivenJourney& journey = start("BT");
    EXPECT_TRUE(card().frozen && card().activated);
    for (const UrlReply& failure :
         {service.result("Failure: No"), service.refusal(500, "Failure: No"), UrlReply{418, "", ""},
          UrlReply{0, "", "reset"}, UrlReply{200, "{}", ""}}) {
        service.next("cardStatus", failure);
        config.currentPciToken = "held";
        journey.tap(freezeSwitch);
        journey.tap(unFreezeButton);
        EXPECT_EQ(toast(), "errors.generic.api");
        EXPECT_TRUE(card().frozen);
        EXPECT_TRUE(journey.enabled(freezeSwitch));
        pass(4s);
        EXPECT_EQ(toast(), "");
    }
    service.hang("cardStatus");
    journey.tap(freezeSwitch);
    const int calls = service.calls("cardStatus");
    journey.tap(unFreezeButton);
    EXPECT_TRUE(journey.journey->screen().spinner);
    EXPECT_EQ(journey.tap(freezeSwitch), Journey::Outcome::notEnabled);
    EXPECT_EQ(journey.tap(unFreezeButton), Journey::Outcome::noSuchControl);
    EXPECT_EQ(service.calls("cardStatus"), calls + 1);
    journey.tap("xmark");
    EXPECT_EQ(journey.closed, (Views{"CANCELED"}));
}

TEST_F(Viewer, FreezeUnderAStaleIvIsRepeatedUnderAFreshOne) {
    DrivenJourney& journey = start();
    service.next("cardStatus", service.refusal(403, "failure: iv is expired"));
    service.next("cardStatus", service.refusal(400, "Failure: Invalid offsetId"));
    service.next("cardStatus", service.result("Failure: IV is expired"));
    const int ivsBefore = service.ivsSupplied;
    journey.tap(freezeSwitch);
    journey.tap(freezeButton);
    EXPECT_TRUE(card().frozen);
    EXPECT_EQ(service.ivsSupplied - ivsBefore, 3);
    EXPECT_TRUE(console.has("Success getting new iV - re-calling reEntrantSetCardStatusFreezeGuts"));
    service.next("cardStatus", service.refusal(403, "Failure: IV is expired"));
    journey.tap(freezeSwitch);
    journey.tap(unFreezeButton);
    EXPECT_FALSE(card().frozen);
    EXPECT_TRUE(console.has("Success getting new iV - re-calling reEntrantSetCardStatusUnFreezeGuts"));

    service.hostSuppliesIvs = false;
    service.next("cardStatus", service.refusal(403, "Failure: IV is expired"));
    journey.tap(freezeSwitch);
    journey.tap(freezeButton);
    EXPECT_EQ(toast(), "errors.generic.api");
}

TEST_F(Viewer, FreezeWithASpentTokenGoesThroughTheSmsStepAndIsDone) {
    for (const UrlReply& spent : {service.result("Failure: Expired Token"), UrlReply{500, "", ""}}) {
        DrivenJourney& journey = start();
        config.currentPciToken.clear();
        service.next("cardStatus", spent);
        journey.tap(reveal);
        journey.tap(freezeSwitch);
        journey.tap(freezeButton);
        EXPECT_EQ(journey.view(), "SMSExplainView");
        const int calls = service.calls("cardStatus");
        const int fetched = service.calls("cardImage");
        journey.tap("back");
        EXPECT_EQ(journey.row(number), "################");
        EXPECT_FALSE(card().frozen);
        EXPECT_EQ(service.calls("cardStatus"), calls);

        service.next("cardStatus", spent);
        journey.tap(freezeSwitch);
        journey.tap(freezeButton);
        journey.verifyBySMS();
        EXPECT_EQ(journey.journey->screen().stack, (Views{"GetCardImage", "CardImage_NoNav"}));
        EXPECT_TRUE(card().frozen);
        EXPECT_EQ(service.calls("cardImage"), fetched) << "the viewer is the one that asked";
    }
}

}  // namespace
}  // namespace korvane
