// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/SecureItemStore.h>

#include <memory>
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
    EXPECT_EQ(store.copy("service", "account").value, std::nullopt);

    EXPECT_EQ(store.add("service", "account", "one"), secureItemSuccess);
    EXPECT_EQ(store.add("service", "account", "two"), secureItemDuplicate);
    EXPECT_EQ(store.copy("service", "account").value, "one");
    EXPECT_EQ(store.update("service", "account", "three"), secureItemSuccess);
    EXPECT_EQ(store.exists("service", "account"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").status, secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").value, "three");

    EXPECT_EQ(store.remove("service", "account"), secureItemSuccess);
    EXPECT_EQ(store.exists("service", "account"), secureItemNotFound);
}

TYPED_TEST_P(SecureItemStoreContract, ItemsAreApartByServiceAndByAccount) {
    auto& store = *this->driver.store;
    EXPECT_EQ(store.add("service", "a", "1"), secureItemSuccess);
    EXPECT_EQ(store.add("service", "b", "2"), secureItemSuccess);
    EXPECT_EQ(store.add("other", "a", "3"), secureItemSuccess);
    EXPECT_EQ(store.remove("service", "a"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "b").value, "2");
    EXPECT_EQ(store.copy("other", "a").value, "3");
}

TYPED_TEST_P(SecureItemStoreContract, AValueIsAnyBytesNoneIncluded) {
    auto& store = *this->driver.store;
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<char>(i));
    EXPECT_EQ(store.add("service", "empty", ""), secureItemSuccess);
    EXPECT_EQ(store.add("service", "bytes", bytes), secureItemSuccess);
    EXPECT_EQ(store.add("service", "large", std::string(64 * 1024, '\xFF')), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "empty").value, "");
    EXPECT_EQ(store.copy("service", "bytes").value, bytes);
    EXPECT_EQ(store.copy("service", "large").value, std::string(64 * 1024, '\xFF'));
    EXPECT_EQ(store.update("service", "large", ""), secureItemSuccess);
    EXPECT_EQ(store.exists("service", "large"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "large").value, "");
}

REGISTER_TYPED_TEST_SUITE_P(SecureItemStoreContract, AnItemIsAddedOnceUpdatedReadAndRemoved,
                            ItemsAreApartByServiceAndByAccount, AValueIsAnyBytesNoneIncluded);

}  // namespace korvane::testing
