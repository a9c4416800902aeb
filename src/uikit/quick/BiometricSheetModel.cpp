// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/BiometricSheetModel.h"

#include <korvane/platform/Ports.h>

#include <utility>

#include "sdk/ChangeNotifications.h"

namespace korvane {
namespace {

constexpr const char* cancelControl = "sdk.biometrics.cancel";
constexpr const char* ownReason = "enrollment.enableFaceID.reason";

QString text(std::string_view key) {
    return QString::fromStdString(ports().stringTable->text(key));
}

}  // namespace

BiometricSheetModel::BiometricSheetModel(const std::string& reason, std::function<void()> cancelled)
    : reason_(QString::fromStdString(reason)),
      reasonIsOwn_(reason_ == text(ownReason)),
      cancel_(
          Control{.id = cancelControl, .enabled = true}, false,
          [cancelled = std::move(cancelled)](const std::string&) { cancelled(); }, this),
      language_(NotificationCenter::defaultCenter().observe(NotificationLanguageChanged,
                                                            [this](const auto&) { retranslate(); })) {
    retranslate();
}

void BiometricSheetModel::retranslate() {
    if (reasonIsOwn_) reason_ = text(ownReason);
    cancel_.setLabel(text(cancelControl));
    emit changed();
}

QString BiometricSheetModel::message() const {
    if (trouble()) return text(trouble_);
    return text(armed_ ? "sdk.biometrics.touch" : "sdk.biometrics.away");
}

void BiometricSheetModel::setOpen(bool open) {
    open_ = open;
    emit changed();
}

void BiometricSheetModel::setArmed(bool armed) {
    if (armed_ == armed) return;
    armed_ = armed;
    trouble_.clear();
    emit changed();
}

void BiometricSheetModel::tell(std::string_view messageId) {
    trouble_ = messageId;
    emit changed();
    emit told();
}

}  // namespace korvane
