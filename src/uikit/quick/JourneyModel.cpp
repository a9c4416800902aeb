// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/JourneyModel.h"

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
    closing_ = NotificationCenter::defaultCenter().observe(NotificationCloseUI, [this](const auto& userInfo) {
        const auto result = userInfo.find("result");
        emit closed(result == userInfo.end() ? QString() : QString::fromStdString(result->second));
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
