// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <optional>

#include "tests/support/ScriptedService.h"
#include "uikit/quick/ScreenModel.h"
#include "uikit/quick/Theme.h"

namespace korvane {

/// A window with the module's QML in it, on a scripted service and fake ports
/// but with the English texts. Moves take no time unless a test wants them to.
class QuickFixture : public ::testing::Test {
  protected:
    QuickFixture();
    ~QuickFixture() override;

    /// Shows `SetPIN { cardId: "card-1" }` and lets it settle.
    void showSetPIN(QSize size = {390, 844});
    /// Shows what the QML text makes, which starts with its imports. The root
    /// item fills the window.
    QQuickItem* show(const QByteArray& qml, const QVariantMap& properties, QSize size = {390, 844});

    /// Runs the fake queue and Qt's events until both are empty.
    void settle();
    /// Lets this much time pass for animations.
    void wait(int milliseconds);

    /// The item of that name that a person sees; none when there is none.
    QQuickItem* find(const QString& objectName) const;
    bool usable(const QString& objectName) const;
    /// Presses the middle of the item with a mouse and lets everything settle.
    bool tap(const QString& objectName);
    /// Answers the request that was left hanging last.
    void answer(const UrlReply& reply);
    void key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {});
    void type(const QString& text);
    QString view() const;
    QString text(const QString& objectName) const;  ///< "none" when there is no such item
    ScreenModel* screen() const;
    Theme& theme() const { return *Theme::of(root_); }

    /// Shows the journey, which starts with the PIN entry: the service asks for
    /// no SMS step.
    void toPinEntry();

    /// Every text that QML, a script or an input method can read in the window,
    /// and every accessible one.
    std::pair<QString, QString> readable();
    /// All that a designer would send back: what is cut, sticks out, or is too
    /// small to hit.
    QStringList faults() const;

    ScriptedService service;
    QStringList closed;   ///< results that the item signalled
    QStringList results;  ///< and those that were posted

  private:
    std::shared_ptr<NotificationCenter::Observation> observation_ =
        NotificationCenter::defaultCenter().observe(NotificationCloseUI,
                                                    [this](const NotificationUserInfo& info) {
                                                        results << QString::fromStdString(info.at("result"));
                                                    });
    QQmlEngine engine_;
    QPointer<QQuickItem> root_;

  protected:
    QQuickWindow window;
};

/// Every visible item from `item` down, itself included.
QList<QQuickItem*> visibleItems(QQuickItem* item);

}  // namespace korvane
