// SPDX-License-Identifier: Apache-2.0
#include "custody/AuthenticateBiometric.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "platform/InBackground.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

using Outcome = AuthenticateBiometric::Outcome;

/// The one check at a time: a person is asked for one finger, whoever waits for it. Those who wait own it.
class BiometricCheck : public std::enable_shared_from_this<BiometricCheck> {
  public:
    enum class Asker { initialize, journey };

    explicit BiometricCheck(SdkConfig& config) : config_(config) {}

    static Handle join(SdkConfig& config, Asker asker, std::function<void(Outcome)> done) {
        auto check = underWay().lock();
        if (!check) {
            underWay() = check = std::make_shared<BiometricCheck>(config);
            check->start();
        }
        const auto waiting = std::make_shared<Waiting>(Waiting{asker, std::move(done), check});
        check->waiting_.push_back(waiting);
        return waiting;
    }

  private:
    struct Waiting {
        Asker asker;
        std::function<void(Outcome)> done;
        std::shared_ptr<BiometricCheck> check;
    };

    /// Until it has an outcome.
    static std::weak_ptr<BiometricCheck>& underWay() {
        static auto* const check = new std::weak_ptr<BiometricCheck>;
        return *check;
    }

    void start() {
        inBackground<bool>([context = ports().biometricContext](bool& can) { can = context->canEvaluate(); },
                           [weak = weak_from_this()](bool can) {
                               const auto self = weak.lock();
                               if (!self) return;
                               can ? self->evaluate() : self->end(Outcome::cannotEvaluate);
                           });
    }

    void evaluate() {
        evaluation_ = ports().biometricContext->evaluate(
            ports().stringTable->text("enrollment.enableFaceID.reason"),
            [weak = weak_from_this(), queue = ports().mainQueue](bool success) {
                queue->post([weak, success] {
                    if (const auto self = weak.lock()) self->answered(success);
                });
            });
    }

    void answered(bool success) {
        evaluation_.reset();
        if (!success) {
            log("evaluate policy 'success' is false");
            return end(Outcome::notAuthenticated);
        }
        if (!config_.useBiometrics) return end(Outcome::cannotEvaluate);  // switched off meanwhile: not read
        AuthenticateBiometric::loadPciTokenAndTimeout(config_, weak_from_this(),
                                                      [this](bool loaded) { read(loaded); });
    }

    void read(bool loaded) {
        const bool journeyWaits = isAwaitedBy(Asker::journey);
        if (!loaded) {
            if (journeyWaits) log("read pci token or bio timeout from keychain failed.");
            return end(Outcome::noStoredToken);
        }
        const bool isToken = !config_.currentPciToken.empty();
        if (isAwaitedBy(Asker::initialize)) config_.timerPciExpired = isToken;
        if (journeyWaits || isToken) config_.pciTimer.start();
        end(Outcome::authenticated);
    }

    bool isAwaitedBy(Asker asker) const {
        return std::any_of(waiting_.begin(), waiting_.end(), [asker](const std::weak_ptr<Waiting>& each) {
            const auto waiting = each.lock();
            return waiting && waiting->asker == asker;
        });
    }

    void end(Outcome outcome) {
        const auto self = shared_from_this();  // they may let go of it
        underWay().reset();
        for (const auto& each : std::exchange(waiting_, {})) {
            if (const auto waiting = each.lock()) waiting->done(outcome);
        }
    }

    SdkConfig& config_;
    std::vector<std::weak_ptr<Waiting>> waiting_;
    std::unique_ptr<BiometricEvaluation> evaluation_;
};

}  // namespace

void AuthenticateBiometric::reloadAtInitialize(SdkConfig& config) {
    config.initializeCheck.reset();
    config.initializeCheck = BiometricCheck::join(config, BiometricCheck::Asker::initialize,
                                                  [&config](Outcome) { config.initializeCheck.reset(); });
}

Handle AuthenticateBiometric::runGate(SdkConfig& config, std::function<void(Outcome)> done) {
    return BiometricCheck::join(config, BiometricCheck::Asker::journey, std::move(done));
}

}  // namespace korvane
