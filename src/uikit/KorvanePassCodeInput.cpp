// SPDX-License-Identifier: Apache-2.0
#include "uikit/KorvanePassCodeInput.h"

#include <algorithm>
#include <utility>

namespace korvane {

KorvanePassCodeInput::KorvanePassCodeInput(std::string id, int size, bool isSecure)
    : id_(std::move(id)), size_(size), isSecure_(isSecure) {
    // One allocation for good: a text that grows leaves unwiped copies behind.
    model_.passCodeString.reserve(32);
}

bool KorvanePassCodeInput::insert(std::string_view text, bool startOver) {
    Wiped<std::string> digits;
    digits->reserve(text.size());
    for (const char c : text) {
        if (c >= '0' && c <= '9') {
            digits->push_back(c);
        } else if (c != ' ' && c != '-') {
            return false;
        }
    }
    if (digits->empty()) return true;
    if (digits->size() > 1 || startOver) wipe(model_.passCodeString);
    startOver_ = false;
    const std::size_t room = static_cast<std::size_t>(size_) - model_.passCodeString.size();
    model_.passCodeString.append(*digits, 0, room);
    update();
    return true;
}

void KorvanePassCodeInput::deleteBackward() {
    startOver_ = false;
    if (model_.passCodeString.empty()) return;
    model_.passCodeString.back() = '0';
    model_.passCodeString.pop_back();
    update();
}

void KorvanePassCodeInput::clear() {
    startOver_ = false;
    wipe(model_.passCodeString);
    update();
}

int KorvanePassCodeInput::firstResponderIndex() const {
    return std::min(filled(), size_ - 1);
}

void KorvanePassCodeInput::update() {
    model_.isValid = filled() == size_;
}

}  // namespace korvane
