// SPDX-License-Identifier: Apache-2.0
#include <korvane/Journey.h>

#include <utility>

#include "flows/JourneyHost.h"
#include "flows/NavigationStack.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

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
    Impl(JourneyKind kind, std::string cardId) : kind_(kind), cardId_(std::move(cardId)) {}
    ~Impl() { stack_->end(); }

    void appear() {
        if (std::exchange(appeared_, true)) return;
        stack_->start(std::make_shared<JourneyHost>(stack_, hostOf(kind_)));
    }

    NavigationStack& stack() { return *stack_; }

    /// Runs `use` on the screen in view, which stays alive meanwhile even if the journey ends in it.
    template <class Use>
    Outcome onScreen(Use use) const {
        // Another journey may have been made since: what a person does here is meant for this one's card.
        SdkConfig::sharedInstance().cardId = cardId_;
        const auto screen = stack_->inView();
        return screen ? use(*screen) : Outcome::noSuchControl;
    }

  private:
    JourneyKind kind_;
    std::string cardId_;
    bool appeared_ = false;
    std::shared_ptr<NavigationStack> stack_ = std::make_shared<NavigationStack>();
};

Journey::Journey(JourneyKind kind, std::string cardId) : impl_(std::make_shared<Impl>(kind, cardId)) {
    // All journeys log this one's name (deliberate).
    log({"SetPIN init - cardID param = ", cardId});
    SdkConfig::sharedInstance().cardId = cardId;
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

void Journey::onChange(std::function<void()> changed) {
    impl_->stack().onChange(std::move(changed));
}

}  // namespace korvane
