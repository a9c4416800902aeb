// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <random>
#include <sstream>

#include "base/Secret.h"
#include "tests/soak/DeviceTest.h"

namespace korvane::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

/// A text that does not stand in this object as it is: the search must not find itself.
struct Hidden {
    constexpr explicit Hidden(std::string_view text) : size(text.size()) {
        for (std::size_t i = 0; i < size; ++i) masked[i] = static_cast<unsigned char>(text[i] ^ 0x55);
    }
    Wiped<std::string> shown() const {
        std::string text(masked.begin(), masked.begin() + size);
        for (char& c : text) c = static_cast<char>(c ^ 0x55);
        return Wiped<std::string>{std::move(text)};
    }
    std::array<unsigned char, 20> masked{};
    std::size_t size;
};

// Of the service's cards, masked by the compiler. Three digits stand everywhere: as a text of their own.
constexpr Hidden number{"5555550000000791907"}, endOfNumber{"00791907"}, cvv{"0411"}, newCvv{"194"},
    newCvvAlone{std::string_view{"\0"
                                 "194",
                                 5}};

/// The one copy of what is read: passed over, and cleared in the end.
std::array<unsigned char, 1 << 20> window;

/// Where the text stands in all that this process can write to, as bytes or as UTF-16, with what is around
/// it. With digits or letters on both sides it is a part of something else.
std::vector<std::string> find(const Hidden& text) {
    constexpr std::size_t margin = 64;
    std::vector<std::string> found;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    const auto lookAt = [&](const unsigned char* at, const std::string& name) {
        for (const std::size_t step : {1, 2}) {
            std::size_t i = 0;
            while (i < text.size && (at[i * step] ^ 0x55) == text.masked[i]) ++i;
            if (i < text.size || (std::isalnum(*(at - step)) && std::isalnum(at[i * step]))) continue;
            found.push_back(name);
        }
    };
    const auto lookThrough = [&](std::uintptr_t from, std::uintptr_t to, const std::string& name) {
        for (; from < to; from += window.size() - 2 * margin) {
            const std::size_t size = std::min(window.size() - 2 * margin, to - from);
            window.fill(0);
            if (pread(memory, window.data() + margin, size + margin, static_cast<off_t>(from)) < 0) continue;
            for (std::size_t i = margin; i < margin + size; ++i) lookAt(window.data() + i, name);
        }
    };
    const auto own = reinterpret_cast<std::uintptr_t>(window.data());
    std::stringstream maps;
    maps << std::ifstream("/proc/self/maps").rdbuf();
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t from = 0, to = 0;
        char dash = 0;
        std::string rights, other, name;
        std::istringstream(line) >> std::hex >> from >> dash >> to >> rights >> other >> other >> other >>
            name;
        if (!rights.starts_with("rw")) continue;
        lookThrough(from, std::clamp(own, from, to), name);
        lookThrough(std::clamp(own + window.size(), from, to), to, name);
    }
    window.fill(0);
    close(memory);
    return found;
}

/// A PIN that stands nowhere yet: even ones and odd ones by turns, so that it is not weak.
Hidden absentPin() {
    std::random_device random;
    for (Hidden pin{"0505"};;) {
        for (std::size_t i = 0; i < 4; ++i)
            pin.masked[i] =
                static_cast<unsigned char>(('0' + (i % 2 == 0 ? random() % 4 : 6 + random() % 4)) ^ 0x55);
        if (find(pin).empty()) return pin;
    }
}

class SecretsLeave : public DeviceTest, public ::testing::WithParamInterface<bool> {
  protected:
    SecretsLeave() : DeviceTest(GetParam()) {}
    void setPin(Journey& journey, const Hidden& pin) {
        on(journey, "EnterCardPINView", "sdk.setpin.button", *pin.shown());
        on(journey, "ConfirmCardPINView", "sdk.confirmpin.button", *pin.shown());
    }
    std::unique_ptr<Journey> verified(JourneyKind kind, const std::string& cardId) {
        device.initialize();
        auto journey = begin(kind, cardId);
        verify(*journey, cardId);
        return journey;
    }
};

INSTANTIATE_TEST_SUITE_P(Over, SecretsLeave, ::testing::Bool(),
                         [](const auto& tls) { return tls.param ? "TLS" : "PlainHTTP"; });

TEST_P(SecretsLeave, APinThatWasSet) {
    const Hidden pin = absentPin();
    auto journey = verified(JourneyKind::setPIN, "card-physical-active");
    setPin(*journey, pin);
    on(*journey, "SuccessPinSetView", "sdk.success.setpin.button");
    journey.reset();
    EXPECT_THAT(find(pin), IsEmpty());
}

TEST_P(SecretsLeave, APinAndWhatProvesPossessionOfANewCard) {
    const auto before = find(newCvvAlone);
    const Hidden pin = absentPin();
    auto journey = verified(JourneyKind::activateCardAndSetPIN, "card-physical-new");
    on(*journey, "ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start");
    on(*journey, "EnterCardLastFourView", "sdk.activatecard.lastfourdigits.button", "7570");
    on(*journey, "EnterCardCVVView", "sdk.activatecard.cvv.button", *newCvv.shown());
    setPin(*journey, pin);
    on(*journey, "SuccessCardActivatedAndPinSetView", "sdk.success.cardActivatedAndSetPin.button");
    journey.reset();
    EXPECT_THAT(find(pin), IsEmpty());
    EXPECT_EQ(find(newCvvAlone), before);
}

TEST_P(SecretsLeave, DetailsThatWereRevealedAndCopied) {
    auto journey = verified(JourneyKind::getCardImage, "card-paywallet-active");
    on(*journey, "CardImage_NoNav", "");
    EXPECT_THAT(find(number), SizeIs(1)) << "the shared state's alone";
    for (const char* control : {"reveal", "cardNumber", "cvv", "reveal"})
        journey->perform(std::string("sdk.cardviewer.device.details.") + control);
    on(*journey, "CardImage_NoNav", "xmark");
    journey.reset();
    for (const Hidden& secret : {number, endOfNumber, cvv}) EXPECT_THAT(find(secret), IsEmpty());
}

TEST(MemoryScan, FindsWhatIsPlanted) {
    const Hidden pin = absentPin();
    auto bytes = pin.shown();
    std::u16string wide(bytes->begin(), bytes->end());
    EXPECT_THAT(find(pin), SizeIs(2));
    wipe(*bytes);
    wide.assign(4, u' ');
    EXPECT_THAT(find(pin), IsEmpty());
}

}  // namespace
}  // namespace korvane::testing
