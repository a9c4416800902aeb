// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/DesktopSettings.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <algorithm>

namespace korvane {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");

const QStringList groups{QStringLiteral("org.freedesktop.appearance"),
                         QStringLiteral("org.gnome.desktop.interface"),
                         QStringLiteral("org.kde.kdeglobals.KDE")};

/// Connecting without one would start a bus of our own.
bool hasSessionBus() {
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFile::exists(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/bus");
}

}  // namespace

DesktopSettings::DesktopSettings(QObject* parent) : QObject(parent) {
    if (QScreen* const screen = QGuiApplication::primaryScreen())
        connect(screen, &QScreen::logicalDotsPerInchChanged, this, &DesktopSettings::changed);
    if (hasSessionBus()) watchPortal();
}

void DesktopSettings::watchPortal() {
    qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this, SLOT(take(QDBusMessage)));

    QDBusMessage ask = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    ask << groups;
    auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(ask), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QMap<QString, QVariantMap>> reply = *answer;
        if (reply.isError()) return;  // no portal
        for (const QVariantMap& group : reply.value()) values_.insert(group);
        emit changed();
    });
}

void DesktopSettings::take(const QDBusMessage& signal) {
    const QList<QVariant> arguments = signal.arguments();
    if (arguments.size() != 3 || !groups.contains(arguments[0].toString())) return;
    values_.insert(arguments[1].toString(), arguments[2].value<QDBusVariant>().variant());
    emit changed();
}

double DesktopSettings::textScale() const {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const double dots = screen ? screen->logicalDotsPerInchY() / 96 : 1;
    return std::max({1.0, dots, values_.value(QStringLiteral("text-scaling-factor"), 1).toDouble()});
}

bool DesktopSettings::reducedMotion() const {
    return values_.value(QStringLiteral("reduced-motion"), 0).toUInt() == 1 ||
           !values_.value(QStringLiteral("enable-animations"), true).toBool() ||
           values_.value(QStringLiteral("AnimationDurationFactor"), 1).toDouble() == 0;
}

}  // namespace korvane
