// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Contrast.h>
#include <korvane/Initialize.h>

#include <set>
#include <string>

#include "platform/fakes/FakePorts.h"

namespace korvane {
namespace {

std::string told(const std::vector<ContrastFinding>& findings) {
    std::string text;
    for (const auto& finding : findings) text += finding.foreground + "/" + finding.background + " ";
    return text;
}

TEST(Contrast, FollowsTheFormulaThroughTranslucentColours) {
    const Color white{1, 1, 1}, black{};
    EXPECT_NEAR(contrastRatio(black, white), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(white, black), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Color::rgb8(118, 118, 118), white), 4.54, 0.005);
    EXPECT_NEAR(contrastRatio({0, 0, 0, 0.5}, white), 3.98, 0.005);
    EXPECT_NEAR(contrastRatio(white, {0, 0, 0, 0.5}), 3.98, 0.005) << "a translucent ground lies on white";
    EXPECT_NEAR(contrastRatio({-1, 2, 2}, {0, 1, 1}), 1, 1e-9) << "a host's arithmetic may stray outside";
}

TEST(Contrast, TheAuditListsWhatTheDefaultPaletteLacksAndNothingInTheDarkOne) {
    const auto findings = auditContrast({});
    EXPECT_EQ(told(findings), "error/background onError/error success/background ");
    EXPECT_NEAR(findings[0].ratio, 3.86, 0.005);
    EXPECT_EQ(findings[0].required, 4.5);
    EXPECT_EQ(findings[2].required, 3);
    EXPECT_EQ(told(auditContrast(KorvaneColors::dark())), "");
}

TEST(Contrast, TheAuditLooksAtEveryColour) {
    const Color c{0.5, 0.5, 0.5};
    const KorvaneColors grey{c, c, c, c, c, c, c, c, c, c, c, c, c, c, c};
    std::set<std::string> seen;
    for (const auto& finding : auditContrast(grey)) seen.insert({finding.foreground, finding.background});
    EXPECT_EQ(seen.size(), 15u);
}

#ifndef NDEBUG
TEST(Contrast, DebugBuildsAdviseOnTheConsole) {
    FakePorts device;
    ASSERT_TRUE(initialize("", "", [](const IvReply&) {}, false, {}, {}));
    EXPECT_TRUE(device.console->has("contrast advice: error on background is 3.86:1, below 4.5:1"));
    device.console->clear();
    ASSERT_TRUE(initialize("", "", [](const IvReply&) {}, false, KorvaneColors::dark(), {}));
    for (const std::string& line : device.console->lines()) EXPECT_EQ(line.find("contrast"), line.npos);
}
#endif

}  // namespace
}  // namespace korvane
