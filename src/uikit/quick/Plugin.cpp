// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Plugin.h"

void qml_register_types_Korvane();

KorvanePlugin::KorvanePlugin(QObject* parent) : QQmlEngineExtensionPlugin(parent) {
    volatile auto registration = &qml_register_types_Korvane;  // or the linker leaves the library out
    Q_UNUSED(registration)
}
