// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/World.h"

#include <algorithm>
#include <chrono>
#include <tuple>
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
    const auto found = std::find_if(secrets.begin(), secrets.end(), [&](const std::string& secret) {
        return text.find(secret) != std::string::npos;
    });
    return found == secrets.end() ? "" : *found;
}

std::string methodOf(const UrlRequest& request) {
    for (std::size_t i = 0; i < endpointCount; ++i) {
        const Endpoint& each = endpoint(static_cast<EndpointId>(i));
        if (request.url.ends_with(each.path)) return std::string{each.method};
    }
    return request.url;
}

/// Forwards the lines.
class Lines final : public Console {
  public:
    explicit Lines(std::function<void(std::string_view)> onLine) : onLine_(std::move(onLine)) {}
    void line(std::string_view text) override { onLine_(text); }

  private:
    std::function<void(std::string_view)> onLine_;
};

}  // namespace

World::World(const Start& start, int faults, const std::function<void(std::string_view)>& onLine)
    : faultsLeft_(faults) {
    Ports changed = ports();
    changed.console = std::make_shared<Lines>(onLine);
    installPorts(std::move(changed));
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
    cardStatus = start.cardStatus;
    cardType = start.cardType;

    using Token = Start::Token;
    if (start.token == Token::held) config.currentPciToken = "pci-token";
    if (!start.biometrics) return;
    device.biometricContext->setAvailable(start.token != Token::noReader);
    auto& items = device.secureItemStore->items();
    if (start.token != Token::none) items[{"KorvanePCISDKService", "KorvaneSDKPCIToken"}] = "pci-token";
    if (start.token != Token::none && start.token != Token::halfStored)
        items[{"KorvanePCISDKService", "KorvaneSDKPCITokenBioTimeout"}] = "300";
    if (start.token == Token::unreadable) device.secureItemStore->failNext({secureItemFailed});
    if (start.token == Token::timeUnreadable)
        device.secureItemStore->failNext({secureItemSuccess, secureItemFailed});
    if (start.token == Token::held) {
        config.decBiometricsAuthenticationTimer = "300";
        config.pciTimer.start();
    }
}

void World::gather(const std::string& origin) {
    constexpr std::size_t limit = 10'000;
    if (device.mainQueue->runAll(limit) == limit) trouble_ = "works on without end by itself";
    std::erase_if(waiting_, [this](const Waiting& each) {
        return each.request && device.urlSession->wasCancelled(*each.request);
    });
    const auto& requests = device.urlSession->requests();
    for (; requestsSeen_ < requests.size(); ++requestsSeen_) {
        const UrlRequest& request = requests[requestsSeen_];
        if (!device.urlSession->wasCancelled(requestsSeen_))
            waiting_.push_back({methodOf(request), requestsSeen_, nullptr, origin});
        checkSent(requestsSeen_);
    }
    for (IvReply& reply : std::exchange(asked_, {}))
        waiting_.push_back({"iv", std::nullopt, std::move(reply), origin});
    for (; checksSeen_ < device.biometricContext->reasons().size(); ++checksSeen_)
        waiting_.push_back({"finger", std::nullopt, nullptr, origin});
    std::stable_sort(waiting_.begin(), waiting_.end(), [](const Waiting& one, const Waiting& other) {
        return std::tie(one.name, one.origin) < std::tie(other.name, other.origin);
    });
}

void World::checkSent(std::size_t index) {
    const std::string& body = device.urlSession->requests()[index].body;
    if (!foundIn(body, neverShown).empty()) trouble_ = "sends a value in clear: " + body;
    if (config.ivByteArray.size() != 16) return;  // nothing is enciphered then, so nothing is told
    const std::string plain = sent(index) + " ";
    for (const auto& [name, typed] : std::map<std::string, std::string>{{" PIN=", "8046"},
                                                                        {" CVV=", "731"},
                                                                        {" LastFourOfPan=", "6603"},
                                                                        {" TwoFactorCode=", "350912"}}) {
        if (plain.find(name) != std::string::npos && plain.find(name + typed + " ") == std::string::npos)
            trouble_ = "sends what nobody typed: " + plain;
    }
}

void World::apply(const Step& step) {
    trouble_.clear();
    closedWith_.clear();
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
            typed_[before.passcode->id].pop_back();
            outcome = journey_->deleteBackward();
            break;
        case Does::wait:
            device.timers->advance(std::chrono::seconds(std::stoi(step.text)));
            break;
        case Does::answer:
            // An IV that is asked for again is asked for by the same one.
            origin = step.text == "iv" ? waiting_[step.waiting].origin : step.text + " " + step.answer->name;
            give(step);
            if (!step.answer->success) --faultsLeft_;
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
        if (waiting.name == "setCardStatus" && step.answer->name == "ok") doneSomething_ = true;
        device.urlSession->reply(*waiting.request, *reply);
    } else if (const auto* const match = std::get_if<bool>(&step.answer->content)) {
        device.biometricContext->answer(*match);
    } else {
        const auto& replies = std::get<std::vector<IvTexts>>(step.answer->content);
        for (const auto& [ivId, text] : replies) waiting.reply(ivId, text);
        if (replies.empty()) waiting_.push_back({"nobody", std::nullopt, nullptr, waiting.origin});
    }
}

std::vector<Step> World::possible(bool basicOnly) const {
    std::vector<Step> steps;
    const ScreenSnapshot now = screen();
    // Two things under way are seen to an end before a person does anything else.
    if (journey_ && waiting_.size() < 2) {
        for (const Control& control : now.controls) {
            if (!control.enabled || (basicOnly && isAwaiting() && control.id != "back")) continue;
            if (basicOnly && control.kind == ControlKind::row && !control.id.ends_with("cardNumber"))
                continue;
            if (control.kind != ControlKind::passcode) {
                steps.push_back({Does::tap, control.id});
                continue;
            }
            for (const std::string& digits : entries.at(control.id)) {
                const bool whole = static_cast<int>(digits.size()) == now.passcode->size;
                if (whole || !basicOnly) steps.push_back({Does::type, digits});
            }
            if (now.passcode->filled > 0 && !basicOnly) steps.push_back({Does::erase, ""});
        }
    }
    const auto runs = [&](const char* name) {
        return std::any_of(now.state.begin(), now.state.end(), [&](const StateField& field) {
            return field.name == name && (field.value == StateValue{true} || field.value.index() == 1) &&
                   field.value != StateValue{0};
        });
    };
    if (runs("resendSeconds") || runs("detailsRevealed")) steps.push_back({Does::wait, "31"});
    if (!device.pasteboard->text().empty()) steps.push_back({Does::wait, "61"});
    if (config.useBiometrics && !config.currentPciToken.empty()) steps.push_back({Does::wait, "301"});
    for (std::size_t i = 0; i < waiting_.size(); ++i) {
        if (waiting_[i].name == "nobody") continue;
        for (const Answer& answer : answersTo(waiting_[i].name, *this)) {
            if (answer.success || (faultsLeft_ > 0 && (answer.basic || !basicOnly)))
                steps.push_back({Does::answer, waiting_[i].name, i, &answer});
        }
    }
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
    for (const Waiting& each : waiting_) {
        // A request that is made again is like the first one; only that for a code is made twice at most.
        const bool counts = !each.request || each.name == "pciTokenRequest";
        key += "~" + each.name + (counts ? "<" + each.origin : "");
    }
    for (const auto& [name, value] : device.secureItemStore->items()) key += name.second + value;
    for (const bool flag : {doneSomething_, config.setPinOnly, config.timerPciExpired,
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
    return std::any_of(waiting_.begin(), waiting_.end(),
                       [](const Waiting& each) { return each.name == "nobody"; });
}

std::string World::useWhatIsRefused() {
    if (!journey_) return {};
    using Outcome = Journey::Outcome;
    const std::string before = key();
    const ScreenSnapshot now = screen();
    for (const Control& control : now.controls) {
        if (!control.enabled && journey_->perform(control.id) != Outcome::notEnabled)
            return "not refused, though it is not enabled: " + control.id;
    }
    if (journey_->perform("no.such.control") != Outcome::noSuchControl) return "takes any control";
    if (journey_->insertText("8x") == Outcome::done) return "takes letters for digits";
    gather("nobody");
    return key() == before ? "" : "changed by what it refused";
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
