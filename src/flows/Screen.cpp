// SPDX-License-Identifier: Apache-2.0
#include "flows/Screen.h"

#include <utility>

#include "base/Secret.h"
#include "flows/NavigationStack.h"
#include "uikit/KorvanePassCodeInput.h"

namespace korvane {

Screen::Screen(std::shared_ptr<NavigationStack> stack, std::string_view viewName)
    : stack_(std::move(stack)), viewName_(viewName) {
    static std::uint64_t instances = 0;
    instance_ = ++instances;
}

void Screen::describe(ScreenSnapshot& snapshot) {
    snapshot.view = viewName_;
    snapshot.instance = instance_;
    for (ScreenControl& entry : controls()) snapshot.controls.push_back(std::move(entry.control));
    if (const KorvanePassCodeInput* const input = passcode()) {
        snapshot.passcode = PasscodeBoxes{.id = input->id(),
                                          .size = input->size(),
                                          .filled = input->filled(),
                                          .firstResponderIndex = input->firstResponderIndex(),
                                          .secure = input->isSecure(),
                                          .visibleDigits = {}};
        if (!input->isSecure()) snapshot.passcode->visibleDigits = input->inputModel().passCodeString;
    }
    describeContent(snapshot);
}

Journey::Outcome Screen::perform(std::string_view controlId) {
    for (const ScreenControl& entry : controls()) {
        if (entry.control.id != controlId) continue;
        if (!entry.control.enabled) return Journey::Outcome::notEnabled;
        if (entry.action) entry.action();
        return Journey::Outcome::done;
    }
    return Journey::Outcome::noSuchControl;
}

Journey::Outcome Screen::edit(const std::function<bool(KorvanePassCodeInput&)>& change) {
    KorvanePassCodeInput* const input = passcode();
    if (!input) return Journey::Outcome::noSuchControl;
    if (!acceptsInput()) return Journey::Outcome::notEnabled;
    const Wiped<std::string> before{input->inputModel().passCodeString};
    if (!change(*input)) return Journey::Outcome::notDigits;
    // A digit too many is no second fill: what is full has been told already.
    if (input->inputModel().passCodeString == *before) return Journey::Outcome::done;
    passcodeChanged();
    changed();
    return Journey::Outcome::done;
}

Journey::Outcome Screen::insertText(std::string_view text) {
    return edit([text](KorvanePassCodeInput& input) { return input.insertText(text); });
}

Journey::Outcome Screen::replaceText(std::string_view text) {
    return edit([text](KorvanePassCodeInput& input) { return input.replaceText(text); });
}

Journey::Outcome Screen::deleteBackward() {
    return edit([](KorvanePassCodeInput& input) {
        input.deleteBackward();
        return true;
    });
}

JourneyState& Screen::state() const {
    return *stack_->state();
}

const std::shared_ptr<JourneyState>& Screen::sharedState() const {
    return stack_->state();
}

void Screen::changed() const {
    stack_->changed();
}

Screen::ScreenControl Screen::button(std::string_view id, bool enabled, std::function<void()> action) {
    return {{std::string{id}, ControlKind::button, enabled}, std::move(action)};
}

Screen::ScreenControl Screen::back(bool enabled) const {
    return {{"back", ControlKind::back, enabled && stack_->canDismiss(*this)}, [this] { dismiss(); }};
}

void Screen::dismiss() const {
    stack_->dismiss(*this);
}

}  // namespace korvane
