// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace korvane {

/// Wakes a loop at a time of CLOCK_BOOTTIME, the clock that goes on while the device sleeps: what fell due
/// during the sleep is due at the wake-up, not as much later as the sleep took. Header only, for both loops.
class TimerFd {
  public:
    /// Ends the process with a message when the process has no descriptor left: so would either loop.
    TimerFd() : fd_(timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
        if (fd_ >= 0) return;
        std::perror("korvane: timerfd_create");
        std::abort();
    }
    ~TimerFd() { close(fd_); }
    TimerFd(const TimerFd&) = delete;
    TimerFd& operator=(const TimerFd&) = delete;

    /// Becomes readable when a set time has come.
    int fd() const { return fd_; }

    static std::chrono::nanoseconds now() {
        timespec time{};
        clock_gettime(CLOCK_BOOTTIME, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    /// Sets the one time to wake at, or none. A time that is past wakes at once.
    void set(std::optional<std::chrono::nanoseconds> at) {
        itimerspec value{};  // all zero disarms; the clock itself never stands at zero
        if (at) {
            value.it_value.tv_sec = static_cast<time_t>(at->count() / std::nano::den);
            value.it_value.tv_nsec = static_cast<long>(at->count() % std::nano::den);
        }
        timerfd_settime(fd_, TFD_TIMER_ABSTIME, &value, nullptr);
    }

    /// Makes it unreadable until the next set time.
    void acknowledge() {
        std::uint64_t expirations = 0;
        // An answer of "nothing expired" is as good: all that matters is that nothing is left to read.
        [[maybe_unused]] const ssize_t size = read(fd_, &expirations, sizeof expirations);
    }

  private:
    int fd_;
};

}  // namespace korvane
