// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/SecureItemStore.h>

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace korvane {

/// Small byte values of one owner in the secure item store, each named by its account under the one service
/// "KorvanePCISDKService". Any thread; each call waits for the store. Every failure is the same thrown
/// `keychainError`, the only exception of the component; it does not leave this folder.
class KeychainCommunicator {
  public:
    struct keychainError : std::exception {};

    KeychainCommunicator(std::shared_ptr<SecureItemStore> store, std::string owner)
        : store_(std::move(store)), owner_(std::move(owner)) {}
    /// The same store, with the items of another owner.
    KeychainCommunicator of(std::string owner) const { return {store_, std::move(owner)}; }
    const std::string& owner() const { return owner_; }

    bool exists(std::string_view account) const { return isThere(store_->exists(named(account))); }
    /// Throws when the item exists.
    void add(std::string_view data, std::string_view account) const {
        require(store_->add(named(account), data));
    }
    /// Throws when the item does not exist.
    void update(std::string_view data, std::string_view account) const {
        require(store_->update(named(account), data));
    }
    /// None when the item does not exist.
    std::optional<std::string> get(std::string_view account) const {
        SecureItem item = store_->copy(named(account));
        return isThere(item.status) ? std::move(item.value) : std::nullopt;
    }
    /// Throws when the item does not exist.
    void remove(std::string_view account) const { require(store_->remove(named(account))); }
    /// Throws when the item may still be there.
    void removeIfAny(std::string_view account) const { isThere(store_->remove(named(account))); }

  private:
    SecureItemName named(std::string_view account) const { return {"KorvanePCISDKService", account, owner_}; }
    static void require(SecureItemStatus status) {
        if (status != secureItemSuccess) throw keychainError{};
    }
    static bool isThere(SecureItemStatus status) {
        if (status != secureItemNotFound) require(status);
        return status != secureItemNotFound;
    }

    std::shared_ptr<SecureItemStore> store_;
    std::string owner_;
};

}  // namespace korvane
