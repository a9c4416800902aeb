// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/Timers.h>

#include <chrono>
#include <cmath>
#include <concepts>
#include <limits>
#include <memory>
#include <vector>

namespace korvane::testing {

/// What the suite has to be given: the timers, and a hand on the time. Every case makes a driver of its own,
/// on the main thread, and stays there.
/// - `timers`, a `std::shared_ptr` which alone owns the timers: an action destroys them.
/// - `pass(time)` lets a `std::chrono::duration<double>` pass in the loop and fires what falls due in it. An
///   action may call it. A clock of the test's own may stand in for the real one.
template <class Driver>
concept TimersDriver = std::default_initializable<Driver> && requires(Driver driver) {
    { *driver.timers } -> std::convertible_to<Timers&>;
    driver.timers.reset();
    driver.pass(std::chrono::duration<double>());
};

/// What all timers keep to. Instantiate it within `korvane::testing`:
/// `INSTANTIATE_TYPED_TEST_SUITE_P(Mine, TimersContract, MyDriver);`
/// @tparam Driver  a `TimersDriver`
template <class Driver>
class TimersContract : public ::testing::Test {
    static_assert(TimersDriver<Driver>);

  protected:
    /// What delays are given in.
    using Seconds = std::chrono::duration<double>;
    /// Long for a loop that has nothing else to do.
    static constexpr Seconds moment{0.01};

    /// Starts a timer that notes `name`.
    std::unique_ptr<Timer> note(Seconds delay, int name) {
        return driver.timers->start(delay, [this, name] { fired.push_back(name); });
    }

    /// Made anew for each case.
    Driver driver;
    /// The names that were noted, in the order in which their timers fired.
    std::vector<int> fired;
};

/// @cond cases: their names say what a port must do
TYPED_TEST_SUITE_P(TimersContract);

TYPED_TEST_P(TimersContract, AReleasedTimerNeverFires) {
    using namespace std::chrono_literals;
    std::vector<std::unique_ptr<Timer>> handles;
    // Fires first, and releases others that are due in the same turn, or later.
    const auto first = this->driver.timers->start(-1s, [&handles] {
        for (std::size_t i = 0; i < 100; ++i) handles[i].reset();
    });
    for (int i = 0; i < 200; ++i) handles.push_back(this->note(i % 2 ? 5ms : 0ms, i));
    handles.resize(150);
    this->driver.pass(this->moment * 2);
    EXPECT_EQ(this->fired.size(), 50u);
    for (const int name : this->fired) EXPECT_TRUE(name >= 100 && name < 150) << name;
}

TYPED_TEST_P(TimersContract, FiresInTheOrderOfDueTimesThenOfStarting) {
    const auto begin = this->driver.timers->now();
    std::vector<std::unique_ptr<Timer>> handles;
    for (const auto& [delay, name] : {std::pair{0.03, 3}, {0.01, 1}, {0.02, 2}, {0.03, 4}}) {
        handles.push_back(this->driver.timers->start(
            std::chrono::duration<double>(delay), [=, name = name, delay = delay, this] {
                EXPECT_GE(this->driver.timers->now() - begin, std::chrono::duration<double>(delay));
                this->fired.push_back(name);
            }));
    }
    this->driver.pass(this->moment * 6);
    EXPECT_EQ(this->fired, (std::vector{1, 2, 3, 4}));
}

TYPED_TEST_P(TimersContract, ADelayOfNothingOrLessFiresOnTheNextTurnAndOneTooLongHoldsNothingUp) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<std::unique_ptr<Timer>> handles;
    for (const double seconds : {1e10, 1e300, infinity})
        handles.push_back(this->note(std::chrono::duration<double>(seconds), 0));
    for (const double seconds : {0.0, -1.0, -1e300, -infinity, std::nan(""), 1e-12, 1e-7, 1e-4})
        handles.push_back(this->note(std::chrono::duration<double>(seconds), 1));
    EXPECT_TRUE(this->fired.empty());  // never from inside start
    this->driver.pass(this->moment);
    EXPECT_EQ(this->fired, std::vector(8, 1));
}

TYPED_TEST_P(TimersContract, AnActionMayReleaseItsOwnHandleAndStartAgain) {
    std::unique_ptr<Timer> handle;
    int count = 0;
    std::function<void()> again = [&] {
        handle.reset();
        if (++count < 50) handle = this->driver.timers->start({}, [&] { again(); });
    };
    handle = this->driver.timers->start({}, [&] { again(); });
    this->driver.pass(this->moment * 5);
    EXPECT_EQ(count, 50);
    EXPECT_EQ(handle, nullptr);
}

TYPED_TEST_P(TimersContract, AnActionMayWaitInANestedLoopForAnother) {
    const auto a = this->driver.timers->start({}, [this] {
        this->driver.pass(this->moment);
        this->fired.push_back(2);
    });
    const auto b = this->note({}, 1);
    this->driver.pass(this->moment);
    EXPECT_EQ(this->fired, (std::vector{1, 2}));
}

TYPED_TEST_P(TimersContract, HandlesMayOutliveTheTimers) {
    auto held = std::make_shared<int>();
    const auto killer = this->driver.timers->start({}, [this] { this->driver.timers.reset(); });
    const auto victim = this->driver.timers->start({}, [this, held] { this->fired.push_back(*held); });
    this->driver.pass(this->moment);
    EXPECT_TRUE(this->fired.empty());
    EXPECT_EQ(held.use_count(), 1) << "a dropped action stays in memory";
}

REGISTER_TYPED_TEST_SUITE_P(TimersContract, AReleasedTimerNeverFires, FiresInTheOrderOfDueTimesThenOfStarting,
                            ADelayOfNothingOrLessFiresOnTheNextTurnAndOneTooLongHoldsNothingUp,
                            AnActionMayReleaseItsOwnHandleAndStartAgain,
                            AnActionMayWaitInANestedLoopForAnother, HandlesMayOutliveTheTimers);
/// @endcond

}  // namespace korvane::testing
