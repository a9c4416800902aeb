// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Contrast.h>
#include <korvane/Initialize.h>

#include <set>
#include <string>

#include "platform/fakes/FakePorts.h"

namespace korvane {
namespace {

TEST(Contrast, FollowsTheFormulaThroughTranslucentColours) {
    const Color white{1, 1, 1}, black{};
    EXPECT_NEAR(contrastRatio(black, white), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Color::rgb8(118, 118, 118), white), 4.54, 0.005);
    EXPECT_NEAR(contrastRatio({0, 0, 0, 0.5}, white), 3.98, 0.005);
    EXPECT_NEAR(contrastRatio(white, {0, 0, 0, 0.5}), 3.98, 0.005) << "a translucent ground lies on white";
    EXPECT_NEAR(contrastRatio({-1, 2, 2}, {0, 1, 1}), 1, 1e-9) << "a host's arithmetic may stray outside";
}

TEST(Contrast, TheAuditLooksAtEveryColourAndListsWhatAPaletteLacks) {
    const Color c{0.5, 0.5, 0.5};
    const KorvaneColors grey{c, c, c, c, c, c, c, c, c, c, c, c, c, c, c};
    std::set<std::string> seen;
    for (const auto& finding : auditContrast(grey)) seen.insert({finding.foreground, finding.background});
    EXPECT_EQ(seen.size(), 15u);

    std::string told;
    for (const auto& [foreground, background, ratio, required] : auditContrast({}))
        told += std::string{foreground} + "/" + background + (required == 4.5 ? " text, " : " shape, ");
    EXPECT_EQ(told, "error/background text, onError/error text, success/background shape, ");
    EXPECT_TRUE(auditContrast(KorvaneColors::dark()).empty());
}

#ifndef NDEBUG
TEST(Contrast, DebugBuildsAdviseOnTheConsole) {
    const FakePorts device;
    ASSERT_TRUE(initialize("", "", [](const IvReply&) {}, false, {}, {}));
    EXPECT_TRUE(device.console->has("contrast advice: error on background is 3.86:1, below 4.5:1"));
}
#endif

}  // namespace
}  // namespace korvane
