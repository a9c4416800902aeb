// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/korvane.h>

#include <deque>
#include <utility>

#include "tests/soak/MemoryScan.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {

/// A host on the shared library, with a main loop of its own and a card service in another process. The
/// library holds the component once more: what `RealDevice` installs is for its own requests.
class CHost {
  public:
    CHost() {
        host.size = sizeof host;
        host.loop = KORVANE_LOOP_MANUAL;
        host.context = this;
        host.log_line = [](void* self, const char*) { told(self, "log_line"); };
        host.text = [](void* self, const char*) -> const char* { return told(self, "text"), nullptr; };
        host.copied = [](void* self, const char*) { told(self, "copied"); };
        config.size = sizeof config;
        config.key = device.key.c_str();
        config.api_url = device.url.c_str();
        config.iv_context = this;
        config.iv_callback = [](void* self, korvane_iv_request* request) {
            static_cast<CHost*>(self)->asked.push_back(request);
            told(self, "iv_callback");
        };
    }
    ~CHost() { end(); }
    CHost(const CHost&) = delete;

    /// Anything but KORVANE_OK leaves things as they were.
    korvane_status begin(const char* card = "card-paywallet-active") {
        if (const korvane_status status = korvane_set_up(&host)) return status;
        observe();
        if (const korvane_status status = korvane_initialize(&config)) return status;
        if (const korvane_status status = korvane_journey_create(KORVANE_GET_CARD_IMAGE, card, &journey))
            return status;
        observe();
        return korvane_journey_appear(journey);
    }
    korvane_status observe() {
        korvane_on_close(nullptr, nullptr);
        const korvane_status status = korvane_on_close(
            [](void* self, const char*) {
                static_cast<CHost*>(self)->closed = true;
                told(self, "closed");
            },
            this);
        if (!journey) return status;
        korvane_journey_on_close(
            journey, [](void* self, const char*) { told(self, "journey_closed"); }, this);
        korvane_journey_on_change(journey, nullptr, nullptr);
        korvane_journey_on_change(
            journey, [](void* self) { told(self, "changed"); }, this);
        return status;
    }
    void destroy() { korvane_journey_destroy(std::exchange(journey, nullptr)); }
    korvane_status end() {
        destroy();
        const korvane_status status = korvane_tear_down();
        while (!asked.empty()) supply(nullptr, nullptr);
        closed = false;
        return status;
    }

    void supply(const char* id, const char* iv) {
        const auto request = asked.front();
        asked.pop_front();
        korvane_iv_supply(request, id, iv);
    }
    /// Answers the host's questions too.
    void supplyAll() {
        while (!asked.empty()) {
            const Json iv = device.ask("POST", "/host/iv", "{}");
            supply(std::string(iv["ivId"]).c_str(), std::string(iv["iv"]).c_str());
        }
    }
    void turn() {
        korvane_loop_step(5);
        supplyAll();
    }
    /// Without values: what reads them here would keep them.
    std::string view() const {
        char* json = nullptr;
        if (!journey || korvane_journey_screen(journey, &json)) return {};
        const std::string_view text(json), before = "\"view\":\"";
        const std::size_t begin = text.find(before) + before.size();
        std::string shown{text.substr(begin, text.find('"', begin) - begin)};
        if (text.find("\"spinner\":true") != text.npos) shown.clear();
        korvane_free(json);
        return shown;
    }
    bool comesTo(const std::string& wanted) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (view() != wanted && std::chrono::steady_clock::now() < end) turn();
        return view() == wanted;
    }
    korvane_status use(const std::string& control) {
        return korvane_journey_perform(journey, control.c_str());
    }
    /// Masked: it is read past every buffer of this process.
    std::string smsCode() const {
        const std::string command = "curl -sS -X POST -H 'Content-Type: application/json' -d {} " +
                                    device.url + "/host/sms | grep -oE '[0-9]{6}'";
        FILE* const answer = popen(command.c_str(), "r");
        char digits[6];
        std::string code;
        if (read(fileno(answer), digits, sizeof digits) == sizeof digits)
            for (char& digit : digits) code += static_cast<char>(~std::exchange(digit, ' '));
        wipe(digits, sizeof digits);
        pclose(answer);
        return code;
    }

    RealDevice device{false};
    korvane_host host{};
    korvane_config config{};
    korvane_journey* journey = nullptr;
    std::deque<korvane_iv_request*> asked;
    bool closed = false;
    std::function<void(const char* callback)> inCallback;

  private:
    static void told(void* self, const char* callback) {
        if (const auto& then = static_cast<CHost*>(self)->inCallback) then(callback);
    }
};

}  // namespace korvane::testing
