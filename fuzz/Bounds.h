// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane::fuzz {

/// A run, while this stands, is a finding when it takes more than 1 s of processor time on all threads, or,
/// under the address checker, holds 300 MB more of the heap than when this was made. The checker's own
/// memory (shadow, red zones, quarantine) does not count.
class Bounds {
  public:
    Bounds();
    ~Bounds();
    Bounds(const Bounds&) = delete;
};

}  // namespace korvane::fuzz
