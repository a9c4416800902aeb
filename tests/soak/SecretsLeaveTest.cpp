// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cctype>
#include <fstream>
#include <random>

#include "base/Secret.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

const std::vector<std::string> nowhere;

/// A text as it is not, and back: the search must not find itself.
std::string masked(std::string text) {
    for (char& c : text) c = static_cast<char>(~c);
    return text;
}

// Of the service's cards. Three digits stand everywhere: as a text of their own.
const std::string number = masked("5555550000000791907"), endOfNumber = masked("00791907"),
                  cvv = masked("0411"), newCvv = masked("194"), newCvvAlone = masked({"\000194", 5});

Wiped<std::string> shown(const std::string& text) {
    return Wiped<std::string>{masked(text)};
}

/// What may stand beside a text that is found.
enum class Beside {
    oneSide,  ///< digits or letters on one side at most: the end of a longer secret counts
    nothing   ///< neither: a short text is the end of many others, of a port's number for instance
};

/// Where the text, masked, stands in all that this process can write to, as bytes or as UTF-16.
std::vector<std::string> find(const std::string& text, Beside beside = Beside::oneSide) {
    std::vector<std::string> found;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(" rw") == line.npos) continue;
        const std::size_t from = std::stoul(line, nullptr, 16),
                          to = std::stoul(line.substr(line.find('-') + 1), nullptr, 16);
        // The one copy is gone before the list is read on.
        const std::size_t margin = 64, size = to - from + 2 * margin;
        const auto copy = static_cast<char*>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        const auto read = pread(memory, copy + margin, to - from, static_cast<off_t>(from));
        for (const char* at = copy + margin; at < copy + margin + read; ++at) {
            for (const int step : {1, 2}) {
                std::ptrdiff_t i = 0;
                while (i < std::ssize(text) && static_cast<char>(~at[i * step]) == text[i]) ++i;
                const int sides = (std::isalnum(at[-step]) != 0) + (std::isalnum(at[i * step]) != 0);
                if (i < std::ssize(text) || sides > (beside == Beside::oneSide ? 1 : 0)) continue;
                found.push_back(line.substr(line.rfind(' ') + 1));
            }
        }
        munmap(copy, size);
    }
    close(memory);
    return found;
}

/// A PIN that stands nowhere yet, masked: even ones and odd ones by turns, so that it is not weak.
std::string absentPin() {
    std::random_device random;
    for (std::string pin(4, ' ');;) {
        for (std::size_t i = 0; i < 4; ++i)
            pin[i] = static_cast<char>(~('0' + (i % 2 == 0 ? random() % 4 : 6 + random() % 4)));
        if (find(pin).empty()) return pin;
    }
}

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
    EXPECT_EQ(find(pin), nowhere);
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
    EXPECT_EQ(find(pin), nowhere);
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

TEST(MemoryScan, FindsWhatIsPlanted) {
    const std::string pin = absentPin();
    auto bytes = shown(pin);
    std::u16string wide(bytes->begin(), bytes->end());
    EXPECT_EQ(find(pin).size(), 2);
    wipe(*bytes);
    wide.assign(4, u' ');
    EXPECT_EQ(find(pin), nowhere);
}

}  // namespace
}  // namespace korvane::testing
