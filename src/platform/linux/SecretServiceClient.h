// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/SecureItemStore.h>

// The D-Bus level of libsecret, which its makers may still change: the level above it reads a locked item as
// none.
#define SECRET_API_SUBJECT_TO_CHANGE
#include <libsecret/secret.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/GLibPtr.h"

namespace korvane {

/// One conversation with the Secret Service: connects, finds the collection, unlocks it where that needs no
/// prompt, finds the items of one name, and acts on them. Each method blocks until the daemon answers or
/// `cancellable` is cancelled; with any status but success, the rest must not be called.
class SecretServiceClient {
  public:
    /// @param app  whose items these are
    SecretServiceClient(GCancellable* cancellable, const std::string& app, const SecureItemName& name)
        : cancellable_(static_cast<GCancellable*>(g_object_ref(cancellable))),
          attributes_{{"service", std::string{name.service}},
                      {"account", std::string{name.account}},
                      {"app", app},
                      {"owner", std::string{name.owner}}} {}
    ~SecretServiceClient();
    SecretServiceClient(const SecretServiceClient&) = delete;
    SecretServiceClient& operator=(const SecretServiceClient&) = delete;

    SecureItemStatus connect();
    SecureItemStatus openCollection();
    /// Deletes items of this service and account on the way that say not whose they are: an earlier
    /// version's.
    SecureItemStatus find();

    // All but `create` need that `find` found something.
    SecureItemStatus create(std::string_view value);
    SecureItemStatus replace(std::string_view value);
    SecureItem read();
    SecureItemStatus erase();

    /// Path of the prompt that the last call waits for; "" when it waits for none.
    const std::string& prompt() const { return prompt_; }
    /// Has the daemon put that prompt up, and does not wait for it.
    void showPrompt();

  private:
    GLibPtr<GVariant> call(const char* path, const char* interface, const char* method, GVariant* arguments,
                           const char* replyType, SecureItemStatus& status);
    std::string alias(const char* name, SecureItemStatus& status);
    bool waitsForPrompt(const char* path);
    SecureItemStatus statusWhenNothingFound();
    using Attributes = std::map<std::string, std::string>;
    Attributes attributesOf(const std::string& item, SecureItemStatus& status);
    GLibPtr<GVariant> property(const char* path, const char* interface, const char* name,
                               SecureItemStatus& status);
    GVariant* encode(std::string_view value);

    GLibPtr<GCancellable> cancellable_;
    GLibPtr<GDBusConnection> connection_;
    GLibPtr<SecretService> service_;
    std::string collection_;
    const Attributes attributes_;
    std::vector<std::string> items_;
    std::string prompt_;
};

}  // namespace korvane
