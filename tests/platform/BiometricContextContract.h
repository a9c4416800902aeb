// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/BiometricContext.h>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>

namespace korvane::testing {

/// What every biometric check keeps to. A driver has `std::shared_ptr<BiometricContext> context`, which can
/// evaluate, `answer(match)`, which has the user touch the reader, `runUntil(condition)` and `settle()`,
/// which gives a stray reply its chance.
template <class Driver>
class BiometricContextContract : public ::testing::Test {
  protected:
    Driver driver;
};
TYPED_TEST_SUITE_P(BiometricContextContract);

TYPED_TEST_P(BiometricContextContract, AReleasedCheckNeverReplies) {
    std::atomic<int> replies = 0;
    for (int round = 0; round < 50; ++round) {
        auto target = std::make_unique<int>(0);  // goes with the check: a late reply is a use after free
        auto check = this->driver.context->evaluate("reason", [p = target.get(), &replies](bool) {
            ++*p;
            ++replies;
        });
        if (round % 2) this->driver.answer(true);
        check.reset();
        target.reset();
    }
    const int before = replies;
    this->driver.settle();
    EXPECT_EQ(replies, before);
}

TYPED_TEST_P(BiometricContextContract, RepliesTrueOnAMatchAlone) {
    ASSERT_TRUE(this->driver.context->canEvaluate());
    for (const bool match : {true, false}) {
        std::atomic<int> replies = 0;
        std::atomic<bool> got = !match;
        auto check = this->driver.context->evaluate("reason", [&](bool success) {
            got = success;
            ++replies;
        });
        EXPECT_EQ(replies, 0);  // never from inside
        this->driver.answer(match);
        this->driver.runUntil([&] { return replies > 0; });
        EXPECT_EQ(got, match);
        this->driver.settle();
        EXPECT_EQ(replies, 1);
    }
}

TYPED_TEST_P(BiometricContextContract, ACheckMayBeReleasedInItsOwnReply) {
    auto held = std::make_shared<int>();
    std::unique_ptr<BiometricEvaluation> check;
    std::atomic<bool> replied = false;
    check = this->driver.context->evaluate("reason", [&, held](bool) {
        check.reset();
        replied = true;
    });
    this->driver.answer(true);
    this->driver.runUntil([&] { return replied.load() && held.use_count() == 1; });
    EXPECT_EQ(check, nullptr);
    EXPECT_EQ(held.use_count(), 1) << "a reply stays in memory after it ran";
}

REGISTER_TYPED_TEST_SUITE_P(BiometricContextContract, AReleasedCheckNeverReplies, RepliesTrueOnAMatchAlone,
                            ACheckMayBeReleasedInItsOwnReply);

}  // namespace korvane::testing
