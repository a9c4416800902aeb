// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SecretServiceStore.h"

#include <atomic>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

#include "platform/linux/GLibSource.h"
#include "platform/linux/GLibThread.h"
#include "platform/linux/SecretServiceClient.h"

namespace korvane {
namespace {

/// A daemon that had no answer is not asked again for that long: custody makes several calls in a row.
constexpr std::int64_t rest = G_USEC_PER_SEC;

std::string executable() {
    std::error_code unknown;
    return std::filesystem::read_symlink("/proc/self/exe", unknown).filename().string();
}

}  // namespace

/// What the calls share, whatever their thread.
struct SecretServiceStore::Calls {
    std::mutex mutex;
    std::unique_ptr<SecretServiceClient> asking;  // of the prompt, which goes with its session
    std::atomic<std::int64_t> silentAt = -rest;   // when a call last ran out of time
    GLibThread thread{"korvane-secrets"};         // ends the calls whose time is up
};

/// One call: the collection is opened and the item looked for, then comes what the call is for.
class SecretServiceStore::Call {
  public:
    Call(const SecretServiceStore& store, const SecureItemName& name)
        : calls_(*store.calls_),
          client_(std::make_unique<SecretServiceClient>(cancellable_.get(), store.options_.appId, name)),
          alarm_(g_timeout_source_new(static_cast<guint>(store.options_.timeout.count()))) {
        g_source_set_callback(alarm_, cancel, g_object_ref(cancellable_.get()), g_object_unref);
        g_source_attach(alarm_, calls_.thread.context().get());
        if (g_get_monotonic_time() - calls_.silentAt < rest) {
            found = secureItemTimedOut;
            return;
        }
        found = client_->connect();
        if (found == secureItemSuccess) found = client_->openCollection();
        if (found == secureItemSuccess) found = client_->find();
    }
    ~Call() { releaseSource(alarm_); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    SecretServiceClient* operator->() { return client_.get(); }

    SecureItemStatus ended(SecureItemStatus status, bool mayAsk = true) {
        if (g_cancellable_is_cancelled(cancellable_.get())) calls_.silentAt = g_get_monotonic_time();
        if (client_->prompt().empty()) return status;
        const std::lock_guard lock(calls_.mutex);
        if (mayAsk && !calls_.asking) {
            calls_.asking = std::move(client_);
            calls_.asking->showPrompt();
        }
        return secureItemLocked;
    }

    SecureItemStatus found = secureItemFailed;  ///< what the search for the item gave

  private:
    static gboolean cancel(gpointer cancellable) {
        g_cancellable_cancel(G_CANCELLABLE(cancellable));
        return G_SOURCE_REMOVE;
    }

    Calls& calls_;
    const GLibPtr<GCancellable> cancellable_{g_cancellable_new()};
    std::unique_ptr<SecretServiceClient> client_;
    GSource* const alarm_;
};

SecretServiceStore::SecretServiceStore(SecretServiceStoreOptions options)
    : options_{options.appId.empty() ? executable() : std::move(options.appId), options.timeout},
      calls_(std::make_unique<Calls>()) {}

SecretServiceStore::~SecretServiceStore() = default;

SecureItemStatus SecretServiceStore::exists(const SecureItemName& name) {
    Call call(*this, name);
    return call.ended(call.found);
}

SecureItemStatus SecretServiceStore::add(const SecureItemName& name, std::string_view value) {
    Call call(*this, name);
    if (call.found == secureItemSuccess) return secureItemDuplicate;
    return call.ended(call.found == secureItemNotFound ? call->create(value) : call.found);
}

SecureItemStatus SecretServiceStore::update(const SecureItemName& name, std::string_view value) {
    Call call(*this, name);
    return call.ended(call.found == secureItemSuccess ? call->replace(value) : call.found);
}

SecureItem SecretServiceStore::copy(const SecureItemName& name) {
    Call call(*this, name);
    SecureItem item{call.found, std::nullopt};
    if (call.found == secureItemSuccess) item = call->read();
    item.status = call.ended(item.status);
    return item;
}

SecureItemStatus SecretServiceStore::remove(const SecureItemName& name) {
    Call call(*this, name);
    return call.ended(call.found == secureItemSuccess ? call->erase() : call.found, false);
}

}  // namespace korvane
