// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/World.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "transport/Endpoints.h"

namespace korvane::explorer {
namespace {

using Does = Step::Does;

using SharedText = std::string SdkConfig::*;

/// On these the component's behaviour depends.
constexpr SharedText decisiveTexts[] = {
    &SdkConfig::ivIdStr,         &SdkConfig::currentPciToken, &SdkConfig::decBiometricsAuthenticationTimer,
    &SdkConfig::pendingPin,      &SdkConfig::decCardStatus,   &SdkConfig::viewToShowAfterSMSVerify,
    &SdkConfig::enteredLastFour, &SdkConfig::enteredCvv,      &SdkConfig::viewToShowAfterSMSVerifyBackup,
    &SdkConfig::decCardImage,    &SdkConfig::decPan};
/// These are only sent or shown.
constexpr SharedText otherTexts[] = {&SdkConfig::currentBearerToken,    &SdkConfig::decryptedPciSmsToken,
                                     &SdkConfig::decPciTokenExpiration, &SdkConfig::twoFactorCode,
                                     &SdkConfig::useBiometric,          &SdkConfig::viewToShowAfterFaceId,
                                     &SdkConfig::decMaskedPan,          &SdkConfig::decCvv,
                                     &SdkConfig::decMaskedCvv,          &SdkConfig::decExpiryDate,
                                     &SdkConfig::decFirstName,          &SdkConfig::decMiddleName,
                                     &SdkConfig::decLastName,           &SdkConfig::decCardNetwork,
                                     &SdkConfig::lastJsonResponseStr};

/// What a person types in the boxes: what belongs there, what does not, and too little.
const std::map<std::string, std::vector<std::string>> entries{
    {"sdk.setpin.input", {"8046", "1234", "80"}},
    {"sdk.confirmpin.input", {"8046", "2975", "80"}},
    {"sdk.activatecard.lastfourdigits.input", {"6603", "66"}},
    {"sdk.activatecard.cvv.input", {"731", "73"}},
    {"sdk.sms.code.input", {"350912", "35"}},
};

/// Typed by the person or told of the card: gone with the journey.
const std::vector<std::string> personal{"8046", "2975",  "6603", "731", "350912", "5555550000079197",
                                        "8642", "Okafor"};
const std::vector<std::string> neverShown{
    "8046", "2975",      "6603",      "731",         "350912", "5555550000079197",
    "8642", "pci-token", "sms-token", "bearer-token"};

std::string foundIn(const std::string& text, const std::vector<std::string>& secrets) {
    const auto isIn = [&](const std::string& secret) { return text.find(secret) != text.npos; };
    const auto found = std::ranges::find_if(secrets, isIn);
    return found == secrets.end() ? "" : *found;
}

/// A rule that leaves something out does it to replies that are there without it.
bool hasRule(const Answer& answer, const std::string& due) {
    return !answer.fault.empty() && (due.empty() || !answer.fault.starts_with("\"without\""));
}

std::string methodOf(const UrlRequest& request) {
    for (std::size_t i = 0; i < endpointCount; ++i) {
        const Endpoint& each = endpoint(static_cast<EndpointId>(i));
        if (request.url.ends_with(each.path)) return std::string{each.method};
    }
    return request.url;
}

}  // namespace

World::World(const Start& start, int faults, const std::function<void(std::string_view)>& onLine)
    : onLine_(onLine), faultsLeft_(faults) {
    willAnswer({});
    prepare(start);
    observation_ = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [this](const NotificationUserInfo& info) {
            closedWith_.push_back(info.at("result"));
            journey_.reset();  // as a host may do at once
        });
    journey_ = std::make_unique<Journey>(start.kind, "card-1");
    journey_->appear();
    gather("start");
}

World::~World() {
    leftBehind();
    config.decBiometricsAuthenticationTimer.clear();
    config.pciTimer.start();  // without an interval: lets go of the timer that may be running
}

void World::prepare(const Start& start) {
    for (const SharedText field : decisiveTexts) (config.*field).clear();
    for (const SharedText field : otherTexts) (config.*field).clear();
    config.ivByteArray.clear();
    config.gotInitialIV = config.setPinOnly = config.timerPciExpired = false;
    config.currentCardType = eKorvaneCardType::none;
    config.decodedDisclosuresStruct.reset();
    config.useBiometrics = start.biometrics;
    config.ivCallback = [this](IvReply reply) { asked_.push_back(std::move(reply)); };

    using Token = Start::Token;
    if (start.token == Token::held) config.currentBearerToken = "bearer-token";
    if (start.token == Token::held) config.currentPciToken = "pci-token";
    if (!start.biometrics) return;
    device.biometricContext->setAvailable(start.token != Token::noReader);
    auto& items = device.secureItemStore->items();
    if (start.token != Token::none) items[{"KorvanePCISDKService", "KorvaneSDKPCIToken"}] = "pci-token";
    if (start.token != Token::none && start.token != Token::halfStored)
        items[{"KorvanePCISDKService", "KorvaneSDKPCITokenBioTimeout"}] = "86400";
    if (start.token == Token::held) {
        config.decBiometricsAuthenticationTimer = "86400";
        config.pciTimer.start();
    }
}

void World::gather(const std::string& origin) {
    constexpr std::size_t limit = 10'000;
    if (device.mainQueue->runAll(limit) == limit) trouble_ = "works on without end by itself";
    for (const std::string& line : device.console->lines()) onLine_(line);
    device.console->clear();
    std::erase_if(waiting_, [this](const Waiting& each) {
        return each.request && device.urlSession->wasCancelled(*each.request);
    });
    const auto& requests = device.urlSession->requests();
    for (; requestsSeen_ < requests.size(); ++requestsSeen_) {
        const UrlRequest& request = requests[requestsSeen_];
        if (!device.urlSession->wasCancelled(requestsSeen_))
            waiting_.push_back({methodOf(request), requestsSeen_, nullptr, origin, due(request)});
    }
    for (IvReply& reply : std::exchange(asked_, {}))
        waiting_.push_back({"iv", std::nullopt, std::move(reply), origin});
    for (; checksSeen_ < device.biometricContext->reasons().size(); ++checksSeen_)
        waiting_.push_back({"finger", std::nullopt, nullptr, origin});
    const auto isFinger = [](const Waiting& each) { return each.name == "finger"; };
    for (auto fingers = std::count_if(waiting_.begin(), waiting_.end(), isFinger);
         fingers > static_cast<std::ptrdiff_t>(device.biometricContext->open()); --fingers)
        waiting_.erase(std::find_if(waiting_.begin(), waiting_.end(), isFinger));
    const ScreenSnapshot now = screen();
    const auto owner = asker_ != 0 && onScreen_.back() == now.instance ? asker_ : now.instance;
    onScreen_.resize(static_cast<std::size_t>(now.depth) + 1);
    onScreen_.back() = now.instance;
    for (Waiting& each : waiting_) {
        if (each.owner == 0) each.owner = owner;
        // A request that is made again is like the first one; only that for a code is made twice at most.
        const bool counts = !each.request || each.name == "pciTokenRequest";
        const auto place = std::find(onScreen_.begin(), onScreen_.end(), each.owner) - onScreen_.begin();
        each.tag = "~" + each.name + each.due + (counts ? "<" + each.origin : "") + "@" +
                   (place == std::ssize(onScreen_) ? "gone" : std::to_string(place));
    }
    std::ranges::stable_sort(waiting_, {}, &Waiting::tag);
}

std::string World::due(const UrlRequest& request) const {
    const bool needsBearer = methodOf(request) != "getBearerToken";
    if (needsBearer && config.currentBearerToken.empty()) return "401";
    const bool needsToken = request.body.find("PciToken") != std::string::npos;
    return needsToken && config.currentPciToken.empty() ? tokenRefused : "";
}

void World::apply(const Step& step) {
    trouble_.clear();
    closedWith_.clear();
    asker_ = 0;
    const ScreenSnapshot before = screen();
    std::string origin = "person";
    auto outcome = Journey::Outcome::done;
    switch (step.does) {
        case Does::tap:
            outcome = journey_->perform(step.text);
            if (before.card && (step.text.starts_with("sdk.cardviewer.device.details")))
                doneSomething_ = true;
            break;
        case Does::type:
            typed_[before.passcode->id] = step.text;
            outcome = journey_->replaceText(step.text);
            break;
        case Does::erase:
            if (std::string& typed = typed_[before.passcode->id]; !typed.empty()) typed.pop_back();
            outcome = journey_->deleteBackward();
            break;
        case Does::wait:
            device.timers->advance(std::chrono::seconds(std::stoi(step.text)));
            break;
        case Does::answer:
            if (step.waiting >= waiting_.size() || waiting_[step.waiting].name != step.text) {
                trouble_ = "does not wait for " + step.text;
                return;
            }
            asker_ = waiting_[step.waiting].owner;
            // An IV that is asked for again is asked for by the same one.
            origin = step.text == "iv" ? waiting_[step.waiting].origin : step.text + " " + step.answer->name;
            give(step);
            if (step.fault) --faultsLeft_;
            break;
        case Does::leave:
            journey_.reset();
            break;
    }
    if (outcome != Journey::Outcome::done) trouble_ = "refused, though it is enabled: " + step.text;
    gather(origin);

    const ScreenSnapshot now = screen();
    covered_.resize(std::min<std::size_t>(covered_.size(), now.depth));
    // Of what is covered, digits and the card count; what it waits for is told by what is under way.
    if (now.depth > before.depth) covered_.push_back(before.card ? screenKey(before) : typedIn(before));
}

void World::give(const Step& step) {
    const Waiting waiting = std::move(waiting_.at(step.waiting));
    waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(step.waiting));
    if (const auto* const reply = std::get_if<UrlReply>(&step.answer->content)) {
        const bool isRead = config.ivByteArray.size() == 16;  // under a host's odd IV nothing is
        if (waiting.name == "setCardStatus" && step.answer->success && isRead) doneSomething_ = true;
        device.urlSession->reply(*waiting.request, *reply);
    } else if (const auto* const finger = std::get_if<Finger>(&step.answer->content)) {
        device.secureItemStore->failNext(finger->store);
        device.biometricContext->answer(finger->match);
    } else {
        const auto& replies = std::get<IvReplies>(step.answer->content);
        for (const auto& [ivId, text] : replies) waiting.reply(ivId, text);
        if (replies.empty()) waiting_.push_back({"nobody", std::nullopt, nullptr, waiting.origin});
    }
}

std::vector<Step> World::possible(const Scope& scope) const {
    if (!journey_) return {};  // what is under way then is answered by `leftBehind`
    std::vector<Step> steps;
    const ScreenSnapshot now = screen();
    // Two things under way are seen to an end before a person does anything else.
    if (waiting_.size() < 2) {
        for (const Control& control : now.controls) {
            if (!control.enabled || (!scope.restless && isAwaiting() && control.id != "back")) continue;
            // What calls nothing is left alone.
            if (!scope.restless && control.id.starts_with("sdk.cardviewer.device.details")) continue;
            if (control.kind != ControlKind::passcode) {
                steps.push_back({Does::tap, control.id});
                continue;
            }
            for (const std::string& digits : entries.at(control.id)) {
                const bool whole = static_cast<int>(digits.size()) == now.passcode->size;
                if (whole || scope.restless) steps.push_back({Does::type, digits});
            }
            if (now.passcode->filled > 0 && scope.restless) steps.push_back({Does::erase, ""});
        }
    }
    const auto runs = [&](const char* name) {
        return std::any_of(now.state.begin(), now.state.end(), [&](const StateField& field) {
            return field.name == name && (field.value == StateValue{true} || field.value.index() == 1) &&
                   field.value != StateValue{0};
        });
    };
    // Each wait is longer than all that was pending, so nothing is left of what went by before.
    if (runs("resendSeconds") || runs("detailsRevealed") || !device.pasteboard->text().empty())
        steps.push_back({Does::wait, "61"});
    if (config.pciTimer.isArmed()) steps.push_back({Does::wait, "86401"});
    for (std::size_t i = 0; i < waiting_.size(); ++i) {
        if (waiting_[i].name == "nobody") continue;
        const std::string& due = waiting_[i].due;
        for (const Answer& answer : answersTo(waiting_[i].name, *this)) {
            const bool fault = due.empty() ? !answer.success : answer.name != due;
            if (!answer.basic && !scope.thorough) continue;
            if (!answer.card.empty() && !scope.card.empty() && answer.card != scope.card) continue;
            if (fault && (faultsLeft_ == 0 || (scope.rulesAlone && !hasRule(answer, due)))) continue;
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
        if (const auto* const flag = std::get_if<bool>(&field.value)) key += *flag ? "1" : "0";
        if (const auto* const number = std::get_if<int>(&field.value)) key += *number > 0 ? "+" : "0";
    }
    for (const Control& control : now.controls)
        key += control.id + (control.enabled ? "!" : "") + (control.on ? "1" : "");
    key += typedIn(now) + now.message + (now.spinner ? "spinner" : "");
    for (const DetailRow& row : now.rows) key += row.value;
    return key;
}

std::string World::key() const {
    if (!journey_) return "closed";
    std::string key = screenKey(screen()) + "#" + std::to_string(faultsLeft_);
    for (const std::string& each : covered_) key += "/" + each;
    for (const SharedText field : decisiveTexts) key += "|" + (config.*field);
    for (const SharedText field : otherTexts) key += foundIn(config.*field, personal).empty() ? "-" : "s";
    for (const Waiting& each : waiting_) key += each.tag;
    for (const auto& [name, value] : device.secureItemStore->items()) key += name.second + value;
    for (const bool flag :
         {config.useBiometrics, device.biometricContext->canEvaluate(), !config.currentBearerToken.empty(),
          doneSomething_, config.setPinOnly, config.timerPciExpired, config.pciTimer.isArmed(),
          config.decodedDisclosuresStruct.has_value(), !device.pasteboard->text().empty()})
        key += flag ? "1" : "0";
    key += std::to_string(config.ivByteArray.size()) + std::string{cardTypeCaseName(config.currentCardType)};
    return key;
}

std::string World::shownTexts() const {
    const ScreenSnapshot now = screen();
    std::string all = now.view + now.title + now.message + now.toast + now.disclosureText;
    for (const auto& texts : {now.stack, now.body}) {
        for (const std::string& text : texts) all += "|" + text;
    }
    for (const StateField& field : now.state) {
        if (const auto* const text = std::get_if<std::string>(&field.value)) all += "|" + *text;
        if (const auto* const number = std::get_if<int>(&field.value)) all += "|" + std::to_string(*number);
    }
    for (const Control& control : now.controls) all += "|" + control.id;
    for (const DetailRow& row : now.rows) {
        if (!row.secret || row.masked) all += "|" + row.value;
    }
    if (now.passcode && now.passcode->secure) all += now.passcode->visibleDigits;
    if (now.card) all += "|" + now.card->name;
    return all;
}

bool World::hostLetGo() const {
    return std::ranges::find(waiting_, "nobody", &Waiting::name) != waiting_.end();
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
    for (const SharedText field : decisiveTexts) memory += "|" + config.*field;
    for (const SharedText field : otherTexts) memory += "|" + config.*field;
    if (const auto left = foundIn(memory, personal); !left.empty()) return "left in memory: " + left;
    if (config.decodedDisclosuresStruct) return "disclosures left in memory";
    if (!device.pasteboard->text().empty()) return "left on the pasteboard: " + device.pasteboard->text();
    const bool tokenTimer = config.useBiometrics && !config.currentPciToken.empty();
    if (device.timers->pending() > (tokenTimer ? 1u : 0u)) return "a timer still runs";
    return {};
}

std::string World::shownSecret() const {
    return foundIn(shownTexts(), neverShown);
}

}  // namespace korvane::explorer
