// SPDX-License-Identifier: Apache-2.0
#include <optional>

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

using enum JourneyKind;

/// A call of a journey's first decision, and what differs there.
struct FirstCall {
    JourneyKind kind;
    std::string host, view, name, endpoint;

    /// What the host shows by itself; console lines call it `host + "_NoNav"`.
    std::string noNav() const { return kind == getCardImage ? "CardImage_NoNav" : host + "_NoNav"; }
};

const FirstCall firstCalls[] = {
    {setPIN, "SetPIN", "EnterCardPINView", "SetPinAppearStruct", "getCardStatus"},
    {activateCardAndSetPIN, "ActivateCardAndSetPIN", "CardAlreadyActivatedView", "ActivateAppearStruct",
     "getCardStatus"},
    {getCardImage, "GetCardImage", "CardImage_NoNav", "CardImageAppearStruct", "getCardStatus"},
    {getCardImage, "GetCardImage", "CardImage_NoNav", "CardImageAppearStruct", "cardImage"},
};

class AppearDecision : public JourneyFixture {};

TEST_F(AppearDecision, FirstViewFollowsStatusAndTypeOfTheCard) {
    const std::tuple<JourneyKind, std::string, std::string, std::string> cases[] = {
        {setPIN, "P2", "PHYSICAL", "CardIsNotYetActivatedView"},
        {setPIN, "P2", "virtual", "EnterCardPINView"},
        {setPIN, "p2", "physical", "EnterCardPINView"},
        {activateCardAndSetPIN, "BT", "virtual", "CardAlreadyActivatedView"},
        {getCardImage, "P2", "physical", "CardImage_NoNav"},
    };
    for (const auto& [kind, status, type, view] : cases) {
        EXPECT_EQ(start(kind, status, type), view) << type << " " << status;
        EXPECT_EQ(state().setPinOnly, kind == setPIN);
        EXPECT_EQ(state().decCardStatus, "");
    }
}

TEST_F(AppearDecision, EveryFailureLeadsToTheSmsStepOrTheErrorPage) {
    const std::tuple<UrlReply, std::string, std::string> cases[] = {
        {result("FAILURE: EXPIRED TOKEN"), "held", "SMSExplainView"},
        {result("Failure: Expired Token "), "held", "UhOhTryAgainView"},
        {refusal(400, "FAILURE: invalid TOKEN"), "held", "SMSExplainView"},
        {refusal(403, "Failure: Invalid Token"), "held", "SMSExplainView"},
        {refusal(500, "Failure: Invalid Token"), "held", "SMSExplainView"},
        {refusal(500, "Failure: Something"), "held", "UhOhTryAgainView"},
        {{500, "", ""}, "", "SMSExplainView"},
        {{400, "", ""}, "", "UhOhTryAgainView"},
        // Only the payload of 400, 403 and 500 speaks for the service.
        {refusal(418, "Failure: Invalid Token"), "held", "UhOhTryAgainView"},
        {{0, "", "connection reset"}, "", "UhOhTryAgainView"},
        {{200, "<html>", ""}, "held", "UhOhTryAgainView"},
    };
    for (const FirstCall& call : firstCalls) {
        SCOPED_TRACE(call.name + " " + call.endpoint);
        printed();
        for (const auto& [reply, pciToken, view] : cases) {
            config.currentPciToken = pciToken;
            next(call.endpoint, reply);
            ASSERT_EQ(start(call.kind), view) << reply.status << reply.body << reply.failure;
            const bool failed = view == "UhOhTryAgainView";
            see(failed ? "toast=errors.generic.api" : "toast=");
            EXPECT_FALSE(screen().spinner);
            if (failed) continue;
            EXPECT_EQ(state().viewToShowAfterSMSVerify, call.noNav());
            EXPECT_EQ(verifyBySMS(), call.view);
            see("stack=" + call.host + "/" + call.view);
        }
        EXPECT_EQ(device.console->count("Forcing SMSExplainView"), 1u);
        EXPECT_TRUE(device.console->has(".onAppear in " + call.host));
        EXPECT_TRUE(device.console->has(".onAppear in " + call.host + "_NoNav"));
        const std::string appears = call.noNav() + " - onAppear - ";
        for (const std::string id : {"SdkConfig.sharedInstance.cardId = card-1", "self.cardID = card-1"})
            EXPECT_EQ(device.console->has(appears + id), call.kind != setPIN);
    }
}

TEST_F(AppearDecision, StaleIvIsRenewedForAsLongAsTheHostSuppliesOne) {
    for (const FirstCall& call : firstCalls) {
        config.currentPciToken = "held";
        next(call.endpoint, refusal(500, "failure: iv is expired"));
        next(call.endpoint, refusal(400, "Failure: Invalid offsetId"));
        EXPECT_EQ(start(call.kind), call.view);
        see("calls " + call.endpoint + "=3");
        for (const std::string reason : {"iv expired", "iv invalid"})
            EXPECT_TRUE(
                device.console->has(reason + ": Got new iv -- re-calling doAppearGuts -- " + call.name));

        next(call.endpoint, refusal(400, "Failure: Invalid offsetId"));
        hostSuppliesIvs = false;
        EXPECT_EQ(start(call.kind), "UhOhTryAgainView");
        hostSuppliesIvs = true;
    }
}

TEST(Navigation, LinkPushesWhenItsTokenIsCalledAndOnlyOnce) {
    const FakePorts device;
    const auto stack = std::make_shared<NavigationStack>(
        std::make_shared<JourneyState>(SdkConfig::sharedInstance(), "card-1"));
    const auto page = [&] { return makeScreen(stack, view::SMSExplainView, ScreenArguments{}); };
    const auto root = page();
    stack->start(root);
    std::optional<KorvaneNavigationToken> kept;
    const KorvaneActionNavigationLink link("label", page,
                                           [&](KorvaneNavigationToken token) { kept = std::move(token); });
    link.tap(*root, *stack);
    EXPECT_TRUE(stack->isInView(*root));
    (*kept)();
    const auto pushed = stack->inView();
    EXPECT_NE(pushed, root);
    (*kept)();
    EXPECT_EQ(stack->inView(), pushed);
    link.tap(*root, *stack);
    (*kept)();
    EXPECT_EQ(stack->inView(), pushed) << "the link's screen was not in view";
    stack->dismiss(*pushed);
    link.tap(*root, *stack);
    stack->end();
    (*kept)();
    EXPECT_EQ(stack->inView(), nullptr);
}

}  // namespace
}  // namespace korvane
