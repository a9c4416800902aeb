// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/korvane.h>
#include <rapidjson/document.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace korvane {

/// Drives one journey by commands and tells what is on screen by events. Runs on GLib's default main loop.
class JourneyConsole {
  public:
    static constexpr int inputEnded = 5;

    /// @param write takes one event's line
    /// @param finish takes the exit status, once
    JourneyConsole(std::function<void(const std::string&)> write, std::function<void(int)> finish)
        : write_(std::move(write)), finish_(std::move(finish)) {}
    ~JourneyConsole();
    JourneyConsole(const JourneyConsole&) = delete;
    JourneyConsole& operator=(const JourneyConsole&) = delete;

    void start(korvane_journey_kind kind, const std::string& cardId);
    /// One command. While a `wait` is pending, later commands queue up behind it.
    void command(std::string line);
    void endOfInput();

  private:
    rapidjson::Document screen() const;
    void screenChanged();
    void closed(const std::string& result);
    void runQueued();
    void run(const std::string& line);
    void startWait(const std::string& argument);
    void endWait();
    bool isAwaited(const rapidjson::Document& screen) const;
    void report(korvane_status status, const std::string& control);
    void error(const std::string& message);
    void finish(int status);

    std::function<void(const std::string&)> write_;
    std::function<void(int)> finish_;
    korvane_journey* journey_ = nullptr;
    std::optional<rapidjson::Document> shown_;
    std::deque<std::string> queued_;
    std::string awaitedView_;
    unsigned waitTimer_ = 0;  // GLib's id of the source; 0: none
    bool inputEnded_ = false;
};

}  // namespace korvane
