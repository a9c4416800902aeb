// SPDX-License-Identifier: Apache-2.0
#include "flows/AppearStruct.h"
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

/// A call of a journey's first decision, and what differs there.
struct FirstCall {
    JourneyKind kind;
    std::string host, noNav, view;
    std::string name, noNavName;  ///< in console lines
    std::string endpoint;
};

const FirstCall firstCalls[] = {
    {JourneyKind::setPIN, "SetPIN", "SetPIN_NoNav", "EnterCardPINView", "SetPinAppearStruct", "SetPIN_NoNav",
     "getCardStatus"},
    {JourneyKind::activateCardAndSetPIN, "ActivateCardAndSetPIN", "ActivateCardAndSetPIN_NoNav",
     "CardAlreadyActivatedView", "ActivateAppearStruct", "ActivateCardAndSetPIN_NoNav", "getCardStatus"},
    {JourneyKind::getCardImage, "GetCardImage", "CardImage_NoNav", "CardImage_NoNav", "CardImageAppearStruct",
     "GetCardImage_NoNav", "getCardStatus"},
    {JourneyKind::getCardImage, "GetCardImage", "CardImage_NoNav", "CardImage_NoNav", "CardImageAppearStruct",
     "GetCardImage_NoNav", "cardImage"},
};

class AppearDecision : public JourneyFixture {};

TEST_F(AppearDecision, FirstViewFollowsStatusAndTypeOfTheCard) {
    const std::tuple<JourneyKind, std::string, std::string, std::string> cases[] = {
        {JourneyKind::setPIN, "A1", "physical", "EnterCardPINView"},
        {JourneyKind::setPIN, "P2", "PHYSICAL", "CardIsNotYetActivatedView"},
        {JourneyKind::setPIN, "P2", "virtual", "EnterCardPINView"},
        {JourneyKind::setPIN, "p2", "physical", "EnterCardPINView"},
        {JourneyKind::activateCardAndSetPIN, "A1", "physical", "CardAlreadyActivatedView"},
        {JourneyKind::activateCardAndSetPIN, "BT", "virtual", "CardAlreadyActivatedView"},
        {JourneyKind::activateCardAndSetPIN, "P2", "physical", "ActivateCardAndSetPIN_NoNav"},
        {JourneyKind::activateCardAndSetPIN, "a1", "physical", "ActivateCardAndSetPIN_NoNav"},
        {JourneyKind::getCardImage, "P2", "physical", "CardImage_NoNav"},
    };
    for (const auto& [kind, status, type, view] : cases) {
        EXPECT_EQ(start(kind, status, type), view) << type << " " << status;
        EXPECT_EQ(config.setPinOnly, kind == JourneyKind::setPIN);
        EXPECT_EQ(config.decCardStatus, "");
        EXPECT_FALSE(screen().spinner);
    }
}

TEST_F(AppearDecision, EveryFailureLeadsToTheSmsStepOrTheErrorPage) {
    const std::tuple<UrlReply, std::string, std::string> cases[] = {
        {result("Failure: Expired Token"), "held", "SMSExplainView"},
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
        {{200, "{}", ""}, "held", "UhOhTryAgainView"},
    };
    for (const FirstCall& call : firstCalls) {
        SCOPED_TRACE(call.name + " " + call.endpoint);
        printed();
        for (const auto& [reply, pciToken, view] : cases) {
            config.currentPciToken = pciToken;
            next(call.endpoint, reply);
            ASSERT_EQ(start(call.kind), view) << reply.status << reply.body << reply.failure;
            const bool failed = view == "UhOhTryAgainView";
            EXPECT_EQ(screen().toast, failed ? "errors.generic.api" : "");
            EXPECT_FALSE(screen().spinner);
            if (failed) continue;
            EXPECT_EQ(config.viewToShowAfterSMSVerify, call.noNav);
            EXPECT_EQ(verifyBySMS(), call.view);
            EXPECT_EQ(stack(), (Views{call.host, call.view}));
        }
        EXPECT_EQ(device.console->count("Forcing SMSExplainView"), 1u);
        EXPECT_TRUE(printedLine(".onAppear in " + call.host));
        EXPECT_TRUE(printedLine(".onAppear in " + call.noNavName));
        const std::string appears = call.noNav + " - onAppear - ";
        for (const std::string id : {"SdkConfig.sharedInstance.cardId = card-1", "self.cardID = card-1"})
            EXPECT_EQ(printedLine(appears + id), call.kind != JourneyKind::setPIN);
    }
}

TEST_F(AppearDecision, StaleIvIsRenewedForAsLongAsTheHostSuppliesOne) {
    for (const FirstCall& call : firstCalls) {
        config.currentPciToken = "held";
        const int before = calls(call.endpoint);
        next(call.endpoint, refusal(500, "failure: iv is expired"));
        next(call.endpoint, refusal(400, "Failure: Invalid offsetId"));
        EXPECT_EQ(start(call.kind), call.view);
        EXPECT_EQ(calls(call.endpoint) - before, 3);
        for (const std::string reason : {"iv expired", "iv invalid"})
            EXPECT_TRUE(printedLine(reason + ": Got new iv -- re-calling doAppearGuts -- " + call.name));

        next(call.endpoint, refusal(400, "Failure: Invalid offsetId"));
        hostSuppliesIvs = false;
        EXPECT_EQ(start(call.kind), "UhOhTryAgainView");
        hostSuppliesIvs = true;
    }
}

TEST_F(AppearDecision, WaitsUnderASpinner) {
    hang("getCardStatus");
    EXPECT_EQ(start(JourneyKind::setPIN), "SetPIN");
    EXPECT_TRUE(screen().spinner);
}

TEST_F(AppearDecision, FailureOfTheDetailsDoesNotReplaceAViewThatIsChosen) {
    int decided = 0;
    const auto appear = std::make_shared<AppearStruct>(
        AppearStruct::Journey{"CardImageAppearStruct", "CardImage_NoNav", nullptr, doCardImage},
        [&] { ++decided; });
    next("cardImage", {418, "", ""});
    appear->doAppear();
    appear->viewToShow = "UhOhContactSupportView";
    settle();
    EXPECT_EQ(appear->viewToShow, "UhOhContactSupportView");
    EXPECT_EQ(decided, 0);
    EXPECT_TRUE(printedLine("already got viewToShow in handleCardImageError"));
}

}  // namespace
}  // namespace korvane
