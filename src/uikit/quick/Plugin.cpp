// SPDX-License-Identifier: Apache-2.0
#include <QQmlEngineExtensionPlugin>

void qml_register_types_Korvane();

/// What "import Korvane" loads in an app that does not link the library: all types are registered by the
/// library when it is loaded, and the call keeps the linker from leaving the library out.
class KorvanePlugin : public QQmlEngineExtensionPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)

  public:
    explicit KorvanePlugin(QObject* parent = nullptr) : QQmlEngineExtensionPlugin(parent) {
        volatile auto registration = &qml_register_types_Korvane;
        Q_UNUSED(registration)
    }
};

#include "Plugin.moc"
