// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <random>

#include "sdk/SdkConfig.h"
#include "tests/soak/MemoryScan.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

// Of the service's cards. Three digits stand everywhere: as a text of their own.
const std::string number = masked("5555550000000791907"), endOfNumber = masked("00791907"),
                  cvv = masked("0411"), newCvv = masked("194"), newCvvAlone = masked({"\000194", 5});

class SecretsLeave : public ::testing::TestWithParam<bool> {
  protected:
    void begin(JourneyKind kind, const std::string& cardId) {
        device.initialize();
        journey = device.begin(kind, cardId);
        device.verify(*journey, cardId);
    }
    void setPin() {
        device.on(*journey, "EnterCardPINView", "sdk.setpin.button", *shown(pin));
        device.on(*journey, "ConfirmCardPINView", "sdk.confirmpin.button", *shown(pin));
    }

    const std::string pin = absentPin();
    RealDevice device{GetParam()};
    std::unique_ptr<Journey> journey;
};

INSTANTIATE_TEST_SUITE_P(Over, SecretsLeave, ::testing::Bool(),
                         [](const auto& tls) { return tls.param ? "TLS" : "PlainHTTP"; });

TEST_P(SecretsLeave, APinThatWasSet) {
    begin(JourneyKind::setPIN, "card-physical-active");
    setPin();
    device.on(*journey, "SuccessPinSetView", "sdk.success.setpin.button");
    journey.reset();
    EXPECT_EQ(find(pin, Beside::nothing), nowhere);
}

TEST_P(SecretsLeave, APinAndWhatProvesPossessionOfANewCard) {
    const auto before = find(newCvvAlone);
    begin(JourneyKind::activateCardAndSetPIN, "card-physical-new");
    device.on(*journey, "ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start");
    device.on(*journey, "EnterCardLastFourView", "sdk.activatecard.lastfourdigits.button", "7570");
    device.on(*journey, "EnterCardCVVView", "sdk.activatecard.cvv.button", *shown(newCvv));
    setPin();
    device.on(*journey, "SuccessCardActivatedAndPinSetView", "sdk.success.cardActivatedAndSetPin.button");
    journey.reset();
    EXPECT_EQ(find(pin, Beside::nothing), nowhere);
    EXPECT_EQ(find(newCvvAlone), before);
}

TEST_P(SecretsLeave, DetailsThatWereRevealedAndCopied) {
    const auto before = find(cvv, Beside::nothing);
    begin(JourneyKind::getCardImage, "card-paywallet-active");
    device.on(*journey, "CardImage_NoNav");
    EXPECT_EQ(find(number).size(), 1) << "the journey's state alone";
    for (const char* control : {"reveal", "cardNumber", "cvv", "reveal"})
        journey->perform(std::string("sdk.cardviewer.device.details.") + control);
    device.on(*journey, "CardImage_NoNav", "xmark");
    journey.reset();
    for (const std::string& secret : {number, endOfNumber}) EXPECT_EQ(find(secret), nowhere);
    EXPECT_EQ(find(cvv, Beside::nothing), before);
}

TEST_P(SecretsLeave, TheTokenOfASessionThatEnded) {
    const std::function<void()> ends[] = {
        [] { logOut(); },
        [&] { korvane::initialize(device.key, device.url + "/other", [](const auto&) {}, false, {}, {}); }};
    for (const auto& end : ends) {
        begin(JourneyKind::setPIN, "card-physical-active");
        device.on(*journey, "EnterCardPINView");
        const std::string token = masked(SdkConfig::sharedInstance().currentPciToken);
        EXPECT_EQ(find(token).size(), 1);
        end();
        EXPECT_EQ(find(token), nowhere);
    }
}

TEST(SecretsLeaveAtOnce, AKeyThatIsReplacedOrRefused) {
    RealDevice device;
    std::string bytes(32, ' ');
    std::random_device random;
    for (char& each : bytes) each = static_cast<char>(random());
    const auto base64 = [](const std::string& plain) {
        std::string text(44, ' ');
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(plain.data()), 32);
        return text;
    };
    const auto set = [](const std::string& key) {
        return korvane::initialize(key, "http://localhost", [](const auto&) {}, false, {}, {});
    };
    const std::string plain = masked(bytes);
    std::string text = masked(base64(bytes));
    wipe(bytes);
    EXPECT_TRUE(set(*shown(text)));
    EXPECT_EQ(find(plain).size(), 1);
    EXPECT_TRUE(set(base64(std::string(32, 'x'))));
    EXPECT_EQ(find(plain), nowhere);
    EXPECT_EQ(find(text), nowhere);
    text[40] = masked("*")[0];
    EXPECT_FALSE(set(*shown(text)));
    EXPECT_EQ(find(plain.substr(0, 30)), nowhere) << "what was decoded of it";
}

TEST(MemoryScan, FindsWhatIsPlanted) {
    const std::string pin = absentPin();
    auto bytes = shown(pin);
    std::u16string wide(bytes->begin(), bytes->end());
    EXPECT_EQ(find(pin).size(), 2);
    wipe(*bytes);
    wide.assign(4, u' ');
    EXPECT_EQ(find(pin, Beside::nothing), nowhere);
}

}  // namespace
}  // namespace korvane::testing
