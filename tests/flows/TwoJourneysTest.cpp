// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>
#include <korvane/platform/Ports.h>

#include <deque>
#include <map>

#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

using enum JourneyKind;

/// Journeys of several cards in one process. Each card has its own status, type and number.
class TwoJourneys : public JourneyFixture {
  protected:
    struct Card {
        std::string status, type, pan;
    };

    TwoJourneys() {
        device.urlSession->answerWith([this](const UrlRequest& request) -> std::optional<UrlReply> {
            const std::string endpoint = request.url.substr(request.url.rfind('/') + 1);
            if (endpoint == held) return std::nullopt;
            const Card& card = cards.at(sent(endpoint, "encryptedCardId"));
            if (endpoint == "getCardStatus")
                return ok({{"encryptedResult", "Success"},
                           {"encryptedCardStatus", card.status},
                           {"encryptedCardType", card.type}});
            if (endpoint == "cardImage")
                return ok({{"encryptedResult", "Success"}, {"encryptedPan", card.pan}});
            if (endpoint == "pciTokenRequest")
                return ok({{"encryptedPciSmsToken", "token " + std::to_string(++codes)}});
            if (endpoint == "pciTokenSubmission")
                return ok({{"encryptedResult", "Success"}, {"encryptedPciToken", "pci-token"}});
            return result("Success");
        });
    }

    std::unique_ptr<Journey> begin(JourneyKind kind, const std::string& cardId) {
        auto made = std::make_unique<Journey>(kind, cardId);
        made->appear();
        settle();
        return made;
    }
    /// Goes on with `journey`.
    std::string on(std::unique_ptr<Journey>& other, const std::vector<std::string>& steps) {
        std::swap(journey, other);
        const std::string end = walk(steps);
        std::swap(journey, other);
        return end;
    }
    /// Answers the request that was held back last.
    void answerHeld(UrlReply reply) {
        held.clear();
        EXPECT_TRUE(device.urlSession->reply(heldAt, std::move(reply)));
        settle();
    }
    /// Takes the steps with the answer to `endpoint` held back.
    void hold(const std::string& endpoint, std::unique_ptr<Journey>& which,
              const std::vector<std::string>& steps) {
        held = endpoint;
        on(which, steps);
        heldAt = device.urlSession->startedCount() - 1;
        held.clear();
    }

    std::map<std::string, Card> cards{{"card-a", {"A1", "physical", "5555550000000001"}},
                                      {"card-b", {"A1", "physical", "5555550000000002"}},
                                      {"card-new", {"P2", "physical", "5555550000000003"}},
                                      {"card-virtual", {"P2", "virtual", "5555550000000004"}},
                                      {"card-sticker", {"P2", "sticker", "5555550000000005"}}};
    std::string held;  ///< an endpoint that does not answer
    std::size_t heldAt = 0;
    int codes = 0;
};

const std::vector<std::string> enterPin{"type 2580", "sdk.setpin.button", "type 2580",
                                        "sdk.confirmpin.button"};

TEST_F(TwoJourneys, AReRunSendsThePinForTheCardOfItsOwnJourney) {
    auto a = begin(setPIN, "card-a");
    hold("pinSet", a, enterPin);
    const Journey b(setPIN, "card-b");  // constructed, never shown
    answerHeld(result("Failure: IV is expired"));
    EXPECT_EQ(a->screen().view, "SuccessPinSetView");
    EXPECT_EQ(sent("pinSet", "encryptedCardId"), "card-a");
    EXPECT_EQ(calls("pinSet"), 2);
}

TEST_F(TwoJourneys, NothingIsSentAgainForADestroyedJourney) {
    auto a = begin(setPIN, "card-a");
    hold("pinSet", a, enterPin);
    a.reset();
    const auto b = begin(setPIN, "card-b");
    printed();
    answerHeld(result("Failure: IV is expired"));
    EXPECT_EQ(calls("pinSet"), 1);
    EXPECT_EQ(printed(), "");
}

TEST_F(TwoJourneys, AnActivationStaysOneBesideASetPinJourneyAndAnotherType) {
    for (const auto& [kind, card] : {std::pair{setPIN, "card-a"}, {getCardImage, "card-virtual"}}) {
        auto activation = begin(activateCardAndSetPIN, "card-new");
        const auto other = begin(kind, card);
        EXPECT_EQ(on(activation, {"sdk.cardarrived.start"}), "EnterCardLastFourView");
        on(activation, {"type 4242", "sdk.activatecard.lastfourdigits.button", "type 123"});
        EXPECT_EQ(on(activation, {"sdk.activatecard.cvv.button"}), "EnterCardPINView");
        EXPECT_EQ(on(activation, enterPin), "SuccessCardActivatedAndPinSetView");
        EXPECT_EQ(sent("physicalCardActivationAndPinSet", "encryptedCardId"), "card-new");
        EXPECT_EQ(sent("physicalCardActivationAndPinSet", "encryptedLastFourOfPan"), "4242");
    }
    EXPECT_EQ(calls("pinSet"), 0);
}

TEST_F(TwoJourneys, AViewerShowsAndFreezesItsOwnCard) {
    auto a = std::make_unique<Journey>(getCardImage, "card-a");
    auto b = begin(getCardImage, "card-b");
    a->appear();
    settle();
    EXPECT_EQ(sent("cardImage", "encryptedCardId"), "card-a");
    on(b, {"reveal > cardNumber=5555550000000002"});
    on(a, {"reveal > cardNumber=5555550000000001", "freezeMyCard",
           "freezeCardPopup.freezeButton > isCardFrozen=true"});
    EXPECT_EQ(sent("cardStatus", "encryptedCardId"), "card-a");
    on(b, {"freezeMyCard > isCardFrozen=false"});
    a.reset();
    on(b, {"freezeCardPopup.cancelButton > cardNumber=5555550000000002"});
}

TEST_F(TwoJourneys, ALateAnswerToADestroyedJourneyReachesNoOther) {
    held = "getCardStatus";
    auto a = begin(activateCardAndSetPIN, "card-virtual");
    heldAt = device.urlSession->startedCount() - 1;
    held.clear();
    a.reset();
    auto b = begin(activateCardAndSetPIN, "card-sticker");  // a type that says nothing
    device.urlSession->reply(heldAt, ok({{"encryptedResult", "Success"},
                                         {"encryptedCardStatus", "P2"},
                                         {"encryptedCardType", "virtual"}}));
    settle();
    EXPECT_EQ(on(b, {"sdk.cardarrived.start"}), "EnterCardLastFourView");
}

TEST_F(TwoJourneys, EachSmsStepHasItsOwnTokenPinAndReturn) {
    const auto toCode = [this](std::unique_ptr<Journey>& which) {
        held = "pinSet";
        on(which, enterPin);
        heldAt = device.urlSession->startedCount() - 1;
        answerHeld(result("Failure: Expired Token"));
        EXPECT_EQ(on(which, {"sdk.sms.explain.button"}), "EnterSMSCodeView");
    };
    auto a = begin(setPIN, "card-a");
    toCode(a);
    on(a, {"wait 31"});
    hold("pciTokenRequest", a, {"sdk.sms.code.resend"});
    auto b = begin(setPIN, "card-b");
    on(b, {"type 7391", "sdk.setpin.button", "type 7391"});
    held = "pinSet";
    on(b, {"sdk.confirmpin.button"});
    const std::size_t pinOfB = device.urlSession->startedCount() - 1;
    held.clear();
    device.urlSession->reply(pinOfB, result("Failure: Expired Token"));
    settle();
    on(b, {"sdk.sms.explain.button > EnterSMSCodeView"});  // its token is 2
    // The late answer to A's request, and A's own end, leave B's step as it is.
    EXPECT_TRUE(device.urlSession->reply(heldAt, ok({{"encryptedPciSmsToken", "token of A"}})));
    settle();
    EXPECT_EQ(on(b, {"type 123456"}), "SuccessPinSetView");
    EXPECT_EQ(sent("pciTokenSubmission", "encryptedPciSmsToken"), "token 2");
    EXPECT_EQ(sent("pinSet", "encryptedPIN"), "7391");
    b.reset();  // wipes what it kept
    EXPECT_EQ(on(a, {"type 654321"}), "SuccessPinSetView");
    EXPECT_EQ(sent("pciTokenSubmission", "encryptedPciSmsToken"), "token of A");
    EXPECT_EQ(sent("pinSet", "encryptedPIN"), "2580");
    EXPECT_EQ(sent("pinSet", "encryptedCardId"), "card-a");
}

TEST_F(TwoJourneys, ANotificationNamesItsJourneyAndAClosedWindowPostsOnce) {
    std::string heard;
    JourneyId poster = 0;
    const auto observation = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo& info, JourneyId from) {
            EXPECT_EQ(info.size(), 1u);
            heard += info.at("result") + " ";
            poster = from;
        });
    auto a = begin(setPIN, "card-a");
    auto viewer = begin(getCardImage, "card-b");
    EXPECT_NE(a->id(), viewer->id());
    viewer->close();
    EXPECT_EQ(poster, viewer->id());
    viewer->close();
    on(viewer, {"xmark", "xmark"});  // a tap posts each time
    EXPECT_EQ(std::exchange(heard, {}), "CANCELED CANCELED CANCELED ");
    viewer = begin(getCardImage, "card-b");
    on(viewer, {"reveal"});
    viewer->close();
    EXPECT_EQ(std::exchange(heard, {}), "SUCCESS ");
    on(a, enterPin);
    a->close();
    on(a, {"sdk.success.setpin.button"});
    a->close();
    EXPECT_EQ(std::exchange(heard, {}), "SUCCESS SUCCESS ");
    EXPECT_EQ(poster, a->id());
    held = "getCardStatus";
    a = begin(setPIN, "card-b");
    a->close();  // while it decides
    EXPECT_EQ(std::exchange(heard, {}), "CANCELED ");
    a = begin(setPIN, "card-b");
    heldAt = device.urlSession->startedCount() - 1;
    answerHeld({503, "", ""});
    EXPECT_EQ(a->screen().view, "UhOhTryAgainView");
    a->close();
    EXPECT_EQ(heard, "FAILURE ");
}

/// Destroys the journey from inside the n-th line that it logs.
class FatalConsole final : public Console {
  public:
    void line(std::string_view) override {
        if (left_-- == 0) journey->reset();
    }
    std::unique_ptr<Journey>* journey = nullptr;
    void after(int lines) { left_ = lines; }

  private:
    int left_ = 0;
};

TEST_F(TwoJourneys, AHostMayDestroyAJourneyAtAnyLineThatItLogs) {
    const auto console = std::make_shared<FatalConsole>();
    Ports withConsole = ports();
    withConsole.console = console;
    const std::string ivWord = "Failure: IV is expired";
    const auto walkOn = [this](std::unique_ptr<Journey>& it, const std::vector<std::string>& controls) {
        for (const std::string& control : controls) {
            const bool isDigits = control.find_first_not_of("0123456789") == control.npos;
            if (it) isDigits ? it->replaceText(control) : it->perform(control);
            settle();
        }
    };
    const std::string card = "sdk.cardviewer.card.activateAndSetPin.";
    const std::tuple<JourneyKind, std::string, std::vector<std::string>> rows[] = {
        {setPIN, "pinSet", {"2580", "sdk.setpin.button", "2580", "sdk.confirmpin.button"}},
        {setPIN, "getCardStatus", {}},
        {getCardImage, "cardImage", {}},
        {getCardImage, "cardStatus", {card + "freezeMyCard", card + "freezeCardPopup.freezeButton"}},
        {setPIN, "pciTokenRequest", {"sdk.sms.explain.button", "123456"}},
        {setPIN, "pciTokenSubmission", {"sdk.sms.explain.button", "123456"}},
    };
    for (const auto& [kind, refused, controls] : rows) {
        bool isWhole = false;
        for (int lines = 0; !isWhole; ++lines) {
            SCOPED_TRACE(refused + " " + std::to_string(lines));
            installPorts(withConsole);
            config.currentPciToken = refused.starts_with("pci") ? "" : "pci-token";
            std::deque<UrlReply> refusals{refusal(403, ivWord), result(ivWord), answer(401, {})};
            device.urlSession->answerWith([&](const UrlRequest& request) -> std::optional<UrlReply> {
                const std::string endpoint = request.url.substr(request.url.rfind('/') + 1);
                if (endpoint == refused && !refusals.empty()) {
                    const UrlReply next = refusals.front();
                    return refusals.pop_front(), next;
                }
                if (endpoint == "getCardStatus" && config.currentPciToken.empty())
                    return result("Failure: Invalid Token");
                return ok({{"encryptedResult", "Success"},
                           {"encryptedAccessToken", "bearer"},
                           {"encryptedCardStatus", "A1"},
                           {"encryptedCardType", "physical"},
                           {"encryptedPciSmsToken", "sms"},
                           {"encryptedPciToken", "pci"}});
            });
            std::unique_ptr<Journey> it;
            console->journey = &it;
            console->after(1'000'000);
            it = std::make_unique<Journey>(kind, "card-a");
            console->after(lines);
            it->appear();
            settle();
            walkOn(it, controls);
            isWhole = it != nullptr;
            EXPECT_LT(lines, 500);
        }
    }
}

TEST_F(TwoJourneys, LogOutEndsThemAll) {
    auto a = begin(setPIN, "card-a");
    hold("pinSet", a, enterPin);
    auto b = begin(getCardImage, "card-b");
    b->close();
    std::vector<std::string> heard;
    const auto observation = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo& info, JourneyId from) {
            heard.push_back(info.at("result"));
            EXPECT_EQ(from, a->id());
            a.reset();  // as a host may do at once
        });
    logOut();
    EXPECT_THAT(heard, testing::ElementsAre("CANCELED")) << "the viewer had posted before";
    EXPECT_EQ(b->screen().view, "");
    EXPECT_EQ(JourneyProbe::state(*b)->decPan, "");
    EXPECT_EQ(b->perform("xmark"), Journey::Outcome::noSuchControl);
    answerHeld(result("Failure: IV is expired"));
    EXPECT_EQ(calls("pinSet"), 1);
    EXPECT_EQ(begin(setPIN, "card-b")->screen().view, "EnterCardPINView");
}

}  // namespace
}  // namespace korvane
