// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/SecureItemStore.h>

#include <chrono>
#include <memory>
#include <string>

namespace korvane {

/// Whose items a store keeps, and how long it waits. The defaults are meant for use.
struct SecretServiceStoreOptions {
    /// Name of the app, the same each time it is started: apps of one user share the keyring. Empty: the
    /// executable's file name.
    std::string appId = {};
    /// What one call may cost its caller, whatever the daemon does.
    std::chrono::milliseconds timeout = std::chrono::seconds(2);
};

/// Items in the user's keyring, by the Secret Service API (freedesktop.org, draft 0.2) and libsecret. They
/// stand in the login collection, which the user's log-in opens; in the default collection where a daemon
/// knows no "login". Values travel enciphered where the daemon can. Attributes are stored in clear: the
/// service, the account, the app and the owner. Items of other apps and owners are neither read nor deleted;
/// an item that says not whose it is, as an earlier version made it, is deleted when it is met.
///
/// Any thread may call; each call has a session of its own, so that a daemon started again serves
/// the next one. The bus is the user's session bus, by GIO's shared connection, whose "exit on close" is
/// switched off: a lost bus must not end the host.
///
/// Statuses beside found, not found and duplicate:
/// - `secureItemNotAvailable`: no bus, no daemon, or it went away during the call;
/// - `secureItemNoCollection`: neither a login nor a default collection;
/// - `secureItemLocked`: the collection is locked and does not open without the user. The daemon's own
///   prompt is put up then (not by `remove`), once by one store, and the call does not wait for it: it could
///   take minutes. A later call finds the collection open;
/// - `secureItemBusy`: the bus refuses more calls;
/// - `secureItemTimedOut`: no answer within the time-out, or none a moment ago;
/// - `secureItemFailed`: anything else.
///
/// Another process of the app at the same moment may make several items of one name. `copy` reads the first
/// that the daemon lists; `update` and `remove` do them all, so that no old value stays behind.
class KORVANE_API SecretServiceStore final : public SecureItemStore {
  public:
    /// Asks the daemon nothing yet.
    explicit SecretServiceStore(SecretServiceStoreOptions options = {});
    /// Takes away a prompt that still stands.
    ~SecretServiceStore() override;

    SecureItemStatus exists(const SecureItemName& name) override;
    SecureItemStatus add(const SecureItemName& name, std::string_view value) override;
    SecureItemStatus update(const SecureItemName& name, std::string_view value) override;
    SecureItem copy(const SecureItemName& name) override;
    SecureItemStatus remove(const SecureItemName& name) override;

  private:
    struct KORVANE_HIDDEN Calls;
    class KORVANE_HIDDEN Call;
    const SecretServiceStoreOptions options_;
    std::unique_ptr<Calls> calls_;
};

}  // namespace korvane
