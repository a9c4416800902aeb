// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>
#include <korvane/platform/Timers.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// Drives one journey by commands and tells what is on screen by events. Main thread.
class JourneyConsole {
  public:
    static constexpr int inputEnded = 5;

    /// @param write takes one event's line
    /// @param cancelPrompt declines the biometric prompt; false when there is none
    /// @param finish takes the exit status, once
    JourneyConsole(JourneyKind kind, const std::string& cardId, std::function<void(const std::string&)> write,
                   std::function<bool()> cancelPrompt, std::function<void(int)> finish);

    void start();
    /// One command. While a `wait` is pending, later commands queue up behind it.
    void command(std::string line);
    void endOfInput();

  private:
    void screenChanged();
    void closed(const NotificationUserInfo& userInfo);
    void runQueued();
    void run(const std::string& line);
    void startWait(const std::string& argument);
    void checkWait();
    void report(Journey::Outcome outcome, std::string_view controlId);
    void error(const std::string& message);
    void finish(int status);

    std::function<void(const std::string&)> write_;
    std::function<bool()> cancelPrompt_;
    std::function<void(int)> finish_;
    std::unique_ptr<Journey> journey_;
    std::shared_ptr<NotificationCenter::Observation> observation_;
    std::optional<ScreenSnapshot> shown_;
    std::deque<std::string> queued_;
    std::string awaitedView_;
    std::unique_ptr<Timer> waitTimer_;
    bool inputEnded_ = false;
};

}  // namespace korvane
