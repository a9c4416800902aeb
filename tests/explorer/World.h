// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>

#include <algorithm>
#include <memory>
#include <set>
#include <span>
#include <variant>

#include "flows/JourneyProbe.h"
#include "sdk/JourneyState.h"
#include "tests/support/ScriptedService.h"

namespace korvane::explorer {

/// A host's calls of the reply function, id, then IV; none when it lets go of it.
using IvReplies = std::vector<std::pair<std::optional<std::string>, std::optional<std::string>>>;

/// What the reader says, and what the secure store answers when it is read thereafter.
struct Finger {
    bool match;
    std::deque<SecureItemStatus> store = {};
};

/// One way in which the service, the host or the reader ends what is waited for.
struct Answer {
    std::string name;
    std::variant<UrlReply, IvReplies, Finger> content;
    bool basic = false;      ///< given in any scope
    std::string fault = {};  ///< as a rule of the sandbox, without its endpoint; "" when it has none
    bool success = false;    ///< all that was asked for
    std::string card = {};   ///< the sandbox' card of which this tells
};

/// A request without a PCI token is answered with it, as by any service.
inline constexpr const char* tokenRefused = "200 \"fAILURE: iNVALID tOKEN\"";

/// What may come back: to a request, by its method ("getCardStatus"), to the host's "iv", to the "finger".
/// The first one is a success. They are made once.
const std::vector<Answer>& answersTo(const std::string& waiting, const ScriptedService& service);

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

/// Tokens; what a person types, or the card's secrets; and a name, which may be shown.
inline constexpr std::string_view secrets[] = {
    "pci-token", "sms-token", "bearer-token",     "8046", "2975",  "6603",
    "731",       "350912",    "5555550000079197", "8642", "Okafor"};
/// The first of these that is in the text, or "".
std::string foundIn(std::string_view text, std::span<const std::string_view> these);

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
class World : public ScriptedService {
  public:
    World(const Start& start, const Scope& scope);
    ~World();

    void apply(const Step& step);
    /// Everything that may happen next.
    std::vector<Step> possible() const;

    bool isClosed() const { return !journey_; }
    const JourneyState& state() const { return *state_.lock(); }
    ScreenSnapshot screen() const { return journey_ ? journey_->screen() : ScreenSnapshot{}; }
    /// All that the component's further behaviour depends on, made finite: texts by whether there are any,
    /// times by whether they are up.
    std::string key() const;
    bool isAwaiting() const { return !waiting_.empty(); }
    /// Something waits for a host that let go of the reply function, which is as good as never replying.
    bool hostLetGo() const { return std::ranges::count(waiting_, "nobody", &Waiting::name) > 0; }
    /// Ends the journey, lets all that is still under way succeed, and tells what was left behind, or "".
    std::string leftBehind();

    bool doneSomething = false;  ///< in the card viewer: closing it is a success
    std::string closedWith;      ///< results of the close notifications of the last step, in a row
    std::string trouble;         ///< what was wrong in the last step itself, or ""

  private:
    struct Waiting {
        std::string name;  ///< method, "iv", "finger", or "nobody"
        std::optional<std::size_t> request = {};
        IvReply reply = {};
        std::string origin = {};  ///< the answer that led to it: what the one who asks will do next
        std::string cause = {};   ///< of an IV or a bearer token: the call that wants it again
        std::string due = {};     ///< the answer that any service gives; "": a success
        std::uint64_t owner = 0;  ///< the screen that asked; it may be gone
        std::string tag = {};     ///< all of that
    };

    void give(const Step& step);
    void gather(const std::string& origin);
    std::string typedIn(const ScreenSnapshot& snapshot) const;
    std::string screenKey(const ScreenSnapshot& snapshot) const;

    Scope scope_;  // what is left of it
    std::unique_ptr<Journey> journey_;
    std::weak_ptr<JourneyState> state_;
    std::vector<Waiting> waiting_;
    std::uint64_t asker_ = 0;                 // owner of what was just answered
    std::string cause_;                       // the call that was just answered, or why
    std::vector<std::uint64_t> onScreen_{0};  // instances, from the root
    std::size_t requestsSeen_ = 0, checksSeen_ = 0;
    std::map<std::string, std::string> typed_;  // by the boxes' id
    std::vector<std::string> covered_;          // keys of the screens below
    std::shared_ptr<NotificationCenter::Observation> observation_;
};

/// "row HOST VIEW" for each row of the view tables, "view VIEW" for each view.
std::set<std::string> allRowsAndViews();
/// Those by which the screens of the stack came to be shown; and with a "!" in front, what is wrong with
/// that.
std::set<std::string> rowsAndViews(const ScreenSnapshot& now);

/// What is wrong with the world that `step` led to, or "".
std::string wrongAfter(const ScreenSnapshot& before, const Step& step, const World& world);

}  // namespace korvane::explorer
