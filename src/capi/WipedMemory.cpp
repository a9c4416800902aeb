// SPDX-License-Identifier: Apache-2.0
#include "capi/WipedMemory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/Secret.h"

namespace korvane {
namespace {

/// In front of each block, which stays aligned for any type: `free` alone does not know a block's size.
struct alignas(std::max_align_t) Header {
    std::size_t size;
};

}  // namespace

void* WipedMemory::allocate(std::size_t size) noexcept {
    if (size == 0 || size > SIZE_MAX - sizeof(Header)) return nullptr;
    auto* const header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header) return nullptr;
    header->size = size;
    return header + 1;
}

void* WipedMemory::Realloc(void* memory, std::size_t oldSize, std::size_t newSize) {
    void* const grown = allocate(newSize);
    if (memory && grown) std::memcpy(grown, memory, std::min(oldSize, newSize));
    if (grown || newSize == 0) Free(memory);
    return grown;
}

void WipedMemory::Free(void* memory) noexcept {
    if (!memory) return;
    Header* const header = static_cast<Header*>(memory) - 1;
    wipe(memory, header->size);
    std::free(header);
}

}  // namespace korvane
