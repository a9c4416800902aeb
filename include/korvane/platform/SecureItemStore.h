// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// Status of a call on the secure item store. Callers tell the first three apart; any other value is a
/// failure, and the names say which. The numbers are those that the field uses for the same cases.
using SecureItemStatus = int;

/// Done.
inline constexpr SecureItemStatus secureItemSuccess = 0;
/// There is no such item.
inline constexpr SecureItemStatus secureItemNotFound = -25300;
/// There is such an item already.
inline constexpr SecureItemStatus secureItemDuplicate = -25299;
/// No store on this device, or none that answers.
inline constexpr SecureItemStatus secureItemNotAvailable = -25291;
/// The store has no collection to keep the item in.
inline constexpr SecureItemStatus secureItemNoCollection = -25294;
/// The store opens only when the user lets it.
inline constexpr SecureItemStatus secureItemLocked = -25308;
/// The user was asked to open it, and declined.
inline constexpr SecureItemStatus secureItemDismissed = -128;
/// Too much is asked of the store at a time (100000 + EBUSY).
inline constexpr SecureItemStatus secureItemBusy = 100016;
/// The store hangs; a write may still be done when it goes on (100000 + ETIMEDOUT).
inline constexpr SecureItemStatus secureItemTimedOut = 100110;
/// The store reported some other failure.
inline constexpr SecureItemStatus secureItemFailed = -36;

/// What reading an item gave.
struct SecureItem {
    SecureItemStatus status = secureItemNotAvailable;  ///< how the reading went
    std::optional<std::string> value;                  ///< raw bytes; set only with status 0
};

/// Which item: all three must be equal.
struct SecureItemName {
    std::string_view service;  ///< the component's name
    std::string_view account;  ///< which of its items
    /// Whose it is: a text of printable ASCII that stands for the key and the service that the item's value
    /// is good for. An item of another owner is as if it were not there.
    std::string_view owner;
};

/// Generic passwords in the device's own secure store, readable after the user's first unlock. Calls are
/// synchronous but bounded (5 s); the component makes them on the background queue, one after the other. A
/// store that is absent, locked or hanging answers with a status; it never throws and falls back to nothing
/// weaker. A store that other apps of the user share keeps their items apart from this app's.
///
/// A locked store may have the user asked to open it, but not for `remove`.
class SecureItemStore {
  public:
    virtual ~SecureItemStore() = default;

    /// Status 0 when the item exists; its value is not read.
    virtual SecureItemStatus exists(const SecureItemName& name) = 0;
    /// `secureItemDuplicate` when the item exists already.
    virtual SecureItemStatus add(const SecureItemName& name, std::string_view value) = 0;
    /// Puts `value` (any bytes) in the place of the item's; `secureItemNotFound` when there is no item.
    virtual SecureItemStatus update(const SecureItemName& name, std::string_view value) = 0;
    /// The item's value; `secureItemNotFound` when there is no item.
    virtual SecureItem copy(const SecureItemName& name) = 0;
    /// Deletes the item; `secureItemNotFound` when there is none.
    virtual SecureItemStatus remove(const SecureItemName& name) = 0;
};

/// The store of a device that has none: every call answers `secureItemNotAvailable`.
class NoSecureItemStore final : public SecureItemStore {
  public:
    SecureItemStatus exists(const SecureItemName&) override { return secureItemNotAvailable; }
    SecureItemStatus add(const SecureItemName&, std::string_view) override { return secureItemNotAvailable; }
    SecureItemStatus update(const SecureItemName&, std::string_view) override {
        return secureItemNotAvailable;
    }
    SecureItem copy(const SecureItemName&) override { return {}; }
    SecureItemStatus remove(const SecureItemName&) override { return secureItemNotAvailable; }
};

}  // namespace korvane
