// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SecretServiceStore.h"

#include <gmock/gmock.h>
#include <korvane/contracts/SecureItemStoreContract.h>

#include <chrono>
#include <future>

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
        return {store.exists("service", "account"), store.add("service", "account", "other"),
                store.update("service", "account", "other"), store.copy("service", "account").status,
                store.remove("service", "account")};
    }

    Devices devices;
    SecretServiceStore store;
};

TEST_F(SecretService, KeepsValuesBeyondTheDaemonAndNothingInClearButTheirNames) {
    devices.ask("start_keyring");
    EXPECT_EQ(store.add("service", "account", "secret"), secureItemSuccess);
    const std::string shown = devices.ask("items");
    EXPECT_THAT(shown, HasSubstr(R"("account": "account")"));
    EXPECT_THAT(shown, HasSubstr(R"("Label": "service")"));
    EXPECT_THAT(shown, ::testing::Not(HasSubstr("secret")));

    devices.ask("kill_keyring");
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
    devices.ask("start_keyring");
    EXPECT_EQ(store.copy("service", "account").value, "secret");
}

TEST_F(SecretService, ALockedCollectionReadsAsLockedAndIsAskedForOnce) {
    devices.ask("start_keyring");
    EXPECT_EQ(store.add("service", "account", "secret"), secureItemSuccess);
    devices.ask("lock");
    EXPECT_EQ(store.exists("service", "account"), secureItemLocked);
    // Nobody is there to draw the prompt, which the daemon takes for a dismissal; it has the first one's word
    // before it answers much later calls.
    SecureItemStatus status = secureItemLocked;
    for (int calls = 0; calls < 1000 && status == secureItemLocked; ++calls)
        status = store.copy("service", "account").status;
    EXPECT_EQ(status, secureItemDismissed);
    EXPECT_THAT(all(), Each(secureItemDismissed));
}

TEST_F(SecretService, NoBusNoDaemonAndNoCollectionAreToldApart) {
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
    devices.ask("start_keyring --login-is-not-made");
    EXPECT_THAT(all(), Each(secureItemNoCollection));
    devices.ask("kill_bus");
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
}

TEST_F(SecretService, AStoppedDaemonCostsTwoSecondsNoneOnceItWasAskedForALifeSignAndServesAgain) {
    using Clock = std::chrono::steady_clock;
    devices.ask("start_keyring");
    EXPECT_EQ(store.add("service", "account", "secret"), secureItemSuccess);
    const auto prepare = [this] {
        const auto ready = std::make_shared<std::promise<void>>();
        store.prepare([ready] { ready->set_value(); });
        return ready->get_future();
    };
    devices.ask("stop keyring");
    auto asked = Clock::now();
    EXPECT_THAT(all(), Each(secureItemTimedOut));
    EXPECT_THAT(Clock::now() - asked, Lt(4s));
    devices.ask("go_on keyring");
    prepare().wait();
    EXPECT_EQ(store.update("service", "account", "again"), secureItemSuccess);

    devices.ask("stop keyring");
    ASSERT_EQ(prepare().wait_for(10s), std::future_status::ready);
    asked = Clock::now();
    EXPECT_EQ(store.exists("service", "account"), secureItemTimedOut);
    EXPECT_EQ(store.copy("service", "account").status, secureItemTimedOut);
    EXPECT_THAT(Clock::now() - asked, Lt(50ms));
    devices.ask("go_on keyring");
    prepare().wait();
    EXPECT_EQ(store.copy("service", "account").value, "again");
    devices.ask("kill_keyring");
    prepare().wait();
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
}

}  // namespace
}  // namespace korvane::testing
