// SPDX-License-Identifier: Apache-2.0
#include "transport/RequestCore.h"

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::ElementsAre;

class RequestCore : public ServiceFixture {
  protected:
    CancelHandle request(TextMap body = {}) {
        return doRequest<RestPinSet>(
            {"https://cards.example/x", "POST", std::move(body), std::nullopt},
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

TEST_F(RequestCore, SendsTheTrackingIdAndTheBrandInTheBodyIfTheyAreUtf8) {
    config.trackingUUID = "uuid";
    config.brandId = "brand \"A\"";
    TextMap body;
    body.set("brandId", "other");
    request(body);
    EXPECT_EQ(device.urlSession->requests()[0].body, R"({"brandId":"brand \"A\"","UUID":"uuid"})");
    config.brandId = "\xC0\xAF";
    request();
    EXPECT_TRUE(ends.empty());
    settle();
    EXPECT_THAT(ends, ElementsAre("-1 Dictionary serialization error: the entry \"brandId\" is not UTF-8"));
    EXPECT_EQ(device.urlSession->startedCount(), 1u);
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
