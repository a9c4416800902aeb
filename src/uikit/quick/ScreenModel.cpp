// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/ScreenModel.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <utility>

#include "base/Secret.h"

namespace korvane {
namespace {

QString text(std::string_view key) {
    return key.empty() ? QString() : QString::fromStdString(ports().stringTable->text(key));
}

int stateNumber(const ScreenSnapshot& snapshot, std::string_view name) {
    for (const StateField& field : snapshot.state) {
        if (field.name != name) continue;
        if (const int* const number = std::get_if<int>(&field.value)) return *number;
    }
    return 0;
}

QString label(const Control& control, const ScreenSnapshot& snapshot) {
    if (control.kind == ControlKind::back) return text("sdk.accessibility.back");
    if (control.kind == ControlKind::close) return text("sdk.accessibility.close");
    if (control.id == "sdk.sms.code.resend") {
        const int seconds = stateNumber(snapshot, "resendSeconds");
        if (seconds > 0) return text("sdk.sms.code.resendIn").arg(seconds);
    }
    return text(control.id);
}

ScreenModel::Layout layout(const ScreenSnapshot& snapshot) {
    if (snapshot.passcode) return ScreenModel::Layout::Entry;
    const bool button = std::ranges::any_of(
        snapshot.controls, [](const Control& control) { return control.kind == ControlKind::button; });
    return button ? ScreenModel::Layout::Message : ScreenModel::Layout::Waiting;
}

bool sameControls(const QList<ControlModel*>& models, const std::vector<Control>& controls) {
    return std::ranges::equal(models, controls, [](const ControlModel* model, const Control& control) {
        return model->id() == control.id && model->kind() == control.kind;
    });
}

}  // namespace

ScreenModel::ScreenModel(QObject* parent) : QObject(parent) {}

ScreenModel::~ScreenModel() {
    if (boxes_) wipe(boxes_->visibleDigits);
}

template <class Value>
void ScreenModel::set(Value& field, Value value, void (ScreenModel::*changed)()) {
    if (field == value) return;
    field = std::move(value);
    emit(this->*changed)();
}

void ScreenModel::load(const ScreenSnapshot& snapshot) {
    lastUsed_.clear();
    take(snapshot);
    emit loaded();
}

void ScreenModel::update(const ScreenSnapshot& snapshot) {
    const Layout before = layout_;
    take(snapshot);
    if (layout_ != before) emit loaded();
}

void ScreenModel::take(const ScreenSnapshot& snapshot) {
    const Layout layout = korvane::layout(snapshot);
    QList<QString> body;
    for (const std::string& key : snapshot.body) body.append(text(key));

    // The screen under a sheet stays as it was drawn: only the sheet's button is there to be used.
    if (snapshot.sheet) {
        updateSheet(snapshot);
    } else {
        updateControls(snapshot);
    }
    const int filled = boxes_ ? boxes_->filled : 0;
    updateBoxes(snapshot);
    updateBullets(snapshot);
    set(view_, QString::fromStdString(snapshot.view), &ScreenModel::viewChanged);
    set(layout_, layout, &ScreenModel::layoutChanged);
    set(backShown_, snapshot.depth > 0, &ScreenModel::backShownChanged);
    set(image_, QString::fromStdString(snapshot.image), &ScreenModel::imageChanged);
    set(title_, text(layout == Layout::Waiting ? "sdk.onemomentplease" : snapshot.title),
        &ScreenModel::titleChanged);
    set(body_, std::move(body), &ScreenModel::bodyChanged);
    set(toast_, text(snapshot.toast), &ScreenModel::toastChanged);
    set(spinner_, snapshot.spinner, &ScreenModel::spinnerChanged);
    set(sheetOpen_, snapshot.sheet.has_value(), &ScreenModel::sheetOpenChanged);

    const bool emptied = boxes_ && boxes_->filled == 0 && filled > 0;
    const bool refused = !snapshot.message.empty() && (message_.isEmpty() || emptied);
    set(message_, text(snapshot.message), &ScreenModel::messageChanged);
    if (refused) emit entryWanted();
}

void ScreenModel::updateSheet(const ScreenSnapshot& snapshot) {
    set(sheetText_, text(snapshot.sheet->text), &ScreenModel::sheetTextChanged);
    for (const Control& control : snapshot.controls) {
        if (control.id != snapshot.sheet->button) continue;
        if (!sheetButton_ || sheetButton_->id() != control.id) {
            if (sheetButton_) sheetButton_->deleteLater();
            sheetButton_ = makeControl(control, true);
            emit sheetButtonChanged();
        }
        sheetButton_->setUsable(control.enabled);
        sheetButton_->setLabel(label(control, snapshot));
    }
}

void ScreenModel::updateControls(const ScreenSnapshot& snapshot) {
    if (!sameControls(controls_, snapshot.controls)) {
        const QList<ControlModel*> old = std::exchange(controls_, {});
        buttons_.clear();
        for (const Control& control : snapshot.controls) {
            const bool button = control.kind == ControlKind::button;
            ControlModel* const model = makeControl(control, button && buttons_.isEmpty());
            controls_.append(model);
            if (button) buttons_.append(model);
        }
        emit controlsChanged();
        for (ControlModel* const model : old) model->deleteLater();
    }

    for (std::size_t i = 0; i < snapshot.controls.size(); ++i) {
        const Control& control = snapshot.controls[i];
        ControlModel* const model = controls_[static_cast<qsizetype>(i)];
        model->setUsable(control.enabled);
        model->setLabel(label(control, snapshot));
        const bool source = lastUsed_.empty() ? model->primary() : model->id() == lastUsed_;
        model->setBusy(snapshot.spinner && source);
    }
    if (!snapshot.spinner) lastUsed_.clear();
}

ControlModel* ScreenModel::makeControl(const Control& control, bool primary) {
    return new ControlModel(
        control, primary, [this](const std::string& id) { perform(id); }, this);
}

void ScreenModel::updateBullets(const ScreenSnapshot& snapshot) {
    const bool same =
        std::ranges::equal(bulletKeys_, snapshot.bullets, [](const Bullet& one, const Bullet& other) {
            return one.symbol == other.symbol && one.text == other.text;
        });
    if (same) return;
    bulletKeys_ = snapshot.bullets;
    const QList<BulletModel*> old = std::exchange(bullets_, {});
    for (const Bullet& bullet : snapshot.bullets) bullets_.append(new BulletModel(bullet, this));
    emit bulletsChanged();
    for (BulletModel* const bullet : old) bullet->deleteLater();
}

void ScreenModel::updateBoxes(const ScreenSnapshot& snapshot) {
    const auto& next = snapshot.passcode;
    const bool same =
        boxes_.has_value() == next.has_value() &&
        (!next || (boxes_->size == next->size && boxes_->filled == next->filled &&
                   boxes_->firstResponderIndex == next->firstResponderIndex &&
                   boxes_->secure == next->secure && boxes_->visibleDigits == next->visibleDigits));
    if (same) return;
    if (boxes_) wipe(boxes_->visibleDigits);
    boxes_ = next;
    passcodeDescription_ =
        boxes_
            ? text("sdk.accessibility.passcode").arg(text(boxes_->id)).arg(boxes_->filled).arg(boxes_->size)
            : QString();
    emit passcodeChanged();
}

ControlModel* ScreenModel::first(ControlKind kind) const {
    const auto found =
        std::ranges::find_if(controls_, [kind](const ControlModel* c) { return c->kind() == kind; });
    return found == controls_.end() ? nullptr : *found;
}

void ScreenModel::perform(const std::string& controlId) {
    if (!journey_) return;
    if (!spinner_) lastUsed_ = controlId;
    journey_->perform(controlId);
}

void ScreenModel::insertText(std::string_view text) {
    if (journey_) journey_->insertText(text);
}

void ScreenModel::deleteBackward() {
    if (journey_) journey_->deleteBackward();
}

void ScreenModel::submit() {
    if (!buttons_.isEmpty()) buttons_.first()->activate();
}

bool ScreenModel::escape() {
    ControlModel* const control = sheetOpen_ ? sheetButton_ : back();
    if (!control || !control->usable()) return false;
    control->activate();
    return true;
}

}  // namespace korvane
