// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/World.h"
#include "tests/support/StoredToken.h"

#include <chrono>

#include "transport/Endpoints.h"

namespace korvane::explorer {
namespace {

using Does = Step::Does;

using ProcessText = std::string SdkConfig::*;

/// On these the component's behaviour depends.
constexpr ProcessText decisiveProcessTexts[] = {&SdkConfig::ivIdStr, &SdkConfig::currentPciToken,
                                                &SdkConfig::decBiometricsAuthenticationTimer};
/// These are only sent or shown.
constexpr ProcessText otherProcessTexts[] = {&SdkConfig::currentBearerToken,
                                             &SdkConfig::decPciTokenExpiration, &SdkConfig::useBiometric,
                                             &SdkConfig::lastJsonResponseStr};

std::string methodOf(const UrlRequest& request) {
    std::size_t i = 0;
    while (!request.url.ends_with(endpoint(static_cast<EndpointId>(i)).path)) ++i;
    return std::string{endpoint(static_cast<EndpointId>(i)).method};
}

/// What any service answers, for want of a token; "": a success.
std::string dueTo(const UrlRequest& request, const SdkConfig& config) {
    if (methodOf(request) != "getBearerToken" && config.currentBearerToken.empty()) return "401";
    const bool needsToken = request.body.find("PciToken") != std::string::npos;
    return needsToken && config.currentPciToken.empty() ? tokenRefused : "";
}

/// It is asked for on the way to a call of the component's.
bool isOnTheWay(std::string_view waiting) {
    return waiting == "iv" || waiting == "getBearerToken";
}

}  // namespace

World::World(const Start& start, const Scope& scope) : scope_(scope) {
    using enum Start::Token;
    for (const ProcessText text : decisiveProcessTexts) (config.*text).clear();
    for (const ProcessText text : otherProcessTexts) (config.*text).clear();
    config.ivByteArray.clear();
    config.gotInitialIV = config.timerPciExpired = false;
    config.useBiometrics = start.biometrics;
    config.ivCallback = [this](IvReply reply) { waiting_.push_back({"iv", {}, std::move(reply)}); };
    device.urlSession->answerWith([this](const UrlRequest& request) -> std::optional<UrlReply> {
        waiting_.push_back({methodOf(request), device.urlSession->startedCount() - 1});
        return std::nullopt;
    });

    if (start.token == held) config.currentBearerToken = "bearer-token";
    if (start.token == held) config.currentPciToken = "pci-token";
    device.biometricContext->setAvailable(start.biometrics && start.token != noReader);
    auto& items = device.secureItemStore->items();
    if (start.biometrics && start.token != none) items[storedItem("KorvaneSDKPCIToken")] = "pci-token";
    if (start.biometrics && start.token != none && start.token != halfStored)
        items[storedItem("KorvaneSDKPCITokenBioTimeout")] = "86400";
    if (start.biometrics && start.token == held) {
        config.decBiometricsAuthenticationTimer = "86400";
        config.pciTimer.start();
    }

    observation_ = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [this](const NotificationUserInfo& info, JourneyId id) {
            const auto actor = std::ranges::find(actors_, id, &Actor::id);
            if (id == 0 || actor == actors_.end()) return void(trouble = "a result of no journey");
            actor->closedWith += info.at("result");
            actor->journey.reset();  // as a host may do at once
        });
    actors_.push_back({start.kind});
    actors_[0].construct();
    if (start.second) {
        actors_.push_back({*start.second, &people[start.sameCard ? 2 : 1]});
    } else {
        apply({Does::appear});
    }
}

World::~World() {
    leftBehind();
    config.decBiometricsAuthenticationTimer.clear();
    config.pciTimer.start();  // without an interval: lets go of the timer that may be running
}

void World::gather(const std::string& origin) {
    if (device.mainQueue->runAll(10'000) == 10'000) trouble = "works on without end by itself";
    const auto& session = *device.urlSession;
    std::erase_if(waiting_,
                  [&](const Waiting& each) { return each.request && session.wasCancelled(*each.request); });
    for (; checksSeen_ < device.biometricContext->reasons().size(); ++checksSeen_)
        waiting_.push_back({"finger"});
    Actor& actor = actors_[acting_];
    const auto isDropped = [&](const Waiting& each) {
        return each.name == "finger" && each.number != 0 && each.actor == acting_;
    };
    while (std::ranges::count(waiting_, "finger", &Waiting::name) >
           static_cast<std::ptrdiff_t>(device.biometricContext->open()))
        waiting_.erase(std::ranges::find_if(waiting_, isDropped));
    const ScreenSnapshot now = actor.screen();
    const auto owner = asker_ != 0 && actor.onScreen.back() == now.instance ? asker_ : now.instance;
    actor.onScreen.resize(static_cast<std::size_t>(now.depth) + 1);
    actor.onScreen.back() = now.instance;
    for (Waiting& each : waiting_) {
        if (each.number == 0) {
            each.number = ++numbers_;
            each.actor = acting_;
            each.isReadable = config.ivByteArray.size() == 16;
            each.owner = owner;
            each.origin = origin;
            each.cause = cause_;
            // What runs again by itself says so.
            const auto isRerun = [](const std::string& line) {
                return line.find("recalling") != line.npos || line.find("re-calling") != line.npos;
            };
            if (each.name == "pciTokenRequest" && each.name == cause_ &&
                std::ranges::none_of(device.console->lines(), isRerun))
                each.cause += " again";
            if (each.request) each.due = dueTo(session.requests()[*each.request], config);
        }
        // A request that is made again is like the first one; only that for a code is made twice at most.
        const bool isSecond = each.cause.ends_with("again");
        const std::string why = !each.request ? "<" + each.origin : "";
        const Actor& who = actors_[each.actor];
        const auto place = std::ranges::find(who.onScreen, each.owner) - who.onScreen.begin();
        each.tag = "~" + std::to_string(each.actor) + each.name + each.due + why +
                   (isSecond || isOnTheWay(each.name) ? "=" + each.cause : "") + "@" +
                   (who.isOnScreen(each.owner) ? std::to_string(place) : "gone");
        if (each.request && !each.isReadable) each.tag += "odd";
        if (each.name == "finger" && !isOldest(each)) each.tag += "later";
    }
    std::ranges::stable_sort(waiting_, {}, &Waiting::tag);
}

bool World::isOldest(const Waiting& finger) const {
    return std::ranges::none_of(
        waiting_, [&](const Waiting& each) { return each.name == "finger" && each.number < finger.number; });
}

void World::apply(const Step& step) {
    trouble.clear();
    for (Actor& each : actors_) each.closedWith.clear();
    device.console->clear();
    asker_ = 0;
    cause_.clear();
    acting_ = step.actor;
    Actor& actor = actors_[acting_];
    const ScreenSnapshot before = actor.screen();
    std::string origin = "person";
    auto outcome = Journey::Outcome::done;
    if (step.does == Does::construct) actor.construct();
    if (step.does == Does::leave) actor.journey.reset();
    if (step.does == Does::wait) device.timers->advance(std::chrono::seconds(std::stoi(step.text)));
    if (step.does == Does::appear) {
        origin = "start";
        actor.appeared = true;
        actor.journey->appear();
    }
    if (step.does == Does::tap) {
        outcome = actor.journey->perform(step.text);
        actor.doneSomething |= before.card && step.text.starts_with("sdk.cardviewer.device.details");
    }
    if (step.does == Does::type) {
        actor.typed[before.passcode->id] = step.text;
        outcome = actor.journey->replaceText(step.text);
    }
    if (step.does == Does::erase) {
        if (std::string& typed = actor.typed[before.passcode->id]; !typed.empty()) typed.pop_back();
        outcome = actor.journey->deleteBackward();
    }
    if (step.does == Does::answer) {
        if (step.waiting >= waiting_.size() || waiting_[step.waiting].name != step.text) {
            trouble = "does not wait for " + step.text;
            return;
        }
        asker_ = waiting_[step.waiting].owner;
        // A code is asked for twice at most, whatever is asked for on the way.
        cause_ = waiting_[step.waiting].cause;
        if (!isOnTheWay(step.text) && !cause_.starts_with(step.text)) cause_ = step.text;
        // An IV that is asked for again is asked for by the same one.
        origin = step.text == "iv" ? waiting_[step.waiting].origin : step.text + " " + step.answer->name;
        give(step);
        scope_.faults -= step.fault;
    }
    if (outcome != Journey::Outcome::done) trouble = "refused, though it is enabled: " + step.text;
    gather(origin);
    device.secureItemStore->failNext({});  // what was not read fails no later

    const ScreenSnapshot now = actor.screen();
    actor.covered.resize(std::min<std::size_t>(actor.covered.size(), now.depth));
    // Of what is covered, digits, the card and a count-down matter; what it waits for is under way.
    for (Actor& each : actors_)
        for (std::string& key : each.covered)
            if (step.does == Does::wait) std::erase(key, '~');
    if (now.depth > before.depth) actor.covered.push_back(actor.coveredKey(before));
}

void World::give(const Step& step) {
    const Waiting waiting = std::move(waiting_.at(step.waiting));
    waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(step.waiting));
    if (const auto* const reply = std::get_if<UrlReply>(&step.answer->content)) {
        if (waiting.name == "setCardStatus" && step.answer->success && waiting.isReadable)
            actors_[waiting.actor].doneSomething = true;
        device.urlSession->reply(*waiting.request, *reply);
    } else if (const auto* const finger = std::get_if<Finger>(&step.answer->content)) {
        device.secureItemStore->failNext(finger->store);
        device.biometricContext->answer(finger->match);
    } else {
        for (const auto& [ivId, text] : std::get<IvReplies>(step.answer->content)) waiting.reply(ivId, text);
    }
}

void World::addControls(std::size_t actor, std::vector<Step>& steps) const {
    const ScreenSnapshot now = actors_[actor].screen();
    for (const Control& control : now.controls) {
        if (!control.enabled || (!scope_.restless && isAwaiting(actor) && control.id != "back")) continue;
        // What calls nothing is left alone.
        if (!scope_.restless && control.id.starts_with("sdk.cardviewer.device.details")) continue;
        if (control.kind != ControlKind::passcode) {
            steps.push_back({Does::tap, actor, control.id});
            continue;
        }
        for (const std::string_view digits : actors_[actor].person->entries(control.id)) {
            const bool whole = static_cast<int>(digits.size()) == now.passcode->size;
            if (whole || scope_.restless) steps.push_back({Does::type, actor, std::string{digits}});
        }
        if (now.passcode->filled > 0 && scope_.restless) steps.push_back({Does::erase, actor});
    }
}

void World::addAnswers(std::size_t place, std::vector<Step>& steps) const {
    const Waiting& waiting = waiting_[place];
    if (waiting.name == "finger" && !isOldest(waiting)) return;
    const std::string& due = waiting.due;
    const std::string& card =
        waiting.actor == 0 || scope_.secondCard.empty() ? scope_.card : scope_.secondCard;
    for (const Answer& answer : answersTo(waiting.name, *this, *actors_[waiting.actor].person)) {
        const bool fault = due.empty() ? !answer.success : answer.name != due;
        // A rule that leaves something out does it to replies that are there without it.
        const bool hasRule =
            !answer.fault.empty() && (due.empty() || !answer.fault.starts_with("\"without\""));
        if (!answer.basic && !scope_.thorough) continue;
        if (!answer.card.empty() && !card.empty() && answer.card != card) continue;
        if (fault && (scope_.faults == 0 || (scope_.rulesAlone && !hasRule))) continue;
        if (fault && !scope_.only.empty() && std::ranges::count(scope_.only, answer.name) == 0) continue;
        steps.push_back({Does::answer, waiting.actor, waiting.name, place, &answer, fault});
    }
}

std::vector<Step> World::possible() const {
    std::vector<Step> steps;
    if (isClosed()) return steps;  // what is under way then is answered by `leftBehind`
    bool anyRuns = !device.pasteboard->text().empty();
    for (std::size_t i = 0; i < actors_.size(); ++i) {
        const Actor& actor = actors_[i];
        if (actor.id == 0) steps.push_back({Does::construct, i});
        if (!actor.journey) continue;
        if (!actor.appeared) steps.push_back({Does::appear, i});
        // Two things under way are seen to an end before a person does anything else.
        if (std::ranges::count(waiting_, i, &Waiting::actor) < 2 && (i == 0 || !scope_.interloper))
            addControls(i, steps);
        anyRuns |= runs(actor.screen());
        steps.push_back({Does::leave, i});
    }
    // Each wait is longer than all that was pending, so nothing is left of what went by before.
    if (anyRuns) steps.push_back({Does::wait, 0, "61"});
    if (config.pciTimer.isArmed()) steps.push_back({Does::wait, 0, "86401"});
    for (std::size_t i = 0; i < waiting_.size(); ++i) addAnswers(i, steps);
    return steps;
}

std::string World::key() const {
    if (isClosed()) return "closed";
    std::string key = std::to_string(scope_.faults);
    for (const Actor& each : actors_) key += "#" + each.key();
    for (const ProcessText text : decisiveProcessTexts) key += "|" + config.*text;
    for (const Waiting& each : waiting_) key += each.tag;
    for (const auto& [name, value] : device.secureItemStore->items()) key += name[1] + value;
    for (const bool flag :
         {config.useBiometrics, device.biometricContext->canEvaluate(), !config.currentBearerToken.empty(),
          config.timerPciExpired, config.pciTimer.isArmed(), !device.pasteboard->text().empty()})
        key += flag ? "1" : "0";
    return key + std::to_string(config.ivByteArray.size());
}

std::string World::process() const {
    std::string all = std::to_string(config.ivByteArray.size());
    for (const ProcessText text : decisiveProcessTexts) all += "|" + config.*text;
    for (const ProcessText text : otherProcessTexts) all += "|" + config.*text;
    return all + (config.timerPciExpired ? "1" : "0") + (config.pciTimer.isArmed() ? "1" : "0");
}

Before World::before(const Step& step) const {
    Before before{{}, {}, process(), device.urlSession->startedCount()};
    if (step.answer) {
        const Waiting& waiting = waiting_.at(step.waiting);
        before.isLate = !actors_[waiting.actor].isOnScreen(waiting.owner);
    }
    for (std::size_t i = 0; i < actors_.size(); ++i) {
        before.screens.push_back(actors_[i].screen());
        const bool isToStay = i != step.actor || before.isLate;
        before.everything.push_back(isToStay ? actors_[i].everything() : "");
    }
    return before;
}

std::string World::leftBehind() {
    for (Actor& each : actors_) {
        acting_ = static_cast<std::size_t>(&each - actors_.data());
        each.journey.reset();
        gather("end");
    }
    const std::string atEnd = process();
    const std::size_t requests = device.urlSession->startedCount();
    device.console->clear();
    for (int rounds = 0; !waiting_.empty(); ++rounds) {
        if (rounds == 50) return "still calls when the journey is long gone";
        acting_ = waiting_.front().actor;
        const std::string name = waiting_.front().name;
        give({Does::answer, acting_, name, 0, &answersTo(name, *this, people[0]).front()});
        gather("end");
    }
    if (process() != atEnd) return "an answer changes what is shared when the journey is gone";
    if (device.urlSession->startedCount() != requests) return "calls when the journey is gone";
    if (const auto lines = device.console->lines(); !lines.empty())
        return "tells when the journey is gone: " + lines.front();
    for (const Actor& each : actors_) {
        if (!each.state.expired()) return "the journey's state outlives the journey";
        const std::string left = foundIn(atEnd, each.person->secrets());
        if (!left.empty()) return "left in memory: " + left;
    }
    if (!device.pasteboard->text().empty()) return "left on the pasteboard: " + device.pasteboard->text();
    const bool tokenTimer = config.useBiometrics && !config.currentPciToken.empty();
    if (device.timers->pending() > (tokenTimer ? 1u : 0u)) return "a timer still runs";
    return {};
}

}  // namespace korvane::explorer
