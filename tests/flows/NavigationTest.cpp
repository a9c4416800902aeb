// SPDX-License-Identifier: Apache-2.0
#include <optional>

#include "flows/AppearStruct.h"
#include "flows/KorvaneActionNavigationLink.h"
#include "flows/NavigationStack.h"
#include "flows/ViewHost.h"
#include "flows/ViewTables.h"
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
        {activateCardAndSetPIN, "a1", "physical", "ActivateCardAndSetPIN_NoNav"},
        {getCardImage, "P2", "physical", "CardImage_NoNav"},
    };
    for (const auto& [kind, status, type, view] : cases) {
        EXPECT_EQ(start(kind, status, type), view) << type << " " << status;
        EXPECT_EQ(config.setPinOnly, kind == setPIN);
        EXPECT_EQ(config.decCardStatus, "");
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
            EXPECT_EQ(config.viewToShowAfterSMSVerify, call.noNav());
            EXPECT_EQ(verifyBySMS(), call.view);
            see("stack=" + call.host + "/" + call.view);
        }
        EXPECT_EQ(device.console->count("Forcing SMSExplainView"), 1u);
        EXPECT_TRUE(printedLine(".onAppear in " + call.host));
        EXPECT_TRUE(printedLine(".onAppear in " + call.host + "_NoNav"));
        const std::string appears = call.noNav() + " - onAppear - ";
        for (const std::string id : {"SdkConfig.sharedInstance.cardId = card-1", "self.cardID = card-1"})
            EXPECT_EQ(printedLine(appears + id), call.kind != setPIN);
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
            EXPECT_TRUE(printedLine(reason + ": Got new iv -- re-calling doAppearGuts -- " + call.name));

        next(call.endpoint, refusal(400, "Failure: Invalid offsetId"));
        hostSuppliesIvs = false;
        EXPECT_EQ(start(call.kind), "UhOhTryAgainView");
        hostSuppliesIvs = true;
    }
}

TEST_F(AppearDecision, FailureOfTheDetailsDoesNotReplaceAViewThatIsChosen) {
    const auto appear = std::make_shared<AppearStruct>(
        AppearStruct::Journey{"CardImageAppearStruct", "CardImage_NoNav", nullptr, doCardImage},
        [] { FAIL() << "decided again"; });
    next("cardImage", {418, "", ""});
    appear->doAppear();
    appear->viewToShow = "UhOhContactSupportView";
    settle();
    EXPECT_EQ(appear->viewToShow, "UhOhContactSupportView");
    EXPECT_TRUE(printedLine("already got viewToShow in handleCardImageError"));
}

class Page final : public Screen {
  public:
    explicit Page(const std::shared_ptr<NavigationStack>& stack) : Screen(stack, "Page") {}

  protected:
    std::vector<ScreenControl> controls() override { return {back()}; }
    void describeContent(ScreenSnapshot&) const override {}
};

class Navigation : public testing::Test {
  protected:
    Navigation() { stack->start(root); }
    ~Navigation() override { stack->end(); }

    FakePorts device;
    std::shared_ptr<NavigationStack> stack = std::make_shared<NavigationStack>();
    std::shared_ptr<Page> root = std::make_shared<Page>(stack);
};

TEST_F(Navigation, LinkPushesWhenItsTokenIsCalledAndOnlyOnce) {
    std::optional<KorvaneNavigationToken> kept;
    const KorvaneActionNavigationLink link(
        "label", [this] { return std::make_shared<Page>(stack); },
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

TEST_F(Navigation, UnlistedNameShowsNoneOfTheListedScreens) {
    const auto host = std::make_shared<MultiView>(stack, table::autoNavMultiView);
    host->show("uhohtryagainview");
    stack->push(host);
    EXPECT_EQ(stack->inView(), host);
    EXPECT_TRUE(stack->canDismiss(*host));
}

}  // namespace
}  // namespace korvane
