// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/Secret.h"

namespace korvane {

class NavigationStack;
class Screen;

/// What screens hand over to one another.
struct ScreenArguments {
    ScreenArguments() = default;
    explicit ScreenArguments(std::string pin) : enteredPin(std::move(pin)) {}
    ScreenArguments(const ScreenArguments&) = default;
    ScreenArguments& operator=(const ScreenArguments&) = default;
    ~ScreenArguments() { wipe(enteredPin); }

    std::string enteredPin;  ///< the first entry, for the confirm screen
};

/// Makes the screen of that name; none for a name that is no screen's.
std::shared_ptr<Screen> makeScreen(const std::shared_ptr<NavigationStack>& stack, std::string_view viewName,
                                   const ScreenArguments& arguments);

/// The multi view of automatic moves, showing the screen of that name.
std::shared_ptr<Screen> makeAutoNavMultiView(const std::shared_ptr<NavigationStack>& stack,
                                             std::string_view viewName);

}  // namespace korvane
