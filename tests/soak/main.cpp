// SPDX-License-Identifier: Apache-2.0
// korvane_soak COUNT: as many journeys of all kinds in one process, with a service that does
// everything wrong now and then. Tells what came of them, and fails when one does not end where it should,
// when something is left behind, or when the service's record is not what the journeys told.
#include <korvane/CloseNotification.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <random>

#include "base/Secret.h"
#include "flows/JourneyProbe.h"
#include "sdk/JourneyState.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

constexpr bool checked = KORVANE_CHECKED;  // a checker keeps memory for itself, and is slow
constexpr std::chrono::milliseconds timeout{checked ? 2000 : 100}, idle{50};

// The service does 5 % of each, at every endpoint. The last one costs the session's time-out.
const Json faults = Json::parse(R"([
    {"status": 500}, {"result": "Failure: Expired Token"}, {"body": "<html>"}, {"without": "encryptedResult"},
    {"expireIv": true}, {"unknownIv": true}, {"expireBearer": true}, {"expirePciToken": true}, {"reset": true},
    {"cutAfter": 10}, {"resetAfter": 10}, {"dripBytes": 50, "dripMs": 1}, {"delayMs": 3}, {"hang": true}])");

class Soak {
  public:
    Soak() {
        for (const Json& fault : faults) tally_[fault.dump()] = 0;
    }

    int run(int count) {
        std::map<std::string, long> warm;
        while (journeys_ < count && problems_ == 0) {
            if (journeys_ >= next_) startOver();
            if (warm.empty() && journeys_ >= count / 4) warm = footprint();
            round();
        }
        tallyFaults();
        std::printf("%d journeys, %d requests\n", journeys_, requests_);
        for (const auto& [what, times] : tally_) {
            std::printf("%7d %s\n", times, what.c_str());
            expect(times > 0 || count < 2000, what + " never came");
        }
        for (const auto& [what, last] : footprint()) {
            std::printf("%s %ld -> %ld\n", what.c_str(), warm[what], last);
            const long allowed = what != "VmRSS:" ? 100 : checked ? 1000 : 102;  // per cent
            expect(last * 100 <= warm[what] * allowed, what + " are left");
        }
        return problems_ == 0 ? 0 : 1;
    }

  private:
    bool chance(unsigned percent) { return dice_() % 100 < percent; }
    void expect(bool fine, const std::string& problem) {
        if (!fine) std::printf("PROBLEM: %s\n", problem.c_str());
        problems_ += !fine;
    }

    /// Cards as at the start, and other chances for the same faults.
    void startOver() {
        next_ += 25;
        tallyFaults();
        device_.ask("POST", "/host/reset");
        Json rules = faults;
        for (Json& rule : rules)
            rule.update({{"endpoint", "*"}, {"count", "forever"}, {"percent", 5}, {"seed", dice_()}});
        expect(device_.ask("POST", "/host/faults", rules.dump()).is_object(), "the rules are refused");
        for (const Json& card : device_.ask("GET", "/host/cards")) cards_[card["id"]] = recordOf(card);
        device_.install();
        device_.initialize();
    }

    /// One journey, or two of two cards: one waits on its first page while the other goes by.
    void round() {
        device_.reader->setAvailable(chance(80));
        if (chance(5)) device_.store->failNext({secureItemLocked});
        if (chance(30)) device_.initialize(chance(60));
        if (chance(30)) wipe(config_.currentPciToken);  // as when its time is up
        const auto pick = [this] { return std::next(cards_.begin(), dice_() % cards_.size())->first; };
        const std::string card = pick();
        const auto journey = device_.begin(static_cast<JourneyKind>(dice_() % 3), card);
        if (const std::string other = pick(); other != card && chance(25)) {
            rests(*journey);
            walk(*device_.begin(static_cast<JourneyKind>(dice_() % 3), other), other);
        }
        walk(*journey, card);
    }

    bool rests(const Journey& journey) {
        return device_.until([&] { return device_.reader->answer(chance(80)), !journey.screen().spinner; });
    }

    /// Goes on until the journey closes: looks at the screen and does the next thing, now and then another.
    void walk(Journey& journey, const std::string& cardId) {
        std::string result, view, typed;
        Json told;                             // of the card
        std::map<std::uint64_t, bool> frozen;  // by the viewer's instance
        const int timeOuts = device_.timeOuts;
        const auto closed = NotificationCenter::defaultCenter().observe(
            NotificationCloseUI,
            [&result](const NotificationUserInfo& info) { result += info.at("result"); });
        for (int patience = 500; result.empty(); --patience) {
            const bool isStuck = !rests(journey) || patience == 0;
            const ScreenSnapshot screen = journey.screen();
            if (isStuck) return expect(false, "stuck on " + screen.view + " after " + view);
            view = screen.view;
            if (view.starts_with("Success")) told["pin"] = typed;
            if (view == "SuccessCardActivatedAndPinSetView") told["status"] = "A1";
            if (screen.card) {
                const auto seen = frozen.try_emplace(screen.instance, screen.card->frozen).first;
                if (std::exchange(seen->second, screen.card->frozen) != screen.card->frozen)
                    told["status"] = screen.card->frozen ? "BT" : screen.card->activated ? "A1" : "P2";
            }
            if (screen.passcode && !screen.sheet) {
                journey.replaceText(digitsFor(view, cardId, typed));
                if (view == "EnterSMSCodeView") continue;  // submits by itself
            }
            std::vector<Control> all = journey.screen().controls;
            std::erase_if(
                all, [](const Control& each) { return !each.enabled || each.kind == ControlKind::passcode; });
            if (all.empty()) return expect(false, "nothing to do on " + view);
            std::vector<Control> forward = all;
            std::erase_if(forward, [](const Control& each) { return each.kind != ControlKind::button; });
            const bool strays = screen.card || forward.empty() || chance(7);  // no straight way in the viewer
            const Control& used = strays       ? all[dice_() % all.size()]
                                  : chance(80) ? forward.front()
                                               : forward.back();
            journey.perform(used.id);
        }
        ++journeys_;
        const std::string end = view + " " + result;
        expect(tally_.contains(end), "it closed on " + end);
        ++tally_[end];
        compare(cardId, told, device_.timeOuts > timeOuts);
        const auto state = JourneyProbe::state(journey);
        expect((state->pendingPin + state->twoFactorCode).empty(), "secrets are left after " + view);
    }

    std::string digitsFor(const std::string& view, const std::string& cardId, std::string& typed) {
        const std::string any = std::to_string(100'000 + dice_() % 900'000);
        if (view == "EnterSMSCodeView") return chance(90) ? device_.smsCode(cardId) : any;
        const Json card = device_.ask("GET", "/host/cards/" + cardId);
        if (view == "EnterCardLastFourView") return std::string(card["pan"]).substr(12);
        if (view == "EnterCardCVVView")
            return chance(95) ? std::string(card["cvv"]).substr(0, 3) : any.substr(3);
        if (view == "ConfirmCardPINView") return chance(90) ? typed : any.substr(2);
        return typed = chance(90) ? any.substr(2) : "1234";  // a weak one
    }

    static Json recordOf(const Json& card) { return {{"pin", card["pin"]}, {"status", card["status"]}}; }

    /// The one difference that may be: the service acted, and its answer was lost.
    void compare(const std::string& cardId, const Json& told, bool timedOut) {
        Json& expected = cards_[cardId];
        if (!told.is_null()) expected.update(told);
        const Json actual = recordOf(device_.ask("GET", "/host/cards/" + cardId));
        if (actual == expected) return;
        Json explained = expected;
        const Json journal = device_.ask("GET", "/host/journal?card=" + cardId);
        for (const Json& entry : journal["entries"]) {
            const std::string fault = entry.value("fault", Json()).dump();
            const bool lost =
                timedOut || fault.find("After") != fault.npos || fault.find("without") != fault.npos;
            if (entry["note"] != "Success" || !lost) continue;
            const bool activates = std::string(entry["endpoint"]).ends_with("ActivationAndPinSet");
            const std::string pin = entry["request"].value("encryptedPIN", ""),
                              status = activates ? "A1" : entry["request"].value("encryptedStatus", "");
            if (pin == actual["pin"]) explained["pin"] = pin;
            if (status == actual["status"]) explained["status"] = status;
        }
        expect(explained == actual, cardId + " is " + actual.dump() + ", not " + expected.dump());
        ++tally_["lost: the service acted, and its answer did not arrive"];
        expected = actual;
    }

    void tallyFaults() {
        const Json journal = device_.ask("GET", "/host/journal");
        for (const Json& entry : journal["entries"]) {
            ++requests_;
            for (const Json& fault : faults)
                if (entry.contains("fault") && entry["fault"].contains(fault.begin().key()))
                    ++tally_[fault.dump()];
        }
    }

    /// When connections have closed themselves.
    std::map<std::string, long> footprint() {
        device_.pass(10 * idle);
        malloc_trim(0);
        const auto descriptors = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
        std::map<std::string, long> sizes{{"descriptors", descriptors}};
        std::ifstream status("/proc/self/status");
        for (std::string name; status >> name;)
            if (name == "VmRSS:" || name == "Threads:") status >> sizes[name];
        return sizes;
    }

    RealDevice device_{true, {.timeout = timeout, .connectionIdle = idle}};
    SdkConfig& config_ = SdkConfig::sharedInstance();
    std::mt19937 dice_;
    std::map<std::string, Json> cards_;  // PIN and status by id
    /// How often what came; journeys close with these results, and on these views.
    std::map<std::string, int> tally_{{"UhOhTryAgainView FAILURE", 0},
                                      {"SuccessPinSetView SUCCESS", 0},
                                      {"SuccessCardActivatedAndPinSetView SUCCESS", 0},
                                      {"CardImage_NoNav SUCCESS", 0},
                                      {"CardImage_NoNav CANCELED", 0},
                                      {"ActivateCardAndSetPIN_NoNav CANCELED", 0},
                                      {"CardAlreadyActivatedView CANCELED", 0},
                                      {"CardIsNotYetActivatedView CANCELED", 0}};
    int next_ = 0, journeys_ = 0, requests_ = 0, problems_ = 0;
};

}  // namespace
}  // namespace korvane::testing

int main(int argc, char** argv) {
    return korvane::testing::Soak().run(argc > 1 ? std::atoi(argv[1]) : 300);
}
