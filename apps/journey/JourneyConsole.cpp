// SPDX-License-Identifier: Apache-2.0
#include "JourneyConsole.h"

#include <glib.h>

#include <charconv>
#include <utility>

#include "Events.h"

namespace korvane {
namespace {

constexpr double defaultWaitSeconds = 30;
constexpr double longestWaitSeconds = 86'400;
constexpr const char* promptCancel = "sdk.biometrics.cancel";

std::pair<std::string, std::string> splitAtBlank(const std::string& text) {
    const std::size_t blank = text.find(' ');
    if (blank == std::string::npos) return {text, {}};
    return {text.substr(0, blank), text.substr(blank + 1)};
}

}  // namespace

JourneyConsole::~JourneyConsole() {
    endWait();
    korvane_on_close(nullptr, nullptr);
    korvane_journey_destroy(journey_);
}

void JourneyConsole::start(korvane_journey_kind kind, const std::string& cardId) {
    korvane_journey_create(kind, cardId.c_str(), &journey_);
    korvane_on_close(
        [](void* self, const char* result) { static_cast<JourneyConsole*>(self)->closed(result); }, this);
    korvane_journey_on_change(
        journey_, [](void* self) { static_cast<JourneyConsole*>(self)->screenChanged(); }, this);
    korvane_journey_appear(journey_);
}

rapidjson::Document JourneyConsole::screen() const {
    char* json = nullptr;
    korvane_journey_screen(journey_, &json);
    rapidjson::Document screen;
    screen.Parse(json);
    korvane_free(json);
    return screen;
}

void JourneyConsole::screenChanged() {
    auto now = screen();
    const bool toast = now.HasMember("toast") &&
                       (!shown_ || !shown_->HasMember("toast") || (*shown_)["toast"] != now["toast"]);
    if (!shown_ || differ(*shown_, now)) write_(screenEvent(now));
    if (toast) write_(event("toast", "id", now["toast"].GetString()));
    const bool waitIsOver = isAwaited(now);
    shown_ = std::move(now);
    if (!waitIsOver) return;
    endWait();
    runQueued();
}

void JourneyConsole::closed(const std::string& result) {
    write_(event("close", "result", result));
    finish(result == "SUCCESS" ? 0 : result == "CANCELED" ? 3 : 4);
}

void JourneyConsole::command(std::string line) {
    queued_.push_back(std::move(line));
    runQueued();
}

void JourneyConsole::endOfInput() {
    inputEnded_ = true;
    runQueued();
}

void JourneyConsole::runQueued() {
    while (awaitedView_.empty() && !queued_.empty() && finish_) {
        const std::string line = std::move(queued_.front());
        queued_.pop_front();
        run(line);
    }
    if (inputEnded_ && queued_.empty() && awaitedView_.empty()) finish(inputEnded);
}

void JourneyConsole::run(const std::string& line) {
    // What is refused is told in an event, which is JSON; no text of the C interface goes past a NUL.
    if (!g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr))
        return error("a command is UTF-8 without NUL");
    const auto [verb, argument] = splitAtBlank(line);
    if (verb.empty()) return;
    if (verb == "type") {
        report(korvane_journey_replace(journey_, argument.c_str()), "the digit boxes");
    } else if (verb == "erase") {
        report(korvane_journey_erase(journey_), "the digit boxes");
    } else if (verb == "tap" && argument == promptCancel) {
        report(korvane_prompt_cancel(), argument);
    } else if (verb == "tap") {
        report(korvane_journey_perform(journey_, argument.c_str()), argument);
    } else if (verb == "wait") {
        startWait(argument);
    } else if (verb == "state") {
        write_(screenEvent(screen()));
    } else if (verb == "custody") {
        int held = 0, expired = 0;
        korvane_pci_token_state(&held, &expired);
        write_(custodyEvent(held != 0, expired != 0));
    } else if (verb == "quit") {
        finish(inputEnded);
    } else {
        error("no such command: " + verb);
    }
}

void JourneyConsole::startWait(const std::string& argument) {
    const auto [view, seconds] = splitAtBlank(argument);
    double limit = defaultWaitSeconds;
    const auto [end, failure] = std::from_chars(seconds.data(), seconds.data() + seconds.size(), limit);
    if (view.empty() ||
        (!seconds.empty() && (failure != std::errc{} || end != seconds.data() + seconds.size())) ||
        !(limit >= 0 && limit <= longestWaitSeconds)) {
        error("wait takes a view's name and, if you like, seconds");
        return;
    }
    awaitedView_ = view;
    if (isAwaited(screen())) return endWait();
    const auto expired = [](gpointer data) -> gboolean {
        auto* const self = static_cast<JourneyConsole*>(data);
        self->waitTimer_ = 0;
        self->error(self->awaitedView_ + " did not come; still on " + self->screen()["view"].GetString());
        self->endWait();
        self->runQueued();
        return G_SOURCE_REMOVE;
    };
    waitTimer_ = g_timeout_add(static_cast<guint>(limit * 1000), expired, this);
}

void JourneyConsole::endWait() {
    awaitedView_.clear();
    if (const unsigned timer = std::exchange(waitTimer_, 0)) g_source_remove(timer);
}

bool JourneyConsole::isAwaited(const rapidjson::Document& screen) const {
    // A screen with a spinner is about to change.
    return !awaitedView_.empty() && screen["view"] == awaitedView_.c_str() && !screen["spinner"].GetBool();
}

void JourneyConsole::report(korvane_status status, const std::string& control) {
    if (!finish_ || status == KORVANE_OK) return;
    const std::string where = control + " on " + screen()["view"].GetString();
    switch (status) {
        case KORVANE_NO_SUCH_CONTROL:
            return error("there is no " + where);
        case KORVANE_NOT_ENABLED:
            return error("not enabled: " + where);
        case KORVANE_NOT_DIGITS:
            return error("digits only in " + where);
        default:
            return error(korvane_status_text(status));
    }
}

void JourneyConsole::error(const std::string& message) {
    write_(event("error", "message", message));
}

void JourneyConsole::finish(int status) {
    if (const auto finish = std::exchange(finish_, nullptr)) finish(status);
}

}  // namespace korvane
