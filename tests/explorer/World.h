// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>

#include <optional>
#include <set>
#include <variant>

#include "tests/explorer/Actor.h"
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
const std::vector<Answer>& answersTo(const std::string& waiting, const ScriptedService& service,
                                     const Person& person);

/// What a journey is started with, and which other one there may be beside it.
struct Start {
    /// Where the PCI token is, and whether there is a reader.
    enum class Token { none, held, stored, halfStored, noReader };

    JourneyKind kind = JourneyKind::setPIN;
    bool biometrics = false;
    Token token = Token::none;
    std::optional<JourneyKind> second = {};
    bool sameCard = false;  ///< the second one's
};

/// One thing that happens: a person uses a control or types, time passes, something that was waited for ends,
/// or the host makes a journey, shows it or takes it away.
struct Step {
    enum class Does { tap, type, erase, wait, answer, leave, construct, appear };

    Does does = Does::tap;
    std::size_t actor = 0;           ///< whom it concerns; time concerns all
    std::string text = {};           ///< control, digits, seconds, or who answers
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

    std::string secondCard = {};              ///< of the second journey, likewise
    bool interloper = false;                  ///< the second journey decides, and nobody uses its controls
    std::vector<std::string_view> only = {};  ///< the only faults there are, by name; empty: any
};

/// What there is before a step, to tell what it changed.
struct Before {
    std::vector<ScreenSnapshot> screens;  ///< by actor
    std::vector<std::string> everything;  ///< by actor
    std::string process;
    std::size_t requests = 0;
    bool isLate = false;  ///< the step answers a screen that is gone
};

/// A device of fakes with one journey on it, or two, made anew for each walk: the process-wide state starts
/// as it does in a fresh process. Whatever leaves the device is waited for until a step answers it.
class World : public ScriptedService {
  public:
    World(const Start& start, const Scope& scope);
    ~World();

    void apply(const Step& step);
    /// Everything that may happen next.
    std::vector<Step> possible() const;

    const std::vector<Actor>& actors() const { return actors_; }
    /// Every journey has been there and is gone.
    bool isClosed() const { return std::ranges::all_of(actors_, &Actor::isGone); }
    /// All that the component's further behaviour depends on, made finite: texts by whether there are any,
    /// times by whether they are up.
    std::string key() const;
    /// The shared state that journeys write, every field in clear.
    std::string process() const;
    Before before(const Step& step) const;
    bool isAwaiting(std::size_t actor) const { return std::ranges::count(waiting_, actor, &Waiting::actor); }
    /// Ends the journeys, lets all that is still under way succeed, and tells what was left behind, or "".
    std::string leftBehind();

    std::string trouble;  ///< what was wrong in the last step itself, or ""

  private:
    struct Waiting {
        std::string name;  ///< method, "iv", or "finger"
        std::optional<std::size_t> request = {};
        IvReply reply = {};
        std::string origin = {};  ///< the answer that led to it: what the one who asks will do next
        std::string cause = {};   ///< of an IV or a bearer token: the call that wants it again
        std::string due = {};     ///< the answer that any service gives; "": a success
        std::size_t actor = 0;
        std::size_t number = 0;   ///< in the order in which they came
        bool isReadable = true;   ///< the IV with which it is asked is none of a host's odd ones
        std::uint64_t owner = 0;  ///< the screen that asked; it may be gone
        std::string tag = {};     ///< all of that
    };

    void give(const Step& step);
    void gather(const std::string& origin);
    bool isOldest(const Waiting& finger) const;
    void addControls(std::size_t actor, std::vector<Step>& steps) const;
    void addAnswers(std::size_t waiting, std::vector<Step>& steps) const;

    Scope scope_;  // what is left of it
    std::vector<Actor> actors_;
    std::vector<Waiting> waiting_;
    std::size_t acting_ = 0;   // whom the step concerns
    std::uint64_t asker_ = 0;  // owner of what was just answered
    std::string cause_;        // the call that was just answered, or why
    std::size_t checksSeen_ = 0, numbers_ = 0;
    std::shared_ptr<NotificationCenter::Observation> observation_;
};

/// "row HOST VIEW" for each row of the view tables, "view VIEW" for each view.
std::set<std::string> allRowsAndViews();
/// Those by which the screens of the stack came to be shown; and with a "!" in front, what is wrong with
/// that.
std::set<std::string> rowsAndViews(const ScreenSnapshot& now);

/// What is wrong with the world that `step` led to, or "".
std::string wrongAfter(const Before& before, const Step& step, const World& world);
/// The same, of what journeys have to do with each other, and with screens that are gone.
std::string wrongBetween(const Before& before, const Step& step, const World& world);

}  // namespace korvane::explorer
