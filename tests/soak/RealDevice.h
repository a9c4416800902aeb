// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <glib.h>
#include <korvane/Initialize.h>
#include <korvane/Journey.h>
#include <signal.h>

#include <nlohmann/json.hpp>

#include "apps/common/HostIv.h"
#include "platform/fakes/FakePorts.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

using Json = nlohmann::json;

/// The real main loop and network under the component, and the card service in a process of its own: what
/// that holds is not found here. Reader and store are scripted. Nothing keeps what is logged or copied.
class RealDevice final : Console, Pasteboard {
  public:
    explicit RealDevice(bool tls = true, CurlUrlSessionOptions options = {}) {
        // It ends with this thread. `timeout` would end it with SIGTERM and SIGCONT; the latter takes back
        // the stop that the leak check of a sanitized sandbox waits for as it exits.
        const std::string command = "echo $$; exec setpriv --pdeathsig SIGTERM " KORVANE_SANDBOX
                                    " --pci-token-seconds 3600 --bearer-seconds 3600 2>/dev/null " +
                                    (tls ? "--ca-out " + caFile : "--http");
        sandbox_ = popen(command.c_str(), "r");
        char pid[16], told[1024];
        if (!std::fgets(pid, sizeof pid, sandbox_) || !std::fgets(told, sizeof told, sandbox_))
            throw std::runtime_error("the sandbox did not start");
        process_ = std::stoi(pid);
        const Json line = Json::parse(told);
        url = line["url"];
        key = line["key"];
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
        const std::shared_ptr<void> nobody;  // owns this
        reader = std::make_shared<FakeBiometricContext>(queue_);
        installPorts({.mainQueue = queue_,
                      .timers = timers_,
                      .urlSession = session_,
                      .console = console ? console : std::shared_ptr<Console>(nobody, this),
                      .secureItemStore = store,
                      .biometricContext = reader,
                      .pasteboard = std::shared_ptr<Pasteboard>(nobody, this)});
    }
    void initialize(bool useBiometrics = false, const std::string& service = {}, IvCallback ivs = {}) {
        if (!ivs) ivs = hostIvCallback(url + "/host/iv");
        korvane::initialize(key, service.empty() ? url : service, std::move(ivs), useBiometrics, {}, {});
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
    Json ask(const std::string& method, const std::string& path, const std::string& body = {}) const {
        const auto answer = std::make_shared<std::optional<UrlReply>>();
        const auto task = host_->start({method, url + path, {{"Content-Type", "application/json"}}, body},
                                       [answer, queue = queue_](const UrlReply& reply) {
                                           queue->post([answer, reply] { *answer = reply; });
                                       });
        until([&answer] { return answer->has_value(); });
        const UrlReply reply = answer->value_or(UrlReply{});
        return reply.status == 200 ? Json::parse(reply.body, nullptr, false) : Json();
    }
    std::string smsCode(const std::string& cardId) const {
        return ask("POST", "/host/sms", Json{{"cardId", cardId}}.dump())["code"];
    }

    static std::unique_ptr<Journey> begin(JourneyKind kind, const std::string& cardId) {
        auto journey = std::make_unique<Journey>(kind, cardId);
        journey->appear();
        return journey;
    }
    /// Waits for the view, types, and uses the control; throws where that cannot be done.
    void on(Journey& journey, const std::string& view, const std::string& control = {},
            const std::string& digits = {}) const {
        if (!until([&] { return journey.screen().view == view && !journey.screen().spinner; }))
            throw std::runtime_error("on " + journey.screen().view + ", not " + view);
        if (!digits.empty()) journey.replaceText(digits);
        if (!control.empty() && journey.perform(control) != Journey::Outcome::done)
            throw std::runtime_error(control + " is refused on " + view);
    }
    void verify(Journey& journey, const std::string& cardId) const {
        on(journey, "SMSExplainView", "sdk.sms.explain.button");
        on(journey, "EnterSMSCodeView");
        journey.replaceText(smsCode(cardId));
    }

    const TemporaryFolder folder;
    const std::string caFile = folder / "ca.pem";
    std::string url, key;
    std::shared_ptr<Console> console;  ///< in place of this, from the next installing on
    std::shared_ptr<FakeBiometricContext> reader;
    const std::shared_ptr<FakeSecureItemStore> store = std::make_shared<FakeSecureItemStore>();
    int timeOuts = 0;  ///< requests of the component that were given up

  private:
    void line(std::string_view text) override {
        if (text.starts_with("no response: ") && text.find("timed out") != text.npos) ++timeOuts;
    }
    bool takesSecrets() const override { return false; }
    bool setString(const std::string&) override { return true; }
    void clearIfHolds(const std::string&) override {}

    FILE* sandbox_ = nullptr;
    int process_ = 0;
    const std::shared_ptr<GLibMainQueue> queue_ = std::make_shared<GLibMainQueue>();
    const std::shared_ptr<GLibTimers> timers_ = std::make_shared<GLibTimers>();
    std::shared_ptr<UrlSession> session_;
    std::unique_ptr<UrlSession> host_;
};

}  // namespace korvane::testing
