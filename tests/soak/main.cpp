// SPDX-License-Identifier: Apache-2.0
// korvane_soak COUNT [SEED]: as many journeys of all kinds in one process, with a service that does
// everything wrong now and then. Tells what came of them, and fails when one does not end where it should,
// when something is left behind, or when the service's record is not what the journeys told.
#include <korvane/CloseNotification.h>
#include <malloc.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <vector>

#include "base/Secret.h"
#include "sdk/SdkConfig.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool checked = true;  // a checker keeps memory for itself, and is slow
#else
constexpr bool checked = false;
#endif
constexpr int batch = 25;  // journeys on the same cards
constexpr std::chrono::milliseconds timeout{checked ? 2000 : 100}, idle{50};

// The service does 5 % of each, at every endpoint. The last one costs the session's time-out.
constexpr std::string_view faults[] = {R"("status": 500)",
                                       R"("result": "Failure: Expired Token")",
                                       R"("body": "<html>")",
                                       R"("expireIv": true)",
                                       R"("without": "encryptedResult")",
                                       R"("unknownIv": true)",
                                       R"("expireBearer": true)",
                                       R"("expirePciToken": true)",
                                       R"("reset": true)",
                                       R"("cutAfter": 10)",
                                       R"("dripBytes": 50, "dripMs": 1)",
                                       R"("resetAfter": 10)",
                                       R"("delayMs": 3)",
                                       R"("hang": true)"};

// With what a journey may close, and where.
constexpr std::string_view ends[] = {"UhOhTryAgainView FAILURE",
                                     "SuccessPinSetView SUCCESS",
                                     "SuccessCardActivatedAndPinSetView SUCCESS",
                                     "CardImage_NoNav SUCCESS",
                                     "CardImage_NoNav CANCELED",
                                     "ActivateCardAndSetPIN_NoNav CANCELED",
                                     "CardAlreadyActivatedView CANCELED",
                                     "CardIsNotYetActivatedView CANCELED"};

/// What a card's PIN and status are; "" stands for no news.
struct CardRecord {
    std::string pin, status;
    bool operator==(const CardRecord&) const = default;
};

class Soak {
  public:
    explicit Soak(unsigned seed) : dice_(seed) {}

    int run(int count) {
        const auto start = std::chrono::steady_clock::now();
        std::vector<long> warm;
        for (int next = 0; journeys_ < count && problems_.empty();) {
            if (journeys_ >= next) next += batch, startOver();
            if (warm.empty() && journeys_ >= count / 4) warm = footprint();
            round();
        }
        tallyFaults();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        std::printf("%d journeys, %d requests, %.0f s\n", journeys_, requests_, time.count());
        for (const auto& [what, times] : tally_) std::printf("%7d %s\n", times, what.c_str());
        if (problems_.empty()) compareFootprints(warm, footprint());
        if (count >= 2000) {
            for (const auto fault : faults)
                expect(tally_.contains("fault: " + std::string(fault)), std::string(fault) + " never came");
            for (const auto end : ends)
                expect(tally_.contains("end: " + std::string(end)), std::string(end) + " never came");
        }
        for (const std::string& problem : problems_) std::printf("PROBLEM: %s\n", problem.c_str());
        return problems_.empty() ? 0 : 1;
    }

  private:
    bool chance(unsigned percent) { return dice_() % 100 < percent; }
    void expect(bool fine, const std::string& problem) {
        if (!fine) problems_.push_back(problem);
    }

    /// Cards as at the start, and other chances for the same faults.
    void startOver() {
        tallyFaults();
        device_.ask("POST", "/host/reset");
        std::string rules;
        for (const auto fault : faults) {
            rules += (rules.empty() ? "[{" : ",{") + std::string(fault) +
                     R"(, "endpoint": "*", "count": "forever", "percent": 5, "seed": )" +
                     std::to_string(dice_()) + "}";
        }
        expect(device_.ask("POST", "/host/faults", rules + "]").IsObject(), "the rules are refused");
        const auto cards = device_.ask("GET", "/host/cards");
        for (const auto& card : cards.GetArray())
            cards_[textMember(card, "id")] = {textMember(card, "pin"), textMember(card, "status")};
        device_.install();
        device_.initialize();
    }

    /// One journey, or two of two cards: one waits on its first page while the other goes by.
    void round() {
        device_.reader->setAvailable(chance(80));
        if (chance(5)) device_.store->failNext({secureItemLocked});
        if (chance(30)) device_.initialize(chance(60));
        SdkConfig& config = SdkConfig::sharedInstance();
        if (chance(30)) wipe(config.currentPciToken);  // as when its time is up
        const auto pick = [this] { return std::next(cards_.begin(), dice_() % cards_.size())->first; };
        const std::string card = pick();
        Journey journey(static_cast<JourneyKind>(dice_() % 3), card);
        journey.appear();
        if (const std::string other = pick(); other != card && chance(25)) {
            rests(journey);
            Journey second(static_cast<JourneyKind>(dice_() % 3), other);
            second.appear();
            walk(second, other);
        }
        walk(journey, card);
    }

    bool rests(const Journey& journey) {
        return device_.until([&] { return device_.reader->answer(chance(80)), !journey.screen().spinner; });
    }

    /// Goes on until the journey closes: looks at the screen and does the next thing, now and then another.
    void walk(Journey& journey, const std::string& cardId) {
        std::string result, view, typed;
        CardRecord told;
        std::map<std::uint64_t, bool> frozen;  // by the viewer's instance
        const int timeOuts = device_.timeOuts;
        const auto closed = NotificationCenter::defaultCenter().observe(
            NotificationCloseUI,
            [&result](const NotificationUserInfo& info) { result += info.at("result"); });
        for (int patience = 500; result.empty(); --patience) {
            const bool goesOn = rests(journey) && patience > 0;
            const ScreenSnapshot screen = journey.screen();
            if (!goesOn) return expect(false, "stuck on " + screen.view + " after " + view);
            view = screen.view;
            if (view.starts_with("Success")) told.pin = typed;
            if (view == "SuccessCardActivatedAndPinSetView") told.status = "A1";
            if (screen.card) {
                const auto seen = frozen.try_emplace(screen.instance, screen.card->frozen).first;
                if (std::exchange(seen->second, screen.card->frozen) != screen.card->frozen)
                    told.status = screen.card->frozen ? "BT" : screen.card->activated ? "A1" : "P2";
            }
            if (screen.passcode && !screen.sheet) {
                journey.replaceText(digitsFor(view, cardId, typed));
                if (view == "EnterSMSCodeView") continue;  // submits by itself
            }
            std::vector<std::string> forward, all;
            for (const Control& control : journey.screen().controls) {
                if (!control.enabled || control.kind == ControlKind::passcode) continue;
                if (control.kind == ControlKind::button) forward.push_back(control.id);
                all.push_back(control.id);
            }
            if (all.empty()) return expect(false, "nothing to do on " + view);
            const bool straight =
                !screen.card && !forward.empty() && chance(93);  // no straight way in the viewer
            journey.perform(!straight    ? all[dice_() % all.size()]
                            : chance(80) ? forward.front()
                                         : forward.back());
        }
        ++journeys_;
        ++tally_["end: " + view + " " + result];
        expect(std::ranges::find(ends, view + " " + result) != std::end(ends),
               view + " closed with " + result);
        const SdkConfig& left = SdkConfig::sharedInstance();
        compare(cardId, told, device_.timeOuts > timeOuts);
        expect((left.pendingPin + left.twoFactorCode).empty(), "secrets are left after " + view);
    }

    std::string digitsFor(const std::string& view, const std::string& cardId, std::string& typed) {
        const std::string any = std::to_string(100'000 + dice_() % 900'000);
        if (view == "EnterSMSCodeView") return chance(90) ? device_.smsCode(cardId) : any;
        const auto card = device_.ask("GET", "/host/cards/" + cardId);
        const std::string pan = textMember(card, "pan");
        if (view == "EnterCardLastFourView") return pan.substr(pan.size() - 4);
        if (view == "EnterCardCVVView")
            return chance(95) ? textMember(card, "cvv").substr(0, 3) : any.substr(3);
        if (view == "ConfirmCardPINView") return chance(90) ? typed : any.substr(2);
        return typed = chance(90) ? any.substr(2) : "1234";  // a weak one
    }

    /// The one difference that may be: the service acted, and its answer was lost.
    void compare(const std::string& cardId, const CardRecord& told, bool timedOut) {
        CardRecord& expected = cards_[cardId];
        if (!told.pin.empty()) expected.pin = told.pin;
        if (!told.status.empty()) expected.status = told.status;
        const auto card = device_.ask("GET", "/host/cards/" + cardId);
        const CardRecord actual{textMember(card, "pin"), textMember(card, "status")};
        if (actual == expected) return;
        CardRecord explained = expected;
        const auto journal = device_.ask("GET", "/host/journal?card=" + cardId);
        for (const auto& entry : journal["entries"].GetArray()) {
            const std::string fault = textOf(entry, "fault");
            const bool lost =
                timedOut || fault.find("After") != fault.npos || fault.find("without") != fault.npos;
            if (textMember(entry, "note") != "Success" || !lost) continue;
            const bool activates = textMember(entry, "endpoint").find("Activation") != std::string::npos;
            const std::string pin = textMember(entry["request"], "encryptedPIN"),
                              status = activates ? "A1" : textMember(entry["request"], "encryptedStatus");
            if (pin == actual.pin) explained.pin = pin;
            if (status == actual.status) explained.status = status;
        }
        expect(explained == actual, cardId + " is " + actual.pin + " " + actual.status + ", not " +
                                        expected.pin + " " + expected.status);
        ++tally_["lost: the service acted, and its answer did not arrive"];
        expected = actual;
    }

    static std::string textOf(const rapidjson::Value& entry, const char* name) {
        rapidjson::StringBuffer text;
        rapidjson::Writer<rapidjson::StringBuffer> writer(text);
        if (entry.HasMember(name)) entry[name].Accept(writer);
        return text.GetString();
    }

    void tallyFaults() {
        const auto journal = device_.ask("GET", "/host/journal");
        for (const auto& entry : journal["entries"].GetArray()) {
            ++requests_;
            const std::string rule = textOf(entry, "fault");
            for (const auto fault : faults) {
                if (rule.find(fault.substr(0, fault.find(':'))) != rule.npos)
                    ++tally_["fault: " + std::string(fault)];
            }
        }
    }

    /// When connections have closed themselves: KiB resident, descriptors, threads.
    std::vector<long> footprint() {
        device_.pass(10 * idle);
        malloc_trim(0);
        long pages = 0, resident = 0;
        std::ifstream("/proc/self/statm") >> pages >> resident;
        const auto count = [](const char* folder) {
            return std::distance(std::filesystem::directory_iterator(folder), {});
        };
        return {resident * 4, count("/proc/self/fd"), count("/proc/self/task")};
    }

    void compareFootprints(const std::vector<long>& warm, const std::vector<long>& last) {
        std::printf("KiB %ld -> %ld, descriptors %ld -> %ld, threads %ld -> %ld\n", warm[0], last[0], warm[1],
                    last[1], warm[2], last[2]);
        expect(checked || last[0] * 100 <= warm[0] * 102, "memory grows");
        expect(last[1] <= warm[1] && last[2] <= warm[2], "descriptors or threads are left");
    }

    RealDevice device_{true, {.timeout = timeout, .connectionIdle = idle}};
    std::mt19937 dice_;
    std::map<std::string, CardRecord> cards_;
    std::map<std::string, int> tally_;
    std::vector<std::string> problems_;
    int journeys_ = 0, requests_ = 0;
};

}  // namespace
}  // namespace korvane::testing

int main(int argc, char** argv) {
    korvane::testing::Soak soak(argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1);
    return soak.run(argc > 1 ? std::atoi(argv[1]) : 300);
}
