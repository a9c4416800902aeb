// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "flows/JourneyProbe.h"
#include "sdk/JourneyState.h"

namespace korvane::explorer {

/// A cardholder: what the one types, and what the service says of the card and sends for it.
struct Person {
    std::string_view card;  ///< its id
    std::string_view smsToken, pin, otherPin, lastFour, cvv, code, pan, cardCvv, name;

    /// All that nobody else may see or be left; the name, which this one's screens may show, is the last.
    std::array<std::string_view, 9> secrets() const {
        return {smsToken, pin, otherPin, lastFour, cvv, code, pan, cardCvv, name};
    }
    /// What a person types in the boxes of that id: what belongs there, what does not, and too little.
    std::vector<std::string_view> entries(std::string_view box) const;
};

/// The first, another with another card, and another with the first one's card.
inline constexpr Person people[] = {
    {"card-1", "sms-token", "8046", "2975", "6603", "731", "350912", "5555550000079197", "8642", "Okafor"},
    {"card-2", "sms-other", "7153", "3927", "9428", "592", "618273", "4716270000058364", "1759", "Lindqvist"},
    {"card-1", "sms-other", "7153", "3927", "6603", "731", "618273", "5555550000079197", "8642", "Okafor"}};

/// The first of these that is in the text, or "".
std::string foundIn(std::string_view text, std::span<const std::string_view> these);

/// A journey, from before it is constructed until it is gone, with what its person did.
struct Actor {
    JourneyKind kind = JourneyKind::setPIN;
    const Person* person = people;
    std::unique_ptr<Journey> journey = {};
    std::weak_ptr<JourneyState> state = {};
    JourneyId id = 0;  ///< 0: not constructed yet
    bool appeared = false;
    bool doneSomething = false;                     ///< in the card viewer: closing it is a success
    std::string closedWith = {};                    ///< results of the last step's notifications, in a row
    std::map<std::string, std::string> typed = {};  ///< by the boxes' id
    std::vector<std::string> covered = {};          ///< keys of the screens below
    std::vector<std::uint64_t> onScreen = {0};      ///< instances, from the root

    void construct();
    bool isGone() const { return id != 0 && !journey; }
    ScreenSnapshot screen() const { return journey ? journey->screen() : ScreenSnapshot{}; }
    bool isOnScreen(std::uint64_t instance) const {
        return std::ranges::find(onScreen, instance) != onScreen.end();
    }
    /// What remains of a screen that another one covers, or none.
    std::string coveredKey(const ScreenSnapshot& snapshot) const;
    /// All that the journey's further behaviour depends on, made finite: texts by whether there are any.
    std::string key() const;
    /// Its screen and its state, every field in clear.
    std::string everything() const;

  private:
    std::string typedIn(const ScreenSnapshot& snapshot) const;
    std::string screenKey(const ScreenSnapshot& snapshot) const;
};

/// Time changes it by itself.
bool runs(const ScreenSnapshot& screen);

}  // namespace korvane::explorer
