// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/SecureItemStore.h>

#include <atomic>
#include <chrono>
#include <concepts>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <thread>

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
    EXPECT_EQ(store.exists("service", "account"), secureItemNotFound);
    EXPECT_EQ(store.update("service", "account", "early"), secureItemNotFound);
    EXPECT_EQ(store.remove("service", "account"), secureItemNotFound);
    EXPECT_EQ(store.copy("service", "account").status, secureItemNotFound);

    EXPECT_EQ(store.add("service", "account", "one"), secureItemSuccess);
    EXPECT_EQ(store.add("service", "account", "two"), secureItemDuplicate);
    EXPECT_EQ(store.copy("service", "account").value, "one");
    EXPECT_EQ(store.update("service", "account", "three"), secureItemSuccess);
    EXPECT_EQ(store.exists("service", "account"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").status, secureItemSuccess);

    EXPECT_EQ(store.add("service", "other", "1"), secureItemSuccess);
    EXPECT_EQ(store.add("other", "account", "2"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").value, "three");
    EXPECT_EQ(store.remove("service", "account"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").value, std::nullopt);
    EXPECT_EQ(store.copy("service", "other").value, "1");
    EXPECT_EQ(store.copy("other", "account").value, "2");
}

TYPED_TEST_P(SecureItemStoreContract, AValueIsAnyBytesNoneIncluded) {
    auto& store = *this->driver.store;
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    const std::string values[] = {"", bytes, std::string(64 * 1024, '\xFF')};
    for (const auto& value : values) {
        EXPECT_EQ(store.add("service", "account", value), secureItemSuccess);
        EXPECT_EQ(store.copy("service", "account").value, value);
        EXPECT_EQ(store.update("service", "account", ""), secureItemSuccess);
        EXPECT_EQ(store.copy("service", "account").value, "");
        EXPECT_EQ(store.exists("service", "account"), secureItemSuccess);
        EXPECT_EQ(store.remove("service", "account"), secureItemSuccess);
    }
}

TYPED_TEST_P(SecureItemStoreContract, ItIsReadyOnceAndHoldsWhatItHeld) {
    auto& store = *this->driver.store;
    EXPECT_EQ(store.add("service", "account", "value"), secureItemSuccess);
    const auto times = std::make_shared<std::atomic<int>>(0);
    store.prepare([times] { ++*times; });
    for (int i = 0; i < 500 && *times == 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(store.copy("service", "account").value, "value");
    EXPECT_EQ(*times, 1);
}

REGISTER_TYPED_TEST_SUITE_P(SecureItemStoreContract, AnItemIsAddedOnceUpdatedReadAndRemoved,
                            AValueIsAnyBytesNoneIncluded, ItIsReadyOnceAndHoldsWhatItHeld);
/// @endcond

}  // namespace korvane::testing
