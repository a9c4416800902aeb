// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace korvane {

/// Memory that is zeroed before it is freed: what a host is handed, and the buffers behind it. Any thread. It
/// has the shape of RapidJSON's allocators, so that a JSON buffer that grows leaves nothing behind either.
class WipedMemory {
  public:
    static constexpr bool kNeedFree = true;

    /// Null when `size` is 0 or memory is short, as RapidJSON wants it.
    void* Malloc(std::size_t size) { return allocate(size); }
    void* Realloc(void* memory, std::size_t oldSize, std::size_t newSize);
    static void Free(void* memory) noexcept;

    static void* allocate(std::size_t size) noexcept;
};

}  // namespace korvane
