// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace korvane::bench {

/// A figure of /proc/self/smaps_rollup by its name ("Pss:"), in KiB; 0 when there is none.
inline long memoryKib(const char* name) {
    long size = 0;
    char line[256];
    if (std::FILE* const file = std::fopen("/proc/self/smaps_rollup", "r")) {
        while (std::fgets(line, sizeof line, file)) {
            if (std::strncmp(line, name, std::strlen(name)) == 0)
                size = std::strtol(line + std::strlen(name), nullptr, 10);
        }
        std::fclose(file);
    }
    return size;
}

}  // namespace korvane::bench
