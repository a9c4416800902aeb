// SPDX-License-Identifier: Apache-2.0
#include <glib.h>

#include <nlohmann/json.hpp>

#include "apps/journey/JourneyConsole.h"
#include "fuzz/Input.h"
#include "tests/explorer/World.h"
#include "uikit/KorvanePassCodeInput.h"

namespace korvane::fuzz {
namespace {

using Json = nlohmann::json;
using Requests = std::deque<korvane_iv_request*>;

korvane_status setUp() {
    korvane_host host{};
    host.size = sizeof host;
    host.log_line = [](void*, const char*) {};
    return korvane_set_up(&host);
}

/// As the host reads it; an empty object without a journey.
Json screenOf(const korvane_journey* journey) {
    char* json = nullptr;
    const korvane_status status = korvane_journey_screen(journey, &json);
    const Json screen = json ? Json::parse(json) : Json::object();
    korvane_free(json);
    check(screen.contains("view") == (status == KORVANE_OK), "there is a screen, or none");
    return screen;
}

}  // namespace

/// Keys and pastes into digit boxes, and the rule for weak PINs, against the same told plainly.
void passcode(Input& input) {
    KorvanePassCodeInput boxes("boxes", static_cast<int>(3 + input.below(4)), true);
    const auto room = static_cast<std::size_t>(boxes.size());
    std::string expected;
    bool startsOver = false;
    while (!input.bytes.empty()) {
        const std::size_t key = input.below(5);
        std::string text = key < 2 ? input.line() : "";
        const bool isTaken = text.find_first_not_of("0123456789 -") == text.npos;
        if (key < 2) check((key == 0 ? boxes.insertText(text) : boxes.replaceText(text)) == isTaken, text);
        if (key == 2) boxes.deleteBackward();
        if (key == 3) boxes.clear();
        if (key == 4) boxes.startOverOnNextInsert();

        std::erase_if(text, [](char c) { return c == ' ' || c == '-'; });
        const bool isTyped = isTaken && !text.empty();
        if (key == 3 || (isTyped && (key == 1 || startsOver || text.size() > 1))) expected.clear();
        if (isTyped) expected = (expected + text).substr(0, room);
        if (key == 2 && !expected.empty()) expected.pop_back();
        startsOver = key == 4 || (key < 2 && !isTyped && startsOver);
        check(boxes.inputModel().passCodeString == expected, "the boxes hold what was typed");
        check(boxes.inputModel().isValid == (expected.size() == room), "a digit in every box is valid");
        check(boxes.firstResponderIndex() == int(std::min(expected.size(), room - 1)), "the focus is next");
        if (expected.size() != 4) continue;
        const bool isRun = std::string_view{"0123456789 9876543210 0987"}.find(expected) != expected.npos;
        check(isWeakPIN(expected) == (isRun || expected[1] == expected[2]), "the rule refuses what is weak");
    }
}

/// A journey over the fakes: any control, any answer, also damaged ones, and what must hold after each.
void navigation(Input& input) {
    explorer::Start start;
    start.kind = static_cast<JourneyKind>(input.below(3));
    start.biometrics = input.below(2) == 1;
    start.token = static_cast<explorer::Start::Token>(input.below(5));
    explorer::World world(start, {.faults = 1'000'000});
    for (int steps = 0; steps < 200 && !input.bytes.empty() && !world.isClosed(); ++steps) {
        const auto possible = world.possible();
        if (possible.empty()) break;
        explorer::Step step = possible[input.below(std::min<std::size_t>(possible.size(), 256))];
        explorer::Answer answer;
        // What comes of freezing is left as it is: it decides with what the journey closes.
        if (step.answer && step.text != "setCardStatus" && input.below(4) == 3) {
            answer = *step.answer;
            step.answer = &answer;
            auto* const reply = std::get_if<UrlReply>(&answer.content);
            const std::size_t place = input.below(256) * 251;
            if (reply && !reply->body.empty()) reply->body[place % reply->body.size()] = 'A';
            answer.success = answer.success && !reply;
        }
        const explorer::Before before = world.before(step);
        world.apply(step);
        const std::string wrong = explorer::wrongAfter(before, step, world);
        check(wrong.empty(), before.screens[0].view + ", " + step.text + ": " + wrong);
    }
    const std::string left = world.leftBehind();
    check(left.empty(), left);
}

/// The calls of a host in C in any order, with any arguments that are allowed.
void cInterface(Input& input) {
    check(setUp() == KORVANE_OK && setUp() == KORVANE_BAD_ARGUMENT, "it can be set up again, but once");
    ScriptedService service;  // in the place of the device
    service.config.currentPciToken = input.below(2) == 0 ? "" : "pci-token";
    Requests asked;
    korvane_config config{};
    config.size = sizeof config;
    config.api_url = "https://cards.example";
    config.iv_context = &asked;
    config.iv_callback = [](void* to, korvane_iv_request* request) {
        static_cast<Requests*>(to)->push_back(request);
    };
    korvane_journey* journey = nullptr;
    const auto closed = [](void* ended, const char*) {
        korvane_journey_destroy(std::exchange(*static_cast<korvane_journey**>(ended), nullptr));
    };
    korvane_on_close(closed, &journey);
    while (!input.bytes.empty()) {
        const std::size_t which = input.below(12);
        std::string text = input.line();
        const Json before = screenOf(journey), controls = before.value("controls", Json::array());
        if (which == 0 && !controls.empty()) text = controls[input.below(controls.size())]["id"];
        korvane_status status = KORVANE_OK;
        if (which < 2) {
            const auto isIt = [&](const Json& control) { return control["id"] == text.c_str(); };
            const auto control = std::ranges::find_if(controls, isIt);
            const bool isThere = control != controls.end(), isEnabled = isThere && (*control)["enabled"];
            status = korvane_journey_perform(journey, text.c_str());
            check((status == KORVANE_OK) == isEnabled, "what is enabled can be used, nothing else: " + text);
            check((status == KORVANE_NOT_ENABLED) == (isThere && !isEnabled), "what is not says so: " + text);
        }
        if (which == 2) status = korvane_journey_type(journey, text.c_str());
        if (which == 3) status = korvane_journey_replace(journey, text.c_str());
        if (which == 4) status = korvane_journey_erase(journey);
        if (which == 5) status = korvane_journey_appear(journey);
        if (which == 6) status = korvane_journey_hide_sensitive(journey);
        config.key = text.empty() ? service.keyText.c_str() : text.c_str();
        if (which == 7) status = korvane_initialize(&config);
        check(status == KORVANE_OK || screenOf(journey) == before, "a call that failed changes nothing");
        if (which == 8 && !asked.empty()) {
            korvane_iv_supply(asked.front(), text.empty() ? nullptr : text.c_str(), service.ivText.c_str());
            asked.pop_front();
        }
        if (which == 9) service.next("getCardStatus", {static_cast<int>(input.below(256) * 3), text, ""});
        if (which == 10) service.next("getCardStatus", service.result(text));
        if (which == 11) {
            closed(&journey, nullptr);
            const int kind = static_cast<int>(input.below(5)) - 1;
            status = korvane_journey_create(kind, text.c_str(), &journey);
            check((status == KORVANE_OK) == (kind >= 0 && kind < 3), "there are three kinds");
        }
        if (which > 6) service.settle();
    }
    closed(&journey, nullptr);
    check(korvane_tear_down() == KORVANE_OK && screenOf(journey).empty(), "it can be torn down");
    for (korvane_iv_request* const request : asked) korvane_iv_supply(request, "late", nullptr);
}

/// Lines of commands to the console; an empty line lets the main loops run.
void console(Input& input) {
    static const korvane_status isSetUp = setUp();
    check(isSetUp == KORVANE_OK, "it can be set up");
    ScriptedService service;  // in the place of the device
    service.config.currentPciToken = input.below(2) == 0 ? "" : "pci-token";
    std::vector<Json> events;
    int exits = 0;
    const auto write = [&events](const std::string& line) {
        events.push_back(Json::parse(line));
        check(events.back().contains("event") && line.find('\n') == line.npos, "an event is a line: " + line);
    };
    JourneyConsole console(write, [&exits](int) { ++exits; });
    const auto answersTo = [&](const std::string& line) {
        events.clear();
        console.command(line);
        return events;
    };
    console.start(static_cast<korvane_journey_kind>(input.below(3)), "card-1");
    while (!input.bytes.empty()) {
        const std::string line = input.line();
        if (line.empty()) service.settle();
        while (line.empty() && g_main_context_iteration(nullptr, FALSE)) {
        }
        const auto before = answersTo("state"), answers = answersTo(line);
        if (before.empty() || answers.empty() || answers[0]["event"] != "error") continue;
        check(answers.size() == 1 && answers[0]["message"] != "", "a command is refused once");
        check(answersTo("state") == before, "a refused command changes nothing: " + line);
    }
    console.endOfInput();
    check(exits <= 1, "it ends once");
}

}  // namespace korvane::fuzz
