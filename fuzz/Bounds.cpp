// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Bounds.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <string_view>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVANE_FUZZ_HEAP
#include <sanitizer/allocator_interface.h>
#endif
#endif

namespace korvane::fuzz {
namespace {

constexpr long seconds = 1;
constexpr std::ptrdiff_t heap = 300'000'000;

/// In a signal handler, or inside malloc: nothing is allocated.
[[noreturn]] void finding(std::string_view text) {
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text.data(), text.size());
    __builtin_trap();
}

void setTimer(long limit) {
    itimerval timer{};
    timer.it_value.tv_sec = limit;
    setitimer(ITIMER_PROF, &timer, nullptr);
}

#ifdef KORVANE_FUZZ_HEAP
std::atomic<bool> counts = false;
std::atomic<std::ptrdiff_t> held = 0;

void allocated(const volatile void*, std::size_t size) {
    if (!counts) return;
    if ((held += static_cast<std::ptrdiff_t>(size)) <= heap) return;
    counts = false;
    finding("fuzz: this does not hold: a run holds 300 MB of the heap at most\n");
}

void freed(const volatile void* block) {
    if (!counts || !block) return;
    held -= static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(const_cast<const void*>(block)));
}
#endif

}  // namespace

Bounds::Bounds() {
    signal(SIGPROF, [](int) { finding("fuzz: this does not hold: a run takes 1 s of processor at most\n"); });
    setTimer(seconds);
#ifdef KORVANE_FUZZ_HEAP
    [[maybe_unused]] static const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);
    held = 0;
    counts = true;
#endif
}

Bounds::~Bounds() {
    setTimer(0);
#ifdef KORVANE_FUZZ_HEAP
    counts = false;
#endif
}

}  // namespace korvane::fuzz
