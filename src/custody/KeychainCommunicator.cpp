// SPDX-License-Identifier: Apache-2.0
#include "custody/KeychainCommunicator.h"

#include <korvane/platform/Ports.h>

#include <utility>

namespace korvane {
namespace {

constexpr std::string_view service = "KorvanePCISDKService";

SecureItemStore& store() {
    return *ports().secureItemStore;
}

void require(SecureItemStatus status) {
    if (status != secureItemSuccess) throw KeychainCommunicator::keychainError{};
}

}  // namespace

bool KeychainCommunicator::exists(std::string_view account) {
    const SecureItemStatus status = store().exists(service, account);
    if (status == secureItemNotFound) return false;
    require(status);
    return true;
}

void KeychainCommunicator::add(std::string_view data, std::string_view account) {
    require(store().add(service, account, data));
}

void KeychainCommunicator::update(std::string_view data, std::string_view account) {
    require(store().update(service, account, data));
}

std::optional<std::string> KeychainCommunicator::get(std::string_view account) {
    SecureItem item = store().copy(service, account);
    if (item.status == secureItemNotFound) return std::nullopt;
    require(item.status);
    return std::move(item.value);
}

void KeychainCommunicator::remove(std::string_view account) {
    require(store().remove(service, account));
}

}  // namespace korvane
