// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <array>
#include <fstream>
#include <iterator>
#include <map>

#include "operations/Operations.h"
#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// Request and reply of each example in docs/services.md, by the path in its heading.
std::map<std::string, std::array<std::string, 2>> examples() {
    std::ifstream file(KORVANE_DOCS "/services.md");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::size_t at = 0;
    const auto next = [&](const std::string& begin, const std::string& end) {
        const std::size_t from = text.find(begin, at) + begin.size();
        at = text.find(end, from);
        return text.substr(from, at - from);
    };
    std::map<std::string, std::array<std::string, 2>> found;
    while ((at = text.find("\n### ", at)) != std::string::npos) {
        auto& blocks = found["/api" + next("/api", "`")];
        for (std::string& block : blocks) block = next("```json\n", "```");
    }
    return found;
}

/// The component calls every endpoint with the values of the examples, and gets the replies of the examples.
TEST(WireExamples, AreWhatTheComponentSendsAndUnderstands) {
    const FakePorts device;
    const auto documented = examples();
    ASSERT_EQ(documented.size(), 10u);
    std::map<std::string, std::string> sent;
    device.urlSession->answerWith([&](const UrlRequest& request) -> std::optional<UrlReply> {
        const std::string path = request.url.substr(std::string("https://cards.test").size());
        const bool refused =
            request.headers.front() == std::pair<std::string, std::string>("Authorization", "Bearer ");
        if (!refused) sent[path] = request.body;
        return refused ? UrlReply{401, "", ""} : UrlReply{200, documented.at(path)[1], ""};
    });
    initialize("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8=", "https://cards.test",
               [](const IvReply& reply) { reply("iv-2026-11-21", "8PHy8/T19vf4+fr7/P3+/w=="); }, false, {},
               {});
    SdkConfig& config = SdkConfig::sharedInstance();
    config.cardId = "card-7";
    int succeeded = 0;
    const OperationCompletion done = [&](const KorvaneRetStruct& result) {
        EXPECT_FALSE(result.error) << result.errorMsg;
        ++succeeded;
    };
    const auto finish = [&](const Operation&) { device.mainQueue->runAll(); };
    finish(doPciTokenRequest(done));
    config.twoFactorCode = "493817";
    finish(doPciTokenSubmission(done));
    finish(doGetCardStatus(done));
    finish(doPinSet("1357", done));
    finish(doSetCardStatus("BT", done));
    finish(doCardImage(done));
    finish(doActivatePhysicalCardAndSetPIN("9198", "132", "1357", done));
    finish(doActivateVirtualCardAndSetPIN("1357", done));
    finish(doActivateWearableCardAndSetPIN("1357", done));

    EXPECT_EQ(succeeded, 9);
    EXPECT_EQ(sent.size(), documented.size());
    for (const auto& [path, body] : sent) {
        rapidjson::Document made, shown;
        EXPECT_TRUE(made.Parse(body.c_str()) == shown.Parse(documented.at(path)[0].c_str()))
            << path << " sends " << body;
    }
    EXPECT_EQ(config.currentBearerToken, "bearer-52e0");
    EXPECT_EQ(config.currentPciToken, "pci-3f9a1c");
    EXPECT_EQ(config.decCardStatus, "A1");
    EXPECT_EQ(config.decFirstName + config.decMiddleName + " " + config.decLastName, "Inés Núñez");
    EXPECT_EQ(config.decodedDisclosuresStruct->CardDisclosures->at(0).CardDisclosure, "No fees.");
}

}  // namespace
}  // namespace korvane
