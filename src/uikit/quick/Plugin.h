// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QQmlEngineExtensionPlugin>

/// What "import Korvane" loads in an app that does not link the library. All types are registered by the
/// library when it is loaded.
class KorvanePlugin : public QQmlEngineExtensionPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)

  public:
    explicit KorvanePlugin(QObject* parent = nullptr);
};
