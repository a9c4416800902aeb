// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/SecureItemStore.h>

#include <chrono>
#include <memory>
#include <string>

namespace korvane {

/// Items in the user's keyring, by the Secret Service API (freedesktop.org, draft 0.2) and libsecret. They
/// stand in the login collection, which the user's log-in opens; in the default collection where a daemon
/// knows no "login". Values travel enciphered where the daemon can. Attributes are stored in clear, so they
/// are the service and the account and nothing else.
///
/// Any thread may call; the work is done on one thread of the store's own, with a session for each call, so
/// that a daemon that was started again serves the next call. The bus is the user's session bus, by GIO's
/// shared connection, whose "exit on close" is switched off: a lost bus must not end the host.
///
/// Statuses beside found, not found and duplicate:
/// - `secureItemNotAvailable`: no bus, no daemon, or it went away during the call;
/// - `secureItemNoCollection`: neither a login nor a default collection;
/// - `secureItemLocked`: the collection is locked and does not open without the user. The daemon's own
///   prompt is put up then, once at a time, and the call does not wait for it: it could take minutes, and the
///   caller holds up the screen. A later call finds the collection open;
/// - `secureItemDismissed`: the same, but the user declined that prompt. Nobody is asked twice by one store;
/// - `secureItemBusy`: the thread did not get round to the call in time, or the bus refuses more calls;
/// - `secureItemTimedOut`: no answer within the time-out, or `prepare` found that there is none. While the
///   daemon hangs, further calls wait for a tenth of the time-out: a save is four calls;
/// - `secureItemFailed`: anything else.
///
/// Another program, or another process of the app at the same moment, may make several items of one service
/// and account. `copy` reads the first that the daemon lists; `update` and `remove` do them all, so that no
/// old value stays behind.
class KORVANE_API SecretServiceStore final : public SecureItemStore {
  public:
    /// `timeout` is what one call may cost its caller, whatever the daemon does. The caller is the main
    /// thread: desktops ask whether to end an app that does not answer for some 5 s.
    explicit SecretServiceStore(std::chrono::milliseconds timeout = std::chrono::seconds(2));
    /// Takes away a prompt that still stands.
    ~SecretServiceStore() override;

    SecureItemStatus exists(std::string_view service, std::string_view account) override;
    SecureItemStatus add(std::string_view service, std::string_view account, std::string_view value) override;
    SecureItemStatus update(std::string_view service, std::string_view account,
                            std::string_view value) override;
    SecureItem copy(std::string_view service, std::string_view account) override;
    /// Waits for the daemon even if `prepare` found that it hangs: a log-out matters more than a short wait.
    SecureItemStatus remove(std::string_view service, std::string_view account) override;
    /// Asks the daemon something, for the time-out at most. Calls after a question without an answer do not
    /// wait at all, until the next one has its answer.
    void prepare(std::function<void()> ready) override;

  private:
    class KORVANE_HIDDEN Worker;
    std::unique_ptr<Worker> worker_;
};

}  // namespace korvane
