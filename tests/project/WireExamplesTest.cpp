// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <fstream>
#include <map>

#include "operations/Operations.h"
#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

struct Example {
    rapidjson::Document request;
    std::string reply;
};

/// The examples of docs/services.md by the path in their heading: two blocks of JSON, request and reply.
std::map<std::string, Example> examples() {
    std::ifstream file(KORVANE_DOCS "/services.md");
    std::map<std::string, Example> found;
    std::string line, path, block;
    bool inBlock = false;
    while (std::getline(file, line)) {
        if (line.starts_with("### "))
            path = line.substr(line.find("/api"), line.rfind('`') - line.find("/api"));
        if (inBlock && line == "```") {
            Example& example = found[path];
            if (example.request.IsNull()) {
                example.request.Parse(block.c_str());
            } else {
                example.reply = block;
            }
        }
        inBlock = line == "```json" || (inBlock && line != "```");
        block = line == "```json" ? "" : block + line + "\n";
    }
    return found;
}

/// The component calls every endpoint with the values of the examples, and gets the replies of the examples.
TEST(WireExamples, AreWhatTheComponentSendsAndUnderstands) {
    const FakePorts device;
    auto documented = examples();
    ASSERT_EQ(documented.size(), 10u);
    std::map<std::string, std::string> sent;
    device.urlSession->answerWith([&](const UrlRequest& request) -> std::optional<UrlReply> {
        const std::string path = request.url.substr(std::string("https://cards.test").size());
        const bool refused =
            request.headers.front() == std::pair<std::string, std::string>("Authorization", "Bearer ");
        if (!refused) sent[path] = request.body;
        return refused ? UrlReply{401, "", ""} : UrlReply{200, documented.at(path).reply, ""};
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
        rapidjson::Document json;
        json.Parse(body.c_str());
        EXPECT_TRUE(json == documented.at(path).request) << path << " sends " << body;
    }
    EXPECT_EQ(config.currentBearerToken, "bearer-52e0");
    EXPECT_EQ(config.currentPciToken, "pci-3f9a1c");
    EXPECT_EQ(config.decCardStatus, "A1");
    EXPECT_EQ(config.decFirstName + config.decMiddleName + " " + config.decLastName, "Inés Núñez");
    EXPECT_EQ(config.decodedDisclosuresStruct->CardDisclosures->at(0).CardDisclosure, "No fees.");
}

}  // namespace
}  // namespace korvane
