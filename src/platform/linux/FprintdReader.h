// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "platform/linux/GLibPtr.h"

namespace korvane {

/// A conversation with fprintd on a connection of its own: finds a reader, claims it, verifies fingers. It
/// lives on a thread whose default main context is `context`, which it iterates while it waits. A wait ends
/// early when `interrupted` gives true (looked at whenever the context wakes up), when the daemon or the bus
/// is lost, and at the deadline. The destructor stops the reader and releases it.
class FprintdReader {
  public:
    /// `deadline` in microseconds of g_get_monotonic_time().
    FprintdReader(GMainContext* context, std::int64_t deadline, std::function<bool()> interrupted);
    ~FprintdReader();
    FprintdReader(const FprintdReader&) = delete;
    FprintdReader& operator=(const FprintdReader&) = delete;

    /// Connects and finds the first reader for which the user has enrolled a finger. "" is the system bus.
    bool open(const std::string& busAddress);
    /// Claims the reader; tries again for a while when it is in use.
    bool claim();

    enum class Outcome {
        match,
        noMatch,
        unread,      ///< no finger could be read, and the daemon stopped trying
        failed,      ///< an error, the daemon is lost, or the time is up
        interrupted  ///< as `interrupted` said
    };
    /// Arms the claimed reader for one finger. `retry` runs when the finger could not be read and the reader
    /// waits for it again.
    Outcome verify(const std::function<void()>& retry);

    /// True once a wait was interrupted: whatever failed then says nothing of the reader.
    bool wasInterrupted() const { return interruptedOnce_; }

  private:
    using Start = std::function<void(GCancellable*, GAsyncReadyCallback, gpointer)>;

    bool connect(const std::string& busAddress);
    bool findDaemon();
    bool findDevice();
    bool startVerifying();
    void stopVerifying();
    GLibPtr<GVariant> callDaemon(const char* path, const char* interface, const char* method,
                                 GVariant* arguments, const char* replyType, GLibError& error);
    GLibPtr<GVariant> call(const char* name, const char* path, const char* interface, const char* method,
                           GVariant* arguments, const char* replyType, GLibError& error);
    void callAtTheEnd(const char* method);
    GLibPtr<GAsyncResult> await(const Start& start, std::int64_t until, const std::function<bool()>& stopped);
    bool iterateUntil(std::int64_t until, const std::function<bool()>& done);
    bool stopped() {
        interruptedOnce_ = interruptedOnce_ || interrupted_();
        return lost_ || interruptedOnce_;
    }
    static void onSignal(GDBusConnection*, const char* sender, const char* path, const char* interface,
                         const char* signal, GVariant* arguments, gpointer self);

    GMainContext* const context_;
    const std::int64_t deadline_;
    const std::function<bool()> interrupted_;
    GSource* alarm_;  // wakes a wait when its time is up
    GLibPtr<GDBusConnection> connection_;
    unsigned long closedHandler_ = 0;
    unsigned statusSubscription_ = 0;
    unsigned ownerSubscription_ = 0;
    std::string owner_;   // unique name of the daemon: nobody else is listened to
    std::string device_;  // path of the reader
    bool claimed_ = false;
    bool verifying_ = false;
    bool lost_ = false;
    bool interruptedOnce_ = false;
    std::deque<std::pair<std::string, bool>> statuses_;  // result and `done`, in the daemon's words
};

}  // namespace korvane
