// SPDX-License-Identifier: Apache-2.0
#include "tests/transcripts/Recording.h"

#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>

#include "tests/support/ScriptedService.h"
#include "tests/support/StoredToken.h"

namespace korvane {
namespace {

std::pair<std::string, std::string> cut(const std::string& text, char sign) {
    const auto at = std::min(text.find(sign), text.size());
    return {text.substr(0, at), at == text.size() ? "" : text.substr(at + 1)};
}

/// What of a screen depends on what was done; its place comes first.
std::vector<std::string> described(const ScreenSnapshot& now) {
    std::vector<std::string> all{""};
    for (const std::string& each : now.stack) all[0] += "/" + each;
    const auto add = [&](const std::string& name, const std::string& value) {
        if (!value.empty()) all.push_back(name + "=" + value);
    };
    for (const auto& [name, value] : now.state) {
        const auto* const text = std::get_if<std::string>(&value);
        const auto* const number = std::get_if<int>(&value);
        add(name, text ? *text : number ? std::to_string(*number) : std::get<bool>(value) ? "true" : "false");
    }
    add("spinner", now.spinner ? "true" : "");
    add("message", now.message);
    add("toast", now.toast);
    if (const auto& boxes = now.passcode)
        add("boxes", std::to_string(boxes->filled) + " next " + std::to_string(boxes->firstResponderIndex) +
                         boxes->visibleDigits);
    if (const auto& card = now.card)
        add("card", card->name + "," + card->networkLogo + "," +
                        std::to_string(card->image ? card->image->size() : 0));
    for (const DetailRow& each : now.rows) add(each.id, each.value);
    for (const Control& each : now.controls)
        all.push_back("[" + each.id + (each.on ? " on" : "") + (each.enabled ? "]" : " off]"));
    return all;
}

/// A device with one journey on it. It stands in front of the fakes' console and session, so that it hears
/// each line and each request when it leaves the component.
class Stage final : public ScriptedService {
  public:
    explicit Stage(std::vector<std::string>& lines);
    void play(const std::string& step);
    void end();

  private:
    struct Ears;

    void note(const std::string& line) { std::ranges::replace(lines_.emplace_back(line), '\n', '|'); }
    void noteView();
    void setUp(bool biometrics, const std::string& wearable = {});
    Journey::Outcome act(const std::string& verb, const std::string& whole);
    Journey::Outcome tap(const std::string& control);
    UrlReply reply(const std::string& told) const;
    void drain();

    std::vector<std::string>& lines_;
    std::deque<std::optional<std::string>> ivs_;
    std::vector<std::string> view_;
    std::string pasteboard_;
    std::size_t checks_ = 0;
    std::unique_ptr<Journey> journey_;
    std::shared_ptr<NotificationCenter::Observation> observation_ =
        NotificationCenter::defaultCenter().observe(
            NotificationCloseUI, [this](const auto& info) { note("close " + info.at("result")); });
};

struct Stage::Ears final : Console, UrlSession {
    explicit Ears(Stage& of) : stage(of) {}

    void line(std::string_view text) override { stage.note("log " + std::string{text}); }
    std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) override {
        std::string bearer;
        for (const auto& [name, value] : request.headers)
            if (name == "Authorization") bearer = " (" + value + ")";
        auto task = stage.device.urlSession->start(std::move(request), std::move(reply));
        stage.note("> " + stage.sent(stage.device.urlSession->startedCount() - 1) + bearer);
        return task;
    }

    Stage& stage;
};

Stage::Stage(std::vector<std::string>& lines) : lines_(lines) {
    Ports ports = korvane::ports();
    const auto ears = std::make_shared<Ears>(*this);
    ports.console = ears;
    ports.urlSession = ears;
    installPorts(ports);
    setUp(false);
    drain();
    lines_.clear();
}

void Stage::setUp(bool biometrics, const std::string& wearable) {
    const auto supply = [this](const IvReply& reply) {
        const bool told = !ivs_.empty();
        const auto text = told ? ivs_.front() : ivText;
        if (told) ivs_.pop_front();
        const std::string id = "iv-" + std::to_string(++ivsSupplied);
        note("host gives " + (!text ? "none" : told ? *text : id));
        text ? reply(id, text) : reply(std::nullopt, std::nullopt);
    };
    initialize(keyText, "https://cards.example", supply, biometrics, {}, {}, wearable);
}

void Stage::play(const std::string& step) {
    note("* " + step);
    const auto [verb, whole] = cut(step, ' ');
    constexpr std::array refusals{"", "no such control", "not enabled", "not digits"};
    if (const auto outcome = act(verb, whole); outcome != Journey::Outcome::done)
        note(refusals.at(static_cast<std::size_t>(outcome)));
    drain();
}

Journey::Outcome Stage::act(const std::string& verb, const std::string& whole) {
    const auto [what, rest] = cut(whole, ' ');
    const auto [name, value] = cut(whole, '=');
    if (verb == "tap") return tap(whole);
    if (verb == "type") return journey_->replaceText(whole);
    if (verb == "insert") return journey_->insertText(whole);
    if (verb == "delete") return journey_->deleteBackward();
    if (verb == "hide") {
        journey_->hideSensitive();
    } else if (verb == "wait") {
        device.timers->advance(std::chrono::seconds(std::stoi(whole)));
    } else if (verb == "finger") {
        if (!device.biometricContext->answer(whole == "match")) note("nobody asks for a finger");
    } else if (verb == "start") {
        static const std::map<std::string, JourneyKind> kinds{
            {"setPIN", JourneyKind::setPIN},
            {"activateCardAndSetPIN", JourneyKind::activateCardAndSetPIN},
            {"getCardImage", JourneyKind::getCardImage}};
        journey_ = std::make_unique<Journey>(kinds.at(whole), "card-1");
        journey_->onChange([this] { noteView(); });
        journey_->appear();
    } else if (verb == "answer") {
        next(what, reply(rest));
    } else if (verb == "iv") {
        ivs_.push_back(whole == "none" ? std::nullopt : std::optional{whole});
    } else if (verb == "card") {
        cardType = what;
        cardStatus = rest;
    } else if (verb == "detail") {
        cardDetails.erase(name);
        if (!value.empty()) cardDetails[name] = value;
    } else if (verb == "stored") {
        device.secureItemStore->items()[storedItem(what)] = rest;
    } else if (verb == "wearable") {
        setUp(false, whole);
    } else if (verb == "biometrics") {
        device.biometricContext->setAvailable(whole != "readerless");
        setUp(true);
    } else if (verb == "held" && whole == "iv") {
        config.ivIdStr = "iv-0";
        config.ivByteArray = iv;
    } else if (verb == "held") {
        (whole == "bearer" ? config.currentBearerToken : config.currentPciToken) = whole + "-0";
    } else {
        throw std::runtime_error("no such step: " + verb);
    }
    return Journey::Outcome::done;
}

Journey::Outcome Stage::tap(const std::string& control) {
    const auto controls = journey_->screen().controls;
    const auto found = std::ranges::find_if(controls, [&](const Control& each) {
        return each.id == control || each.id.ends_with("." + control);
    });
    return journey_->perform(found == controls.end() ? control : found->id);
}

UrlReply Stage::reply(const std::string& told) const {
    auto [kind, rest] = cut(told, ' ');
    if (kind == "lost") return {0, "", "connection reset"};
    if (kind == "body") return {200, rest, ""};
    if (kind != "fields")
        return rest.empty() ? UrlReply{std::stoi(kind), "", ""} : refusal(std::stoi(kind), rest);
    Fields fields;
    while (!rest.empty()) {
        const auto [first, others] = cut(rest, ' ');
        fields.push_back(cut(first, '='));
        rest = others;
    }
    return ok(fields);
}

void Stage::noteView() {
    const auto before = std::exchange(view_, described(journey_->screen()));
    std::string text = "view";
    // On the same screen, what differs will do.
    const bool same = !before.empty() && before[0] == view_[0];
    const auto tell = [&](const auto& these, const auto& unless, const char* sign) {
        for (const std::string& each : these)
            if (std::ranges::find(unless, each) == unless.end()) text += sign + each;
    };
    if (same) tell(before, view_, " -");
    tell(view_, same ? before : std::vector<std::string>{}, same ? " +" : " ");
    if (before != view_) note(text);
}

void Stage::drain() {
    if (device.mainQueue->runAll(10'000) == 10'000) throw std::runtime_error("it works on without end");
    if (device.pasteboard->text() != pasteboard_)
        note("pasteboard " + (pasteboard_ = device.pasteboard->text()));
    for (; checks_ < device.biometricContext->reasons().size(); ++checks_)
        note("finger " + device.biometricContext->reasons()[checks_]);
}

void Stage::end() {
    note("* (end)");
    journey_.reset();
    drain();
    for (const auto& [name, value] : device.secureItemStore->items()) note("kept " + name[1] + "=" + value);
}

}  // namespace

std::vector<std::string> record(const std::vector<std::string>& steps) {
    std::vector<std::string> lines;
    Stage stage(lines);
    for (const std::string& each : steps) stage.play(each);
    stage.end();
    return lines;
}

}  // namespace korvane
