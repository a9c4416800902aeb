// SPDX-License-Identifier: Apache-2.0
#include "JourneyConsole.h"

#include <korvane/platform/Ports.h>

#include <charconv>
#include <chrono>
#include <utility>

#include "ConsolePrompt.h"
#include "Events.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

constexpr double defaultWaitSeconds = 30;

std::pair<std::string, std::string> splitAtBlank(const std::string& text) {
    const std::size_t blank = text.find(' ');
    if (blank == std::string::npos) return {text, {}};
    return {text.substr(0, blank), text.substr(blank + 1)};
}

}  // namespace

JourneyConsole::JourneyConsole(JourneyKind kind, const std::string& cardId,
                               std::function<void(const std::string&)> write,
                               std::function<bool()> cancelPrompt, std::function<void(int)> finish)
    : write_(std::move(write)),
      cancelPrompt_(std::move(cancelPrompt)),
      finish_(std::move(finish)),
      journey_(std::make_unique<Journey>(kind, cardId)) {
    observation_ = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [this](const NotificationUserInfo& userInfo) { closed(userInfo); });
}

void JourneyConsole::start() {
    journey_->onChange([this] { screenChanged(); });
    journey_->appear();
}

void JourneyConsole::screenChanged() {
    ScreenSnapshot screen = journey_->screen();
    const bool toast = !screen.toast.empty() && (!shown_ || shown_->toast != screen.toast);
    if (!shown_ || differ(*shown_, screen)) write_(screenEvent(screen));
    if (toast) write_(toastEvent(screen.toast));
    shown_ = std::move(screen);
    checkWait();
}

void JourneyConsole::closed(const NotificationUserInfo& userInfo) {
    const std::string& result = userInfo.at("result");
    write_(closeEvent(result));
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
    const auto [verb, argument] = splitAtBlank(line);
    if (verb.empty()) return;
    if (verb == "type") {
        report(journey_->replaceText(argument), "the digit boxes");
    } else if (verb == "erase") {
        report(journey_->deleteBackward(), "the digit boxes");
    } else if (verb == "tap" && argument == ConsolePrompt::cancelControl) {
        if (!cancelPrompt_()) error("there is no biometric prompt");
    } else if (verb == "tap") {
        report(journey_->perform(argument), argument);
    } else if (verb == "wait") {
        startWait(argument);
    } else if (verb == "state") {
        write_(screenEvent(journey_->screen()));
    } else if (verb == "custody") {
        const SdkConfig& config = SdkConfig::sharedInstance();
        write_(custodyEvent(!config.currentPciToken.empty(), config.timerPciExpired));
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
        (!seconds.empty() && (failure != std::errc{} || end != seconds.data() + seconds.size()))) {
        error("wait takes a view's name and, if you like, seconds");
        return;
    }
    awaitedView_ = view;
    waitTimer_ = ports().timers->start(std::chrono::duration<double>(limit), [this] {
        waitTimer_.reset();
        const std::string awaited = std::exchange(awaitedView_, {});
        error(awaited + " did not come; still on " + journey_->screen().view);
        runQueued();
    });
    checkWait();
}

void JourneyConsole::checkWait() {
    if (awaitedView_.empty()) return;
    const ScreenSnapshot screen = journey_->screen();
    // A screen with a spinner is about to change.
    if (screen.view != awaitedView_ || screen.spinner) return;
    awaitedView_.clear();
    waitTimer_.reset();
    ports().mainQueue->post([this] { runQueued(); });
}

void JourneyConsole::report(Journey::Outcome outcome, std::string_view controlId) {
    if (!finish_) return;
    const std::string where = std::string{controlId} + " on " + journey_->screen().view;
    switch (outcome) {
        case Journey::Outcome::done:
            break;
        case Journey::Outcome::noSuchControl:
            error("there is no " + where);
            break;
        case Journey::Outcome::notEnabled:
            error("not enabled: " + where);
            break;
        case Journey::Outcome::notDigits:
            error("digits only in " + where);
            break;
    }
}

void JourneyConsole::error(const std::string& message) {
    write_(errorEvent(message));
}

void JourneyConsole::finish(int status) {
    if (const auto finish = std::exchange(finish_, nullptr)) finish(status);
}

}  // namespace korvane
