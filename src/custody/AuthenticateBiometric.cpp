// SPDX-License-Identifier: Apache-2.0
#include "custody/AuthenticateBiometric.h"

#include <korvane/platform/Ports.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "base/Text.h"
#include "custody/KeychainCommunicator.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// One of the two items: where it is kept, the field it belongs to, and its console lines. "Timemout" and
/// "SdkConfg" are spelt so (deliberate).
struct Item {
    std::string_view account;
    std::string SdkConfig::*field;
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

constexpr Item token{
    .account = "KorvaneSDKPCIToken",
    .field = &SdkConfig::currentPciToken,
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
};

constexpr Item timeout{
    .account = "KorvaneSDKPCITokenBioTimeout",
    .field = &SdkConfig::decBiometricsAuthenticationTimer,
    .notUtf8 = "Error bioTimeout.data(using: .utf8) Bio Timeout",
    .saved = "Success writing pci token Bio Timemout to keychain",
    .saveFailed = "Error KeychainCommunicator.set pci token Bio Timeout",
    .deleted = "Success deleting pci token Bio Timemout in keychain",
    .deleteFailed = "Error KeychainCommunicator.delete pci token Bio Timeout",
    .getFailed = "KeychainCommunicator.get pci token Bio Timeout failed",
    .nothing = "dataPCITokenBioTimeoutKeychain is nil",
    .notText = "Error getting string from dataPCITokenBioTimeoutFromKeychain",
    .found = "stringPCITokenBioTimeoutFromKeychain: ",
    .setting =
        "Setting SdkConfg.sharedInstance.decBiometricsAuthenticationTimer with "
        "stringPCITokenBioTimeoutFromKeychain",
    .now = "SdkConfig.sharedInstance.decBiometricsAuthenticationTimer is now = ",
};

bool save(const SdkConfig& config, const Item& item) {
    const std::string& value = config.*item.field;
    if (!isUtf8(value)) {
        log(inClear(item.notUtf8));
        return false;
    }
    try {
        if (KeychainCommunicator::exists(item.account)) {
            KeychainCommunicator::update(value, item.account);
        } else {
            KeychainCommunicator::add(value, item.account);
        }
    } catch (const KeychainCommunicator::keychainError&) {
        log(inClear(item.saveFailed));
        return false;
    }
    log(inClear(item.saved));
    return true;
}

bool load(SdkConfig& config, const Item& item) {
    std::optional<std::string> value;
    try {
        value = KeychainCommunicator::get(item.account);
    } catch (const KeychainCommunicator::keychainError&) {
        log(inClear(item.getFailed));
        return false;
    }
    if (!value) {
        log(inClear(item.nothing));
        return false;
    }
    if (!isUtf8(*value)) {
        log(inClear(item.notText));
        return false;
    }
    // The value is printed in clear (deliberate).
    log({inClear(item.found), *value});
    log(inClear(item.setting));
    std::string& field = config.*item.field;
    field = std::move(*value);
    log({inClear(item.now), field});
    return true;
}

bool erase(const Item& item) {
    try {
        KeychainCommunicator::remove(item.account);
    } catch (const KeychainCommunicator::keychainError&) {
        log(inClear(item.deleteFailed));
        return false;
    }
    log(inClear(item.deleted));
    return true;
}

/// The check that `initialize` started: nobody else would hold it.
std::shared_ptr<BiometricEvaluation>& initializeCheck() {
    static auto* const held = new std::shared_ptr<BiometricEvaluation>;
    return *held;
}

/// Starts a check; `done` runs on the main queue, unless the handle is released first; after a match when the
/// store, which `done` reads, is ready. None when the device cannot evaluate.
std::shared_ptr<BiometricEvaluation> evaluate(std::function<void(bool)> done) {
    // One reader, one check at a time: a journey's gate does what the check of `initialize` would have done.
    initializeCheck().reset();
    BiometricContext& context = *ports().biometricContext;
    if (!context.canEvaluate()) return nullptr;
    const std::string reason = ports().stringTable->text("enrollment.enableFaceID.reason");
    // The reply may be queued already when the handle goes: the token that dies with it tells.
    auto alive = std::make_shared<int>();
    auto check =
        context.evaluate(reason, [queue = ports().mainQueue, store = ports().secureItemStore,
                                  weak = std::weak_ptr<int>(alive), done = std::move(done)](bool success) {
            const auto tell = [queue, weak, done, success] {
                queue->post([weak, done, success] {
                    if (!weak.expired()) done(success);
                });
            };
            if (success)
                store->prepare(tell);
            else
                tell();
        });
    BiometricEvaluation* const handle = check.get();
    return {handle, [check = std::shared_ptr<BiometricEvaluation>(std::move(check)),
                     alive = std::move(alive)](BiometricEvaluation*) mutable {
                alive.reset();
                check.reset();
            }};
}

}  // namespace

void AuthenticateBiometric::prepareToSave(SdkConfig& config, std::function<void()> ready) {
    if (!config.useBiometrics) return ready();
    ports().secureItemStore->prepare(
        [queue = ports().mainQueue, ready = std::move(ready)] { queue->post(ready); });
}

bool AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(SdkConfig& config) {
    if (config.currentPciToken.empty()) {
        log("savePciTokenToKeychain - currentPciToken is blank. Returning...");
        return false;
    }
    const bool tokenSaved = save(config, token);
    return save(config, timeout) && tokenSaved;
}

bool AuthenticateBiometric::loadPciToken(SdkConfig& config) {
    return load(config, token);
}

bool AuthenticateBiometric::loadBiometricsTimeout(SdkConfig& config) {
    return load(config, timeout);
}

bool AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain() {
    const bool tokenDeleted = erase(token);
    return erase(timeout) && tokenDeleted;
}

void AuthenticateBiometric::reloadAtInitialize(SdkConfig& config) {
    initializeCheck() = evaluate([&config](bool success) {
        if (!success) {
            log("evaluate policy 'success' is false");
            return;
        }
        if (!loadPciToken(config) || !loadBiometricsTimeout(config)) return;
        config.timerPciExpired = true;
        if (config.currentPciToken.empty()) {
            config.timerPciExpired = false;
        } else {
            config.pciTimer.start();
        }
    });
}

std::shared_ptr<BiometricEvaluation> AuthenticateBiometric::runGate(SdkConfig& config,
                                                                    std::function<void(Outcome)> done) {
    return evaluate([&config, done = std::move(done)](bool success) {
        if (!success) {
            log("evaluate policy 'success' is false");
            done(Outcome::notAuthenticated);
            return;
        }
        if (!loadPciToken(config) || !loadBiometricsTimeout(config)) {
            log("read pci token or bio timeout from keychain failed.");
            done(Outcome::noStoredToken);
            return;
        }
        config.pciTimer.start();
        done(Outcome::authenticated);
    });
}

}  // namespace korvane
