// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/BiometricContext.h>

#include <atomic>
#include <memory>

namespace korvane::testing {

/// What befalls a check that is under way.
enum class Happening { match, noMatch, retryThenMatch, cancel, lostReader };

/// What every biometric check keeps to. A driver has `std::shared_ptr<BiometricContext> context`, which can
/// evaluate, `has(happening)`, which befalls the oldest check, `forgetFingers()`, `runUntil(condition)` and
/// `settle()`, which gives a stray reply its chance.
template <class Driver>
class BiometricContextContract : public ::testing::Test {
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
    void expectUnavailable() {
        driver.runUntil([this] { return !driver.context->canEvaluate(); });
        EXPECT_FALSE(answer([] {}));
    }

    Driver driver;
};
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

}  // namespace korvane::testing
