// SPDX-License-Identifier: Apache-2.0
#include <korvane/korvane.h>

#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/Journey.h>
#include <korvane/Prepare.h>

#include <glib.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <optional>
#include <thread>
#include <utility>

#include "capi/HostCallback.h"
#include "capi/HostPorts.h"
#include "capi/SnapshotJson.h"
#include "capi/WipedMemory.h"
#include "platform/linux/GLibPtr.h"
#include "sdk/SdkConfig.h"

struct korvane_iv_request {
    korvane::IvReply reply;
};

struct korvane_journey {
    korvane::Journey journey;
    std::shared_ptr<korvane::NotificationCenter::Observation> closing = {};
};

namespace {

using korvane::Journey;

/// Before log_values came, which hosts that were compiled then do not have.
constexpr std::size_t sizeOfHost1_0 = offsetof(korvane_host, log_values);

/// The thread of korvane_set_up, which alone may go further; none: nothing is set up. Any thread reads it.
std::atomic<std::thread::id> owner;

/// What lives from set-up to tear-down.
struct Component {
    korvane::GLibPtr<GMainContext> loop;  // none: the default one, which the host runs
    std::shared_ptr<korvane::HostPrompt> prompt;
    std::shared_ptr<korvane::NotificationCenter::Observation> closing;
};

std::optional<Component>& component() {
    static auto* const instance = new std::optional<Component>;
    return *instance;
}

/// Runs `work` where it may run, and lets no exception out.
template <class Work>
korvane_status guarded(Work work) noexcept {
    const std::thread::id thread = owner;
    if (thread == std::thread::id{}) return KORVANE_NOT_SET_UP;
    if (thread != std::this_thread::get_id()) return KORVANE_WRONG_THREAD;
    try {
        return work();
    } catch (...) {
        return KORVANE_FAILED;
    }
}

korvane_status statusOf(Journey::Outcome outcome) {
    switch (outcome) {
        case Journey::Outcome::done:
            return KORVANE_OK;
        case Journey::Outcome::noSuchControl:
            return KORVANE_NO_SUCH_CONTROL;
        case Journey::Outcome::notEnabled:
            return KORVANE_NOT_ENABLED;
        case Journey::Outcome::notDigits:
            break;
    }
    return KORVANE_NOT_DIGITS;
}

std::optional<std::string> optionalText(const char* text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

/// A copy that korvane_free takes.
template <class Byte>
Byte* allocated(const void* bytes, std::size_t size) {
    auto* const copy = static_cast<Byte*>(korvane::WipedMemory::allocate(size + 1));
    if (!copy) throw std::bad_alloc();
    std::memcpy(copy, bytes, size);
    copy[size] = 0;
    return copy;
}

}  // namespace

const char* korvane_status_text(korvane_status status) {
    static constexpr std::array texts{
        "done",
        "an argument is missing or has a value that is not allowed",
        "korvane_set_up was not called",
        "called on another thread than korvane_set_up",
        "the pre-shared key is not base64",
        "the screen has no such control",
        "the control cannot be used now",
        "digits only",
        "there is no biometric prompt",
        "failed, and nothing has changed",
        "not from inside a callback",
    };
    const auto index = static_cast<std::size_t>(status);
    return index < texts.size() ? texts[index] : "no such status";
}

korvane_status korvane_set_up(const korvane_host* given) {
    korvane_host host{};
    const bool sized = given && (given->size == sizeof host || given->size == sizeOfHost1_0);
    if (sized) std::memcpy(&host, given, given->size);
    const bool known = sized && (host.loop == KORVANE_LOOP_GLIB || host.loop == KORVANE_LOOP_MANUAL) &&
                       host.log_values >= KORVANE_LOG_BY_BUILD && host.log_values <= KORVANE_LOG_CLEAR;
    std::thread::id nobody;
    if (korvane::HostCallback::isRunning()) return KORVANE_IN_CALLBACK;
    if (!known || !owner.compare_exchange_strong(nobody, std::this_thread::get_id()))
        return KORVANE_BAD_ARGUMENT;
    component().emplace();
    const korvane_status status = guarded([&] {
        if (host.loop == KORVANE_LOOP_MANUAL) component()->loop.reset(g_main_context_new());
        korvane::HostPorts device(host, component()->loop.get());
        component()->prompt = device.prompt;
        korvane::installPorts(std::move(device.ports));
        return KORVANE_OK;
    });
    if (status != KORVANE_OK) {
        component().reset();
        owner = std::thread::id{};
    }
    return status;
}

korvane_status korvane_tear_down(void) {
    return guarded([] {
        if (korvane::HostCallback::isRunning()) return KORVANE_IN_CALLBACK;
        // Whatever the host calls while its prompt is taken away finds nothing set up.
        owner = std::thread::id{};
        const std::optional<Component> ended = std::exchange(component(), std::nullopt);
        korvane::uninstallPorts();
        return KORVANE_OK;
    });
}

korvane_status korvane_loop_step(int timeout_ms) {
    return guarded([&] {
        GMainContext* const loop = component()->loop.get();
        if (!loop) return KORVANE_BAD_ARGUMENT;
        // The time-out is a source of its own: it ends the wait, and does nothing else.
        GSource* const end = timeout_ms > 0 ? g_timeout_source_new(static_cast<guint>(timeout_ms)) : nullptr;
        if (end) {
            g_source_set_callback(
                end, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr, nullptr);
            g_source_attach(end, loop);
        }
        g_main_context_iteration(loop, timeout_ms != 0);
        if (end) {
            g_source_destroy(end);
            g_source_unref(end);
        }
        return KORVANE_OK;
    });
}

void korvane_iv_supply(korvane_iv_request* request, const char* iv_id, const char* iv) {
    const std::unique_ptr<korvane_iv_request> answered(request);
    if (request) request->reply(optionalText(iv_id), optionalText(iv));
}

korvane_status korvane_initialize(const korvane_config* config) {
    return guarded([&] {
        if (!config || config->size != sizeof(korvane_config) || !config->key || !config->api_url ||
            !config->iv_callback)
            return KORVANE_BAD_ARGUMENT;
        const bool done = korvane::initialize(
            config->key, config->api_url,
            [callback = config->iv_callback, context = config->iv_context](korvane::IvReply reply) {
                auto* const request = new korvane_iv_request{std::move(reply)};
                const korvane::HostCallback inside;
                callback(context, request);
            },
            config->use_biometrics != 0, korvane::KorvaneColors{}, korvane::KorvaneCornerRadii{},
            optionalText(config->wearable_name));
        return done ? KORVANE_OK : KORVANE_BAD_KEY;
    });
}

korvane_status korvane_prepare(void) {
    return guarded([] {
        korvane::prepare();
        return KORVANE_OK;
    });
}

korvane_status korvane_log_out(void) {
    return guarded([] {
        korvane::logOut();
        return KORVANE_OK;
    });
}

korvane_status korvane_pci_token_state(int* held, int* expired) {
    return guarded([&] {
        if (!held || !expired) return KORVANE_BAD_ARGUMENT;
        const auto& config = korvane::SdkConfig::sharedInstance();
        *held = !config.currentPciToken.empty();
        *expired = config.timerPciExpired;
        return KORVANE_OK;
    });
}

korvane_status korvane_prompt_visible(int visible) {
    return guarded([&] {
        const auto& prompt = component()->prompt;
        return prompt && prompt->setVisible(visible != 0) ? KORVANE_OK : KORVANE_NO_PROMPT;
    });
}

korvane_status korvane_prompt_cancel(void) {
    return guarded([] {
        const auto& prompt = component()->prompt;
        return prompt && prompt->cancel() ? KORVANE_OK : KORVANE_NO_PROMPT;
    });
}

korvane_status korvane_on_close(void (*closed)(void* context, const char* result), void* context) {
    return guarded([&] {
        component()->closing.reset();
        if (!closed) return KORVANE_OK;
        component()->closing = korvane::NotificationCenter::defaultCenter().observe(
            korvane::NotificationCloseUI, [closed, context](const korvane::NotificationUserInfo& userInfo) {
                const korvane::HostCallback inside;
                closed(context, userInfo.at("result").c_str());
            });
        return KORVANE_OK;
    });
}

korvane_status korvane_journey_create(int kind, const char* card_id, korvane_journey** journey) {
    if (!journey) return KORVANE_BAD_ARGUMENT;
    *journey = nullptr;
    return guarded([&] {
        if (!card_id || kind < KORVANE_SET_PIN || kind > KORVANE_GET_CARD_IMAGE) return KORVANE_BAD_ARGUMENT;
        *journey = new korvane_journey{Journey(static_cast<korvane::JourneyKind>(kind), card_id)};
        return KORVANE_OK;
    });
}

void korvane_journey_destroy(korvane_journey* journey) {
    guarded([&] {
        delete journey;
        return KORVANE_OK;
    });
}

korvane_status korvane_journey_appear(korvane_journey* journey) {
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        journey->journey.appear();
        return KORVANE_OK;
    });
}

korvane_status korvane_journey_on_change(korvane_journey* journey, void (*changed)(void* context),
                                         void* context) {
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        if (changed) {
            journey->journey.onChange([changed, context] {
                const korvane::HostCallback inside;
                changed(context);
            });
        } else {
            journey->journey.onChange(nullptr);
        }
        return KORVANE_OK;
    });
}

korvane_status korvane_journey_on_close(korvane_journey* journey,
                                        void (*closed)(void* context, const char* result), void* context) {
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        journey->closing.reset();
        if (!closed) return KORVANE_OK;
        journey->closing = korvane::NotificationCenter::defaultCenter().observe(
            korvane::NotificationCloseUI,
            [closed, context, id = journey->journey.id()](const korvane::NotificationUserInfo& userInfo,
                                                          korvane::JourneyId poster) {
                if (poster != id) return;
                const korvane::HostCallback inside;
                closed(context, userInfo.at("result").c_str());
            });
        return KORVANE_OK;
    });
}

korvane_status korvane_journey_screen(const korvane_journey* journey, char** json) {
    if (!json) return KORVANE_BAD_ARGUMENT;
    *json = nullptr;
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        const korvane::Wiped<korvane::ScreenSnapshot> screen{journey->journey.screen()};
        const korvane::Wiped<std::string> text = korvane::snapshotJson(*screen);
        *json = allocated<char>(text->data(), text->size());
        return KORVANE_OK;
    });
}

korvane_status korvane_journey_card_image(const korvane_journey* journey, unsigned char** bytes,
                                          size_t* size) {
    if (!bytes || !size) return KORVANE_BAD_ARGUMENT;
    *bytes = nullptr;
    *size = 0;
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        const auto card = journey->journey.screen().card;
        if (!card || !card->image) return KORVANE_OK;
        *bytes = allocated<unsigned char>(card->image->data(), card->image->size());
        *size = card->image->size();
        return KORVANE_OK;
    });
}

void korvane_free(void* memory) {
    korvane::WipedMemory::Free(memory);
}

korvane_status korvane_journey_perform(korvane_journey* journey, const char* control_id) {
    return guarded([&] {
        if (!journey || !control_id) return KORVANE_BAD_ARGUMENT;
        return statusOf(journey->journey.perform(control_id));
    });
}

korvane_status korvane_journey_type(korvane_journey* journey, const char* text) {
    return guarded([&] {
        if (!journey || !text) return KORVANE_BAD_ARGUMENT;
        return statusOf(journey->journey.insertText(text));
    });
}

korvane_status korvane_journey_replace(korvane_journey* journey, const char* text) {
    return guarded([&] {
        if (!journey || !text) return KORVANE_BAD_ARGUMENT;
        return statusOf(journey->journey.replaceText(text));
    });
}

korvane_status korvane_journey_erase(korvane_journey* journey) {
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        return statusOf(journey->journey.deleteBackward());
    });
}

korvane_status korvane_journey_hide_sensitive(korvane_journey* journey) {
    return guarded([&] {
        if (!journey) return KORVANE_BAD_ARGUMENT;
        journey->journey.hideSensitive();
        return KORVANE_OK;
    });
}
