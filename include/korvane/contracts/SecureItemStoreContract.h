// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/SecureItemStore.h>

#include <concepts>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <utility>

namespace korvane::testing {

/// What the suite has to be given: `store`, a pointer of any kind to a store that holds no item. Every case
/// makes a driver of its own; one that uses a real keychain takes the items of the case before away.
template <class Driver>
concept SecureItemStoreDriver = std::default_initializable<Driver> && requires(Driver driver) {
    { *driver.store } -> std::convertible_to<SecureItemStore&>;
};

/// What every secure item store keeps to. Instantiate it within `korvane::testing`:
/// `INSTANTIATE_TYPED_TEST_SUITE_P(Mine, SecureItemStoreContract, MyDriver);`
/// What a store answers that is absent, locked or hanging is for the port's own tests.
/// @tparam Driver  a `SecureItemStoreDriver`
template <class Driver>
class SecureItemStoreContract : public ::testing::Test {
    static_assert(SecureItemStoreDriver<Driver>);

  protected:
    /// Made anew for each case.
    Driver driver;
};

/// @cond cases: their names say what a port must do
TYPED_TEST_SUITE_P(SecureItemStoreContract);

TYPED_TEST_P(SecureItemStoreContract, AnItemIsAddedOnceUpdatedReadAndRemoved) {
    auto& store = *this->driver.store;
    const SecureItemName name{"service", "account", "owner"}, otherAccount{"service", "other", "owner"},
        otherService{"other", "account", "owner"}, otherOwner{"service", "account", "other"};
    EXPECT_EQ(store.exists(name), secureItemNotFound);
    EXPECT_EQ(store.update(name, "early"), secureItemNotFound);
    EXPECT_EQ(store.remove(name), secureItemNotFound);
    EXPECT_EQ(store.copy(name).status, secureItemNotFound);

    EXPECT_EQ(store.add(name, "one"), secureItemSuccess);
    EXPECT_EQ(store.add(name, "two"), secureItemDuplicate);
    EXPECT_EQ(store.copy(name).value, "one");
    EXPECT_EQ(store.update(name, "three"), secureItemSuccess);
    EXPECT_EQ(store.exists(name), secureItemSuccess);
    EXPECT_EQ(store.copy(name).status, secureItemSuccess);

    const std::pair<SecureItemName, std::string> others[] = {
        {otherAccount, "1"}, {otherService, "2"}, {otherOwner, "3"}};
    for (const auto& [other, value] : others) EXPECT_EQ(store.add(other, value), secureItemSuccess);
    EXPECT_EQ(store.copy(name).value, "three");
    EXPECT_EQ(store.remove(name), secureItemSuccess);
    EXPECT_EQ(store.copy(name).value, std::nullopt);
    for (const auto& [other, value] : others) EXPECT_EQ(store.copy(other).value, value);
}

TYPED_TEST_P(SecureItemStoreContract, AValueIsAnyBytesNoneIncluded) {
    auto& store = *this->driver.store;
    const SecureItemName name{"service", "account", "owner"};
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    const std::string values[] = {"", bytes, std::string(64 * 1024, '\xFF')};
    for (const auto& value : values) {
        EXPECT_EQ(store.add(name, value), secureItemSuccess);
        EXPECT_EQ(store.copy(name).value, value);
        EXPECT_EQ(store.update(name, ""), secureItemSuccess);
        EXPECT_EQ(store.copy(name).value, "");
        EXPECT_EQ(store.exists(name), secureItemSuccess);
        EXPECT_EQ(store.remove(name), secureItemSuccess);
    }
}

REGISTER_TYPED_TEST_SUITE_P(SecureItemStoreContract, AnItemIsAddedOnceUpdatedReadAndRemoved,
                            AValueIsAnyBytesNoneIncluded);
/// @endcond

}  // namespace korvane::testing
