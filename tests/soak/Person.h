// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <map>
#include <random>
#include <string>

#include "tests/soak/RealDevice.h"

namespace korvane::testing {

/// What can be changed about a card.
struct CardRecord {
    std::string pin;
    std::string status;
    bool operator==(const CardRecord&) const = default;
};

/// A cardholder who looks at the screen and does the next thing, and now and then another.
class Person {
  public:
    Person(RealDevice& device, std::mt19937& dice, std::string cardId);

    /// Goes through a journey until it closes. Gives the last view, or what is wrong with it.
    std::string walk(Journey& journey);

    std::string result;   ///< of the close notification
    CardRecord believes;  ///< of the card, from what the journey showed; empty where it told nothing

  private:
    bool chance(unsigned percent) { return dice_() % 100 < percent; }
    void act(Journey& journey, const ScreenSnapshot& screen);
    void learn(const ScreenSnapshot& screen);
    std::string digitsFor(const std::string& view);

    RealDevice& device_;
    std::mt19937& dice_;
    const std::string cardId_;
    std::string number_, cvv_, pin_;
    std::map<std::uint64_t, bool> frozen_;  // by the viewer's instance
};

}  // namespace korvane::testing
