// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SecretServiceStore.h"

#include <gmock/gmock.h>
#include <korvane/contracts/SecureItemStoreContract.h>

#include <chrono>
#include <thread>

#include "tests/platform/support/Devices.h"

namespace korvane::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Lt;

struct KeyringDriver {
    KeyringDriver() { devices.ask("start_keyring"); }

    Devices devices;
    std::shared_ptr<SecureItemStore> store = std::make_shared<SecretServiceStore>();
};
INSTANTIATE_TYPED_TEST_SUITE_P(SecretService, SecureItemStoreContract, KeyringDriver);

class SecretService : public ::testing::Test {
  protected:
    /// What each call of the port answers.
    std::vector<SecureItemStatus> all() {
        return {store.exists(name), store.add(name, "other"), store.update(name, "other"),
                store.copy(name).status, store.remove(name)};
    }

    const SecureItemName name{"service", "account", "owner"};
    Devices devices;
    SecretServiceStore store{{.appId = "bank"}};
};

TEST_F(SecretService, KeepsValuesBeyondTheDaemonAndNothingInClearButTheirNames) {
    devices.ask("start_keyring");
    EXPECT_EQ(store.add(name, "secret"), secureItemSuccess);
    const std::string shown = devices.ask("items");
    EXPECT_THAT(shown, HasSubstr(R"("account": "account")"));
    EXPECT_THAT(shown, HasSubstr(R"("Label": "service")"));
    EXPECT_THAT(shown, ::testing::Not(HasSubstr("secret")));

    devices.ask("kill_keyring");
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
    devices.ask("start_keyring");
    EXPECT_EQ(store.copy(name).value, "secret");
}

TEST_F(SecretService, ALockedCollectionIsAskedForOnceButNeverToDelete) {
    devices.ask("start_keyring");
    EXPECT_EQ(store.add(name, "secret"), secureItemSuccess);
    devices.ask("lock");
    devices.ask("watch_prompts");
    EXPECT_EQ(store.remove(name), secureItemLocked);
    EXPECT_EQ(devices.ask("prompts"), "0");
    for (int turn = 0; turn < 3; ++turn) EXPECT_THAT(all(), Each(secureItemLocked));
    EXPECT_EQ(devices.ask("prompts"), "1");
    devices.ask("unlock");
    EXPECT_EQ(store.copy(name).value, "secret");
}

TEST_F(SecretService, ItemsOfOthersAreLeftAloneAndOnesThatSayNotWhoseTheyAreGo) {
    devices.ask("start_keyring");
    SecretServiceStore other{{.appId = "other bank"}};
    const SecureItemName otherOwner{"service", "account", "other"};
    EXPECT_EQ(other.add(name, "theirs"), secureItemSuccess);
    EXPECT_EQ(store.add(otherOwner, "other key"), secureItemSuccess);
    devices.ask("plant_old_item");
    EXPECT_EQ(devices.ask("count"), "3");
    EXPECT_EQ(store.copy(name).status, secureItemNotFound);
    EXPECT_EQ(store.update(name, "mine"), secureItemNotFound);
    EXPECT_EQ(store.remove(name), secureItemNotFound);
    EXPECT_EQ(devices.ask("count"), "2");
    EXPECT_EQ(store.add(name, "mine"), secureItemSuccess);
    EXPECT_EQ(store.remove(name), secureItemSuccess);
    EXPECT_EQ(other.copy(name).value, "theirs");
    EXPECT_EQ(store.copy(otherOwner).value, "other key");
    EXPECT_EQ(SecretServiceStore().copy(name).status, secureItemNotFound) << "by the executable's name";
}

TEST_F(SecretService, NoBusNoDaemonAndNoCollectionAreToldApart) {
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
    devices.ask("start_keyring --login-is-not-made");
    EXPECT_THAT(all(), Each(secureItemNoCollection));
    devices.ask("kill_bus");
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
}

TEST_F(SecretService, AStoppedDaemonCostsTwoSecondsIsThenLeftInPeaceAndServesAgain) {
    using Clock = std::chrono::steady_clock;
    devices.ask("start_keyring");
    EXPECT_EQ(store.add(name, "secret"), secureItemSuccess);
    devices.ask("stop keyring");
    const auto asked = Clock::now();
    EXPECT_THAT(all(), Each(secureItemTimedOut));
    EXPECT_THAT(Clock::now() - asked, Lt(3s));
    devices.ask("go_on keyring");
    std::this_thread::sleep_for(1s);
    EXPECT_EQ(store.copy(name).value, "secret");
    devices.ask("kill_keyring");
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
}

}  // namespace
}  // namespace korvane::testing
