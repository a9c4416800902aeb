// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/RealStack.h"

#include <fcntl.h>
#include <glib.h>
#include <korvane/platform/Ports.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <thread>

#include "common/HostIv.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "sdk/SdkConfig.h"

namespace korvane::testing {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr auto longestTurn = 500ms;  // under a checker everything takes about ten times as long
#else
constexpr auto longestTurn = 50ms;
#endif
constexpr auto forGood = std::chrono::seconds(3600);

}  // namespace

RealStack::RealStack(bool tls, std::chrono::milliseconds timeout)
    : service({.tls = tls, .pciTokenLife = forGood, .bearerTokenLife = forGood}), timeout_(timeout) {
    schedule_ = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(service.start(), "");
    folder_.file("ca.pem", service.caPem());
    const std::string served = service.url();
    EXPECT_EQ(wire.start("127.0.0.1", std::atoi(served.substr(served.rfind(':') + 1).c_str())), "");
    call(url(), tls ? caFile() : "");
    start();
    EXPECT_EQ(shown(), "SMSExplainView") << printed();
    send("pciTokenRequest");
    EXPECT_EQ(shown(), "EnterSMSCodeView");
    send("pciTokenSubmission");
    EXPECT_EQ(shown(), "EnterCardPINView");
    bearerToken_ = SdkConfig::sharedInstance().currentBearerToken;
    pciToken_ = SdkConfig::sharedInstance().currentPciToken;
}

RealStack::~RealStack() {
    journey.reset();
    uninstallPorts();
    ::close(schedule_);
    std::cout << journeys << " journeys, the longest turn of the main loop took "
              << std::chrono::duration<double, std::milli>(longestTurn_).count() << " ms\n";
    EXPECT_LE(longestTurn_, longestTurn);
}

std::string RealStack::url() const {
    const std::string served = service.url();
    return served.substr(0, served.rfind(':') + 1) + std::to_string(wire.port());
}

void RealStack::call(const std::string& url, const std::string& caFile) {
    journey.reset();
    Ports ports{.mainQueue = std::make_shared<GLibMainQueue>(),
                .timers = std::make_shared<GLibTimers>(),
                .urlSession = std::make_shared<CurlUrlSession>(
                    CurlUrlSessionOptions{.caFile = caFile, .timeout = timeout_}),
                .console = console_};
    EXPECT_TRUE(installPorts(std::move(ports)));
    EXPECT_TRUE(initialize(service.keyBase64(), url, hostIvCallback(service.ivUrl()), false, {}, {}));
}

void RealStack::start(JourneyKind kind) {
    ++journeys;
    console_->clear();
    journey.reset();
    SdkConfig::sharedInstance().currentBearerToken = bearerToken_;
    SdkConfig::sharedInstance().currentPciToken = pciToken_;
    journey = std::make_unique<Journey>(kind, cardId);
    instance_ = 0;
    journey->appear();
}

void RealStack::reach(const std::string& endpoint) {
    wire.set({});
    if (endpoint == "getBearerToken" || endpoint == "getCardStatus" || endpoint == "cardImage") return;
    const std::string token = pciToken_;
    if (endpoint != "pinSet") pciToken_.clear();
    start();
    pciToken_ = token;
    if (endpoint == "pinSet") {
        EXPECT_EQ(shown(), "EnterCardPINView");
        type("1470");
        tap("sdk.setpin.button");
        EXPECT_EQ(shown(), "ConfirmCardPINView");
        return type("1470");
    }
    EXPECT_EQ(shown(), "SMSExplainView") << printed();
    if (endpoint == "pciTokenRequest") return;
    send("pciTokenRequest");
    EXPECT_EQ(shown(), "EnterSMSCodeView");
}

void RealStack::send(const std::string& endpoint) {
    if (endpoint == "pciTokenRequest") return tap("sdk.sms.explain.button");
    if (endpoint == "pciTokenSubmission") return type(service.lastSmsCode(cardId));
    if (endpoint == "pinSet") return tap("sdk.confirmpin.button");
    const std::string token = bearerToken_;
    if (endpoint == "getBearerToken") bearerToken_.clear();
    start(endpoint == "cardImage" ? JourneyKind::getCardImage : JourneyKind::setPIN);
    bearerToken_ = token;
}

std::string RealStack::shown() {
    const auto until = std::chrono::steady_clock::now() + 30s;
    ScreenSnapshot screen = journey->screen();
    while (screen.spinner || (screen.instance == instance_ && screen.message.empty()) ||
           screen.stack.size() < 2) {
        if (std::chrono::steady_clock::now() > until) return "still " + screen.view;
        turn();
        screen = journey->screen();
    }
    instance_ = screen.instance;
    return screen.view;
}

std::string RealStack::printed() const {
    std::string text;
    for (const std::string& line : console_->lines()) text += line + "\n";
    return text;
}

/// How long the thread was ready to run and had no processor (proc(5), schedstat).
std::chrono::nanoseconds RealStack::waitedForProcessor() const {
    char text[64] = "";
    if (::pread(schedule_, text, sizeof text - 1, 0) <= 0) return {};
    char* second = nullptr;
    std::strtoll(text, &second, 10);
    return std::chrono::nanoseconds(std::strtoll(second, nullptr, 10));
}

void RealStack::turn() {
    const auto waited = waitedForProcessor();
    const auto begin = std::chrono::steady_clock::now();
    const bool worked = g_main_context_iteration(nullptr, FALSE);
    const auto took = std::chrono::steady_clock::now() - begin - (waitedForProcessor() - waited);
    longestTurn_ = std::max<std::chrono::nanoseconds>(longestTurn_, took);
    if (!worked) std::this_thread::sleep_for(50us);
}

}  // namespace korvane::testing
