// SPDX-License-Identifier: Apache-2.0
#include <korvane/Journey.h>
#include <korvane/platform/RedactingConsole.h>

#include "platform/Background.h"
#include "tests/support/PeakGrowth.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class Bodies : public ServiceFixture {
  protected:
    Bodies() {
        willAnswer({});
        device.urlSession->recordRequests(false);
    }

    using Start = Handle (*)(StatePtr, OperationCompletion);
    static Handle pinSet(StatePtr of, OperationCompletion done) {
        return doPinSet(std::move(of), "1357", std::move(done));
    }

    /// Starts the operation; the service answers with this body.
    void run(Start start, int status, std::string body) {
        underWay = start(state, [this](const KorvaneRetStruct& record) {
            ends.push_back(record.error ? record.errorMsg : "success");
        });
        device.urlSession->reply(device.urlSession->startedCount() - 1,
                                 UrlReply{status, std::move(body), {}});
    }

    /// The session replies, and the request core takes the reply: reading begins.
    void arrive() { EXPECT_TRUE(device.mainQueue->runOne() && device.mainQueue->runOne()); }

    Handle underWay;
    std::vector<std::string> ends;
};

constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// `unit` as often as it fits, between the two.
std::string filled(std::size_t size, std::string begin, const std::string& unit, const std::string& end) {
    begin.reserve(size);
    while (begin.size() + unit.size() + end.size() <= size) begin += unit;
    return begin + end;
}

TEST_F(Bodies, OfMoreThanAMebibyteAreReadOffTheMainThread) {
    const auto bodyOf = [this](std::size_t size) {
        return filled(size, "{\"encryptedResult\":\"" + encipher("Success") + "\",\"x\":\"", "k", "\"}");
    };
    run(pinSet, 200, bodyOf(mebibyte));
    device.mainQueue->runAll();
    EXPECT_EQ(std::exchange(ends, {}), std::vector<std::string>{"success"});
    for (const int status : {200, 500}) {
        run(pinSet, status, bodyOf(mebibyte + 1));
        arrive();
        finishBackgroundWork();
        EXPECT_EQ(device.mainQueue->pending(), 1u) << "the result comes by the main queue";
        EXPECT_TRUE(ends.empty());
        settle();
        EXPECT_EQ(std::exchange(ends, {}).at(0), status == 200 ? "success" : "500 error");
    }
    for (const bool isRead : {false, true}) {
        run(pinSet, 200, bodyOf(2 * mebibyte));
        arrive();
        if (isRead) finishBackgroundWork();
        underWay.reset();
        settle();
        EXPECT_TRUE(ends.empty() && config.lastJsonResponseStr.empty()) << "nothing waits for it any more";
    }
    run(pinSet, 200, bodyOf(2 * mebibyte));
    arrive();
    uninstallPorts();  // and no thread is left behind
}

/// Bodies of that size that are large to build, to copy or to nest.
std::vector<std::string> hostile(std::size_t size) {
    return {
        filled(size, "", "[", ""),
        filled(size, "{\"x\":", "[", ""),
        filled(size, "{\"x\":", "{\"x\":", ""),
        filled(size, "{\"x\":[1", ",1", "]}"),
        filled(size, "{\"x\":[{}", ",{}", "]}"),
        filled(size, "{\"x\":[\"\"", ",\"\"", "]}"),
        filled(size, "{\"a\":0", ",\"a\":0", "}"),
        filled(size, "{\"x\":\"\\n", "k", "\"}"),
        filled(size, "{\"encryptedResult\":\"", "k", "\"}"),
        filled(size, "{\"encryptedResult\":\"", "k", "\",\"x\":0}"),
        filled(size, "{\"encryptedResult\":\"", "k", "\","),
        filled(size, "{\"encryptedResult\":\"", "\\\\", "\"}"),
        filled(size, "{\"encryptedResult\":\"k\"", ",\"encryptedResult\":\"k\"", "}"),
        filled(size, "<html>", "k", "</html>"),
        std::string(size, '\0'),
    };
}

TEST_F(Bodies, TakeThreeTimesTheirSizeInMemoryAtMost) {
    Ports ports = korvane::ports();
    ports.console =
        std::make_shared<RedactingConsole>(ports.console);  // a clear log copies values into lines
    installPorts(std::move(ports));
    config.ivIdStr = "iv-0";  // the session ended with the former ports
    config.ivByteArray = iv;
    constexpr std::size_t size = 4 * mebibyte;
    const std::string secret = "\":\"" + encipher(std::string(size / 4 * 3 - 1000, 'k')) + "\"}";
    std::vector<std::tuple<Start, int, std::string>> cases{
        {pinSet, 500, filled(size, "{\"encryptedResult\":\"", "k", "\",\"x\":0}")},
        {pinSet, 500, filled(size, "<html>", "k", "</html>")},
        {pinSet, 500, "{\"encryptedResult" + secret},
        {pinSet, 200, "{\"encryptedResult" + secret},
        {doCardImage, 200,
         "{\"encryptedResult\":\"" + encipher("Success") + "\",\"encryptedCardImage" + secret},
        {doCardImage, 200,
         "{\"encryptedResult\":\"" + encipher("Success") + "\",\"encryptedCardDisclosures" + secret},
    };
    for (std::string& body : hostile(size)) cases.emplace_back(pinSet, 200, std::move(body));
    for (auto& [start, status, body] : cases) {
        const std::string name = body.substr(0, 50);
        const testing::PeakGrowth growth;  // the body is there already
        run(start, status, std::move(body));
        settle();
        EXPECT_LE(growth.mebibytes(), 9) << status << ' ' << name;
        EXPECT_EQ(ends.size(), 1u) << "every answer of the service ends the operation";
        ends.clear();
        config.lastJsonResponseStr = {};
    }
}

}  // namespace
}  // namespace korvane
