// SPDX-License-Identifier: Apache-2.0
#include <korvane/Journey.h>

#include <utility>

#include "base/Secret.h"
#include "flows/CloseJourney.h"
#include "flows/JourneyHost.h"
#include "flows/JourneyProbe.h"
#include "flows/NavigationStack.h"
#include "platform/Log.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

const JourneyHost::Kind& hostOf(JourneyKind kind) {
    switch (kind) {
        case JourneyKind::setPIN:
            return journey::setPIN;
        case JourneyKind::activateCardAndSetPIN:
            return journey::activateCardAndSetPIN;
        case JourneyKind::getCardImage:
            break;
    }
    return journey::getCardImage;
}

}  // namespace

class Journey::Impl {
  public:
    Impl(JourneyKind kind, std::string cardId)
        : kind_(kind),
          stack_(std::make_shared<NavigationStack>(
              std::make_shared<JourneyState>(SdkConfig::sharedInstance(), std::move(cardId)))) {
        stack_->state()->end = [stack = std::weak_ptr(stack_)] {
            if (const auto alive = stack.lock()) endWithSession(*alive);
        };
    }
    ~Impl() { stack_->end(); }

    void appear() {
        if (std::exchange(appeared_, true)) return;
        stack_->start(std::make_shared<JourneyHost>(stack_, hostOf(kind_)));
    }

    NavigationStack& stack() const { return *stack_; }
    std::shared_ptr<NavigationStack> sharedStack() const { return stack_; }

    /// Runs `use` on the screen in view, which stays alive meanwhile even if the journey ends in it.
    template <class Use>
    Outcome onScreen(Use use) const {
        const auto screen = stack_->inView();
        return screen ? use(*screen) : Outcome::noSuchControl;
    }

  private:
    static void endWithSession(NavigationStack& stack) {
        const auto state = stack.state();
        wipe(state->decryptedPciSmsToken);
        stack.end();
        if (!state->resultPosted) closeJourney(*state, CloseResult::canceled);
    }

    JourneyKind kind_;
    bool appeared_ = false;
    std::shared_ptr<NavigationStack> stack_;
};

std::shared_ptr<JourneyState> JourneyProbe::state(const Journey& journey) {
    return journey.impl_->stack().state();
}

Journey::Journey(JourneyKind kind, std::string cardId) : impl_(std::make_shared<Impl>(kind, cardId)) {
    // All journeys log this one's name (deliberate).
    log({"SetPIN init - cardID param = ", cardId});
    impl_->stack().state()->sdk.cardId = cardId;
    log({"SetPIN init - SdkConfig.sharedInstance.cardId now = ", cardId});
}

Journey::~Journey() = default;

void Journey::appear() {
    impl_->appear();
}

ScreenSnapshot Journey::screen() const {
    ScreenSnapshot snapshot;
    impl_->stack().describe(snapshot);
    return snapshot;
}

Journey::Outcome Journey::perform(std::string_view controlId) {
    return impl_->onScreen([&](Screen& screen) { return screen.perform(controlId); });
}

Journey::Outcome Journey::insertText(std::string_view text) {
    return impl_->onScreen([&](Screen& screen) { return screen.insertText(text); });
}

Journey::Outcome Journey::replaceText(std::string_view text) {
    return impl_->onScreen([&](Screen& screen) { return screen.replaceText(text); });
}

Journey::Outcome Journey::deleteBackward() {
    return impl_->onScreen([&](Screen& screen) { return screen.deleteBackward(); });
}

void Journey::hideSensitive() {
    impl_->stack().hideSensitive();
}

JourneyId Journey::id() const {
    return impl_->stack().state()->id;
}

void Journey::close() {
    const auto stack = impl_->sharedStack();  // the host may destroy the journey when it hears the result
    const auto screen = stack->inView();
    if (stack->state()->resultPosted) return;
    closeJourney(*stack->state(), screen ? screen->closeResult() : CloseResult::canceled);
}

void Journey::onChange(std::function<void()> changed) {
    impl_->stack().onChange(std::move(changed));
}

}  // namespace korvane
