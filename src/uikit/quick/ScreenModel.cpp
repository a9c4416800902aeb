// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/ScreenModel.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/Secret.h"
#include "sdk/ChangeNotifications.h"
#include "uikit/quick/Paragraphs.h"

namespace korvane {
namespace {

constexpr std::string_view revealControl = "sdk.cardviewer.device.details.reveal";
constexpr std::string_view freezeControl = "sdk.cardviewer.card.activateAndSetPin.freezeMyCard";

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
    if (control.id == revealControl && control.on) return text("sdk.cardviewer.device.details.hide");
    if (control.id == "sdk.sms.code.resend") {
        const int seconds = stateNumber(snapshot, "resendSeconds");
        if (seconds > 0) return text("sdk.sms.code.resendIn").arg(seconds);
    }
    return text(control.id);
}

ScreenModel::Layout layout(const ScreenSnapshot& snapshot) {
    if (snapshot.passcode) return ScreenModel::Layout::Entry;
    if (snapshot.card) return ScreenModel::Layout::Viewer;
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

const Control ScreenModel::windowClose{"window.close", ControlKind::close, true};

ScreenModel::ScreenModel(QObject* parent)
    : QObject(parent),
      language_(NotificationCenter::defaultCenter().observe(NotificationLanguageChanged,
                                                            [this](const auto&) { retranslate(); })) {}

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

void ScreenModel::retranslate() {
    if (!journey_) return;
    const ScreenSnapshot snapshot = journey_->screen();
    bulletKeys_.clear();
    describeBoxes();
    for (ControlModel* const model : std::as_const(controls_)) {
        // Those under a sheet too, which the snapshot leaves out.
        model->setLabel(label({model->id(), model->kind(), model->usable(), model->on()}, snapshot));
        emit model->busyChanged();
    }
    take(snapshot);
    for (DetailModel* const detail : std::as_const(details_)) emit detail->changed();
    emit card_.changed();
}

void ScreenModel::take(const ScreenSnapshot& snapshot) {
    const Layout layout = korvane::layout(snapshot);
    QList<QString> body;
    for (const std::string& key : snapshot.body) body.append(text(key));

    // The screen under a sheet or a question stays as it was drawn: only their buttons are there to be used.
    if (snapshot.sheet) {
        updateSheet(snapshot);
    } else if (snapshot.popup) {
        updatePopup(snapshot);
    } else {
        updateControls(snapshot);
    }
    updateCard(snapshot);
    const int filled = boxes_ ? boxes_->filled : 0;
    updateBoxes(snapshot);
    updateBullets(snapshot);
    set(view_, QString::fromStdString(snapshot.view), &ScreenModel::viewChanged);
    set(layout_, layout, &ScreenModel::layoutChanged);
    set(backShown_, snapshot.depth > 0, &ScreenModel::backShownChanged);
    set(image_, QString::fromStdString(snapshot.image), &ScreenModel::imageChanged);
    timeSpinner(snapshot.spinner);
    set(title_, text(layout == Layout::Waiting ? waitingText() : snapshot.title), &ScreenModel::titleChanged);
    set(body_, std::move(body), &ScreenModel::bodyChanged);
    const bool tellsSlow = slow_ && layout != Layout::Waiting && snapshot.toast.empty();
    set(toast_, text(tellsSlow ? waitingText() : snapshot.toast), &ScreenModel::toastChanged);
    set(spinner_, snapshot.spinner, &ScreenModel::spinnerChanged);
    set(popupOpen_, snapshot.popup.has_value(), &ScreenModel::popupOpenChanged);
    set(sheetOpen_, snapshot.sheet.has_value(), &ScreenModel::sheetOpenChanged);

    const bool emptied = boxes_ && boxes_->filled == 0 && filled > 0;
    const bool refused = !snapshot.message.empty() && (message_.isEmpty() || emptied);
    set(message_, text(snapshot.message), &ScreenModel::messageChanged);
    if (refused) emit entryWanted();
}

std::string_view ScreenModel::waitingText() const {
    return slow_ ? "sdk.takinglonger" : "sdk.onemomentplease";
}

/// A cardholder on a bad line hears that it goes on.
void ScreenModel::timeSpinner(bool spinner) {
    if (!spinner) {
        slow_ = false;
        slowTimer_.reset();
    } else if (!slow_ && !slowTimer_) {
        slowTimer_ = ports().timers->start(std::chrono::seconds(10), [this] {
            slow_ = true;
            if (layout_ == Layout::Waiting) {
                set(title_, text(waitingText()), &ScreenModel::titleChanged);
            } else if (toast_.isEmpty()) {
                set(toast_, text(waitingText()), &ScreenModel::toastChanged);
            }
        });
    }
}

void ScreenModel::updateSheet(const ScreenSnapshot& snapshot) {
    set(sheetText_, text(snapshot.sheet->text), &ScreenModel::sheetTextChanged);
    ControlModel* const before = sheetButton_;
    replace(sheetButton_, snapshot.sheet->button, true, snapshot);
    if (sheetButton_ != before) emit sheetButtonChanged();
}

void ScreenModel::updatePopup(const ScreenSnapshot& snapshot) {
    popupHeader_ = text(snapshot.popup->header);
    popupBody_ = text(snapshot.popup->body);
    replace(popupConfirm_, snapshot.popup->confirm, true, snapshot);
    replace(popupCancel_, snapshot.popup->cancel, false, snapshot);
    emit popupChanged();
}

void ScreenModel::replace(ControlModel*& model, const std::string& id, bool primary,
                          const ScreenSnapshot& snapshot) {
    const auto control = std::ranges::find(snapshot.controls, id, &Control::id);
    if (control == snapshot.controls.end()) return;
    if (!model || model->id() != id) {
        if (model) model->deleteLater();
        model = makeControl(*control, primary);
    }
    model->setUsable(control->enabled);
    model->setLabel(label(*control, snapshot));
}

void ScreenModel::updateCard(const ScreenSnapshot& snapshot) {
    card_.update(snapshot.card.value_or(CardFace{}), find(snapshot.card ? snapshot.card->button : ""));
    set(disclosure_, paragraphs(QString::fromStdString(snapshot.disclosureText)),
        &ScreenModel::disclosureChanged);
    const bool same = std::ranges::equal(
        details_, snapshot.rows,
        [](const DetailModel* model, const DetailRow& row) { return model->id() == row.id; });
    if (!same) {
        const QList<DetailModel*> old = std::exchange(details_, {});
        for (const DetailRow& row : snapshot.rows) details_.append(new DetailModel(row, find(row.id), this));
        emit detailsChanged();
        for (DetailModel* const detail : old) detail->deleteLater();
    }
    for (std::size_t i = 0; i < snapshot.rows.size(); ++i)
        details_[static_cast<qsizetype>(i)]->update(snapshot.rows[i], find(snapshot.rows[i].id));
}

void ScreenModel::forgetSecrets() {
    for (DetailModel* const detail : details_) detail->forgetSecret();
}

void ScreenModel::updateControls(const ScreenSnapshot& snapshot) {
    if (!sameControls(controls_, snapshot.controls)) {
        const QList<ControlModel*> old = std::exchange(controls_, {});
        buttons_.clear();
        for (const Control& control : snapshot.controls) {
            const bool button = control.kind == ControlKind::button;
            ControlModel* const model = makeControl(control, button && buttons_.isEmpty());
            controls_.append(model);
            // The viewer's stands on the card.
            if (button && !snapshot.card) buttons_.append(model);
        }
        emit controlsChanged();
        for (ControlModel* const model : old) model->deleteLater();
    }

    for (std::size_t i = 0; i < snapshot.controls.size(); ++i) {
        const Control& control = snapshot.controls[i];
        ControlModel* const model = controls_[static_cast<qsizetype>(i)];
        model->setUsable(control.enabled);
        model->setLabel(label(control, snapshot));
        model->setOn(control.on);
        const bool source = snapshot.card       ? model->id() == freezeControl
                            : lastUsed_.empty() ? model->primary()
                                                : model->id() == lastUsed_;
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
    describeBoxes();
}

void ScreenModel::describeBoxes() {
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

ControlModel* ScreenModel::find(std::string_view id) const {
    const auto found = std::ranges::find(controls_, id, &ControlModel::id);
    return found == controls_.end() ? nullptr : *found;
}

ControlModel* ScreenModel::revealSwitch() const {
    return find(revealControl);
}

ControlModel* ScreenModel::freezeSwitch() const {
    return find(freezeControl);
}

void ScreenModel::perform(const std::string& controlId) {
    if (!journey_) return;
    if (controlId == windowClose.id) return journey_->close();
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
    ControlModel* const control = popupOpen_ ? popupCancel_ : sheetOpen_ ? sheetButton_ : back();
    if (!control || !control->usable()) return false;
    control->activate();
    return true;
}

}  // namespace korvane
