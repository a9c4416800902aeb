// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/World.h"

#include <chrono>

#include "transport/Endpoints.h"

namespace korvane::explorer {
namespace {

using Does = Step::Does;

using ProcessText = std::string SdkConfig::*;
using JourneyText = std::string JourneyState::*;

/// On these the component's behaviour depends.
constexpr ProcessText decisiveProcessTexts[] = {&SdkConfig::ivIdStr, &SdkConfig::currentPciToken,
                                                &SdkConfig::decBiometricsAuthenticationTimer};
constexpr JourneyText decisiveJourneyTexts[] = {&JourneyState::pendingPin,
                                                &JourneyState::decCardStatus,
                                                &JourneyState::viewToShowAfterSMSVerify,
                                                &JourneyState::enteredLastFour,
                                                &JourneyState::enteredCvv,
                                                &JourneyState::viewToShowAfterSMSVerifyBackup,
                                                &JourneyState::decCardImage,
                                                &JourneyState::decPan};
/// These are only sent or shown.
constexpr ProcessText otherProcessTexts[] = {&SdkConfig::currentBearerToken,
                                             &SdkConfig::decPciTokenExpiration, &SdkConfig::useBiometric,
                                             &SdkConfig::lastJsonResponseStr};
constexpr JourneyText otherJourneyTexts[] = {
    &JourneyState::decryptedPciSmsToken, &JourneyState::twoFactorCode, &JourneyState::viewToShowAfterFaceId,
    &JourneyState::decMaskedPan,         &JourneyState::decCvv,        &JourneyState::decMaskedCvv,
    &JourneyState::decExpiryDate,        &JourneyState::decFirstName,  &JourneyState::decMiddleName,
    &JourneyState::decLastName,          &JourneyState::decCardNetwork};

/// What a person types in the boxes: what belongs there, what does not, and too little.
const std::map<std::string, std::vector<std::string>> entries{
    {"sdk.setpin.input", {"8046", "1234", "80"}},
    {"sdk.confirmpin.input", {"8046", "2975", "80"}},
    {"sdk.activatecard.lastfourdigits.input", {"6603", "66"}},
    {"sdk.activatecard.cvv.input", {"731", "73"}},
    {"sdk.sms.code.input", {"350912", "35"}},
};

/// Gone with the journey; tokens stay.
constexpr auto personal = std::span(secrets).subspan(3);

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

/// Time changes it by itself.
bool runs(const ScreenSnapshot& screen) {
    return std::ranges::any_of(screen.state, [](const StateField& field) {
        return (field.name == "resendSeconds" && field.value != StateValue{0}) ||
               (field.name == "detailsRevealed" && field.value == StateValue{true});
    });
}

}  // namespace

std::string foundIn(std::string_view text, std::span<const std::string_view> these) {
    const auto isIn = [&](std::string_view each) { return text.find(each) != text.npos; };
    const auto found = std::ranges::find_if(these, isIn);
    return found == these.end() ? "" : std::string{*found};
}

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
    if (start.biometrics && start.token != none)
        items[{"KorvanePCISDKService", "KorvaneSDKPCIToken"}] = "pci-token";
    if (start.biometrics && start.token != none && start.token != halfStored)
        items[{"KorvanePCISDKService", "KorvaneSDKPCITokenBioTimeout"}] = "86400";
    if (start.biometrics && start.token == held) {
        config.decBiometricsAuthenticationTimer = "86400";
        config.pciTimer.start();
    }

    observation_ = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [this](const NotificationUserInfo& info) {
            closedWith += info.at("result");
            journey_.reset();  // as a host may do at once
        });
    journey_ = std::make_unique<Journey>(start.kind, "card-1");
    state_ = JourneyProbe::state(*journey_);
    journey_->appear();
    gather("start");
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
    while (std::ranges::count(waiting_, "finger", &Waiting::name) >
           static_cast<std::ptrdiff_t>(device.biometricContext->open()))
        waiting_.erase(std::ranges::find(waiting_, "finger", &Waiting::name));
    const ScreenSnapshot now = screen();
    const auto owner = asker_ != 0 && onScreen_.back() == now.instance ? asker_ : now.instance;
    onScreen_.resize(static_cast<std::size_t>(now.depth) + 1);
    onScreen_.back() = now.instance;
    for (Waiting& each : waiting_) {
        if (each.owner == 0) {
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
        const auto place = std::ranges::find(onScreen_, each.owner) - onScreen_.begin();
        each.tag = "~" + each.name + each.due + why +
                   (isSecond || isOnTheWay(each.name) ? "=" + each.cause : "") + "@" +
                   (place == std::ssize(onScreen_) ? "gone" : std::to_string(place));
    }
    std::ranges::stable_sort(waiting_, {}, &Waiting::tag);
}

void World::apply(const Step& step) {
    trouble.clear();
    closedWith.clear();
    device.console->clear();
    asker_ = 0;
    cause_.clear();
    const ScreenSnapshot before = screen();
    std::string origin = "person";
    auto outcome = Journey::Outcome::done;
    if (step.does == Does::leave) journey_.reset();
    if (step.does == Does::wait) device.timers->advance(std::chrono::seconds(std::stoi(step.text)));
    if (step.does == Does::tap) {
        outcome = journey_->perform(step.text);
        doneSomething |= before.card && step.text.starts_with("sdk.cardviewer.device.details");
    }
    if (step.does == Does::type) {
        typed_[before.passcode->id] = step.text;
        outcome = journey_->replaceText(step.text);
    }
    if (step.does == Does::erase) {
        if (std::string& typed = typed_[before.passcode->id]; !typed.empty()) typed.pop_back();
        outcome = journey_->deleteBackward();
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

    const ScreenSnapshot now = screen();
    covered_.resize(std::min<std::size_t>(covered_.size(), now.depth));
    // Of what is covered, digits, the card and a count-down matter; what it waits for is under way.
    if (step.does == Does::wait)
        for (std::string& each : covered_) std::erase(each, '~');
    if (now.depth > before.depth)
        covered_.push_back((before.card ? screenKey(before) : typedIn(before)) + (runs(before) ? "~" : ""));
}

void World::give(const Step& step) {
    const Waiting waiting = std::move(waiting_.at(step.waiting));
    waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(step.waiting));
    if (const auto* const reply = std::get_if<UrlReply>(&step.answer->content)) {
        const bool isRead = config.ivByteArray.size() == 16;  // under a host's odd IV nothing is
        if (waiting.name == "setCardStatus" && step.answer->success && isRead) doneSomething = true;
        device.urlSession->reply(*waiting.request, *reply);
    } else if (const auto* const finger = std::get_if<Finger>(&step.answer->content)) {
        device.secureItemStore->failNext(finger->store);
        device.biometricContext->answer(finger->match);
    } else {
        const auto& replies = std::get<IvReplies>(step.answer->content);
        for (const auto& [ivId, text] : replies) waiting.reply(ivId, text);
        if (replies.empty()) waiting_.push_back({"nobody"});
    }
}

std::vector<Step> World::possible() const {
    if (!journey_) return {};  // what is under way then is answered by `leftBehind`
    std::vector<Step> steps;
    const ScreenSnapshot now = screen();
    // Two things under way are seen to an end before a person does anything else.
    if (waiting_.size() < 2) {
        for (const Control& control : now.controls) {
            if (!control.enabled || (!scope_.restless && isAwaiting() && control.id != "back")) continue;
            // What calls nothing is left alone.
            if (!scope_.restless && control.id.starts_with("sdk.cardviewer.device.details")) continue;
            if (control.kind != ControlKind::passcode) steps.push_back({Does::tap, control.id});
            if (control.kind != ControlKind::passcode) continue;
            for (const std::string& digits : entries.at(control.id)) {
                const bool whole = static_cast<int>(digits.size()) == now.passcode->size;
                if (whole || scope_.restless) steps.push_back({Does::type, digits});
            }
            if (now.passcode->filled > 0 && scope_.restless) steps.push_back({Does::erase, ""});
        }
    }
    // Each wait is longer than all that was pending, so nothing is left of what went by before.
    if (runs(now) || !device.pasteboard->text().empty()) steps.push_back({Does::wait, "61"});
    if (config.pciTimer.isArmed()) steps.push_back({Does::wait, "86401"});
    for (std::size_t i = 0; i < waiting_.size(); ++i) {
        if (waiting_[i].name == "nobody") continue;
        const std::string& due = waiting_[i].due;
        for (const Answer& answer : answersTo(waiting_[i].name, *this)) {
            const bool fault = due.empty() ? !answer.success : answer.name != due;
            // A rule that leaves something out does it to replies that are there without it.
            const bool hasRule =
                !answer.fault.empty() && (due.empty() || !answer.fault.starts_with("\"without\""));
            if (!answer.basic && !scope_.thorough) continue;
            if (!answer.card.empty() && !scope_.card.empty() && answer.card != scope_.card) continue;
            if (fault && (scope_.faults == 0 || (scope_.rulesAlone && !hasRule))) continue;
            steps.push_back({Does::answer, waiting_[i].name, i, &answer, fault});
        }
    }
    steps.push_back({Does::leave, ""});
    return steps;
}

std::string World::typedIn(const ScreenSnapshot& now) const {
    if (!now.passcode || now.passcode->filled == 0) return {};
    return now.passcode->filled == now.passcode->size ? typed_.at(now.passcode->id) : "partly";
}

std::string World::screenKey(const ScreenSnapshot& now) const {
    std::string key;
    for (const std::string& name : now.stack) key += name + ">";
    for (const StateField& field : now.state) {
        key += field.name + "=";
        if (const auto* const text = std::get_if<std::string>(&field.value)) key += *text;
        key += field.value == StateValue{0} || field.value == StateValue{false} ? "0" : "1";
    }
    for (const Control& control : now.controls)
        key += control.id + (control.enabled ? "!" : "") + (control.on ? "1" : "");
    key += typedIn(now) + now.message + (now.spinner ? "spinner" : "");
    for (const DetailRow& row : now.rows) key += row.value;
    return key;
}

std::string World::key() const {
    if (!journey_) return "closed";
    std::string key = screenKey(screen()) + "#" + std::to_string(scope_.faults);
    for (const std::string& each : covered_) key += "/" + each;
    const auto state = state_.lock();
    for (const ProcessText text : decisiveProcessTexts) key += "|" + config.*text;
    for (const JourneyText text : decisiveJourneyTexts) key += "|" + (*state).*text;
    const auto add = [&key](const std::string& text) { key += foundIn(text, personal).empty() ? "-" : "s"; };
    for (const ProcessText text : otherProcessTexts) add(config.*text);
    for (const JourneyText text : otherJourneyTexts) add((*state).*text);
    for (const Waiting& each : waiting_) key += each.tag;
    for (const auto& [name, value] : device.secureItemStore->items()) key += name.second + value;
    for (const bool flag :
         {config.useBiometrics, device.biometricContext->canEvaluate(), !config.currentBearerToken.empty(),
          doneSomething, state->setPinOnly, config.timerPciExpired, config.pciTimer.isArmed(),
          state->decodedDisclosuresStruct.has_value(), !device.pasteboard->text().empty()})
        key += flag ? "1" : "0";
    key += std::to_string(config.ivByteArray.size()) + std::string{cardTypeCaseName(state->currentCardType)};
    return key;
}

std::string World::leftBehind() {
    journey_.reset();
    gather("end");
    std::erase_if(waiting_, [](const Waiting& each) { return each.name == "nobody"; });
    for (int rounds = 0; !waiting_.empty(); ++rounds) {
        if (rounds == 50) return "still calls when the journey is long gone";
        const std::string name = waiting_.front().name;
        give({Does::answer, name, 0, &answersTo(name, *this).front()});
        gather("end");
    }
    std::string memory;
    for (const ProcessText text : decisiveProcessTexts) memory += "|" + config.*text;
    for (const ProcessText text : otherProcessTexts) memory += "|" + config.*text;
    if (const auto left = foundIn(memory, personal); !left.empty()) return "left in memory: " + left;
    if (!state_.expired()) return "the journey's state outlives the journey";
    if (!device.pasteboard->text().empty()) return "left on the pasteboard: " + device.pasteboard->text();
    const bool tokenTimer = config.useBiometrics && !config.currentPciToken.empty();
    if (device.timers->pending() > (tokenTimer ? 1u : 0u)) return "a timer still runs";
    return {};
}

}  // namespace korvane::explorer
