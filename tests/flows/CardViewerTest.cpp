// SPDX-License-Identifier: Apache-2.0
#include "base/Base64.h"
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

class CardViewer : public Viewer {
  protected:
    std::string secrets() const { return row(number) + " " + row(details + "cvv"); }
    const std::string masks = "################ ###";
    const std::string digits = "5555550000079197 8642";
};

TEST_F(CardViewer, ShowsTheCardWithTheNumberAndTheCvvBehindMasks) {
    show();
    EXPECT_EQ(card().networkLogo, "mastercard_logo");
    EXPECT_EQ(card().image->size(), 12u);
    EXPECT_THAT(state(), HasSubstr("isCardImageLoaded=true"));
    EXPECT_EQ(card().name, "sdk.cardtype.physical");
    EXPECT_EQ(toast(), "");
    EXPECT_EQ(row(details + "cardholderName"), "Sam Okafor");
    EXPECT_EQ(row(details + "expirationDate"), "12/31");
    EXPECT_EQ(secrets(), masks);
    const std::function<void()> hidings[] = {[&] { tap(reveal); }, [&] { pass(30s); },
                                             [&] { journey->hideSensitive(); }, [&] { tap("xmark"); }};
    for (const auto& hide : hidings) {
        tap(reveal);
        pass(29s);
        EXPECT_EQ(secrets(), digits);
        EXPECT_THAT(state(), Not(HasSubstr("8642")));
        hide();
        EXPECT_EQ(secrets(), masks);
    }
    // The time runs from the last revealing.
    tap(reveal);
    pass(20s);
    tap(reveal);
    tap(reveal);
    pass(29s);
    EXPECT_EQ(secrets(), digits);
}

TEST_F(CardViewer, CopiesTheValuesThemselvesAndTakesThemBack) {
    const FakePasteboard& pasteboard = *device.pasteboard;
    show();
    const std::pair<const char*, const char*> rows[] = {{"cardholderName", "Sam Okafor"},
                                                        {"cardNumber", "5555550000079197"},
                                                        {"expirationDate", "12/31"},
                                                        {"cvv", "8642"}};
    for (const auto& [row, value] : rows) {
        tap(details + row);
        EXPECT_EQ(pasteboard.text(), value);
        EXPECT_EQ(toast(), "sdk.copiedToClipboard");
        pass(5s);
    }
    pass(54s);
    EXPECT_EQ(pasteboard.text(), "8642");
    pass(1s);
    EXPECT_EQ(pasteboard.text(), "");

    tap(number);
    device.pasteboard->setString("of another app");
    pass(60s);
    EXPECT_EQ(pasteboard.text(), "of another app");
    tap(number);
    journey.reset();
    EXPECT_EQ(pasteboard.text(), "");
}

TEST_F(CardViewer, SaysCopiedOnlyWhenItWas) {
    cardDetails.erase("encryptedPan");
    show();
    EXPECT_EQ(row(number), "") << "a mask would promise a number";
    EXPECT_EQ(tap(number), "not enabled");
    device.pasteboard->setAvailable(false);
    tap(details + "cvv");
    EXPECT_EQ(toast(), "");
    tap("xmark");
    EXPECT_EQ(closed, "CANCELED");
}

TEST_F(CardViewer, OffersWhatTheStatusAllows) {
    show("P2");
    EXPECT_EQ(card().button, activate);
    EXPECT_FALSE(card().activated);
    EXPECT_TRUE(enabled(freezeSwitch));
    tap(reveal);
    tap(activate);
    tap("back");
    EXPECT_EQ(secrets(), masks);
    for (const char* const unknown : {"X9", "a1", ""}) {
        show(unknown);
        EXPECT_FALSE(card().activated || card().frozen) << unknown;
        EXPECT_EQ(card().button, "");
        EXPECT_EQ(tap(freezeSwitch), "not enabled");
        EXPECT_EQ(row(details + "expirationDate"), "12/31");
    }
}

TEST_F(CardViewer, PictureOrDisclosuresThatCannotBeShownAreToldOneAfterTheOther) {
    const std::string wellFormed = cardDetails["encryptedCardDisclosures"];
    const std::tuple<std::string, std::string, Views> cases[] = {
        {"", wellFormed, {"errors.decodedimgstrempty.failed"}},
        {"iVBORw0KGgo", wellFormed, {"errors.base64todata.failed"}},
        {"bm90IGFuIGltYWdl", wellFormed, {"errors.datatoimage.failed"}},
        {"", "[", {"errors.decodedimgstrempty.failed", "errors.decodedDisclosureStructIsNil"}}};
    for (const auto& [image, disclosures, toasts] : cases) {
        cardDetails["encryptedCardImage"] = image;
        cardDetails["encryptedCardDisclosures"] = disclosures;
        show();
        EXPECT_EQ(card().image, nullptr);
        for (const std::string& each : toasts) {
            EXPECT_EQ(toast(), each);
            pass(4s);
        }
        EXPECT_EQ(toast(), "");
        EXPECT_TRUE(enabled(number)) << "the details are of use without";
    }
}

TEST_F(CardViewer, DisclosureComesInTheDevicesLanguage) {
    const std::string both = cardDetails["encryptedCardDisclosures"];
    const std::string onlyFrench = R"({"CardDisclosures":[{"Language":"French","CardDisclosure":"salut"}]})";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"", both, "hello"},   {"es-MX", both, "hola"},     {"ES", both, "hola"},
        {"fr", both, "hello"}, {"es", onlyFrench, "salut"}, {"en", R"({"CardDisclosures":[]})", ""},
        {"en", "{}", ""}};
    for (const auto& [language, disclosures, text] : cases) {
        config.deviceLanguageCode = language;
        cardDetails["encryptedCardDisclosures"] = disclosures;
        show();
        EXPECT_EQ(screen().disclosureText, text) << language << disclosures;
        EXPECT_EQ(toast(), "");
    }
}

TEST_F(CardViewer, WearableBearsTheHostsNameAndPicture) {
    const auto png = base64Decode("iVBORw0KGgoB").value();
    const auto* const first = reinterpret_cast<const std::byte*>(png.data());
    config.wearableName = "Korvane Ring";
    config.wearableImage = ImageData(first, first + png.size());
    cardDetails.erase("encryptedCardImage");  // nobody looks at it then
    show("A1", "wearable");
    EXPECT_EQ(card().name, "Korvane Ring");
    EXPECT_EQ(*card().image, config.wearableImage);
    EXPECT_EQ(toast(), "");
    show("A1", "virtual");
    EXPECT_EQ(card().name, "sdk.cardtype.virtual");
    EXPECT_EQ(card().image, nullptr);

    config.wearableImage = ImageData(3);
    cardDetails["encryptedCardImage"] = "iVBORw0KGgoAAAAA";
    show("A1", "wearable");
    EXPECT_EQ(card().image->size(), 12u) << "the service's, in place of one that cannot be drawn";
}

TEST_F(CardViewer, ALaterViewerHasTheDetailsForItselfAndLeavesNothingBehind) {
    show();
    auto earlier = std::move(journey);
    cardDetails["encryptedPan"] = "4000000000000002";
    show();
    std::swap(journey, earlier);
    tap(reveal);
    EXPECT_EQ(row(number), "none");
    journey = std::move(earlier);
    tap(reveal);
    EXPECT_EQ(row(number), "4000000000000002");
    journey.reset();
    EXPECT_EQ(config.decCardImage + config.decPan + config.decMaskedPan + config.decCvv +
                  config.decMaskedCvv + config.decExpiryDate + config.decFirstName + config.decLastName +
                  config.decCardNetwork,
              "");
    EXPECT_FALSE(config.decodedDisclosuresStruct);
}

TEST_F(CardViewer, ClosesWithSuccessOnceSomethingWasDone) {
    const std::pair<Views, std::string> cases[] = {
        {{}, "CANCELED"},
        {{freezeSwitch, freezing + "freezeCardPopup.cancelButton"}, "CANCELED"},
        {{freezeSwitch, freezing + "freezeCardPopup.freezeButton"}, "SUCCESS"},
        {{reveal}, "SUCCESS"},
        {{number}, "SUCCESS"}};
    for (const auto& [taps, result] : cases) {
        show();
        for (const std::string& each : taps) tap(each);
        tap("xmark");
        EXPECT_EQ(closed, result);
    }
}

}  // namespace
}  // namespace korvane
