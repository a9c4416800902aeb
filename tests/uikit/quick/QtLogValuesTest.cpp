// SPDX-License-Identifier: Apache-2.0
// Compiled twice, with the adapter: as a release build and as one for development.
#include <gtest/gtest.h>
#include <korvane/QtPorts.h>

#include <QGuiApplication>

#include "platform/Log.h"

#ifdef NDEBUG
#define BUILD LogOfAReleaseBuild
#else
#define BUILD LogOfADevelopmentBuild
#endif

namespace korvane::testing {
namespace {

bool showsValues(Ports ports) {
    installPorts(std::move(ports));
    ::testing::internal::CaptureStdout();
    log({"pin = ", std::string("7391")});
    const std::string text = ::testing::internal::GetCapturedStdout();
    uninstallPorts();
    EXPECT_TRUE(text.starts_with("pin = ")) << text;
    return text == "pin = 7391\n";
}

TEST(BUILD, OfQtPorts) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 0;
    QGuiApplication app(argc, nullptr);
#ifdef NDEBUG
    const bool showsByBuild = false;
#else
    const bool showsByBuild = true;
#endif
    EXPECT_EQ(showsValues(qtPorts()), showsByBuild);
    EXPECT_EQ(showsValues(qtPorts({})), showsByBuild);
    EXPECT_EQ(showsValues(qtPorts("")), showsByBuild);
    EXPECT_EQ(showsValues(qtPorts(std::string())), showsByBuild);
    EXPECT_EQ(showsValues(qtPorts({.caFile = ""})), showsByBuild);
    EXPECT_FALSE(showsValues(qtPorts({.caFile = "", .logValues = LogValues::masked})));
    EXPECT_TRUE(showsValues(qtPorts({.logValues = LogValues::clear})));
}

}  // namespace
}  // namespace korvane::testing
