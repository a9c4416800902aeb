// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <thread>

#include "platform/fakes/FakeConsole.h"
#include "sandbox/Wire.h"
#include "sdk/SdkConfig.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {

using namespace std::chrono_literals;

/// Journeys on the real adapters, with a wire before the card service. No turn of the main loop may keep a
/// tap waiting for more than 50 ms; the time does not count in which the thread was ready and other threads
/// had the processor.
class RealStack {
  public:
    /// A request is given up after `timeout` without data, where an app waits for 60 s.
    explicit RealStack(bool tls, std::chrono::milliseconds timeout = 20s)
        : device_(tls, {.timeout = timeout}), timeout_(timeout) {
        const auto port = device_.url.rfind(':') + 1;
        EXPECT_EQ(wire.start("127.0.0.1", std::atoi(device_.url.c_str() + port)), "");
        device_.console = console_;
        call(device_.url.substr(0, port) + std::to_string(wire.port()), tls ? device_.caFile : "");
        start(JourneyKind::setPIN, "", "");
        reach("EnterCardPINView");
        bearerToken_ = SdkConfig::sharedInstance().currentBearerToken;
        pciToken_ = SdkConfig::sharedInstance().currentPciToken;
    }
    ~RealStack() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        constexpr auto longest = 500ms;  // under a checker everything takes about ten times as long
#else
        constexpr auto longest = 50ms;
#endif
        std::cout << "the longest turn of the main loop took " << longestTurn_ / 1us << " us\n";
        EXPECT_LE(longestTurn_, longest);
    }
    RealStack(const RealStack&) = delete;

    /// Leads the component to a service, by a session with nothing behind it. The IV stays, which another
    /// service would have to be asked for.
    void call(const std::string& url, const std::string& caFile) {
        caFile_ = caFile;
        keepingIv([&] {
            reconnect();
            device_.initialize(false, url);
        });
    }

    /// Opens new connections from now on: the end of one that a fault closed behind an answer may still be on
    /// its way, and what is sent before it arrives would meet it.
    void reconnect() {
        journey_.reset();
        keepingIv([this] { device_.connect({.caFile = caFile_, .timeout = timeout_}); });
    }

    /// Leads a journey to just before the request, on a wire without a fault; sends it with this one, and
    /// tells the view that comes of it.
    std::string answered(const std::string& endpoint, sandbox::WireFault fault = {}) {
        static const std::map<std::string, std::string> screens{{"pciTokenRequest", "SMSExplainView"},
                                                                {"pciTokenSubmission", "EnterSMSCodeView"},
                                                                {"pinSet", "ConfirmCardPINView"}};
        const auto screen = screens.find(endpoint);
        wire.set({});
        if (screen != screens.end()) {
            start(JourneyKind::setPIN, bearerToken_, endpoint == "pinSet" ? pciToken_ : "");
            reach(screen->second);
            wire.set(std::move(fault));
            goOn();
        } else {
            wire.set(std::move(fault));
            start(endpoint == "cardImage" ? JourneyKind::getCardImage : JourneyKind::setPIN,
                  endpoint == "getBearerToken" ? "" : bearerToken_, pciToken_);
        }
        return shown();
    }

    /// Lets the loop run until something else is shown, at rest, and tells its view.
    std::string shown() {
        const auto until = std::chrono::steady_clock::now() + 30s;
        ScreenSnapshot screen = journey_->screen();
        for (; screen.spinner || screen.instance == instance_ || screen.stack.size() < 2;
             screen = journey_->screen()) {
            if (std::chrono::steady_clock::now() > until) return "still " + screen.view;
            turn();
        }
        instance_ = screen.instance;
        return screen.view;
    }

    /// The lines printed since the last journey began.
    std::vector<std::string> printed() const {
        return console_->lines();
    }

    sandbox::Wire wire;

  private:
    /// Does what ends the session, but for the IV.
    static void keepingIv(const std::function<void()>& change) {
        SdkConfig& config = SdkConfig::sharedInstance();
        const auto ivId = config.ivIdStr;
        const auto iv = config.ivByteArray;
        change();
        config.ivIdStr = ivId;
        config.ivByteArray = iv;
    }

    void start(JourneyKind kind, const std::string& bearerToken, const std::string& pciToken) {
        console_->clear();
        journey_.reset();
        SdkConfig::sharedInstance().currentBearerToken = bearerToken;
        SdkConfig::sharedInstance().currentPciToken = pciToken;
        journey_ = std::make_unique<Journey>(kind, card_);
        instance_ = 0;
        journey_->appear();
    }

    /// Does what the screen asks for.
    void goOn() {
        const std::string view = journey_->screen().view;
        if (view == "EnterSMSCodeView") journey_->replaceText(device_.smsCode(card_));
        if (view.ends_with("CardPINView")) journey_->replaceText("1470");
        for (const char* const button :
             {"sdk.sms.explain.button", "sdk.setpin.button", "sdk.confirmpin.button"})
            journey_->perform(button);  // of which it has one at most
    }
    void reach(const std::string& view) {
        std::string seen = shown();
        for (int screens = 0; screens < 4 && seen != view; ++screens, seen = shown()) goOn();
        EXPECT_EQ(seen, view);
    }

    void turn() {
        const auto waited = waitedForProcessor();
        const auto begin = std::chrono::steady_clock::now();
        const bool worked = g_main_context_iteration(nullptr, FALSE);
        const std::chrono::nanoseconds took = std::chrono::steady_clock::now() - begin;
        longestTurn_ = std::max(longestTurn_, took - (waitedForProcessor() - waited));
        if (!worked) std::this_thread::sleep_for(50us);
    }

    /// How long the thread was ready to run and had no processor: the second number (proc(5), schedstat).
    std::chrono::nanoseconds waitedForProcessor() const {
        std::int64_t ran = 0, waited = 0;
        std::ifstream("/proc/thread-self/schedstat") >> ran >> waited;
        return std::chrono::nanoseconds(waited);
    }

    RealDevice device_;
    const std::chrono::milliseconds timeout_;
    std::string caFile_;
    const std::string card_ = "card-physical-active";
    const std::shared_ptr<FakeConsole> console_ = std::make_shared<FakeConsole>();
    std::unique_ptr<Journey> journey_;
    std::string bearerToken_, pciToken_;  // of a cardholder who was here a moment ago
    std::uint64_t instance_ = 0;          // of the screen before the last step
    std::chrono::nanoseconds longestTurn_{};
};

}  // namespace korvane::testing
