// SPDX-License-Identifier: Apache-2.0
// Every call from inside every callback: what korvane.h says of that.
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "tests/capi/CHost.h"
#include "tests/platform/support/Devices.h"

namespace korvane::testing {
namespace {

struct Call {
    const char* name;
    korvane_status (*make)(CHost&);
    std::set<korvane_status> answers = {KORVANE_OK};
    bool wantsJourney = false;  ///< without one: KORVANE_BAD_ARGUMENT
    korvane_status whileTornDown = KORVANE_NOT_SET_UP;
};

const std::vector<Call> calls{
    {"korvane_tear_down", [](CHost&) { return korvane_tear_down(); }, {KORVANE_IN_CALLBACK}},
    {"korvane_set_up",
     [](CHost& host) { return korvane_set_up(&host.host); },
     {KORVANE_IN_CALLBACK},
     false,
     KORVANE_IN_CALLBACK},
    {"korvane_status_text",
     [](CHost&) { return korvane_status_text(KORVANE_IN_CALLBACK) ? KORVANE_OK : KORVANE_FAILED; },
     {KORVANE_OK},
     false,
     KORVANE_OK},
    {"korvane_loop_step", [](CHost&) { return korvane_loop_step(0); }},
    {"korvane_loop_step that waits", [](CHost&) { return korvane_loop_step(2); }},
    {"korvane_initialize", [](CHost& host) { return korvane_initialize(&host.config); }},
    {"korvane_iv_supply",
     [](CHost& host) {
         host.supplyAll();
         return KORVANE_OK;
     },
     {KORVANE_OK},
     false,
     KORVANE_OK},
    {"korvane_iv_supply of nothing",
     [](CHost& host) {
         if (!host.asked.empty()) host.supply(nullptr, nullptr);
         return KORVANE_OK;
     },
     {KORVANE_OK},
     false,
     KORVANE_OK},
    {"korvane_pci_token_state",
     [](CHost&) {
         int held = 0, expired = 0;
         return korvane_pci_token_state(&held, &expired);
     }},
    {"korvane_prepare", [](CHost&) { return korvane_prepare(); }},
    {"korvane_log_out", [](CHost&) { return korvane_log_out(); }},
    {"korvane_on_close", [](CHost& host) { return host.observe(); }},
    {"korvane_on_close of nobody", [](CHost&) { return korvane_on_close(nullptr, nullptr); }},
    {"korvane_journey_create",
     [](CHost&) {
         korvane_journey* other = nullptr;
         const korvane_status status = korvane_journey_create(KORVANE_SET_PIN, "other", &other);
         korvane_journey_destroy(other);
         return status;
     }},
    {"korvane_journey_destroy",
     [](CHost& host) { return host.destroy(), KORVANE_OK; },
     {KORVANE_OK},
     false,
     KORVANE_OK},
    {"korvane_journey_appear",
     [](CHost& host) { return korvane_journey_appear(host.journey); },
     {KORVANE_OK},
     true},
    {"korvane_journey_on_change",
     [](CHost& host) { return korvane_journey_on_change(host.journey, nullptr, nullptr); },
     {KORVANE_OK},
     true},
    {"korvane_journey_on_close",
     [](CHost& host) { return korvane_journey_on_close(host.journey, nullptr, nullptr); },
     {KORVANE_OK},
     true},
    {"korvane_journey_screen",
     [](CHost& host) {
         char* json = nullptr;
         const korvane_status status = korvane_journey_screen(host.journey, &json);
         korvane_free(json);
         return status;
     },
     {KORVANE_OK},
     true},
    {"korvane_journey_card_image",
     [](CHost& host) {
         unsigned char* bytes = nullptr;
         std::size_t size = 0;
         const korvane_status status = korvane_journey_card_image(host.journey, &bytes, &size);
         korvane_free(bytes);
         return status;
     },
     {KORVANE_OK},
     true},
    {"korvane_journey_perform",
     [](CHost& host) { return host.use("nothing"); },
     {KORVANE_NO_SUCH_CONTROL},
     true},
    {"korvane_journey_perform that closes",
     [](CHost& host) { return host.use("xmark"); },
     {KORVANE_OK, KORVANE_NO_SUCH_CONTROL},
     true},
    {"korvane_journey_type",
     [](CHost& host) { return korvane_journey_type(host.journey, "x"); },
     {KORVANE_NOT_DIGITS, KORVANE_NO_SUCH_CONTROL, KORVANE_NOT_ENABLED},
     true},
    {"korvane_journey_replace",
     [](CHost& host) { return korvane_journey_replace(host.journey, "x"); },
     {KORVANE_NOT_DIGITS, KORVANE_NO_SUCH_CONTROL, KORVANE_NOT_ENABLED},
     true},
    {"korvane_journey_erase",
     [](CHost& host) { return korvane_journey_erase(host.journey); },
     {KORVANE_OK, KORVANE_NO_SUCH_CONTROL, KORVANE_NOT_ENABLED},
     true},
    {"korvane_journey_hide_sensitive",
     [](CHost& host) { return korvane_journey_hide_sensitive(host.journey); },
     {KORVANE_OK},
     true},
    {"korvane_prompt_visible",
     [](CHost&) { return korvane_prompt_visible(1); },
     {KORVANE_OK, KORVANE_NO_PROMPT}},
    {"korvane_prompt_cancel",
     [](CHost&) { return korvane_prompt_cancel(); },
     {KORVANE_OK, KORVANE_NO_PROMPT}},
};

/// Makes one call from inside the callbacks of that name: three times, so that a call that leads to its own
/// callback ends, and never from inside itself.
class Caller {
  public:
    Caller(CHost& host, const Call& call, std::string_view callback, bool isSetUp = true)
        : host_(host), call_(call), callback_(callback), isSetUp_(isSetUp) {
        host.inCallback = [this](std::string_view name) {
            if (name != callback_ || calling_ || times_ == 3) return;
            calling_ = true;
            ++times_;
            make(name);
            calling_ = false;
        };
    }
    ~Caller() { host_.inCallback = nullptr; }
    Caller(const Caller&) = delete;
    int times() const { return times_; }

  private:
    void make(std::string_view name) {
        std::set<korvane_status> answers = call_.answers;
        if (call_.wantsJourney && !host_.journey) answers = {KORVANE_BAD_ARGUMENT};
        if (!isSetUp_) answers = {call_.whileTornDown};
        const korvane_status status = call_.make(host_);
        EXPECT_TRUE(answers.contains(status))
            << call_.name << " in " << name << ": " << korvane_status_text(status);
    }

    CHost& host_;
    const Call& call_;
    const std::string callback_;
    const bool isSetUp_;
    int times_ = 0;
    bool calling_ = false;
};

/// The whole of the viewer, as far as the calls in between leave one: ends when it closed or is gone.
void visit(CHost& host) {
    ASSERT_EQ(host.begin(), KORVANE_OK);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (host.journey && !host.closed && std::chrono::steady_clock::now() < end) {
        const std::string view = host.view();
        if (view == "SMSExplainView") host.use("sdk.sms.explain.button");
        if (view == "EnterSMSCodeView")
            korvane_journey_replace(host.journey, host.device.smsCode("card-paywallet-active").c_str());
        if (view == "CardImage_NoNav") {
            for (const char* const control : {"sdk.cardviewer.device.details.reveal",
                                              "sdk.cardviewer.device.details.cardNumber", "xmark"})
                if (host.journey) host.use(control);
            break;
        }
        if (view == "UhOhTryAgainView") break;  // there was no IV
        host.turn();
    }
}

class Callbacks : public ::testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(CInterface, Callbacks,
                         ::testing::Values("log_line", "text", "copied", "iv_callback", "closed",
                                           "journey_closed", "changed"),
                         [](const auto& each) { return std::string(each.param); });

TEST_P(Callbacks, TakeEveryCall) {
    CHost host;
    for (const Call& call : calls) {
        SCOPED_TRACE(call.name);
        {
            const Caller caller(host, call, GetParam());
            visit(host);
            EXPECT_GT(caller.times(), 0) << "it never came";
            host.destroy();
        }
        EXPECT_EQ(host.end(), KORVANE_OK);
        host.device.ask("POST", "/host/reset");
    }
    visit(host);  // nothing is left of all that
    EXPECT_TRUE(host.closed);
}

/// A host that shows why a finger is wanted, and a reader.
class PromptCallbacks : public ::testing::Test {
  protected:
    PromptCallbacks() {
        devices.ask("start_reader");
        devices.ask("enrol");
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", devices.ask("address SYSTEM").c_str(), TRUE);
        host.config.use_biometrics = 1;
        host.host.prompt = [](void* self, const char* reason) {
            auto& seen = static_cast<CHost*>(self)->inCallback;
            if (seen) seen(reason ? "prompt" : "prompt is gone");
        };
        host.host.prompt_message = [](void* self, const char*) {
            auto& seen = static_cast<CHost*>(self)->inCallback;
            if (seen) seen("prompt_message");
        };
    }
    template <class Condition>
    bool comes(Condition condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition() && std::chrono::steady_clock::now() < end) host.turn();
        return condition();
    }

    Devices devices;
    CHost host;
};

TEST_F(PromptCallbacks, TakeEveryCall) {
    for (const char* const callback : {"prompt", "prompt_message"}) {
        for (const Call& call : calls) {
            SCOPED_TRACE(call.name);
            const Caller caller(host, call, callback);
            ASSERT_EQ(korvane_set_up(&host.host), KORVANE_OK);
            ASSERT_EQ(korvane_initialize(&host.config), KORVANE_OK);
            korvane_journey_create(KORVANE_SET_PIN, "card", &host.journey);
            comes([&] { return korvane_prompt_visible(1) == KORVANE_OK || caller.times() > 0; });
            if (std::string_view{callback} == "prompt_message" && comes([&] { return devices.is("armed"); }))
                devices.ask("send RETRY 1");
            EXPECT_TRUE(comes([&] { return caller.times() > 0; })) << "it never came";
            korvane_prompt_cancel();
            host.turn();
            EXPECT_EQ(host.end(), KORVANE_OK);
        }
    }
}

TEST_F(PromptCallbacks, FindNothingSetUpWhileTearDownTakesThePromptAway) {
    for (const Call& call : calls) {
        SCOPED_TRACE(call.name);
        ASSERT_EQ(korvane_set_up(&host.host), KORVANE_OK);
        ASSERT_EQ(korvane_initialize(&host.config), KORVANE_OK);
        ASSERT_TRUE(comes([] { return korvane_prompt_visible(1) == KORVANE_OK; }));
        const Caller caller(host, call, "prompt is gone", false);
        EXPECT_EQ(host.end(), KORVANE_OK);
        EXPECT_EQ(caller.times(), 1);
    }
}

}  // namespace
}  // namespace korvane::testing
