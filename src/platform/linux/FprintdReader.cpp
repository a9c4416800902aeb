// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FprintdReader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/linux/GLibSource.h"

namespace korvane {
namespace {

constexpr const char* fprintName = "net.reactivated.Fprint";
constexpr const char* managerPath = "/net/reactivated/Fprint/Manager";
constexpr const char* managerInterface = "net.reactivated.Fprint.Manager";
constexpr const char* deviceInterface = "net.reactivated.Fprint.Device";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
constexpr const char* alreadyInUse = "net.reactivated.Fprint.Error.AlreadyInUse";
constexpr const char* ownUser = "";  // of the caller, as the bus knows it
constexpr const char* anyFinger = "any";

constexpr std::int64_t millisecond = 1000;
constexpr std::int64_t callLimit = 15'000 * millisecond;  // the daemon may have to start first
constexpr std::int64_t endLimit = 1'000 * millisecond;
constexpr std::array<std::int64_t, 6> claimDelays = {100, 200, 400, 800, 1600, 1600};  // ms

// VerifyStatus of net.reactivated.Fprint.Device; the last one is of fprintd 1.94.3 and later.
constexpr std::array<std::string_view, 5> retryStatuses = {"verify-retry-scan", "verify-swipe-too-short",
                                                           "verify-finger-not-centered",
                                                           "verify-remove-and-retry", "verify-too-fast"};

bool isRetry(std::string_view status) {
    return std::find(retryStatuses.begin(), retryStatuses.end(), status) != retryStatuses.end();
}

void keepResult(GObject*, GAsyncResult* result, gpointer kept) {
    static_cast<GLibPtr<GAsyncResult>*>(kept)->reset(G_ASYNC_RESULT(g_object_ref(result)));
}

}  // namespace

FprintdReader::FprintdReader(GMainContext* context, std::int64_t deadline, std::function<bool()> interrupted)
    : context_(context),
      deadline_(deadline),
      interrupted_(std::move(interrupted)),
      alarm_(attachSource(context, "korvane fprintd", [] {})) {}

FprintdReader::~FprintdReader() {
    stopVerifying();
    if (claimed_) callAtTheEnd("Release");
    if (connection_) {
        g_signal_handler_disconnect(connection_.get(), closedHandler_);
        if (statusSubscription_) g_dbus_connection_signal_unsubscribe(connection_.get(), statusSubscription_);
        if (ownerSubscription_) g_dbus_connection_signal_unsubscribe(connection_.get(), ownerSubscription_);
        // Should the daemon not have answered: it releases what a lost connection had claimed.
        g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
    }
    releaseSource(alarm_);
}

bool FprintdReader::open(const std::string& busAddress) {
    return connect(busAddress) && findDaemon() && findDevice();
}

bool FprintdReader::connect(const std::string& busAddress) {
    GLibError error;
    const GLibPtr<char> address(busAddress.empty()
                                    ? g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, error.out())
                                    : g_strdup(busAddress.c_str()));
    if (!address) return false;
    // Not the process's shared connection: that one ends the process when the bus goes.
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const auto result = await(
        [&address](GCancellable* cancellable, GAsyncReadyCallback ended, gpointer data) {
            g_dbus_connection_new_for_address(address.get(), flags, nullptr, cancellable, ended, data);
        },
        std::min(deadline_, g_get_monotonic_time() + callLimit), [this] { return stopped(); });
    connection_.reset(g_dbus_connection_new_for_address_finish(result.get(), error.out()));
    if (!connection_) return false;
    const auto closed = +[](GDBusConnection*, gboolean, GError*, gpointer self) {
        static_cast<FprintdReader*>(self)->lost_ = true;
    };
    closedHandler_ = g_signal_connect(connection_.get(), "closed", G_CALLBACK(closed), this);
    return true;
}

/// Everything is said to the unique name, so that a match can come from nobody but the name's owner.
bool FprintdReader::findDaemon() {
    ownerSubscription_ =
        g_dbus_connection_signal_subscribe(connection_.get(), busName, busName, "NameOwnerChanged", busPath,
                                           fprintName, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    const auto owner = [this] {
        GLibError error;
        return call(busName, busPath, busName, "GetNameOwner", g_variant_new("(s)", fprintName), "(s)",
                    error);
    };
    auto reply = owner();
    if (!reply) {
        GLibError error;
        call(busName, busPath, busName, "StartServiceByName", g_variant_new("(su)", fprintName, 0U), "(u)",
             error);
        reply = owner();
    }
    if (!reply) return false;
    const char* name = nullptr;
    g_variant_get(reply.get(), "(&s)", &name);
    owner_ = name;
    return !lost_;
}

bool FprintdReader::findDevice() {
    GLibError error;
    const auto reply = callDaemon(managerPath, managerInterface, "GetDevices", nullptr, "(ao)", error);
    if (!reply) return false;
    const GLibPtr<GVariant> paths(g_variant_get_child_value(reply.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(paths.get()); ++i) {
        const char* path = nullptr;
        g_variant_get_child(paths.get(), i, "&o", &path);
        const auto enrolled = callDaemon(path, deviceInterface, "ListEnrolledFingers",
                                         g_variant_new("(s)", ownUser), "(as)", error);
        if (!enrolled) continue;  // a reader with none answers with an error
        const GLibPtr<GVariant> fingers(g_variant_get_child_value(enrolled.get(), 0));
        if (g_variant_n_children(fingers.get()) == 0) continue;
        device_ = path;
        return true;
    }
    return false;
}

bool FprintdReader::claim() {
    for (const std::int64_t delay : claimDelays) {
        GLibError error;
        claimed_ = true;  // from now on it may be: a call that was given up may still be done
        if (callDaemon(device_.c_str(), deviceInterface, "Claim", g_variant_new("(s)", ownUser), "()", error))
            return true;
        if (!error.is(alreadyInUse)) return false;
        claimed_ = false;
        const auto until = std::min(deadline_, g_get_monotonic_time() + delay * millisecond);
        if (iterateUntil(until, [this] { return stopped(); })) return false;
    }
    return false;
}

FprintdReader::Outcome FprintdReader::verify(const std::function<void()>& retry) {
    const auto given = [this] { return interruptedOnce_ ? Outcome::interrupted : Outcome::failed; };
    if (!startVerifying()) return given();
    while (iterateUntil(deadline_, [this] { return stopped() || !statuses_.empty(); })) {
        if (stopped()) return given();
        const auto [status, done] = std::move(statuses_.front());
        statuses_.pop_front();
        if (isRetry(status)) {
            if (done) return Outcome::unread;
            retry();
        } else if (done) {
            if (status == "verify-match") return Outcome::match;
            return status == "verify-no-match" ? Outcome::noMatch : Outcome::failed;
        }
    }
    return Outcome::failed;
}

bool FprintdReader::startVerifying() {
    stopVerifying();
    statuses_.clear();
    // Before the start: the outcome of a finger that lies there already comes at once.
    if (!statusSubscription_) {
        statusSubscription_ = g_dbus_connection_signal_subscribe(
            connection_.get(), owner_.c_str(), deviceInterface, "VerifyStatus", device_.c_str(), nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    }
    verifying_ = true;
    GLibError error;
    return callDaemon(device_.c_str(), deviceInterface, "VerifyStart", g_variant_new("(s)", anyFinger), "()",
                      error) != nullptr;
}

/// The daemon wants it after an outcome too.
void FprintdReader::stopVerifying() {
    if (std::exchange(verifying_, false)) callAtTheEnd("VerifyStop");
}

void FprintdReader::onSignal(GDBusConnection*, const char*, const char*, const char*, const char* signal,
                             GVariant* arguments, gpointer data) {
    auto& self = *static_cast<FprintdReader*>(data);
    if (g_str_equal(signal, "NameOwnerChanged")) {
        const char* owner = nullptr;
        g_variant_get(arguments, "(&s&s&s)", nullptr, nullptr, &owner);
        self.lost_ = self.lost_ || (!self.owner_.empty() && self.owner_ != owner);
    } else if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(sb)"))) {
        const char* result = nullptr;
        gboolean done = FALSE;
        g_variant_get(arguments, "(&sb)", &result, &done);
        self.statuses_.emplace_back(result, done);
    }
}

GLibPtr<GVariant> FprintdReader::callDaemon(const char* path, const char* interface, const char* method,
                                            GVariant* arguments, const char* replyType, GLibError& error) {
    return call(owner_.c_str(), path, interface, method, arguments, replyType, error);
}

GLibPtr<GVariant> FprintdReader::call(const char* name, const char* path, const char* interface,
                                      const char* method, GVariant* arguments, const char* replyType,
                                      GLibError& error) {
    const auto result = await(
        [&](GCancellable* cancellable, GAsyncReadyCallback ended, gpointer data) {
            g_dbus_connection_call(connection_.get(), name, path, interface, method, arguments,
                                   G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE, G_MAXINT, cancellable,
                                   ended, data);
        },
        std::min(deadline_, g_get_monotonic_time() + callLimit), [this] { return stopped(); });
    return GLibPtr<GVariant>(g_dbus_connection_call_finish(connection_.get(), result.get(), error.out()));
}

/// For the way out, which nothing interrupts. A failure changes nothing: the connection is closed next.
void FprintdReader::callAtTheEnd(const char* method) {
    if (lost_) return;
    const auto result = await(
        [&](GCancellable* cancellable, GAsyncReadyCallback ended, gpointer data) {
            g_dbus_connection_call(connection_.get(), owner_.c_str(), device_.c_str(), deviceInterface,
                                   method, nullptr, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT,
                                   cancellable, ended, data);
        },
        g_get_monotonic_time() + endLimit, [this] { return lost_; });
    GLibError ignored;
    const GLibPtr<GVariant> reply(
        g_dbus_connection_call_finish(connection_.get(), result.get(), ignored.out()));
}

/// Waits for an asynchronous call of GIO; one that takes too long, or that nobody wants any more, is
/// cancelled.
GLibPtr<GAsyncResult> FprintdReader::await(const Start& start, std::int64_t until,
                                           const std::function<bool()>& stopped) {
    const GLibPtr<GCancellable> cancellable(g_cancellable_new());
    GLibPtr<GAsyncResult> result;
    start(cancellable.get(), keepResult, &result);
    iterateUntil(until, [&] { return result || stopped(); });
    if (!result) g_cancellable_cancel(cancellable.get());
    while (!result) g_main_context_iteration(context_, TRUE);  // at once, as it is cancelled
    return result;
}

/// False when the time came first.
bool FprintdReader::iterateUntil(std::int64_t until, const std::function<bool()>& done) {
    while (!done()) {
        if (g_get_monotonic_time() >= until) return false;
        g_source_set_ready_time(alarm_, until);
        g_main_context_iteration(context_, TRUE);
        g_source_set_ready_time(alarm_, -1);
    }
    return true;
}

}  // namespace korvane
