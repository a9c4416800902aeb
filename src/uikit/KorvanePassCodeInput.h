// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "uikit/KorvanePassCodeModel.h"

namespace korvane {

/// A row of digit boxes as one logical field: boxes fill from the first on, and the focus follows. Main
/// thread.
class KorvanePassCodeInput {
  public:
    KorvanePassCodeInput(std::string id, int size, bool isSecure);

    /// A digit goes into the focused box. Several at once are a paste or an autofill: they start at the first
    /// box. Blanks and dashes are dropped, and so is what does not fit. Anything else in the text: false, no
    /// change.
    bool insertText(std::string_view text) { return insert(text, startOver_); }
    /// Clears all boxes, then inserts; false, no change, as above.
    bool replaceText(std::string_view text) { return insert(text, true); }
    /// Clears the digit before the focus; nothing when all boxes are empty.
    void deleteBackward();
    void clear();
    /// Lets the next digit start over, as after a refused entry that stays visible.
    void startOverOnNextInsert() { startOver_ = true; }

    const std::string& id() const { return id_; }
    int size() const { return size_; }
    bool isSecure() const { return isSecure_; }
    int filled() const { return static_cast<int>(model_.passCodeString.size()); }
    int firstResponderIndex() const;
    const KorvanePassCodeModel& inputModel() const { return model_; }

  private:
    bool insert(std::string_view text, bool startOver);
    void update();

    std::string id_;
    int size_;
    bool isSecure_;
    bool startOver_ = false;
    KorvanePassCodeModel model_;
};

// The four kinds of boxes. The CVV and the PIN are masked; what stands on paper or in a message is not.
inline KorvanePassCodeInput KorvanePassCodeViewPIN(std::string id) {
    return {std::move(id), 4, true};
}
inline KorvanePassCodeInput KorvanePassCodeViewCVV(std::string id) {
    return {std::move(id), 3, true};
}
inline KorvanePassCodeInput KorvanePassCodeViewLastFour(std::string id) {
    return {std::move(id), 4, false};
}
inline KorvanePassCodeInput KorvanePassCodeViewTwoFactor(std::string id) {
    return {std::move(id), 6, false};
}

}  // namespace korvane
