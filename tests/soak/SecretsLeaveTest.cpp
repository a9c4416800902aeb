// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>
#include <korvane/platform/Ports.h>

#include <memory>

#include "base/Secret.h"
#include "tests/soak/MemoryScan.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

// Of the service's cards, as the compiler leaves them.
constexpr Hidden numberOfPaywallet{"5555550000000791907"}, endOfNumberOfPaywallet{"00791907"},
    cvvOfPaywallet{"0411"};
// Three digits stand everywhere: as a text of their own.
constexpr Hidden cvvOfNewCard{"194"}, cvvOfNewCardAlone{std::string_view{"\0"
                                                                         "194",
                                                                         5}};

/// What was copied goes to others, who keep it: no business of ours.
class ForgetfulPasteboard final : public Pasteboard {
  public:
    bool setString(const std::string&) override { return true; }
    void clearIfHolds(const std::string&) override {}
};

/// A journey that is gone through to its end, over TLS and without.
class SecretsLeave : public ::testing::TestWithParam<bool> {
  protected:
    SecretsLeave() {
        Ports changed = ports();
        changed.pasteboard = std::make_shared<ForgetfulPasteboard>();
        installPorts(changed);
        device.initialize();
    }

    void begin(JourneyKind kind, const std::string& cardId) {
        journey = std::make_unique<Journey>(kind, cardId);
        journey->appear();
        on("SMSExplainView", "sdk.sms.explain.button");
        reach("EnterSMSCodeView");
        journey->replaceText(device.smsCode(cardId));
    }
    void reach(const std::string& view) {
        ASSERT_TRUE(device.until([&] { return journey->screen().view == view; })) << journey->screen().view;
    }
    void on(const std::string& view, const std::string& control, const Hidden& digits = Hidden{""}) {
        reach(view);
        if (digits.size > 0) journey->replaceText(*Wiped<std::string>{digits.shown()});
        ASSERT_EQ(journey->perform(control), Journey::Outcome::done) << view << control;
    }
    void setPin(const Hidden& pin) {
        on("EnterCardPINView", "sdk.setpin.button", pin);
        on("ConfirmCardPINView", "sdk.confirmpin.button", pin);
    }

    RealDevice device{{}, GetParam()};
    std::unique_ptr<Journey> journey;
};

INSTANTIATE_TEST_SUITE_P(Over, SecretsLeave, ::testing::Bool(),
                         [](const auto& tls) { return tls.param ? "TLS" : "PlainHTTP"; });

TEST_P(SecretsLeave, APinThatWasSet) {
    const Hidden pin = absentPin();
    begin(JourneyKind::setPIN, "card-physical-active");
    setPin(pin);
    on("SuccessPinSetView", "sdk.success.setpin.button");
    journey.reset();
    EXPECT_THAT(findInMemory(pin), IsEmpty());
}

TEST_P(SecretsLeave, APinAndWhatProvesPossessionOfANewCard) {
    const auto before = findInMemory(cvvOfNewCardAlone);
    const Hidden pin = absentPin();
    begin(JourneyKind::activateCardAndSetPIN, "card-physical-new");
    on("ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start");
    on("EnterCardLastFourView", "sdk.activatecard.lastfourdigits.button", Hidden{"7570"});
    on("EnterCardCVVView", "sdk.activatecard.cvv.button", cvvOfNewCard);
    setPin(pin);
    on("SuccessCardActivatedAndPinSetView", "sdk.success.cardActivatedAndSetPin.button");
    journey.reset();
    EXPECT_THAT(findInMemory(pin), IsEmpty());
    EXPECT_EQ(findInMemory(cvvOfNewCardAlone), before);
}

TEST_P(SecretsLeave, DetailsThatWereRevealedAndCopied) {
    const std::string details = "sdk.cardviewer.device.details.";
    begin(JourneyKind::getCardImage, "card-paywallet-active");
    reach("CardImage_NoNav");
    EXPECT_THAT(findInMemory(numberOfPaywallet), SizeIs(1)) << "the shared state's alone";
    for (const char* control : {"reveal", "cardNumber", "cvv", "reveal"})
        on("CardImage_NoNav", details + control);
    on("CardImage_NoNav", "xmark");
    journey.reset();
    for (const Hidden& secret : {numberOfPaywallet, endOfNumberOfPaywallet, cvvOfPaywallet})
        EXPECT_THAT(findInMemory(secret), IsEmpty());
}

TEST(MemoryScan, FindsWhatIsPlanted) {
    const Hidden pin = absentPin();
    EXPECT_THAT(findInMemory(pin), IsEmpty());
    std::string bytes = pin.shown();
    auto wide = std::make_unique<std::u16string>(bytes.begin(), bytes.end());
    EXPECT_THAT(findInMemory(pin), SizeIs(2));
    wipe(bytes);
    wide->assign(4, u' ');
    EXPECT_THAT(findInMemory(pin), IsEmpty());
}

}  // namespace
}  // namespace korvane::testing
