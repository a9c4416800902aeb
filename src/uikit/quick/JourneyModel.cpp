// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/JourneyModel.h"

#include <algorithm>

#include "base/Secret.h"

namespace korvane {
namespace {

JourneyKind toCore(JourneyModel::Kind kind) {
    switch (kind) {
        case JourneyModel::Kind::SetPIN:
            return JourneyKind::setPIN;
        case JourneyModel::Kind::ActivateCardAndSetPIN:
            return JourneyKind::activateCardAndSetPIN;
        case JourneyModel::Kind::GetCardImage:
            return JourneyKind::getCardImage;
    }
    return JourneyKind::setPIN;
}

}  // namespace

JourneyModel::JourneyModel(QObject* parent) : QObject(parent) {}

JourneyModel::~JourneyModel() {
    stop();
}

void JourneyModel::setKind(Kind kind) {
    if (kind_ == kind) return;
    kind_ = kind;
    emit kindChanged();
    start();
}

void JourneyModel::setCardId(const QString& cardId) {
    if (cardId_ == cardId) return;
    cardId_ = cardId;
    emit cardIdChanged();
    start();
}

void JourneyModel::setVisible(bool visible) {
    if (visible_ == visible) return;
    visible_ = visible;
    emit visibleChanged();
    if (!visible_) hideSensitive();
    appear();
}

void JourneyModel::setClosable(bool closable) {
    if (closable_ == closable) return;
    closable_ = closable;
    emit closableChanged();
    if (journey_) show();
}

void JourneyModel::setWindow(QWindow* window) {
    if (window_ == window) return;
    if (window_) disconnect(window_, nullptr, this, nullptr);
    window_ = window;
    if (window_) {
        connect(window_, &QWindow::activeChanged, this, [this] {
            if (!window_->isActive()) hideSensitive();
        });
        connect(window_, &QWindow::visibilityChanged, this, [this](QWindow::Visibility visibility) {
            if (visibility == QWindow::Hidden || visibility == QWindow::Minimized) hideSensitive();
        });
    }
    hideSensitive();
    emit windowChanged();
}

void JourneyModel::hideSensitive() {
    if (journey_) journey_->hideSensitive();
}

void JourneyModel::componentComplete() {
    complete_ = true;
    start();
}

void JourneyModel::start() {
    if (!complete_) return;
    stop();
    closing_ = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [this](const NotificationUserInfo& userInfo, JourneyId journey) {
            if (journey == journeyId()) emit closed(QString::fromStdString(userInfo.at("result")));
        });
    journey_ = std::make_unique<Journey>(toCore(kind_), cardId_.toStdString());
    journey_->onChange([this] { show(); });
    show();
    appear();
}

void JourneyModel::appear() {
    if (!visible_ || !journey_) return;
    journey_->appear();
    emit appeared();
}

void JourneyModel::close() {
    if (journey_) journey_->close();
}

void JourneyModel::stop() {
    for (ScreenModel* const screen : {&even_, &odd_}) {
        screen->attach(nullptr);
        screen->forgetSecrets();
    }
    closing_.reset();
    journey_.reset();
    instance_ = 0;
}

void JourneyModel::show() {
    ScreenSnapshot snapshot = journey_->screen();
    const auto closes = [](const Control& control) { return control.kind == ControlKind::close; };
    if (closable_ && snapshot.depth == 0 && !snapshot.popup && !snapshot.sheet &&
        std::ranges::none_of(snapshot.controls, closes))
        snapshot.controls.insert(snapshot.controls.begin(), ScreenModel::windowClose);
    const auto wipeSecrets = [&snapshot] {
        for (DetailRow& row : snapshot.rows) wipe(row.value);
    };
    if (snapshot.instance == instance_) {
        current_->update(snapshot);
        return wipeSecrets();
    }

    const bool first = instance_ == 0;
    move_ = first                     ? Move::None
            : snapshot.depth > depth_ ? Move::Push
            : snapshot.depth < depth_ ? Move::Pop
                                      : Move::Replace;
    instance_ = snapshot.instance;
    depth_ = snapshot.depth;
    current_->attach(nullptr);
    if (!first) current_ = current_ == &even_ ? &odd_ : &even_;
    current_->attach(journey_.get());
    current_->load(snapshot);
    wipeSecrets();
    emit moved();
}

}  // namespace korvane
