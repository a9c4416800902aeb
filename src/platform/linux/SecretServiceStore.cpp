// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SecretServiceStore.h"

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <utility>

#include "base/Secret.h"
#include "platform/linux/GLibSource.h"
#include "platform/linux/GLibThread.h"
#include "platform/linux/SecretServiceClient.h"

namespace korvane {
namespace {

/// A call as its caller and the thread share it.
struct Call {
    std::mutex mutex;
    std::condition_variable ended;
    bool begun = false;
    bool given = false;  // up, by a caller that waited long enough
    std::optional<SecureItem> result;
    const GLibPtr<GCancellable> cancellable{g_cancellable_new()};

    ~Call() {
        if (result && result->value) wipe(*result->value);  // nobody waited for it
    }
};

/// What a call does once the collection is open; `found` is what the search for its item gave.
using Work = std::function<SecureItem(SecretServiceClient& client, SecureItemStatus found)>;

SecureItem statusOnly(SecureItemStatus status) {
    return {status, std::nullopt};
}

/// The thread may still be at work on the value when its caller has given up.
std::shared_ptr<const Wiped<std::string>> copyOf(std::string_view value) {
    return std::make_shared<const Wiped<std::string>>(std::string{value});
}

/// A dismissed prompt has no result; the keyring daemon gives an empty one, of objects unlocked or made, as
/// well.
bool granted(GVariant* result) {
    if (!result) return false;
    if (g_variant_is_of_type(result, G_VARIANT_TYPE("ao"))) return g_variant_n_children(result) > 0;
    if (!g_variant_is_of_type(result, G_VARIANT_TYPE("o"))) return true;
    return !g_str_equal(g_variant_get_string(result, nullptr), "/");
}

/// The daemon's prompts: one stands at a time, and none after one that was declined.
class Prompts {
  public:
    /// Puts up the prompt that `client` waits for; the status to answer in the meantime.
    SecureItemStatus ask(std::unique_ptr<SecretServiceClient> client) {
        if (declined_) return secureItemDismissed;
        if (client_) return secureItemLocked;
        client_ = std::move(client);  // the prompt goes with its session
        secret_service_prompt_at_dbus_path(client_->service(), client_->prompt().c_str(), nullptr,
                                           cancellable_.get(), ended, this);
        return secureItemLocked;
    }

    bool open() const { return client_ != nullptr; }
    void withdraw() { g_cancellable_cancel(cancellable_.get()); }

  private:
    static void ended(GObject* service, GAsyncResult* result, gpointer data) {
        auto& self = *static_cast<Prompts*>(data);
        GLibError error;
        const GLibPtr<GVariant> answer(
            secret_service_prompt_at_dbus_path_finish(SECRET_SERVICE(service), result, error.out()));
        self.declined_ = !error && !granted(answer.get());  // with an error nobody was asked
        self.client_.reset();
    }

    std::unique_ptr<SecretServiceClient> client_;
    bool declined_ = false;
    const GLibPtr<GCancellable> cancellable_{g_cancellable_new()};
};

}  // namespace

class SecretServiceStore::Worker {
  public:
    explicit Worker(std::chrono::milliseconds timeout) : timeout_(timeout) {}

    ~Worker() {
        g_cancellable_cancel(asking_.get());
        const auto done = std::make_shared<std::promise<void>>();
        thread_.post([this, done] {
            endPrompt();
            done->set_value();
        });
        done->get_future().wait();
    }

    SecureItem run(std::string_view service, std::string_view account, Work work, bool patient = false);
    void prepare(std::function<void()> ready);

  private:
    SecureItem serve(GCancellable* cancellable, std::string service, std::string account, const Work& work);
    void endPrompt();

    const std::chrono::milliseconds timeout_;
    const GLibPtr<GCancellable> asking_{g_cancellable_new()};
    std::atomic<bool> silent_ = false;   // it had no answer for the last `prepare`
    std::atomic<bool> hanging_ = false;  // the last call ran out of time
    Prompts prompts_;                    // its thread only
    GLibThread thread_{"korvane-secrets"};
};

void SecretServiceStore::Worker::prepare(std::function<void()> ready) {
    thread_.post([this, ready = std::move(ready)] {
        hanging_ = silent_ = !SecretServiceClient(asking_.get()).answers(timeout_);
        ready();
    });
}

SecureItem SecretServiceStore::Worker::run(std::string_view service, std::string_view account, Work work,
                                           bool patient) {
    if (silent_ && !patient) return {secureItemTimedOut, std::nullopt};
    const auto call = std::make_shared<Call>();
    thread_.post([this, call, work = std::move(work), serviceName = std::string{service},
                  accountName = std::string{account}] {
        {
            const std::lock_guard lock(call->mutex);
            if (call->given) return;
            call->begun = true;
        }
        SecureItem result = serve(call->cancellable.get(), serviceName, accountName, work);
        const std::lock_guard lock(call->mutex);
        call->result = std::move(result);
        call->ended.notify_one();
    });
    const auto patience = hanging_ ? timeout_ / 10 : timeout_;
    std::unique_lock lock(call->mutex);
    if (!call->ended.wait_for(lock, patience, [&call] { return call->result.has_value(); })) {
        call->given = true;
        g_cancellable_cancel(call->cancellable.get());
        hanging_ = true;
        return {call->begun ? secureItemTimedOut : secureItemBusy, std::nullopt};
    }
    hanging_ = call->result->status == secureItemTimedOut;
    return std::move(*call->result);
}

SecureItem SecretServiceStore::Worker::serve(GCancellable* cancellable, std::string service,
                                             std::string account, const Work& work) {
    auto client = std::make_unique<SecretServiceClient>(cancellable);
    SecureItem result{client->connect(), std::nullopt};
    if (result.status == secureItemSuccess) result.status = client->openCollection();
    if (result.status == secureItemSuccess) {
        result.status = client->find(std::move(service), std::move(account));
        result = work(*client, result.status);
    }
    if (!client->prompt().empty()) result.status = prompts_.ask(std::move(client));
    return result;
}

/// Iterates until libsecret has told the daemon, or a second has passed.
void SecretServiceStore::Worker::endPrompt() {
    if (!prompts_.open()) return;
    prompts_.withdraw();
    bool waiting = true;
    GSource* limit = attachSource(thread_.context().get(), "korvane prompt", [&waiting] { waiting = false; });
    g_source_set_ready_time(limit, g_get_monotonic_time() + G_USEC_PER_SEC);
    while (waiting && prompts_.open()) g_main_context_iteration(thread_.context().get(), TRUE);
    releaseSource(limit);
}

SecretServiceStore::SecretServiceStore(std::chrono::milliseconds timeout)
    : worker_(std::make_unique<Worker>(timeout)) {}

SecretServiceStore::~SecretServiceStore() = default;

SecureItemStatus SecretServiceStore::exists(std::string_view service, std::string_view account) {
    return worker_
        ->run(service, account,
              [](SecretServiceClient&, SecureItemStatus found) { return statusOnly(found); })
        .status;
}

SecureItemStatus SecretServiceStore::add(std::string_view service, std::string_view account,
                                         std::string_view value) {
    return worker_
        ->run(service, account,
              [copy = copyOf(value)](SecretServiceClient& client, SecureItemStatus found) {
                  if (found == secureItemSuccess) return statusOnly(secureItemDuplicate);
                  return statusOnly(found == secureItemNotFound ? client.create(**copy) : found);
              })
        .status;
}

SecureItemStatus SecretServiceStore::update(std::string_view service, std::string_view account,
                                            std::string_view value) {
    return worker_
        ->run(service, account,
              [copy = copyOf(value)](SecretServiceClient& client, SecureItemStatus found) {
                  return statusOnly(found == secureItemSuccess ? client.replace(**copy) : found);
              })
        .status;
}

SecureItem SecretServiceStore::copy(std::string_view service, std::string_view account) {
    return worker_->run(service, account, [](SecretServiceClient& client, SecureItemStatus found) {
        return found == secureItemSuccess ? client.read() : statusOnly(found);
    });
}

SecureItemStatus SecretServiceStore::remove(std::string_view service, std::string_view account) {
    return worker_
        ->run(
            service, account,
            [](SecretServiceClient& client, SecureItemStatus found) {
                return statusOnly(found == secureItemSuccess ? client.erase() : found);
            },
            true)
        .status;
}

void SecretServiceStore::prepare(std::function<void()> ready) {
    worker_->prepare(std::move(ready));
}

}  // namespace korvane
