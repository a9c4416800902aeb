// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SecretServiceStore.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>

#include "tests/platform/SecureItemStoreContract.h"
#include "tests/platform/support/Daemons.h"

namespace korvane::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Lt;

struct KeyringDriver {
    Keyring keyring;
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

    /// The items of the login collection that have these attributes.
    std::vector<std::string> items() {
        const auto reply =
            keyring.bus.call(name, keyring.loginPath, "org.freedesktop.Secret.Collection", "SearchItems",
                             g_variant_new_parsed("({'service': 'service', 'account': 'account'},)"));
        const GLibPtr<GVariant> paths(g_variant_get_child_value(reply.get(), 0));
        const std::unique_ptr<const char*, decltype(&g_free)> texts(g_variant_get_objv(paths.get(), nullptr),
                                                                    g_free);
        return {texts.get(), texts.get() + g_variant_n_children(paths.get())};
    }

    /// An item of the same attributes, as another program may make it.
    void addAnother(const char* value) {
        const auto opened =
            keyring.bus.call(name, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service",
                             "OpenSession", g_variant_new("(sv)", "plain", g_variant_new_string("")));
        const char* session = nullptr;
        g_variant_get_child(opened.get(), 1, "&o", &session);
        keyring.bus.call(name, keyring.loginPath, "org.freedesktop.Secret.Collection", "CreateItem",
                         g_variant_new_parsed("({'org.freedesktop.Secret.Item.Attributes':"
                                              " <{'service': 'service', 'account': 'account'}>},"
                                              " (%o, @ay [], %^ay, 'text/plain'), false)",
                                              session, value));
    }

    static constexpr const char* name = "org.freedesktop.secrets";
    Keyring keyring{false};
    SecretServiceStore store;
};

TEST_F(SecretService, KeepsValuesBeyondTheDaemonAndNothingInClearButTheirNames) {
    keyring.start();
    EXPECT_EQ(store.add("service", "account", "secret"), secureItemSuccess);
    const auto item = keyring.bus.call(name, items().at(0).c_str(), "org.freedesktop.DBus.Properties",
                                       "GetAll", g_variant_new("(s)", "org.freedesktop.Secret.Item"));
    const std::string shown = GLibPtr<char>(g_variant_print(item.get(), FALSE)).get();
    EXPECT_THAT(shown, HasSubstr("'account': 'account'"));
    EXPECT_THAT(shown, HasSubstr("'Label': <'service'>"));
    EXPECT_THAT(shown, ::testing::Not(HasSubstr("secret'")));

    keyring.kill();
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
    keyring.start();
    EXPECT_EQ(store.copy("service", "account").value, "secret");
}

TEST_F(SecretService, ItemsOfTheSameNamesAreUpdatedAndRemovedTogether) {
    keyring.start();
    addAnother("one");
    addAnother("two");
    ASSERT_EQ(items().size(), 2u);
    EXPECT_EQ(store.add("service", "account", "three"), secureItemDuplicate);
    EXPECT_EQ(store.update("service", "account", "three"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").value, "three");
    EXPECT_EQ(store.remove("service", "account"), secureItemSuccess);
    EXPECT_EQ(items().size(), 0u);
}

TEST_F(SecretService, ALockedCollectionReadsAsLockedAndIsAskedForOnce) {
    keyring.start();
    EXPECT_EQ(store.add("service", "account", "secret"), secureItemSuccess);
    keyring.lock();
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
    keyring.start(false);
    EXPECT_THAT(all(), Each(secureItemNoCollection));
    keyring.bus.kill();
    EXPECT_THAT(all(), Each(secureItemNotAvailable));
}

TEST_F(SecretService, AStoppedDaemonCostsFiveSecondsOnceAndServesAgainLater) {
    keyring.start();
    EXPECT_EQ(store.add("service", "account", "secret"), secureItemSuccess);
    keyring.signal(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(all(), Each(secureItemTimedOut));
    EXPECT_THAT(std::chrono::steady_clock::now() - begin, Lt(8s));
    keyring.signal(SIGCONT);
    EXPECT_EQ(store.update("service", "account", "again"), secureItemSuccess);
    EXPECT_EQ(store.copy("service", "account").value, "again");
}

}  // namespace
}  // namespace korvane::testing
