// SPDX-License-Identifier: Apache-2.0
// What one journey at a time prints, sends and shows is as recorded in journeys/*.txt, where lines with "* "
// are the steps. KORVANE_REWRITE_TRANSCRIPTS=1 records them anew, to be reviewed as a diff.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/TemporaryFolder.h"
#include "tests/transcripts/Recording.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

Lines read(const std::string& path) {
    std::ifstream file(path);
    Lines lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

void write(const std::string& path, const Lines& lines) {
    std::ofstream file(path);
    for (const std::string& line : lines) file << line << "\n";
}

/// In a process of its own, so that nothing is left of the journey before.
bool recordInto(const std::string& path, const Lines& steps) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        [&]() noexcept { write(path, record(steps)); }();  // an exception must not reach the test's runner
        std::exit(0);
    }
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

/// The first lines that differ, behind the last ones that do not; "" when none does.
std::string difference(const Lines& was, const Lines& is) {
    const auto [old, now] = std::ranges::mismatch(was, is);
    if (old == was.end() && now == is.end()) return {};
    std::string text = "line " + std::to_string(old - was.begin() + 1) + "\n";
    for (auto each = old - std::min<std::ptrdiff_t>(5, old - was.begin()); each != old; ++each)
        text += "    " + *each + "\n";
    for (auto each = old; each != was.end() && each - old < 3; ++each) text += "  - " + *each + "\n";
    for (auto each = now; each != is.end() && each - now < 3; ++each) text += "  + " + *each + "\n";
    return text;
}

TEST(Transcripts, OneJourneyAtATimeDoesAsRecorded) {
    const bool rewrite = std::getenv("KORVANE_REWRITE_TRANSCRIPTS") != nullptr;
    const testing::TemporaryFolder folder;
    int journeys = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KORVANE_TRANSCRIPTS)) {
        ++journeys;
        SCOPED_TRACE(entry.path().filename());
        const Lines was = read(entry.path());
        Lines is, steps;
        for (const std::string& line : was) {
            if (line.starts_with("# ")) is.push_back(line);
            if (line.starts_with("* ") && line != "* (end)") steps.push_back(line.substr(2));
        }
        if (!recordInto(folder / "played", steps)) {
            ADD_FAILURE() << "the steps cannot be played";
            continue;
        }
        std::ranges::copy(read(folder / "played"), std::back_inserter(is));
        const std::string differs = rewrite ? "" : difference(was, is);
        EXPECT_TRUE(differs.empty()) << differs;
        if (rewrite) write(entry.path(), is);
    }
    EXPECT_GE(journeys, 90) << "recorded journeys are missing";
    if (rewrite) GTEST_SKIP() << "recorded anew";
}

}  // namespace
}  // namespace korvane
