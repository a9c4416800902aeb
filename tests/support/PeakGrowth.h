// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <fstream>
#include <string>

namespace korvane::testing {

/// How much more memory the process held since this was made than at that time, at most (proc(5): VmHWM,
/// which clear_refs resets). 0 under a sanitizer, whose own memory would count.
class PeakGrowth {
  public:
    PeakGrowth() {
        std::ofstream("/proc/self/clear_refs") << 5;
        begin_ = peak();
    }
    long mebibytes() const {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        return 0;
#else
        return (peak() - begin_) / 1024;
#endif
    }

  private:
    static long peak() {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("VmHWM:")) return std::atol(line.c_str() + 6);
        }
        return 0;
    }

    long begin_ = 0;
};

}  // namespace korvane::testing
