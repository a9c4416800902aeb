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
    update(snapshot);
    emit loaded();
}

void ScreenModel::update(const ScreenSnapshot& snapshot) {
    QStringList body;
    for (const std::string& key : snapshot.body) body.append(text(key));

    updateControls(snapshot);
    updateBullets(snapshot);
    updateBoxes(snapshot);
    set(view_, QString::fromStdString(snapshot.view), &ScreenModel::viewChanged);
    set(layout_, korvane::layout(snapshot), &ScreenModel::layoutChanged);
    set(image_, QString::fromStdString(snapshot.image), &ScreenModel::imageChanged);
    set(title_, text(snapshot.title), &ScreenModel::titleChanged);
    set(body_, std::move(body), &ScreenModel::bodyChanged);
    set(toast_, text(snapshot.toast), &ScreenModel::toastChanged);
    set(spinner_, snapshot.spinner, &ScreenModel::spinnerChanged);
    if (snapshot.sheet) set(sheetText_, text(snapshot.sheet->text), &ScreenModel::sheetTextChanged);
    set(sheetOpen_, snapshot.sheet.has_value(), &ScreenModel::sheetOpenChanged);

    const bool refused = message_.isEmpty() && !snapshot.message.empty() && boxes_;
    set(message_, text(snapshot.message), &ScreenModel::messageChanged);
    if (refused) emit entryWanted();
}

void ScreenModel::updateControls(const ScreenSnapshot& snapshot) {
    const std::string sheetButtonId = snapshot.sheet ? snapshot.sheet->button : std::string();
    if (!sameControls(controls_, snapshot.controls)) {
        const QList<ControlModel*> old = std::exchange(controls_, {});
        buttons_.clear();
        for (const Control& control : snapshot.controls) {
            const bool button = control.kind == ControlKind::button && control.id != sheetButtonId;
            const bool primary = button && buttons_.isEmpty();
            const auto kept = std::ranges::find_if(old, [&](const ControlModel* model) {
                return model->id() == control.id && model->kind() == control.kind && model->primary() == primary;
            });
            ControlModel* const model =
                kept != old.end()
                    ? *kept
                    : new ControlModel(control, primary, [this](const std::string& id) { perform(id); }, this);
            controls_.append(model);
            if (button) buttons_.append(model);
        }
        if (!sheetButtonId.empty()) set(sheetButton_, find(sheetButtonId), &ScreenModel::sheetButtonChanged);
        emit controlsChanged();
        for (ControlModel* const model : old) {
            if (controls_.contains(model)) continue;
            model->setUsable(false);
            if (model != sheetButton_) model->deleteLater();
        }
    }

    for (std::size_t i = 0; i < snapshot.controls.size(); ++i) {
        const Control& control = snapshot.controls[i];
        ControlModel* const model = controls_[static_cast<qsizetype>(i)];
        model->setUsable(control.enabled);
        model->setLabel(korvane::label(control, snapshot));
        const bool source = lastUsed_.empty() ? model->primary() : model->id() == lastUsed_;
        model->setBusy(snapshot.spinner && source);
    }
    if (!snapshot.spinner) lastUsed_.clear();
}

void ScreenModel::updateBullets(const ScreenSnapshot& snapshot) {
    const bool same = std::ranges::equal(
        bulletKeys_, snapshot.bullets,
        [](const Bullet& one, const Bullet& other) { return one.symbol == other.symbol && one.text == other.text; });
    if (same) return;
    bulletKeys_ = snapshot.bullets;
    const QList<BulletModel*> old = std::exchange(bullets_, {});
    for (const Bullet& bullet : snapshot.bullets) bullets_.append(new BulletModel(bullet, this));
    emit bulletsChanged();
    for (BulletModel* const bullet : old) bullet->deleteLater();
}

void ScreenModel::updateBoxes(const ScreenSnapshot& snapshot) {
    const auto& next = snapshot.passcode;
    const bool same = boxes_.has_value() == next.has_value() &&
                      (!next || (boxes_->size == next->size && boxes_->filled == next->filled &&
                                 boxes_->firstResponderIndex == next->firstResponderIndex &&
                                 boxes_->secure == next->secure && boxes_->visibleDigits == next->visibleDigits));
    if (same) return;
    if (boxes_) wipe(boxes_->visibleDigits);
    boxes_ = next;
    passcodeDescription_ =
        boxes_ ? text("sdk.accessibility.passcode").arg(text(boxes_->id)).arg(boxes_->filled).arg(boxes_->size)
               : QString();
    emit passcodeChanged();
}

ControlModel* ScreenModel::first(ControlKind kind) const {
    const auto found = std::ranges::find_if(controls_, [kind](const ControlModel* c) { return c->kind() == kind; });
    return found == controls_.end() ? nullptr : *found;
}

ControlModel* ScreenModel::find(std::string_view id) const {
    const auto found = std::ranges::find_if(controls_, [id](const ControlModel* c) { return c->id() == id; });
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
    if (!control || !control->usable()) return sheetOpen_;
    control->activate();
    return true;
}

}  // namespace korvane
