// SPDX-License-Identifier: Apache-2.0
#include "custody/AuthenticateBiometric.h"

#include <openssl/hmac.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "base/Text.h"
#include "custody/KeychainCommunicator.h"
#include "platform/InBackground.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// One of the two items: where it is kept, and its console lines. "Timemout" and "SdkConfg" are spelt so
/// (deliberate).
struct Item {
    std::string_view account;
    std::string_view notUtf8;
    std::string_view saved;
    std::string_view saveFailed;
    std::string_view deleted;
    std::string_view deleteFailed;
    std::string_view getFailed;
    std::string_view nothing;
    std::string_view notText;
    std::string_view found;
    std::string_view setting;
    std::string_view now;
};

constexpr std::array items{
    Item{
        .account = "KorvaneSDKPCIToken",
        .notUtf8 = "Error currentPciToken.data(using: .utf8)",
        .saved = "Success writing pci token to keychain",
        .saveFailed = "Error KeychainCommunicator.set pci token",
        .deleted = "Success deleting pci token to keychain",
        .deleteFailed = "Error KeychainCommunicator.delete pci token",
        .getFailed = "KeychainCommunicator.get pci token failed",
        .nothing = "dataPCITokenKeychain is nil",
        .notText = "Error getting string from dataPCITokenFromKeychain",
        .found = "stringPCITokenFromKeychain: ",
        .setting = "Setting SdkConfg.sharedInstance.currentPciToken with stringPCITokenFromKeychain",
        .now = "SdkConfig.sharedInstance.currentPciToken is now = ",
    },
    Item{
        .account = "KorvaneSDKPCITokenBioTimeout",
        .notUtf8 = "Error bioTimeout.data(using: .utf8) Bio Timeout",
        .saved = "Success writing pci token Bio Timemout to keychain",
        .saveFailed = "Error KeychainCommunicator.set pci token Bio Timeout",
        .deleted = "Success deleting pci token Bio Timemout in keychain",
        .deleteFailed = "Error KeychainCommunicator.delete pci token Bio Timeout",
        .getFailed = "KeychainCommunicator.get pci token Bio Timeout failed",
        .nothing = "dataPCITokenBioTimeoutKeychain is nil",
        .notText = "Error getting string from dataPCITokenBioTimeoutFromKeychain",
        .found = "stringPCITokenBioTimeoutFromKeychain: ",
        .setting = "Setting SdkConfg.sharedInstance.decBiometricsAuthenticationTimer with "
                   "stringPCITokenBioTimeoutFromKeychain",
        .now = "SdkConfig.sharedInstance.decBiometricsAuthenticationTimer is now = ",
    },
};

/// What became of an item; failed unless the store says otherwise in time.
struct Attempt {
    enum { failed, nothing, notText, done } result = failed;
    Wiped<std::string> value{};
};
using Attempts = std::array<Attempt, 2>;
using Work = std::function<void(const KeychainCommunicator&, Attempts&)>;

bool succeeds(const std::function<void()>& call) {
    try {
        call();
        return true;
    } catch (const KeychainCommunicator::keychainError&) {
        return false;
    }
}

/// Owners whose items were to be deleted, and may still be there. Background queue.
std::set<std::string>& due() {
    static auto* const owners = new std::set<std::string>;
    return *owners;
}

void removeWhatIsDue(const KeychainCommunicator& keychain) {
    std::erase_if(due(), [&keychain](const std::string& owner) {
        const KeychainCommunicator late = keychain.of(owner);
        return std::all_of(items.begin(), items.end(), [&late](const Item& item) {
            return succeeds([&] { late.removeIfAny(item.account); });
        });
    });
}

void inStore(const SdkConfig& config, Work work, std::function<void(Attempts&)> done) {
    inBackground<Attempts>(
        [keychain = KeychainCommunicator(ports().secureItemStore, AuthenticateBiometric::ownerOf(config)),
         work = std::move(work)](Attempts& attempts) { work(keychain, attempts); },
        std::move(done));
}

bool logAll(const Attempts& attempts, std::string_view Item::*good, std::string_view Item::*bad) {
    bool all = true;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto result = attempts[i].result;
        log(inClear(items[i].*(result == Attempt::done      ? good
                               : result == Attempt::notText ? &Item::notUtf8
                                                            : bad)));
        all = all && result == Attempt::done;
    }
    return all;
}

bool put(SdkConfig& config, const Item& item, const Attempt& attempt) {
    if (attempt.result != Attempt::done) {
        log(inClear(attempt.result == Attempt::nothing   ? item.nothing
                    : attempt.result == Attempt::notText ? item.notText
                                                         : item.getFailed));
        return false;
    }
    // The value is printed in clear (deliberate).
    log({inClear(item.found), *attempt.value});
    log(inClear(item.setting));
    const bool isToken = &item == &items[0];
    if (isToken) {
        config.replacePciToken(*attempt.value);
    } else {
        config.decBiometricsAuthenticationTimer = *attempt.value;
    }
    log({inClear(item.now), isToken ? config.currentPciToken : config.decBiometricsAuthenticationTimer});
    return true;
}

}  // namespace

std::string AuthenticateBiometric::ownerOf(const SdkConfig& config) {
    const auto& key = config.preSharedKeyByteArray;
    const std::string text = "korvane stored token " + config.apiUrl;
    std::array<std::uint8_t, 32> code{};
    unsigned size = 0;
    HMAC(EVP_sha256(), key.empty() ? "" : static_cast<const void*>(key.data()), static_cast<int>(key.size()),
         reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), code.data(), &size);
    return base64Encode(code);
}

void AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(const SdkConfig& config,
                                                             std::function<void(bool)> done) {
    if (config.currentPciToken.empty()) {
        log("savePciTokenToKeychain - currentPciToken is blank. Returning...");
        return done(false);
    }
    using Values = std::array<Wiped<std::string>, 2>;
    const auto values =
        std::make_shared<const Values>(Values{Wiped{std::string{config.currentPciToken}},
                                              Wiped{std::string{config.decBiometricsAuthenticationTimer}}});
    inStore(
        config,
        [values](const KeychainCommunicator& keychain, Attempts& attempts) {
            removeWhatIsDue(keychain);
            for (std::size_t i = 0; i < items.size(); ++i) {
                const std::string& value = *(*values)[i];
                const std::string_view account = items[i].account;
                const auto write = [&] {
                    keychain.exists(account) ? keychain.update(value, account) : keychain.add(value, account);
                };
                attempts[i].result = !isUtf8(value)    ? Attempt::notText
                                     : succeeds(write) ? Attempt::done
                                                       : Attempt::failed;
            }
            // Another one stands in the old one's place.
            if (attempts[0].result == Attempt::done) due().erase(keychain.owner());
        },
        [done = std::move(done)](Attempts& attempts) {
            done(logAll(attempts, &Item::saved, &Item::saveFailed));
        });
}

void AuthenticateBiometric::loadPciTokenAndTimeout(SdkConfig& config, std::weak_ptr<void> wanted,
                                                   std::function<void(bool)> done) {
    inStore(
        config,
        [](const KeychainCommunicator& keychain, Attempts& attempts) {
            removeWhatIsDue(keychain);
            for (std::size_t i = 0; i < items.size(); ++i) {
                std::optional<std::string> value;
                if (!succeeds([&] { value = keychain.get(items[i].account); })) return;
                if (!value) return void(attempts[i].result = Attempt::nothing);
                attempts[i].value = Wiped{std::move(*value)};
                if (due().contains(keychain.owner())) return;
                attempts[i].result = isUtf8(*attempts[i].value) ? Attempt::done : Attempt::notText;
            }
        },
        [&config, wanted = std::move(wanted), done = std::move(done)](Attempts& attempts) {
            const auto waiting = wanted.lock();
            if (waiting) done(put(config, items[0], attempts[0]) && put(config, items[1], attempts[1]));
        });
}

void AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain(const SdkConfig& config,
                                                               std::function<void(bool)> done) {
    inStore(
        config,
        [](const KeychainCommunicator& keychain, Attempts& attempts) {
            due().erase(keychain.owner());
            for (std::size_t i = 0; i < items.size(); ++i) {
                const std::string_view account = items[i].account;
                if (succeeds([&] { keychain.remove(account); }))
                    attempts[i].result = Attempt::done;
                else if (!succeeds([&] { keychain.removeIfAny(account); }))
                    due().insert(keychain.owner());
            }
        },
        [done = std::move(done)](Attempts& attempts) {
            done(logAll(attempts, &Item::deleted, &Item::deleteFailed));
        });
}

void AuthenticateBiometric::deleteWhatIsDue(const SdkConfig& config) {
    inStore(
        config, [](const KeychainCommunicator& keychain, Attempts&) { removeWhatIsDue(keychain); },
        [](Attempts&) {});
}

}  // namespace korvane
