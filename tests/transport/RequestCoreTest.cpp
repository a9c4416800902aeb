// SPDX-License-Identifier: Apache-2.0
#include "transport/RequestCore.h"

#include <chrono>
#include <thread>

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class RequestCore : public ServiceFixture {
  protected:
    CancelHandle request(TextMap body = {}, std::optional<std::string> authorization = std::nullopt) {
        return doRequest<RestPinSet>(
            {"https://cards.example/x", "POST", std::move(body), std::move(authorization)},
            [this](RequestError error) { unauthorized.push_back(std::move(error)); },
            [this](std::optional<RestPinSet> record, std::optional<CallError> error) {
                EXPECT_TRUE(device.mainQueue->isMainThread());
                EXPECT_NE(record.has_value(), error.has_value());
                if (record) records.push_back(*std::move(record));
                if (error) errors.push_back(std::get<RequestError>(*std::move(error)));
            });
    }
    std::size_t ends() const { return records.size() + errors.size() + unauthorized.size(); }

    std::vector<RestPinSet> records;
    std::vector<RequestError> errors;
    std::vector<RequestError> unauthorized;
};

TEST_F(RequestCore, SendsAJsonBodyWithTheTrackingIdAndTheBrand) {
    config.trackingUUID = "uuid";
    config.brandId = "brand \"A\"";
    TextMap body;
    body.set("brandId", "other");
    body.set("encryptedPIN", "a+b/c=");
    request(body, "Bearer t");
    request();
    const auto& requests = device.urlSession->requests();
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].url, "https://cards.example/x");
    EXPECT_EQ(requests[0].body, R"({"brandId":"brand \"A\"","encryptedPIN":"a+b/c=","UUID":"uuid"})");
    EXPECT_THAT(requests[0].headers, testing::ElementsAre(testing::Pair("Authorization", "Bearer t"),
                                                          testing::Pair("Content-Type", "application/json"),
                                                          testing::Pair("Accept", "application/json")));
    EXPECT_EQ(requests[1].headers.size(), 2u);
}

TEST_F(RequestCore, TurnsAnAnswerIntoARecordOrAnError) {
    willAnswer({{200, R"({"encryptedResult":"r"})", ""},
                {500, "oops", ""},
                {418, "", ""},
                {200, "", ""},
                {200, R"({"encryptedResult":5})", ""},
                {0, "", "name not found"}});
    for (int i = 0; i < 6; ++i) request();
    EXPECT_EQ(ends(), 0u);
    settle();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].encryptedResult, "r");
    struct Expected {
        int code;
        std::string reason;
        std::optional<std::string> body;
    };
    const Expected expected[] = {{500, "status code = 500", "oops"},
                                 {418, "status code = 418", ""},
                                 {-1, "The document is empty. (at byte 0)", std::nullopt},
                                 {-1, "the value of \"encryptedResult\" is not a text", std::nullopt},
                                 {-1, "name not found", std::nullopt}};
    ASSERT_EQ(errors.size(), std::size(expected));
    for (std::size_t i = 0; i < errors.size(); ++i) {
        EXPECT_EQ(errors[i].domain, "");
        EXPECT_EQ(errors[i].code, expected[i].code);
        EXPECT_EQ(errors[i].userInfo.at("Error"), expected[i].reason);
        EXPECT_EQ(errors[i].body, expected[i].body);
    }
    EXPECT_TRUE(device.console->has(". JSON decode error: The document is empty. (at byte 0)"));
}

TEST_F(RequestCore, LogsAndKeepsTheBodyOfEveryAnswer) {
    request();
    device.urlSession->reply(0, {403, "{}", ""});
    settle();
    EXPECT_EQ(lines(), (std::vector<std::string>{"inside doRequest<T: ...>",
                                                 "Status code and JSON response at base:\n", "403", "{}"}));
    EXPECT_EQ(config.lastJsonResponseStr, "{}");
    request();
    device.urlSession->reply(1, {200, "\xFF", ""});
    settle();
    EXPECT_TRUE(device.console->has("1 bytes, not UTF-8"));
    EXPECT_EQ(config.lastJsonResponseStr, "\xFF");
    request();
    device.urlSession->reply(2, {0, "", "reset"});
    settle();
    EXPECT_EQ(config.lastJsonResponseStr, "\xFF");
}

TEST_F(RequestCore, A401RunsTheClosureInPlaceOfTheCompletion) {
    willAnswer({{401, "who?", ""}});
    request();
    settle();
    ASSERT_EQ(unauthorized.size(), 1u);
    EXPECT_EQ(ends(), 1u);
    EXPECT_EQ(unauthorized[0].body, "who?");
    EXPECT_EQ(lines().back(), "Got 401... calling reAuthClosure...");
    EXPECT_EQ(config.lastJsonResponseStr, "who?");
}

TEST_F(RequestCore, ABodyThatCannotBeWrittenIsNotSent) {
    config.brandId = "\xC0\xAF";
    request();
    EXPECT_EQ(ends(), 0u);
    settle();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, -1);
    EXPECT_EQ(errors[0].userInfo.at("Error"),
              "Dictionary serialization error: the entry \"brandId\" is not UTF-8");
    EXPECT_EQ(device.urlSession->startedCount(), 0u);
}

TEST_F(RequestCore, CancellingLetsGoAtOnceAndReportsLater) {
    const CancelHandle open = request();
    open->cancel();
    open->cancel();
    EXPECT_TRUE(device.urlSession->wasCancelled(0));
    EXPECT_EQ(ends(), 0u);
    settle();

    // The answer is on the main queue already.
    const CancelHandle answered = request();
    device.urlSession->reply(1, {200, "{}", ""});
    device.mainQueue->runOne();
    answered->cancel();
    settle();
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(ends(), 2u);
    EXPECT_EQ(errors[0].code, -999);
    EXPECT_EQ(errors[1].code, -999);
    answered->cancel();
    settle();
    EXPECT_EQ(ends(), 2u);
}

/// Answers from a thread of its own, as a real session does.
class ThreadedSession final : public UrlSession {
  public:
    std::unique_ptr<UrlTask> start(UrlRequest, std::function<void(UrlReply)> reply) override {
        struct Task final : UrlTask {
            ~Task() override { thread.join(); }
            std::thread thread;
        };
        auto task = std::make_unique<Task>();
        task->thread = std::thread{[reply = std::move(reply)] { reply({200, "{}", ""}); }};
        return task;
    }
};

TEST_F(RequestCore, AnswersMayComeOnAnyThread) {
    installPorts({.mainQueue = device.mainQueue,
                  .timers = device.timers,
                  .urlSession = std::make_shared<ThreadedSession>(),
                  .console = device.console});
    for (int i = 0; i < 50; ++i) {
        const CancelHandle handle = request();
        if (i % 2) handle->cancel();
    }
    while (ends() < 50) device.mainQueue->runOne();
    EXPECT_EQ(records.size(), 25u);
    EXPECT_EQ(errors.size(), 25u);
}

}  // namespace
}  // namespace korvane
