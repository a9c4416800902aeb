// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
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

    /// Shows what the QML text makes, on which lie the fixture's imports. The root item fills the window.
    QQuickItem* show(const QByteArray& qml, QSize size = {390, 844}, const QVariantMap& properties = {});
    /// Shows the journey, which starts with the PIN entry: the service asks for no SMS step.
    QQuickItem* toPinEntry(QSize size = {390, 844});

    /// Runs the fake queue and Qt's events until both are empty.
    void settle();
    void wait(int milliseconds) { QTest::qWait(milliseconds); }  ///< for animations

    /// The item of that name that a person sees; none when there is none.
    QQuickItem* find(const QString& objectName) const;
    QPointF middle(const QString& objectName) const;  ///< in the window
    /// Presses the middle of the item with a mouse and lets everything settle.
    bool tap(const QString& objectName);
    void key(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {});
    void type(const QString& text);
    /// One thing after the other: "type 1357", "key Esc", else a tap on the item of that name, which must be
    /// there. Behind " > " stands the view that must then be seen.
    void walk(const QStringList& steps);
    QString view() const;
    QString text(const QString& objectName) const;  ///< "none" when there is no such item
    QString focused() const;                        ///< name of the item that has the keys
    ScreenModel* screen() const;
    int filled() const { return screen()->boxes() ? screen()->boxes()->filled : -1; }
    Theme& theme() const { return *Theme::of(root_); }

    /// Every text that QML, a script or an input method can read in the window, and every accessible one.
    std::pair<QString, QString> readable();
    /// All that a designer would send back: what is cut, sticks out, or is too small to hit.
    QStringList faults() const;

    ScriptedService service;
    QStringList results;  ///< of the close notifications

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

}  // namespace korvane
