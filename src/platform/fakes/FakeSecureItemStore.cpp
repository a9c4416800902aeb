// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeSecureItemStore.h"

#include <utility>

namespace korvane {
namespace {

FakeSecureItemStore::Name keyOf(const SecureItemName& name) {
    return {std::string{name.service}, std::string{name.account}, std::string{name.owner}};
}

}  // namespace

SecureItemStatus FakeSecureItemStore::exists(const SecureItemName& name) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    return items_.contains(keyOf(name)) ? secureItemSuccess : secureItemNotFound;
}

SecureItemStatus FakeSecureItemStore::add(const SecureItemName& name, std::string_view value) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    return items_.try_emplace(keyOf(name), value).second ? secureItemSuccess : secureItemDuplicate;
}

SecureItemStatus FakeSecureItemStore::update(const SecureItemName& name, std::string_view value) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    const auto item = items_.find(keyOf(name));
    if (item == items_.end()) return secureItemNotFound;
    item->second = value;
    return secureItemSuccess;
}

SecureItem FakeSecureItemStore::copy(const SecureItemName& name) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return {status, std::nullopt};
    const auto item = items_.find(keyOf(name));
    if (item == items_.end()) return {secureItemNotFound, std::nullopt};
    return {secureItemSuccess, item->second};
}

SecureItemStatus FakeSecureItemStore::remove(const SecureItemName& name) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    return items_.erase(keyOf(name)) == 1 ? secureItemSuccess : secureItemNotFound;
}

void FakeSecureItemStore::failNext(std::deque<SecureItemStatus> statuses) {
    const std::lock_guard lock(mutex_);
    scripted_ = std::move(statuses);
}

SecureItemStatus FakeSecureItemStore::scripted() {
    if (scripted_.empty()) return secureItemSuccess;
    const SecureItemStatus status = scripted_.front();
    scripted_.pop_front();
    return status;
}

}  // namespace korvane
