// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/StdoutConsole.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {
namespace {

TEST(StdoutConsole, LinesOfManyThreadsDoNotMixHoweverLong) {
    const TemporaryFolder folder;
    // A pipe takes a long line in pieces, between which others could come.
    std::FILE* const pipe = popen(("cat > " + folder / "lines").c_str(), "w");
    StdoutConsole console(pipe);
    std::vector<std::jthread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([&console, letter] {
            for (std::size_t i = 0; i < 100; ++i) console.line(std::string(i * 500, letter));
        });
    }
    threads.clear();
    pclose(pipe);
    std::ifstream file(folder / "lines");
    std::set<std::string> lines;
    for (std::string line; std::getline(file, line); lines.insert(line))
        EXPECT_EQ(line, std::string(line.size(), line.empty() ? ' ' : line[0]));
    EXPECT_EQ(lines.size(), 1u + 4 * 99);
}

}  // namespace
}  // namespace korvane::testing
