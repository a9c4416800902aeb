// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeSecureItemStore.h"

namespace korvane {
namespace {

std::pair<std::string, std::string> keyOf(std::string_view service, std::string_view account) {
    return {std::string{service}, std::string{account}};
}

}  // namespace

SecureItemStatus FakeSecureItemStore::exists(std::string_view service, std::string_view account) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    return items_.contains(keyOf(service, account)) ? secureItemSuccess : secureItemNotFound;
}

SecureItemStatus FakeSecureItemStore::add(std::string_view service, std::string_view account,
                                          std::string_view value) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    return items_.try_emplace(keyOf(service, account), value).second ? secureItemSuccess
                                                                     : secureItemDuplicate;
}

SecureItemStatus FakeSecureItemStore::update(std::string_view service, std::string_view account,
                                             std::string_view value) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    const auto item = items_.find(keyOf(service, account));
    if (item == items_.end()) return secureItemNotFound;
    item->second = value;
    return secureItemSuccess;
}

SecureItem FakeSecureItemStore::copy(std::string_view service, std::string_view account) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return {status, std::nullopt};
    const auto item = items_.find(keyOf(service, account));
    if (item == items_.end()) return {secureItemNotFound, std::nullopt};
    return {secureItemSuccess, item->second};
}

SecureItemStatus FakeSecureItemStore::remove(std::string_view service, std::string_view account) {
    const std::lock_guard lock(mutex_);
    if (const auto status = scripted(); status != secureItemSuccess) return status;
    return items_.erase(keyOf(service, account)) == 1 ? secureItemSuccess : secureItemNotFound;
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
