// SPDX-License-Identifier: Apache-2.0
#include "transport/RequestCore.h"

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::ElementsAre;
using testing::Pair;

class RequestCore : public ServiceFixture {
  protected:
    CancelHandle request(TextMap body = {}, std::optional<std::string> authorization = std::nullopt) {
        return doRequest<RestPinSet>(
            {"https://cards.example/x", "POST", std::move(body), std::move(authorization)},
            [this](const RequestError& error) { ends.push_back("reAuth " + describe(error)); },
            [this](std::optional<RestPinSet> record, std::optional<CallError> error) {
                EXPECT_TRUE(device.mainQueue->isMainThread());
                EXPECT_NE(record.has_value(), error.has_value());
                ends.push_back(record ? record->encryptedResult.value_or("-")
                                      : describe(std::get<RequestError>(*error)));
            });
    }
    static std::string describe(const RequestError& error) {
        return error.domain + std::to_string(error.code) + " " + error.userInfo.at("Error") +
               (error.body ? ": " + *error.body : "");
    }

    std::vector<std::string> ends;
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
    EXPECT_EQ(requests[0].method + " " + requests[0].url, "POST https://cards.example/x");
    EXPECT_EQ(requests[0].body, R"({"brandId":"brand \"A\"","encryptedPIN":"a+b/c=","UUID":"uuid"})");
    EXPECT_THAT(requests[0].headers,
                ElementsAre(Pair("Authorization", "Bearer t"), Pair("Content-Type", "application/json"),
                            Pair("Accept", "application/json")));
    EXPECT_EQ(requests[1].headers.size(), 2u);

    config.brandId = "\xC0\xAF";
    request();
    EXPECT_TRUE(ends.empty());
    settle();
    EXPECT_THAT(ends, ElementsAre("-1 Dictionary serialization error: the entry \"brandId\" is not UTF-8"));
    EXPECT_EQ(device.urlSession->startedCount(), 2u);
}

TEST_F(RequestCore, TurnsAnAnswerIntoARecordOrAnErrorAndKeepsItsBody) {
    const std::tuple<UrlReply, std::string, std::string> cases[] = {
        {{200, R"({"encryptedResult":"r"})", ""}, "r", R"(|200|{"encryptedResult":"r"})"},
        {{500, "oops", ""}, "500 status code = 500: oops", "|500|oops"},
        {{418, "\xFF", ""}, "418 status code = 418: \xFF", "|418|1 bytes, not UTF-8"},
        {{401, "?", ""}, "reAuth 401 status code = 401: ?", "|401|?|Got 401... calling reAuthClosure..."},
        {{200, "5", ""}, "-1 not a JSON object", "|200|5|. JSON decode error: not a JSON object"},
        {{0, "", "name not found"}, "-1 name not found", "no response: name not found"},
    };
    for (const auto& [reply, end, lines] : cases) {
        willAnswer({reply});
        ends.clear();
        request();
        EXPECT_TRUE(ends.empty());
        settle();
        EXPECT_THAT(ends, ElementsAre(end));
        const std::string answered = reply.answered() ? "Status code and JSON response at base:\n" : "";
        EXPECT_EQ(printed(), "inside doRequest<T: ...>|" + answered + lines);
        EXPECT_EQ(config.lastJsonResponseStr, reply.answered() ? reply.body : "5") << "the last there was";
    }
}

}  // namespace
}  // namespace korvane
