// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/PeakMemory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

bool counting = false;
std::ptrdiff_t held = 0;
std::ptrdiff_t most = 0;

}  // namespace

// Every `new` of the program comes here. While nothing is counted that costs one comparison.

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size);
    if (!memory) throw std::bad_alloc();
    if (counting) {
        held += static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
        most = std::max(most, held);
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    if (counting) held -= static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

std::size_t korvane::bench::peakMemory(const std::function<void()>& work) {
    held = 0;
    most = 0;
    counting = true;
    work();
    counting = false;
    return static_cast<std::size_t>(most);
}
