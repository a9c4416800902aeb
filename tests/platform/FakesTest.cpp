// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "platform/fakes/FakePorts.h"
#include "tests/platform/BiometricContextContract.h"
#include "tests/platform/MainQueueContract.h"
#include "tests/platform/SecureItemStoreContract.h"
#include "tests/platform/TimersContract.h"
#include "tests/platform/UrlSessionContract.h"

namespace korvane::testing {
namespace {

using ::testing::ElementsAre;

struct FakeQueueDriver {
    std::shared_ptr<FakeMainQueue> queue = std::make_shared<FakeMainQueue>();

    void turn() {
        while (queue && queue->runOne()) continue;
    }
    template <class Condition>
    void runUntil(Condition condition) {
        while (!condition()) {
            if (!queue->runOne()) std::this_thread::yield();
        }
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, MainQueueContract, FakeQueueDriver);

struct FakeTimersDriver {
    std::shared_ptr<FakeTimers> timers = std::make_shared<FakeTimers>();
    void pass(std::chrono::duration<double> time) { timers->advance(time); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, TimersContract, FakeTimersDriver);

struct FakeSessionDriver : FakeQueueDriver {
    std::shared_ptr<FakeUrlSession> session = std::make_shared<FakeUrlSession>(queue);

    FakeSessionDriver() {
        session->answerWith([](const UrlRequest& request) -> std::optional<UrlReply> {
            if (request.url.ends_with("/answer")) return UrlReply{202, "hello " + request.body, ""};
            if (request.url.ends_with("/failure")) return UrlReply{0, "", "connection reset"};
            return std::nullopt;
        });
    }
    std::string url(const std::string& path) const { return "https://service.test" + path; }
    void settle() { turn(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, UrlSessionContract, FakeSessionDriver);

struct FakeStoreDriver {
    std::shared_ptr<SecureItemStore> store = std::make_shared<FakeSecureItemStore>();
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, SecureItemStoreContract, FakeStoreDriver);

struct FakeBiometricDriver : FakeQueueDriver {
    std::shared_ptr<FakeBiometricContext> context = std::make_shared<FakeBiometricContext>(queue);
    void answer(bool match) { context->answer(match); }
    void settle() { turn(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, BiometricContextContract, FakeBiometricDriver);

// What only a fake does: the parts that other tests lean on.

TEST(FakeTimers, TheClockShowsEachDueTimeWhileItsTimerFires) {
    FakeTimers timers;
    const auto begin = timers.now();
    std::vector<double> seen;
    const auto note = [&] { seen.push_back(std::chrono::duration<double>(timers.now() - begin).count()); };
    const auto a = timers.start(std::chrono::seconds(60), note);
    std::unique_ptr<Timer> c;
    const auto b =
        timers.start(std::chrono::seconds(20), [&] { c = timers.start(std::chrono::seconds(20), note); });
    EXPECT_EQ(timers.pending(), 2u);
    timers.advance(std::chrono::seconds(100));
    EXPECT_THAT(seen, ElementsAre(40, 60));
    EXPECT_EQ(timers.now() - begin, std::chrono::seconds(100));
    EXPECT_EQ(timers.pending(), 0u);
}

TEST(FakeUrlSession, AnswersByHandOnceAndTellsCancelledFromAnswered) {
    const auto queue = std::make_shared<FakeMainQueue>();
    FakeUrlSession session(queue);
    std::vector<std::string> got;
    const auto start = [&](const char* url) {
        return session.start({"POST", url, {}, ""}, [&got](UrlReply reply) { got.push_back(reply.body); });
    };
    auto first = start("https://a"), second = start("https://b"), third = start("https://c");
    EXPECT_TRUE(session.reply(1, {200, "b", ""}));
    EXPECT_FALSE(session.reply(1, {200, "again", ""}));
    EXPECT_TRUE(session.reply(2, {200, "c", ""}));
    first.reset();
    third.reset();  // its reply is queued, and still must not run
    queue->runAll();
    second.reset();
    EXPECT_THAT(got, ElementsAre("b"));
    EXPECT_FALSE(session.reply(0, {200, "a", ""}));
    EXPECT_TRUE(session.wasCancelled(0));
    EXPECT_FALSE(session.wasCancelled(1));
    EXPECT_TRUE(session.wasCancelled(2));
    EXPECT_EQ(session.requests()[2].url, "https://c");
    session.recordRequests(false);
    const auto unrecorded = start("https://d");
    EXPECT_EQ(session.startedCount(), 4u);
    EXPECT_EQ(session.requests().size(), 3u);
    EXPECT_TRUE(session.reply(3, {200, "d", ""}));
}

TEST(FakeSecureItemStore, ScriptedStatusesReplaceCallsOneEach) {
    FakeSecureItemStore store;
    store.failNext({-1, secureItemSuccess, secureItemNotAvailable});
    EXPECT_EQ(store.add("s", "a", "v"), -1);
    EXPECT_TRUE(store.items().empty());
    EXPECT_EQ(store.add("s", "a", "v"), secureItemSuccess);
    EXPECT_EQ(store.copy("s", "a").status, secureItemNotAvailable);
    EXPECT_EQ(store.copy("s", "a").value, "v");
}

TEST(FakeBiometricContext, AnswersTheOldestOpenCheckAndFailsWhenNotAvailable) {
    const auto queue = std::make_shared<FakeMainQueue>();
    FakeBiometricContext context(queue);
    std::vector<std::pair<int, bool>> got;
    const auto check = [&](int n) {
        return context.evaluate("reason", [&got, n](bool match) { got.emplace_back(n, match); });
    };
    auto first = check(1);
    const auto second = check(2), third = check(3);
    first.reset();
    EXPECT_TRUE(context.answer(true));
    context.setAvailable(false);
    const auto fourth = check(4);
    EXPECT_TRUE(context.answer(false));
    EXPECT_FALSE(context.answer(true));
    queue->runAll();
    EXPECT_THAT(got, ElementsAre(std::pair(2, true), std::pair(4, false), std::pair(3, false)));
    EXPECT_EQ(context.reasons().size(), 4u);
}

}  // namespace
}  // namespace korvane::testing
