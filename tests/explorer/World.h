// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/explorer/Answers.h"

namespace korvane::explorer {

/// What a journey is started with.
struct Start {
    /// Where the PCI token is, and whether there is a reader.
    enum class Token { none, held, stored, halfStored, noReader };

    JourneyKind kind = JourneyKind::setPIN;
    bool biometrics = false;
    Token token = Token::none;
};

/// One thing that happens: a person uses a control or types, time passes, something that was waited for ends,
/// or the host takes the journey away.
struct Step {
    enum class Does { tap, type, erase, wait, answer, leave };

    Does does = Does::tap;
    std::string text;                ///< control, digits, seconds, or who answers
    std::size_t waiting = 0;         ///< of an answer: its place among what is waited for
    const Answer* answer = nullptr;  ///< of an answer
    bool fault = false;              ///< of an answer: other than what is due
};

/// How far walks go.
struct Scope {
    int faults = 0;           ///< how many answers on one path, at most, are not what is due
    bool thorough = false;    ///< every fault, and every card that a service can name; else the basic ones
    bool restless = false;    ///< a person does everything at any time, half entries too; else waits for what
                              ///< is under way, or goes back, and reveals and copies nothing
    std::string card = {};    ///< the only one, as the sandbox names it; "": any
    bool rulesAlone = false;  ///< only faults that the sandbox has a rule for
};

/// A device of fakes with one journey on it, made anew for each walk: the process-wide state starts as it
/// does in a fresh process. Whatever leaves the device is waited for until a step answers it.
class World : private ScriptedService {
  public:
    /// @param faults how many answers, at most, are not a success
    /// @param onLine gets every console line
    World(const Start& start, int faults, const std::function<void(std::string_view)>& onLine);
    ~World();

    void apply(const Step& step);
    /// Everything that may happen next.
    std::vector<Step> possible(const Scope& scope) const;

    bool isClosed() const { return !journey_; }
    ScreenSnapshot screen() const { return journey_ ? journey_->screen() : ScreenSnapshot{}; }
    /// All that the component's further behaviour depends on, made finite: texts by whether there are any,
    /// times by whether they are up.
    std::string key() const;
    /// A secret in what the screen holds, but for those that a person asked to see; "" when there is none.
    std::string shownSecret() const;
    bool isAwaiting() const { return !waiting_.empty(); }
    bool holdsPin() const { return !config.pendingPin.empty(); }
    /// Something waits for a host that let go of the reply function, which is as good as never replying.
    bool hostLetGo() const;
    /// Something was done in the card viewer: closing it is a success.
    bool hasDoneSomething() const { return doneSomething_; }
    /// Results of the close notifications of the last step.
    const std::vector<std::string>& closedWith() const { return closedWith_; }
    /// What was wrong in the last step itself, or "".
    const std::string& trouble() const { return trouble_; }
    /// Ends the journey, lets all that is still under way succeed, and tells what was left behind, or "".
    std::string leftBehind();

  private:
    struct Waiting {
        std::string name;  ///< method, "iv", "finger", or "nobody"
        std::optional<std::size_t> request;
        IvReply reply;
        std::string origin;       ///< the answer that led to it: what the one who asks will do next
        std::string due = {};     ///< the answer that any service gives; "": a success
        std::uint64_t owner = 0;  ///< the screen that asked; it may be gone
        std::string tag = {};     ///< all of that
    };

    void prepare(const Start& start);
    void give(const Step& step);
    std::string due(const UrlRequest& request) const;
    std::string shownTexts() const;
    void gather(const std::string& origin);
    std::string typedIn(const ScreenSnapshot& snapshot) const;
    std::string screenKey(const ScreenSnapshot& snapshot) const;

    std::function<void(std::string_view)> onLine_;
    std::unique_ptr<Journey> journey_;
    std::vector<Waiting> waiting_;
    std::uint64_t asker_ = 0;                 // owner of what was just answered
    std::vector<std::uint64_t> onScreen_{0};  // instances, from the root
    std::vector<IvReply> asked_;              // since the last step
    std::size_t requestsSeen_ = 0, checksSeen_ = 0;
    std::string trouble_;
    std::map<std::string, std::string> typed_;  // by the boxes' id
    std::vector<std::string> covered_;          // keys of the screens below
    int faultsLeft_;
    bool doneSomething_ = false;
    std::vector<std::string> closedWith_;
    std::shared_ptr<NotificationCenter::Observation> observation_;
};

}  // namespace korvane::explorer
