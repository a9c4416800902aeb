// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/StdoutConsole.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

namespace korvane::testing {
namespace {

TEST(StdoutConsole, LinesOfManyThreadsDoNotMixHoweverLong) {
    constexpr int threadCount = 4;
    constexpr int perThread = 100;
    const auto text = [](int t, int i) {
        return std::string(static_cast<std::size_t>(i) * 500, static_cast<char>('a' + t));
    };
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);  // takes a long line in pieces, between which others could come
    std::FILE* reader = fdopen(ends[0], "r");
    std::FILE* writer = fdopen(ends[1], "w");
    StdoutConsole console(writer);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < perThread; ++i) console.line(text(t, i));
        });
    }

    std::map<std::string, int> lines;
    std::string line;
    for (int left = threadCount * perThread; left > 0;) {
        const int c = std::fgetc(reader);
        if (c != '\n') {
            line.push_back(static_cast<char>(c));
        } else {
            ++lines[line];
            line.clear();
            --left;
        }
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(lines[""], threadCount);
    for (int t = 0; t < threadCount; ++t) {
        for (int i = 1; i < perThread; ++i) EXPECT_EQ(lines[text(t, i)], 1);
    }
    std::fclose(writer);
    std::fclose(reader);
}

}  // namespace
}  // namespace korvane::testing
