// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/SecureItemStore.h>

#include <memory>
#include <numeric>
#include <string>

namespace korvane::testing {

/// What every secure item store keeps to. A driver has `std::shared_ptr<SecureItemStore> store`, which starts
/// empty.
template <class Driver>
class SecureItemStoreContract : public ::testing::Test {
  protected:
    Driver driver;
};
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

REGISTER_TYPED_TEST_SUITE_P(SecureItemStoreContract, AnItemIsAddedOnceUpdatedReadAndRemoved,
                            AValueIsAnyBytesNoneIncluded);

}  // namespace korvane::testing
