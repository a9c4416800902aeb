// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/BiometricContext.h>

#include <atomic>
#include <concepts>
#include <functional>
#include <memory>
#include <utility>

namespace korvane::testing {

/// What befalls a check that is under way.
enum class Happening {
    match,           ///< the owner's finger, or face
    noMatch,         ///< another's, until the reader gives up
    retryThenMatch,  ///< one that could not be read, then the owner's
    cancel,          ///< the person declines
    lostReader,      ///< the reader goes away, and stays away
};

/// What the suite has to be given: the check, and a reader that does what it is told. Every case makes a
/// driver of its own, on the main thread.
/// - `context`, a pointer of any kind. At first there is a reader, and a finger is enrolled.
/// - `has(happening)` lets this befall the oldest check that is still open, once the reader waits for it.
/// - `forgetFingers()` takes the enrolled fingers away.
/// - `runUntil(condition)` turns the main loop until the condition holds, for 20 s at most.
/// - `settle()` gives a reply that should not come its chance: it turns the loop until the reader is at rest.
template <class Driver>
concept BiometricContextDriver = std::default_initializable<Driver> &&
    requires(Driver driver, bool (*condition)()) {
    { *driver.context } -> std::convertible_to<BiometricContext&>;
    driver.has(Happening::match);
    driver.forgetFingers();
    driver.runUntil(condition);
    driver.settle();
};

/// What every biometric check keeps to. Instantiate it within `korvane::testing`:
/// `INSTANTIATE_TYPED_TEST_SUITE_P(Mine, BiometricContextContract, MyDriver);`
/// @tparam Driver  a `BiometricContextDriver`
template <class Driver>
class BiometricContextContract : public ::testing::Test {
    static_assert(BiometricContextDriver<Driver>);

  protected:
    /// What a check answers.
    bool answer(const std::function<void()>& meanwhile) {
        std::atomic<int> replies = 0;
        std::atomic<bool> matched = false;
        const auto check = driver.context->evaluate("reason", [&](bool success) {
            matched = success;
            ++replies;
        });
        EXPECT_EQ(replies, 0) << "never from inside";
        meanwhile();
        driver.runUntil([&] { return replies > 0; });
        driver.settle();
        EXPECT_EQ(replies, 1);
        return matched;
    }
    /// Waits until there is no check to be had, and tries one all the same.
    void expectUnavailable() {
        driver.runUntil([this] { return !driver.context->canEvaluate(); });
        EXPECT_FALSE(answer([] {}));
    }

    /// Made anew for each case.
    Driver driver;
};

/// @cond cases: their names say what a port must do
TYPED_TEST_SUITE_P(BiometricContextContract);

TYPED_TEST_P(BiometricContextContract, RepliesTrueOnAMatchAlone) {
    ASSERT_TRUE(this->driver.context->canEvaluate());
    for (const auto& [happening, matched] : {std::pair{Happening::match, true},
                                             {Happening::noMatch, false},
                                             {Happening::retryThenMatch, true},
                                             {Happening::cancel, false},
                                             {Happening::lostReader, false}}) {
        EXPECT_EQ(this->answer([&, one = happening] { this->driver.has(one); }), matched);
    }
    this->expectUnavailable();
}

TYPED_TEST_P(BiometricContextContract, WithoutAFingerThereIsNoCheck) {
    this->driver.forgetFingers();
    this->expectUnavailable();
}

TYPED_TEST_P(BiometricContextContract, AReleasedCheckNeverReplies) {
    std::atomic<int> replies = 0;
    for (int round = 0; round < 50; ++round) {
        auto target = std::make_unique<int>(0);  // goes with the check: a late reply is a use after free
        auto check = this->driver.context->evaluate("reason", [p = target.get(), &replies](bool) {
            ++*p;
            ++replies;
        });
        if (round % 2) this->driver.has(Happening::match);
        check.reset();
        target.reset();
    }
    const int before = replies;
    this->driver.settle();
    EXPECT_EQ(replies, before);
}

TYPED_TEST_P(BiometricContextContract, ACheckMayBeReleasedInItsOwnReply) {
    const auto held = std::make_shared<int>();
    std::unique_ptr<BiometricEvaluation> check;
    std::atomic<bool> replied = false;
    check = this->driver.context->evaluate("reason", [&, held](bool) {
        check.reset();
        replied = true;
    });
    this->driver.has(Happening::match);
    this->driver.runUntil([&] { return replied.load() && held.use_count() == 1; });
    EXPECT_EQ(held.use_count(), 1) << "a reply stays in memory after it ran";
}

REGISTER_TYPED_TEST_SUITE_P(BiometricContextContract, RepliesTrueOnAMatchAlone, WithoutAFingerThereIsNoCheck,
                            AReleasedCheckNeverReplies, ACheckMayBeReleasedInItsOwnReply);
/// @endcond

}  // namespace korvane::testing
