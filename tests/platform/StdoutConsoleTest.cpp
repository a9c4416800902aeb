// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/StdoutConsole.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <ext/stdio_filebuf.h>
#include <istream>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace korvane::testing {
namespace {

TEST(StdoutConsole, LinesOfManyThreadsDoNotMixHoweverLong) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);  // takes a long line in pieces, between which others could come
    std::FILE* const writer = fdopen(ends[1], "w");
    StdoutConsole console(writer);
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([&console, letter] {
            for (std::size_t i = 0; i < 100; ++i) console.line(std::string(i * 500, letter));
        });
    }
    std::thread end([&] {
        for (auto& thread : threads) thread.join();
        std::fclose(writer);
    });
    __gnu_cxx::stdio_filebuf<char> buffer(ends[0], std::ios::in);
    std::istream reader(&buffer);
    std::set<std::string> lines;
    for (std::string line; std::getline(reader, line);) {
        EXPECT_EQ(line, std::string(line.size(), line.empty() ? ' ' : line[0]));
        lines.insert(line);
    }
    EXPECT_EQ(lines.size(), 1u + 4 * 99);
    end.join();
}

}  // namespace
}  // namespace korvane::testing
