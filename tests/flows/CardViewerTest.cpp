// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "base/Base64.h"
#include "flows/AppearStruct.h"
#include "tests/flows/ViewerFixture.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Views = std::vector<std::string>;

TEST_F(Viewer, ShowsTheCardWithTheNumberAndTheCvvBehindMasks) {
    DrivenJourney& journey = start();
    const ScreenSnapshot screen = journey.journey->screen();
    EXPECT_EQ(screen.stack, (Views{"GetCardImage", "CardImage_NoNav"}));
    EXPECT_EQ(screen.card->networkLogo, "mastercard_logo");
    EXPECT_EQ(screen.card->image->size(), 12u);
    EXPECT_EQ(screen.card->name, "sdk.cardtype.physical");
    EXPECT_EQ(screen.disclosureText, "hello");
    EXPECT_EQ(screen.toast, "");
    EXPECT_EQ(config.decCardStatus, "");
    EXPECT_EQ(journey.row(details + "cardholderName"), "Sam Okafor");
    EXPECT_EQ(journey.row(details + "expirationDate"), "12/31");
    EXPECT_TRUE(console.has(".onAppear in GetCardImage"));

    const auto shown = [&] { return journey.row(number) + " " + journey.row(details + "cvv"); };
    EXPECT_EQ(shown(), "################ ###");
    const std::function<void()> hidings[] = {[&] { journey.tap(reveal); }, [&] { pass(30s); },
                                             [&] { journey.journey->hideSensitive(); },
                                             [&] { journey.tap("xmark"); }};
    for (const auto& hide : hidings) {
        journey.tap(reveal);
        pass(29s);
        EXPECT_EQ(shown(), "5555550000079197 8642");
        for (const StateField& field : journey.journey->screen().state) {
            const auto* const text = std::get_if<std::string>(&field.value);
            EXPECT_TRUE(!text || text->find("8642") == std::string::npos) << field.name;
        }
        hide();
        EXPECT_EQ(shown(), "################ ###");
    }
    // The time runs from the last revealing.
    journey.tap(reveal);
    pass(20s);
    journey.tap(reveal);
    journey.tap(reveal);
    pass(29s);
    EXPECT_EQ(shown(), "5555550000079197 8642");
}

TEST_F(Viewer, CopiesTheValuesThemselvesAndTakesThemBack) {
    DrivenJourney& journey = start();
    const std::pair<const char*, const char*> rows[] = {{"cardholderName", "Sam Okafor"},
                                                        {"cardNumber", "5555550000079197"},
                                                        {"expirationDate", "12/31"},
                                                        {"cvv", "8642"}};
    for (const auto& [row, value] : rows) {
        journey.tap(details + row);
        EXPECT_EQ(pasteboard.text(), value);
        EXPECT_EQ(toast(), "sdk.copiedToClipboard");
        pass(5s);
    }
    pass(54s);
    EXPECT_EQ(pasteboard.text(), "8642");
    pass(1s);
    EXPECT_EQ(pasteboard.text(), "");

    journey.tap(number);
    pasteboard.setString("of another app");
    pass(60s);
    EXPECT_EQ(pasteboard.text(), "of another app");
    journey.tap(number);
    journey.journey.reset();
    EXPECT_EQ(pasteboard.text(), "");
}

TEST_F(Viewer, SaysCopiedOnlyWhenItWas) {
    service.cardDetails.erase("encryptedPan");
    DrivenJourney& journey = start();
    EXPECT_EQ(journey.row(number), "") << "a mask would promise a number";
    EXPECT_EQ(journey.tap(number), Journey::Outcome::notEnabled);
    pasteboard.setAvailable(false);
    journey.tap(details + "cvv");
    EXPECT_EQ(toast(), "");
    journey.tap("xmark");
    EXPECT_EQ(journey.closed, (Views{"CANCELED"}));
}

TEST_F(Viewer, CardThatIsNotActiveYetIsActivatedFromItsButton) {
    const std::pair<const char*, const char*> cases[] = {{"physical", "EnterCardLastFourView"},
                                                         {"paywallet", "EnterCardLastFourView"},
                                                         {"virtual", "EnterCardPINView"},
                                                         {"wearable", "EnterCardPINView"}};
    for (const auto& [type, view] : cases) {
        DrivenJourney& journey = start("P2", type);
        EXPECT_EQ(card().button, activate);
        EXPECT_FALSE(card().activated);
        journey.tap(reveal);
        journey.tap(activate);
        EXPECT_EQ(journey.view(), view);
        journey.tap("back");
        EXPECT_EQ(journey.row(number), "################");
        journey.tap(activate);
        if (journey.view() == "EnterCardLastFourView") {
            journey.type("9197");
            journey.tap("sdk.activatecard.lastfourdigits.button");
            journey.type("864");
            journey.tap("sdk.activatecard.cvv.button");
        }
        journey.enterAndConfirm("2580");
        EXPECT_EQ(journey.view(), "SuccessCardActivatedAndPinSetView");
        journey.tap("sdk.success.cardActivatedAndSetPin.button");
        EXPECT_EQ(journey.closed, (Views{"SUCCESS"}));
        journey.journey.reset();
        EXPECT_EQ(config.enteredLastFour + config.enteredCvv, "");
    }
    EXPECT_EQ(service.calls("physicalCardActivationAndPinSet"), 2);
}

TEST_F(Viewer, UnknownStatusOffersNothingThatChangesTheCardAndUnknownTypeAll) {
    for (const char* const status : {"X9", "a1", ""}) {
        DrivenJourney& journey = start(status);
        EXPECT_FALSE(card().activated || card().frozen) << status;
        EXPECT_EQ(card().button, "");
        EXPECT_EQ(journey.tap(freezeSwitch), Journey::Outcome::notEnabled);
        EXPECT_EQ(journey.row(details + "expirationDate"), "12/31");
    }
    config.currentCardType = eKorvaneCardType::none;
    DrivenJourney& journey = start("P2", "sticker");
    EXPECT_EQ(card().name, "");
    EXPECT_TRUE(journey.enabled(freezeSwitch));
    journey.tap(activate);
    EXPECT_EQ(journey.view(), "EnterCardLastFourView");
}

TEST_F(Viewer, PictureOrDisclosuresThatCannotBeShownAreToldOneAfterTheOther) {
    const std::string wellFormed = service.cardDetails["encryptedCardDisclosures"];
    std::vector<std::uint8_t> large(4u << 20, 0x5A);
    const std::uint8_t signature[] = {0xFF, 0xD8, 0xFF, 0xE0};
    std::copy(std::begin(signature), std::end(signature), large.begin());
    const std::tuple<std::string, std::string, Views> cases[] = {
        {"", wellFormed, {"errors.decodedimgstrempty.failed"}},
        {"iVBORw0KGgo", wellFormed, {"errors.base64todata.failed"}},
        {"bm90IGFuIGltYWdl", wellFormed, {"errors.datatoimage.failed"}},
        {base64Encode(large), wellFormed, {}},
        {"", "[", {"errors.decodedimgstrempty.failed", "errors.decodedDisclosureStructIsNil"}}};
    for (const auto& [image, disclosures, toasts] : cases) {
        service.cardDetails["encryptedCardImage"] = image;
        service.cardDetails["encryptedCardDisclosures"] = disclosures;
        DrivenJourney& journey = start();
        EXPECT_EQ(card().image == nullptr, !toasts.empty());
        EXPECT_EQ(journey.state("isCardImageLoaded"), toasts.empty() ? "true" : "false");
        for (const std::string& each : toasts) {
            EXPECT_EQ(toast(), each);
            pass(4s);
        }
        EXPECT_EQ(toast(), "");
        EXPECT_TRUE(journey.enabled(number)) << "the details are of use without";
    }
}

TEST_F(Viewer, DisclosureComesInTheDevicesLanguage) {
    const std::string both = service.cardDetails["encryptedCardDisclosures"];
    const std::string onlySpanish = R"({"CardDisclosures":[{"Language":"Spanish","CardDisclosure":"hola"}]})";
    const std::string onlyFrench = R"({"CardDisclosures":[{"Language":"French","CardDisclosure":"salut"}]})";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"", both, "hello"},
        {"es-MX", both, "hola"},
        {"ES", both, "hola"},
        {"fr", both, "hello"},
        {"en", onlySpanish, "hola"},
        {"es", onlyFrench, "salut"},
        {"en", R"({"CardDisclosures":[]})", ""},
        {"en", "{}", ""}};
    for (const auto& [language, disclosures, text] : cases) {
        config.deviceLanguageCode = language;
        service.cardDetails["encryptedCardDisclosures"] = disclosures;
        EXPECT_EQ(start().journey->screen().disclosureText, text) << language << disclosures;
        EXPECT_EQ(toast(), "");
    }
    config.deviceLanguageCode.clear();
    service.cardDetails["encryptedCardDisclosures"] = both;
    Ports spanish = ports();
    spanish.languageCode = "es_ES";
    installPorts(spanish);
    EXPECT_EQ(start().journey->screen().disclosureText, "hola");
}

TEST_F(Viewer, WearableBearsTheHostsNameAndPicture) {
    const ImageData png{std::byte{0x89}, std::byte{'P'},  std::byte{'N'},  std::byte{'G'}, std::byte{0x0D},
                        std::byte{0x0A}, std::byte{0x1A}, std::byte{0x0A}, std::byte{1}};
    config.wearableName = "Korvane Ring";
    config.wearableImage = png;
    service.cardDetails.erase("encryptedCardImage");  // nobody looks at it then
    start("A1", "wearable");
    EXPECT_EQ(card().name, "Korvane Ring");
    EXPECT_EQ(*card().image, png);
    EXPECT_EQ(toast(), "");
    start("A1", "virtual");
    EXPECT_EQ(card().name, "sdk.cardtype.virtual");
    EXPECT_EQ(card().image, nullptr);

    config.wearableImage = ImageData(3);
    service.cardDetails["encryptedCardImage"] = "iVBORw0KGgoAAAAA";
    start("A1", "wearable");
    EXPECT_EQ(card().image->size(), 12u) << "the service's, in place of one that cannot be drawn";
}

TEST_F(Viewer, FirstDecisionAsksForBothUnderOneSpinner) {
    service.hang("cardImage");
    DrivenJourney& journey = start();
    EXPECT_EQ(journey.view(), "GetCardImage");
    EXPECT_TRUE(journey.journey->screen().spinner);
    const std::size_t request = service.device.urlSession->startedCount() - 1;
    journey.journey.reset();
    EXPECT_TRUE(service.device.urlSession->wasCancelled(request)) << "or it would store details for nobody";
    service.settle();
    EXPECT_FALSE(console.has("viewToShow: CardImage_NoNav"));

    service.next("cardImage", service.refusal(400, "Failure: IV is expired"));
    service.next("cardImage", service.refusal(400, "Failure: Invalid offsetId"));
    config.currentPciToken = "held";
    EXPECT_EQ(start().view(), "CardImage_NoNav");
    EXPECT_TRUE(console.has("iv expired: Got new iv -- re-calling doAppearGuts -- CardImageAppearStruct"));
    EXPECT_TRUE(console.has("iv invalid: Got new iv -- re-calling doAppearGuts -- CardImageAppearStruct"));
}

TEST_F(Viewer, FailuresOfEitherCallLeadToTheSmsStepOrTheErrorPage) {
    for (const char* const endpoint : {"getCardStatus", "cardImage"}) {
        service.next(endpoint, service.result("FAILURE: INVALID TOKEN"));
        DrivenJourney& unverified = start("BT");
        EXPECT_EQ(config.viewToShowAfterSMSVerify, "CardImage_NoNav");
        unverified.verifyBySMS();
        EXPECT_EQ(unverified.journey->screen().stack, (Views{"GetCardImage", "CardImage_NoNav"}));
        EXPECT_TRUE(card().frozen);
        for (const char* const line :
             {".onAppear in GetCardImage_NoNav",
              "CardImage_NoNav - onAppear - SdkConfig.sharedInstance.cardId = card-1",
              "CardImage_NoNav - onAppear - self.cardID = card-1"}) {
            EXPECT_TRUE(console.has(line)) << line;
        }
        service.next(endpoint, {418, "", ""});
        DrivenJourney& failed = start();
        EXPECT_EQ(failed.view(), "UhOhTryAgainView");
        EXPECT_EQ(toast(), "errors.generic.api");
        failed.tap("sdk.errorPage.tryagain.button");
        EXPECT_EQ(failed.closed, (Views{"FAILURE"}));
    }
}

TEST_F(Viewer, FailureOfTheDetailsDoesNotReplaceAViewThatIsChosen) {
    int decided = 0;
    const auto appear = std::make_shared<AppearStruct>(
        AppearStruct::Journey{"CardImageAppearStruct", "CardImage_NoNav", nullptr, doCardImage},
        [&] { ++decided; });
    service.next("cardImage", {418, "", ""});
    appear->doAppear();
    appear->viewToShow = "UhOhContactSupportView";
    service.settle();
    EXPECT_EQ(appear->viewToShow, "UhOhContactSupportView");
    EXPECT_EQ(decided, 0);
    EXPECT_TRUE(console.has("already got viewToShow in handleCardImageError"));
}

TEST_F(Viewer, NothingOfTheCardStaysBehind) {
    DrivenJourney& journey = start();
    EXPECT_NE(config.decPan + config.decCvv, "");
    journey.tap("xmark");
    EXPECT_NE(config.decPan, "") << "a host that does not observe sees the page stay";
    journey.journey.reset();
    EXPECT_EQ(config.decCardImage + config.decPan + config.decMaskedPan + config.decCvv +
                  config.decMaskedCvv + config.decExpiryDate + config.decFirstName + config.decLastName +
                  config.decCardNetwork,
              "");
    EXPECT_FALSE(config.decodedDisclosuresStruct);
}

TEST_F(Viewer, LaterViewerHasTheDetailsForItself) {
    DrivenJourney earlier(service, JourneyKind::getCardImage);
    service.cardDetails["encryptedPan"] = "4000000000000002";
    DrivenJourney later(service, JourneyKind::getCardImage);
    earlier.tap(reveal);
    EXPECT_EQ(earlier.row(number), "none");
    earlier.journey.reset();
    later.tap(reveal);
    EXPECT_EQ(later.row(number), "4000000000000002");
}

TEST_F(Viewer, ClosesWithSuccessWhenSomethingWasDoneInIt) {
    const std::pair<Views, std::string> cases[] = {
        {{}, "CANCELED"},
        {{freezeSwitch, freezing + "freezeCardPopup.cancelButton"}, "CANCELED"},
        {{freezeSwitch, freezeButton}, "SUCCESS"},
        {{reveal}, "SUCCESS"},
        {{number}, "SUCCESS"}};
    for (const auto& [taps, result] : cases) {
        DrivenJourney& journey = start();
        for (const std::string& each : taps) journey.tap(each);
        journey.tap("xmark");
        EXPECT_EQ(journey.closed, (Views{result}));
    }
}

}  // namespace
}  // namespace korvane
