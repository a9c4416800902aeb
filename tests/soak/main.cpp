// SPDX-License-Identifier: Apache-2.0
// korvane_soak COUNT [SEED]: as many journeys of all kinds in one process, against a service that does
// everything wrong now and then. Tells what came of them, and fails when a journey does not end where it
// should, when something is left behind, or when the service's record is not what journeys reported.
#include <malloc.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "apps/common/HostCalls.h"
#include "base/Secret.h"
#include "sdk/SdkConfig.h"
#include "tests/soak/Person.h"

namespace korvane::testing {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool checked = true;  // a checker keeps memory by itself, and is slow
#else
constexpr bool checked = false;
#endif

// Of each the service does 5 %, at every endpoint. The last one waits for the session's time-out.
constexpr std::string_view faults[] = {
    R"("status": 500)",          R"("result": "Failure: Expired Token")",
    R"("body": "<html>")",       R"("without": "encryptedResult")",
    R"("expireIv": true)",       R"("unknownIv": true)",
    R"("expirePciToken": true)", R"("expireBearer": true)",
    R"("reset": true)",          R"("cutAfter": 10)",
    R"("resetAfter": 10)",       R"("dripBytes": 50, "dripMs": 1)",
    R"("delayMs": 3)",           R"("hang": true)",
};
constexpr int journeysBetweenResets = 25;
constexpr std::chrono::milliseconds idle{50};

struct Footprint {
    long kib = 0;   ///< resident
    long heap = 0;  ///< bytes in use
    long descriptors = 0, threads = 0;

    static Footprint now() {
        const auto count = [](const char* folder) {
            return std::distance(std::filesystem::directory_iterator(folder), {});
        };
        malloc_trim(0);
        long pages = 0, resident = 0;
        std::ifstream("/proc/self/statm") >> pages >> resident;
        return {resident * 4, static_cast<long>(mallinfo2().uordblks), count("/proc/self/fd"),
                count("/proc/self/task")};
    }
};

/// With what a journey may close, by its last view.
const std::map<std::string, std::string> results{
    {"UhOhTryAgainView", "FAILURE"},
    {"SuccessPinSetView", "SUCCESS"},
    {"SuccessCardActivatedAndPinSetView", "SUCCESS"},
    {"CardIsNotYetActivatedView", "CANCELED"},
    {"CardAlreadyActivatedView", "CANCELED"},
    {"ActivateCardAndSetPIN_NoNav", "CANCELED"},
    {"CardImage_NoNav", "SUCCESS or CANCELED"},
};

class Soak {
  public:
    explicit Soak(unsigned seed) : seed_(seed), dice_(seed) {}

    int run(int count) {
        std::optional<Footprint> warm;
        const auto start = std::chrono::steady_clock::now();
        for (int nextReset = 0; journeys_ < count && problems_.empty();) {
            if (journeys_ >= nextReset) {
                startOver();
                nextReset += journeysBetweenResets;
            }
            if (!warm && journeys_ >= count / 4) warm = settled();
            round();
        }
        tallyFaults();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        std::printf("%d journeys in %.1f s, %d requests, seed %u\n", journeys_, time.count(), requests_,
                    seed_);
        if (problems_.empty()) judge(*warm, settled());
        for (const auto& [what, times] : tally_) std::printf("%7d %s\n", times, what.c_str());
        for (const std::string& problem : problems_) std::printf("PROBLEM: %s\n", problem.c_str());
        return problems_.empty() ? 0 : 1;
    }

  private:
    struct Begun {
        std::string cardId;
        const char* kind;
        std::unique_ptr<Journey> journey;
    };

    bool chance(unsigned percent) { return dice_() % 100 < percent; }

    /// Cards as at the start, and other chances for the same faults.
    void startOver() {
        tallyFaults();
        device_.ask("POST", "/host/reset");
        std::string rules = "[";
        for (const std::string_view fault : faults) {
            rules += R"({"endpoint": "*", "count": "forever", "percent": 5, "seed": )" +
                     std::to_string(dice_()) + ", " + std::string(fault) +
                     (fault == faults[std::size(faults) - 1] ? "}]" : "},");
        }
        if (!device_.ask("POST", "/host/faults", rules).IsObject()) problem("the rules are refused");
        const auto cards = device_.ask("GET", "/host/cards");
        for (const auto& card : cards.GetArray())
            cards_[textMember(card, "id")] = {textMember(card, "pin"), textMember(card, "status")};
        device_.install();
        device_.initialize();
    }

    /// One journey, or two of two cards: the first one waits on its first page while the second one goes by.
    void round() {
        device_.reader->setAvailable(chance(80));
        if (chance(5)) device_.store->failNext({secureItemLocked});
        if (chance(30)) device_.initialize(chance(60));
        if (chance(30)) wipe(SdkConfig::sharedInstance().currentPciToken);  // as when its time is up
        Begun first = begin("");
        if (chance(25)) {
            device_.until([&] { return device_.reader->answer(true), !first.journey->screen().spinner; });
            end(begin(first.cardId));
        }
        end(std::move(first));
        const SdkConfig& left = SdkConfig::sharedInstance();
        if (!(left.pendingPin + left.twoFactorCode + left.enteredLastFour + left.enteredCvv + left.decPan +
              left.decCvv + device_.pasteboard->text())
                 .empty())
            problem("secrets are left");
    }

    Begun begin(const std::string& butNotCard) {
        const auto [name, kind] = std::array{std::pair{"set PIN", JourneyKind::setPIN},
                                             std::pair{"activate", JourneyKind::activateCardAndSetPIN},
                                             std::pair{"view", JourneyKind::getCardImage}}[dice_() % 3];
        auto card = std::next(cards_.begin(), dice_() % cards_.size());
        while (card->first == butNotCard ||
               (name == std::string("activate") && card->second.status != "P2" && chance(80)))
            card = std::next(cards_.begin(), dice_() % cards_.size());
        Begun begun{card->first, name, std::make_unique<Journey>(kind, card->first)};
        begun.journey->appear();
        return begun;
    }

    void end(Begun begun) {
        Person person(device_, dice_, begun.cardId);
        const int timeOuts = device_.timeOuts();
        const std::string view = person.walk(*begun.journey);
        const std::string what = std::string(begun.kind) + ", " + view + ", " + person.result;
        const auto fits = results.find(view);
        if (fits == results.end() || fits->second.find(person.result) == std::string::npos) problem(what);
        ++tally_["ends: " + what];
        ++journeys_;
        begun.journey.reset();
        compare(begun.cardId, person.believes, device_.timeOuts() > timeOuts);
    }

    /// The one difference that may be: the service acted, and its answer was lost.
    void compare(const std::string& cardId, const CardRecord& believed, bool timedOut) {
        CardRecord& expected = cards_[cardId];
        if (!believed.pin.empty()) expected.pin = believed.pin;
        if (!believed.status.empty()) expected.status = believed.status;
        const auto card = device_.ask("GET", "/host/cards/" + cardId);
        const CardRecord actual{textMember(card, "pin"), textMember(card, "status")};
        if (actual == expected) return;
        bool pin = actual.pin == expected.pin, status = actual.status == expected.status;
        const auto journal = device_.ask("GET", "/host/journal?card=" + cardId);
        for (const auto& entry : journal["entries"].GetArray()) {
            if (textMember(entry, "note") != "Success") continue;
            const bool lost =
                timedOut || (entry.HasMember("fault") &&
                             (entry["fault"].HasMember("cutAfter") ||
                              entry["fault"].HasMember("resetAfter") || entry["fault"].HasMember("without")));
            const bool activated = textMember(entry, "endpoint").find("Activation") != std::string::npos;
            pin |= lost && textMember(entry["request"], "encryptedPIN") == actual.pin;
            status |= lost && (textMember(entry["request"], "encryptedStatus") == actual.status ||
                               (activated && actual.status == "A1"));
        }
        if (!pin || !status)
            problem(cardId + " has " + actual.pin + " " + actual.status + ", not " + expected.pin + " " +
                    expected.status);
        ++tally_["lost: the service acted, its answer did not arrive"];
        expected = actual;
    }

    void tallyFaults() {
        const auto journal = device_.ask("GET", "/host/journal");
        for (const auto& entry : journal["entries"].GetArray()) {
            ++requests_;
            if (!entry.HasMember("fault")) continue;
            rapidjson::StringBuffer text;
            rapidjson::Writer<rapidjson::StringBuffer> writer(text);
            entry["fault"].Accept(writer);
            const std::string rule = text.GetString();
            ++tally_["fault: " + rule.substr(rule.find(',', rule.find("seed")) + 1)];
        }
    }

    /// What is left when connections have closed themselves.
    Footprint settled() {
        device_.pass(10 * idle);
        return Footprint::now();
    }

    void judge(const Footprint& warm, const Footprint& last) {
        std::printf(
            "resident %ld -> %ld KiB, heap %ld -> %ld bytes, descriptors %ld -> %ld, threads %ld -> %ld\n",
            warm.kib, last.kib, warm.heap, last.heap, warm.descriptors, last.descriptors, warm.threads,
            last.threads);
        if (!checked && last.kib * 100 > warm.kib * 102) problem("memory grows");
        if (last.descriptors > warm.descriptors || last.threads > warm.threads)
            problem("descriptors or threads are left");
        for (const char* kind :
             {"set PIN, SuccessPin", "activate, SuccessCard", "view, CardImage_NoNav, SUCCESS"}) {
            const auto seen = tally_.lower_bound(std::string("ends: ") + kind);
            if (!checked && (seen == tally_.end() || seen->first.find(kind) == std::string::npos))
                problem(std::string("never seen: ") + kind);
        }
    }

    void problem(std::string what) { problems_.push_back(std::move(what)); }

    RealDevice device_{{.timeout = std::chrono::milliseconds(checked ? 2000 : 100), .connectionIdle = idle}};
    const unsigned seed_;
    std::mt19937 dice_;
    std::map<std::string, CardRecord> cards_;
    std::map<std::string, int> tally_;
    std::vector<std::string> problems_;
    int journeys_ = 0, requests_ = 0;
};

}  // namespace
}  // namespace korvane::testing

int main(int argc, char** argv) {
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    return korvane::testing::Soak(seed).run(argc > 1 ? std::atoi(argv[1]) : 300);
}
