// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/RealDevice.h"

#include <glib.h>
#include <korvane/Initialize.h>
#include <korvane/platform/Ports.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <optional>

#include "apps/common/HostCalls.h"
#include "apps/common/HostIv.h"

namespace korvane::testing {

class RealDevice::Lines final : public Console {
  public:
    void line(std::string_view text) override {
        if (text.starts_with("no response: ") && text.find("timed out") != text.npos) ++timeOuts;
    }
    bool takesSecrets() const override { return false; }

    std::atomic<int> timeOuts = 0;
};

RealDevice::RealDevice(CurlUrlSessionOptions session, bool tls) : lines_(std::make_shared<Lines>()) {
    std::array<std::string, 3> words{KORVANE_SANDBOX, tls ? "--ca-out" : "--http", caFile_};
    std::array<char*, 4> arguments{words[0].data(), words[1].data(), tls ? words[2].data() : nullptr};
    const auto diesWithUs = +[](gpointer) { prctl(PR_SET_PDEATHSIG, SIGKILL); };
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_STDERR_TO_DEV_NULL);
    int output = -1;
    if (!g_spawn_async_with_pipes(nullptr, arguments.data(), nullptr, flags, diesWithUs, nullptr, &process_,
                                  nullptr, &output, nullptr, nullptr))
        throw std::runtime_error("no sandbox");
    std::string told(4096, '\0');
    for (std::size_t size = 0; told.find('\n') == told.npos;) {
        const ssize_t more = read(output, told.data() + size, told.size() - size);
        if (more <= 0) throw std::runtime_error("the sandbox did not start");
        size += static_cast<std::size_t>(more);
    }
    close(output);
    rapidjson::Document line;
    line.Parse(told.c_str());
    url = textMember(line, "url");
    key = textMember(line, "key");
    ivUrl = textMember(line, "ivUrl");

    session.caFile = tls ? caFile_ : "";
    session_ = std::make_shared<CurlUrlSession>(session);
    host_ = std::make_shared<CurlUrlSession>(
        CurlUrlSessionOptions{.caFile = session.caFile, .connectionIdle = session.connectionIdle});
    install();
}

RealDevice::~RealDevice() {
    uninstallPorts();
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

void RealDevice::install() {
    reader = std::make_shared<FakeBiometricContext>(mainQueue);
    installPorts({.mainQueue = mainQueue,
                  .timers = timers,
                  .urlSession = session_,
                  .console = lines_,
                  .secureItemStore = store,
                  .biometricContext = reader,
                  .pasteboard = pasteboard});
}

void RealDevice::initialize(bool useBiometrics) {
    korvane::initialize(key, url, hostIvCallback(ivUrl), useBiometrics, {}, {});
}

bool RealDevice::until(const std::function<bool()>& condition) const {
    bool late = false;
    const auto watchdog = timers->start(std::chrono::minutes(1), [&late] { late = true; });
    while (!condition()) {
        if (late) return false;
        g_main_context_iteration(nullptr, TRUE);
    }
    return true;
}

void RealDevice::pass(std::chrono::milliseconds time) const {
    bool passed = false;
    const auto timer = timers->start(time, [&passed] { passed = true; });
    until([&passed] { return passed; });
}

rapidjson::Document RealDevice::ask(const std::string& method, const std::string& path,
                                    const std::string& body) {
    const auto answer = std::make_shared<std::optional<UrlReply>>();
    const auto task = host_->start({method, url + path, {{"Content-Type", "application/json"}}, body},
                                   [answer, queue = mainQueue](const UrlReply& reply) {
                                       queue->post([answer, reply] { *answer = reply; });
                                   });
    until([&answer] { return answer->has_value(); });
    rapidjson::Document document;
    if (answer->has_value() && (*answer)->status == 200) document.Parse((*answer)->body.c_str());
    return document;
}

std::string RealDevice::smsCode(const std::string& cardId) {
    return textMember(ask("POST", "/host/sms", R"({"cardId":")" + cardId + R"("})"), "code");
}

int RealDevice::timeOuts() const {
    return lines_->timeOuts;
}

}  // namespace korvane::testing
