// SPDX-License-Identifier: Apache-2.0
#include <korvane/QtPorts.h>

#include <QGuiApplication>

#include "tests/support/LogOfABuild.h"

namespace korvane::testing {
namespace {

TEST(BUILD, OfQtPorts) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    EXPECT_PORTS_TO_LOG_BY_BUILD(qtPorts);
}

}  // namespace
}  // namespace korvane::testing
