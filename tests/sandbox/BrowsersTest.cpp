// SPDX-License-Identifier: Apache-2.0
// What pages of elsewhere can have a browser of this machine do.
#include <regex>

#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

const std::string rule = R"({"endpoint":"*","status":500})";

struct Browsers : ::testing::TestWithParam<bool> {
    std::string origin(const std::string& host) const {
        return (GetParam() ? "https://" : "http://") + host +
               bench.service.url().substr(bench.service.url().rfind(':'));
    }
    int status(const std::string& method, const std::string& path, const Texts& headers) {
        const auto answer = bench.client.send(method, path, method == "POST" ? rule : "", headers);
        if (answer.status == 403) {
            EXPECT_TRUE(answer.fields.contains("error") && answer.fields.size() == 1) << answer.body;
        }
        return answer.status;
    }
    std::string rules() { return bench.client.send("GET", "/host/faults").body; }
    std::string host(const std::string& name) const { return origin(name).substr(origin("").find("//") + 2); }

    Bench bench{{.tls = GetParam()}};
};
INSTANTIATE_TEST_SUITE_P(Over, Browsers, ::testing::Bool(),
                         [](const auto& tls) { return tls.param ? "TLS" : "PlainHTTP"; });

TEST_P(Browsers, APageOfAnotherOriginCanNeitherChangeNorRead) {
    for (const std::string& foreign :
         {origin("evil.example"), std::string("null"), std::string("https://localhost:1"),
          std::string("https://localhost"), std::string("x")}) {
        for (const char* const path : {"/host/faults", "/host/reset", "/host/iv", "/host/sms"})
            EXPECT_EQ(status("POST", path, {{"Origin", foreign}, {"Content-Type", "text/plain"}}), 403)
                << foreign;
        EXPECT_EQ(status("DELETE", "/host/faults", {{"Origin", foreign}}), 403);
        EXPECT_EQ(status("GET", "/host/cards", {{"Origin", foreign}}), 403);
        EXPECT_EQ(status("GET", "/", {{"Origin", foreign}}), 403) << "the token is in it";
    }
    EXPECT_EQ(rules(), "[]");
}

TEST_P(Browsers, ANameThatWasReboundToThisMachineReadsNothing) {
    for (const char* const name :
         {"evil.example", "localhost.evil.example", "evil.example@localhost", "127.0.0.1.evil.example"}) {
        for (const char* const path :
             {"/", "/host/cards", "/host/cards/card-physical-active", "/host/journal"})
            EXPECT_EQ(status("GET", path, {{"Host", host(name)}}), 403) << name;
        EXPECT_EQ(status("POST", "/host/faults", {{"Host", host(name)}, {"Origin", origin(name)}}), 403);
        EXPECT_EQ(status("POST", "/api/sdk/getCardStatus", {{"Host", host(name)}}), 403);
    }
    EXPECT_EQ(rules(), "[]");
    for (const char* const name : {"localhost", "LOCALHOST", "127.0.0.1", "[::1]"})
        EXPECT_EQ(status("GET", "/host/cards", {{"Host", host(name)}}), 200) << name;
    EXPECT_EQ(status("GET", "/host/cards", {{"Host", "localhost:1"}}), 200) << "through korvane-wire";
}

TEST_P(Browsers, TheOwnPageChangesThingsWithItsTokenAndOtherProgramsWithoutOne) {
    const std::string page = bench.client.send("GET", "/").body;
    std::smatch token;
    ASSERT_TRUE(std::regex_search(page, token, std::regex("\"Korvane-Token\": \"([0-9a-f]{32})\"")));
    const std::string own = origin("localhost");
    EXPECT_EQ(status("GET", "/host/cards", {{"Origin", own}}), 200);
    for (const std::string& wrong : {std::string(), std::string(32, '0'), token[1].str() + "0"})
        EXPECT_EQ(status("POST", "/host/faults", {{"Origin", own}, {"Korvane-Token", wrong}}), 403);
    EXPECT_EQ(rules(), "[]");
    EXPECT_EQ(status("POST", "/host/faults", {{"Origin", own}, {"Korvane-Token", token[1]}}), 200);
    EXPECT_NE(rules(), "[]");
    EXPECT_EQ(status("DELETE", "/host/faults", {}), 200);
    EXPECT_EQ(rules(), "[]");
}

}  // namespace
}  // namespace korvane::sandbox
