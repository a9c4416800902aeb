// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <glib.h>
#include <korvane/Initialize.h>
#include <korvane/Journey.h>
#include <korvane/platform/Ports.h>
#include <signal.h>

#include <array>
#include <cstdio>
#include <optional>
#include <string>

#include "apps/common/HostCalls.h"
#include "apps/common/HostIv.h"
#include "platform/fakes/FakeBiometricContext.h"
#include "platform/fakes/FakeSecureItemStore.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

/// The real main loop and network under the component, and the card service in a process of its own: what
/// that holds is not found here. Reader and store are scripted. Nothing keeps what is logged or copied.
class RealDevice final : Console, Pasteboard {
  public:
    explicit RealDevice(bool tls = true, CurlUrlSessionOptions options = {}) {
        // Not longer than that, should we end without ending it.
        sandbox_ = popen(
            ("echo $$; exec timeout 2h " KORVANE_SANDBOX " --pci-token-seconds 3600 --bearer-seconds 3600 " +
             (tls ? "--ca-out " + caFile : "--http") + " 2>/dev/null")
                .c_str(),
            "r");
        std::array<char, 1024> pid{}, told{};
        if (!sandbox_ || !std::fgets(pid.data(), pid.size(), sandbox_) ||
            !std::fgets(told.data(), told.size(), sandbox_))
            throw std::runtime_error("the sandbox did not start");
        process_ = std::stoi(pid.data());
        rapidjson::Document line;
        line.Parse(told.data());
        url = textMember(line, "url");
        key = textMember(line, "key");
        options.caFile = tls ? caFile : "";
        connect(options);
        options.timeout = std::chrono::minutes(1);
        host_ = std::make_unique<CurlUrlSession>(options);
    }
    ~RealDevice() {
        uninstallPorts();
        kill(process_, SIGTERM);
        pclose(sandbox_);
    }

    /// The component's requests go through a session with nothing behind it.
    void connect(const CurlUrlSessionOptions& options) {
        session_ = std::make_shared<CurlUrlSession>(options);
        install();
    }
    /// Puts a new reader into the ports.
    void install() {
        const auto lent = [](auto* port) {
            return std::shared_ptr<std::remove_pointer_t<decltype(port)>>(port, [](auto*) {});
        };
        reader = std::make_shared<FakeBiometricContext>(queue_);
        installPorts({.mainQueue = queue_,
                      .timers = timers_,
                      .urlSession = session_,
                      .console = console ? console : lent(static_cast<Console*>(this)),
                      .secureItemStore = store,
                      .biometricContext = reader,
                      .pasteboard = lent(static_cast<Pasteboard*>(this))});
    }
    void initialize(bool useBiometrics = false, const std::string& service = {}) {
        korvane::initialize(key, service.empty() ? url : service, hostIvCallback(url + "/host/iv"),
                            useBiometrics, {}, {});
    }

    /// Runs the main loop; false when the condition does not come true within that time.
    template <class Condition>
    bool until(Condition condition, std::chrono::milliseconds limit = std::chrono::minutes(1)) const {
        bool late = false;
        const auto watchdog = timers_->start(limit, [&late] { late = true; });
        while (!condition() && !late) g_main_context_iteration(nullptr, TRUE);
        return !late;
    }
    void pass(std::chrono::milliseconds time) const {
        until([] { return false; }, time);
    }

    /// Asks the host side of the card service; null when it has no answer.
    rapidjson::Document ask(const std::string& method, const std::string& path,
                            const std::string& body = {}) const {
        const auto answer = std::make_shared<std::optional<UrlReply>>();
        const auto task = host_->start({method, url + path, {{"Content-Type", "application/json"}}, body},
                                       [answer, queue = queue_](const UrlReply& reply) {
                                           queue->post([answer, reply] { *answer = reply; });
                                       });
        until([&answer] { return answer->has_value(); });
        rapidjson::Document document;
        if (answer->has_value() && (*answer)->status == 200) document.Parse((*answer)->body.c_str());
        return document;
    }
    std::string smsCode(const std::string& cardId) const {
        return textMember(ask("POST", "/host/sms", R"({"cardId":")" + cardId + R"("})"), "code");
    }

    const TemporaryFolder folder;
    const std::string caFile = folder / "ca.pem";
    std::string url, key;
    std::shared_ptr<Console> console;  ///< in place of this, from the next installing on
    std::shared_ptr<FakeBiometricContext> reader;
    const std::shared_ptr<FakeSecureItemStore> store = std::make_shared<FakeSecureItemStore>();
    int timeOuts = 0;     ///< requests of the component that were given up
    bool copied = false;  ///< something is on the pasteboard

  private:
    void line(std::string_view text) override {
        if (text.starts_with("no response: ") && text.find("timed out") != text.npos) ++timeOuts;
    }
    bool takesSecrets() const override { return false; }
    bool setString(const std::string&) override { return copied = true; }
    void clearIfHolds(const std::string&) override { copied = false; }

    FILE* sandbox_ = nullptr;
    int process_ = 0;
    const std::shared_ptr<GLibMainQueue> queue_ = std::make_shared<GLibMainQueue>();
    const std::shared_ptr<GLibTimers> timers_ = std::make_shared<GLibTimers>();
    std::shared_ptr<UrlSession> session_;
    std::unique_ptr<UrlSession> host_;
};

}  // namespace korvane::testing
