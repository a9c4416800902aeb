// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/SecureItemStore.h>

// The D-Bus level of libsecret, which its makers may still change: the level above it reads a locked item as
// none.
#define SECRET_API_SUBJECT_TO_CHANGE
#include <libsecret/secret.h>

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/GLibPtr.h"

namespace korvane {

/// One conversation with the Secret Service: connects, finds the collection, unlocks it where that needs no
/// prompt, finds the items of one service and account, and acts on them. Each method blocks until the daemon
/// answers or `cancellable` is cancelled; with any status but success, the rest must not be called.
class SecretServiceClient {
  public:
    explicit SecretServiceClient(GCancellable* cancellable)
        : cancellable_(static_cast<GCancellable*>(g_object_ref(cancellable))) {}
    ~SecretServiceClient();
    SecretServiceClient(const SecretServiceClient&) = delete;
    SecretServiceClient& operator=(const SecretServiceClient&) = delete;

    /// Whether the daemon answers at all within that time, be it that there is none. Needs no `connect`.
    bool answers(std::chrono::milliseconds limit);

    SecureItemStatus connect();
    SecureItemStatus openCollection();
    SecureItemStatus find(std::string service, std::string account);

    // Of what `find` was told; all but `create` need that it found something.
    SecureItemStatus create(std::string_view value);
    SecureItemStatus replace(std::string_view value);
    SecureItem read();
    SecureItemStatus erase();

    /// Path of the prompt that the last call waits for; "" when it waits for none.
    const std::string& prompt() const { return prompt_; }
    SecretService* service() const { return service_.get(); }

  private:
    SecureItemStatus connectToBus();
    GLibPtr<GVariant> call(const char* path, const char* interface, const char* method, GVariant* arguments,
                           const char* replyType, SecureItemStatus& status);
    std::string alias(const char* name, SecureItemStatus& status);
    bool waitsForPrompt(const char* path);
    SecureItemStatus statusWhenNothingFound();
    GVariant* attributes() const;
    GVariant* encode(std::string_view value);

    GLibPtr<GCancellable> cancellable_;
    GLibPtr<GDBusConnection> connection_;
    GLibPtr<SecretService> service_;
    std::string collection_;
    std::string serviceName_;
    std::string account_;
    std::vector<std::string> items_;
    std::string prompt_;
};

}  // namespace korvane
