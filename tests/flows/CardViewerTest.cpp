// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

namespace korvane {
namespace {

class CardViewer : public JourneyFixture {
  protected:
    const std::string masks = "cardNumber=################, cvv=###";
    const std::string digits = "cardNumber=5555550000079197, cvv=8642";
};

TEST_F(CardViewer, ShowsTheCardWithTheNumberAndTheCvvBehindMasks) {
    showCard();
    see("logo=mastercard_logo, image=12, isCardImageLoaded=true, name=sdk.cardtype.physical, toast=");
    see("cardholderName=Sam Okafor, expirationDate=12/31, " + masks);
    const std::function<void()> hidings[] = {[&] { tap("reveal"); }, [&] { walk({"wait 30"}); },
                                             [&] { journey->hideSensitive(); }, [&] { tap("xmark"); }};
    for (const auto& hide : hidings) {
        walk({"reveal", "wait 29 > " + digits});
        hide();
        see(masks);
    }
    // The time runs from the last revealing.
    walk({"reveal", "wait 20", "reveal", "reveal", "wait 29 > " + digits});
}

TEST_F(CardViewer, CopiesTheValuesThemselvesAndTakesThemBack) {
    showCard();
    for (const std::string copied :
         {"cardholderName > pasteboard=Sam Okafor", "cardNumber > pasteboard=5555550000079197",
          "expirationDate > pasteboard=12/31", "cvv > pasteboard=8642"})
        walk({copied + ", toast=sdk.copiedToClipboard", "wait 5"});
    walk({"wait 54 > pasteboard=8642", "wait 1 > pasteboard=", "cardNumber"});
    device.pasteboard->setString("of another app");
    walk({"wait 60 > pasteboard=of another app", "cardNumber"});
    journey.reset();
    EXPECT_EQ(device.pasteboard->text(), "");
}

TEST_F(CardViewer, SaysCopiedOnlyWhenItWas) {
    cardDetails.erase("encryptedPan");
    showCard();
    device.pasteboard->setAvailable(false);
    walk({"cardNumber > not enabled, cardNumber=",  // a mask would promise a number
          "cvv > toast=", "xmark > closed=CANCELED"});
}

TEST_F(CardViewer, OffersWhatTheStatusAllows) {
    showCard("P2");
    see("offers=sdk.cardviewer.activateAndSetPin.onCardButton, isCardActivated=false, freezeMyCard=on");
    walk({"reveal", "onCardButton", "back > " + masks});
    for (const char* const unknown : {"X9", "a1", ""}) {
        showCard(unknown);
        see("isCardActivated=false, isCardFrozen=false, offers=, freezeMyCard=off, expirationDate=12/31");
    }
}

TEST_F(CardViewer, PictureOrDisclosuresThatCannotBeShownAreToldOneAfterTheOther) {
    cardDetails["encryptedCardDisclosures"] = "[";
    for (const auto& [image, told] : {std::pair{"", "errors.decodedimgstrempty.failed"},
                                      {"iVBORw0KGgo", "errors.base64todata.failed"},
                                      {"bm90IGFuIGltYWdl", "errors.datatoimage.failed"}}) {
        cardDetails["encryptedCardImage"] = image;
        showCard();
        see(std::string("image=0, toast=") + told);
        // The details are of use without.
        walk({"wait 4 > toast=errors.decodedDisclosureStructIsNil", "wait 4 > toast=, cvv=###"});
    }
}

TEST_F(CardViewer, WearableBearsTheHostsNameAndPicture) {
    ImageData picture;
    for (const char byte : std::string("\x89PNG\r\n\x1A\n1")) picture.push_back(std::byte(byte));
    config.wearableName = "Korvane Ring";
    config.wearableImage = picture;
    cardDetails.erase("encryptedCardImage");
    showCard("A1", "wearable");
    see("name=Korvane Ring, image=9, toast=");
    config.wearableName = std::string(201, 'x');
    see("name=" + std::string(199, 'x') + "…, image=9");
    showCard("A1", "virtual");
    see("name=sdk.cardtype.virtual, image=0");
    config.wearableImage = ImageData(3);  // cannot be drawn
    showCard("A1", "wearable");
    see("image=0, toast=errors.decodedimgstrempty.failed");
}

/// Decodes when told to, as a thread would in its own time.
struct HeldDecoder final : ImageDecoder {
    struct Decoding final : ImageDecoding {
        explicit Decoding(Done* owed) : done(owed) {}
        ~Decoding() override { *done = nullptr; }
        Done* done;
    };
    std::unique_ptr<ImageDecoding> decode(std::shared_ptr<const ImageData>, Done given) override {
        done = std::move(given);
        return std::make_unique<Decoding>(&done);
    }
    Done done;
};

TEST_F(CardViewer, ComesWhenItsPictureIsDecodedAndAJourneyThatGoesCancels) {
    const auto decoder = std::make_shared<HeldDecoder>();
    Ports ports = korvane::ports();
    ports.imageDecoder = decoder;
    installPorts(ports);
    EXPECT_EQ(showCard(), "GetCardImage");
    see("showSpinner=true");
    ASSERT_TRUE(decoder->done);
    journey.reset();
    EXPECT_FALSE(decoder->done) << "the picture of a journey that is gone";
    for (const bool isPicture : {true, false}) {
        showCard();
        std::exchange(decoder->done, nullptr)(isPicture ? std::make_shared<DecodedImage>() : nullptr);
        settle();
        EXPECT_EQ(screen().view, "CardImage_NoNav");
        see(isPicture ? "image=12, toast=" : "image=0, toast=errors.datatoimage.failed");
    }
}

TEST_F(CardViewer, LeavesNothingBehind) {
    showCard();
    const auto kept = JourneyProbe::state(*journey);
    EXPECT_TRUE(kept->cardPicture.image);
    journey.reset();
    EXPECT_EQ(kept->decCardImage + kept->decPan + kept->decMaskedPan + kept->decCvv + kept->decMaskedCvv +
                  kept->decExpiryDate + kept->decFirstName + kept->decLastName + kept->decCardNetwork,
              "");
    EXPECT_FALSE(kept->decodedDisclosuresStruct);
    EXPECT_FALSE(kept->cardPicture.image);
}

class FreezeSwitch : public JourneyFixture {
  protected:
    std::string freeze() { return walk({"freezeMyCard", "freezeCardPopup.freezeButton"}); }
    std::string unfreeze() { return walk({"freezeMyCard", "unFreezeCardPopup.unFreezeButton"}); }
};

TEST_F(FreezeSwitch, FreezesAndUnfreezesAfterAsking) {
    for (const std::string status : {"A1", "P2"}) {
        showCard(status);
        walk({"freezeMyCard > isCardFrozenShowToggleOn=true, controls=2",  // nothing beside the question
              "freezeCardPopup.cancelButton > isCardFrozen=false, showToggleOff=true", "freezeMyCard",
              "freezeCardPopup.freezeButton > cardStatus.Status=BT, offers=, "
              "card=sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header/"
              "sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader",
              "freezeMyCard > isCardFrozenShowToggleOff=true",
              "unFreezeCardPopup.cancelButton > isCardFrozen=true, showToggleOff=false", "freezeMyCard",
              "unFreezeCardPopup.unFreezeButton > isCardFrozen=false, card=, calls cardStatus=2"});
        see("cardStatus.Status=" + status);
    }
}

TEST_F(FreezeSwitch, StaysWhereItWasWhenTheCallFailsAndStaleIvsAreNoFailure) {
    showCard();
    const std::string renewed = "Success getting new iV - re-calling reEntrantSetCardStatus";
    next("cardStatus", refusal(403, "failure: iv is expired"));
    next("cardStatus", refusal(400, "Failure: Invalid offsetId"));
    freeze();
    see("isCardFrozen=true");
    EXPECT_TRUE(device.console->has(renewed + "FreezeGuts"));
    next("cardStatus", refusal(403, "Failure: IV is expired"));
    unfreeze();
    see("isCardFrozen=false");
    EXPECT_TRUE(device.console->has(renewed + "UnFreezeGuts"));

    showCard("BT");
    see("isCardFrozen=true, isCardActivated=true");
    hostSuppliesIvs = false;
    for (const UrlReply& failure : {refusal(500, "Failure: No"), refusal(403, "Failure: IV is expired")}) {
        next("cardStatus", failure);
        config.currentPciToken = "held";
        unfreeze();
        see("toast=errors.generic.api, isCardFrozen=true, freezeMyCard=on");
        walk({"wait 4 > toast="});
    }
    hostSuppliesIvs = true;  // the refused IV is gone
    hang("cardStatus");
    unfreeze();
    walk({"freezeMyCard > not enabled, showSpinner=true, calls cardStatus=3", "xmark > closed=CANCELED"});
}

TEST_F(FreezeSwitch, SpentTokenGoesThroughTheSmsStepAndTheCallIsDone) {
    for (const UrlReply& spent : {result("Failure: Expired Token"), UrlReply{500, "", ""}}) {
        showCard();
        config.currentPciToken.clear();
        next("cardStatus", spent);
        tap("reveal");
        EXPECT_EQ(freeze(), "SMSExplainView");
        walk({"back > CardImage_NoNav, cardNumber=################, isCardFrozen=false, calls cardStatus=1"});
        next("cardStatus", spent);
        freeze();
        verifyBySMS();
        see("stack=GetCardImage/CardImage_NoNav, isCardFrozen=true, calls cardStatus=3");
        see("calls cardImage=1");  // the viewer is the one that asked
    }
}

}  // namespace
}  // namespace korvane
