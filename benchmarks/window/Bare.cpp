// SPDX-License-Identifier: Apache-2.0
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

int main(int argc, char** argv) {
    const QGuiApplication app(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(QUrl("qrc:/qt-project.org/imports/KorvaneBare/Bare.qml"));
    auto* const window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    window->resize(390, 844);
    window->show();
    return QGuiApplication::exec();
}
