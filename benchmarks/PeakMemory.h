// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>

namespace korvane::bench {

/// The most bytes that the work held at a time of what it allocated by `new`, as the allocator counts them.
/// One thread.
std::size_t peakMemory(const std::function<void()>& work);

}  // namespace korvane::bench
