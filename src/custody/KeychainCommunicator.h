// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// Small byte values in the secure item store, each named by its account under the one service
/// "KorvanePCISDKService". Holds no state; any thread. Every failure is the same thrown `keychainError`, the
/// only exception of the component; it does not leave this folder.
class KeychainCommunicator {
  public:
    struct keychainError : std::exception {
        const char* what() const noexcept override { return "keychainError"; }
    };

    static bool exists(std::string_view account);
    /// Throws when the item exists.
    static void add(std::string_view data, std::string_view account);
    /// Throws when the item does not exist.
    static void update(std::string_view data, std::string_view account);
    /// None when the item does not exist.
    static std::optional<std::string> get(std::string_view account);
    /// Throws when the item does not exist.
    static void remove(std::string_view account);
};

}  // namespace korvane
