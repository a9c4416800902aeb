// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

#include <algorithm>
#include <chrono>

namespace korvane {
namespace {

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : "/") + text;
    return all;
}

std::string asText(const StateField& field) {
    if (const auto* const flag = std::get_if<bool>(&field.value)) return *flag ? "true" : "false";
    if (const auto* const number = std::get_if<int>(&field.value)) return std::to_string(*number);
    return std::get<std::string>(field.value);
}

/// The entry of that id, or whose id ends so.
template <class Entries>
auto entry(const Entries& entries, const std::string& name) {
    return std::find_if(entries.begin(), entries.end(),
                        [&](const auto& each) { return each.id == name || each.id.ends_with("." + name); });
}

}  // namespace

std::string JourneyFixture::start(JourneyKind kind, const std::string& status, const std::string& type) {
    cardStatus = status;
    cardType = type;
    closed_.clear();
    requests_ = std::ssize(device.urlSession->requests());
    journey = std::make_unique<Journey>(kind, "card-1");
    journey->appear();
    settle();
    return outcome_ = screen().view;
}

std::string JourneyFixture::walk(const std::vector<std::string>& steps) {
    using Outcome = Journey::Outcome;
    for (const std::string& step : steps) {
        SCOPED_TRACE(step);
        const std::string act = step.substr(0, step.find(" > "));
        const std::string what = act.substr(act.find(' ') + 1);
        auto outcome = Outcome::done;
        if (act.starts_with("type ")) {
            outcome = journey->replaceText(what);
        } else if (act.starts_with("insert ")) {
            outcome = journey->insertText(what);
        } else if (act.starts_with("wait ")) {
            device.timers->advance(std::chrono::duration<double>(std::stod(what)));
        } else {
            const auto controls = screen().controls;
            const auto found = entry(controls, act);
            outcome = journey->perform(found == controls.end() ? act : found->id);
        }
        settle();
        const char* const refusals[] = {"", "no such control", "not enabled", "not digits"};
        outcome_ = refusals[static_cast<int>(outcome)];
        if (outcome == Outcome::done && journey) outcome_ = screen().view;
        if (step.size() > act.size()) see(step.substr(act.size() + 3));
    }
    return outcome_;
}

void JourneyFixture::see(const std::string& expected) {
    for (std::size_t from = 0, end = 0; end != std::string::npos; from = end + 2) {
        end = expected.find(", ", from);
        const std::string each = expected.substr(from, end - from);
        const auto sign = each.find('=');
        if (sign == std::string::npos) {
            EXPECT_EQ(outcome_, each);
        } else {
            EXPECT_EQ(value(each.substr(0, sign)), each.substr(sign + 1)) << each;
        }
    }
}

std::string JourneyFixture::value(const std::string& name) const {
    const ScreenSnapshot now = screen();
    if (name == "filled") return std::to_string(now.passcode ? now.passcode->filled : -1);
    if (name == "message") return now.message;
    if (name == "toast") return now.toast;
    if (name == "stack") return joined(now.stack);
    if (name == "closed") return closed_;
    if (name == "pasteboard") return device.pasteboard->text();
    if (name == "typed")
        return state().pendingPin + state().enteredLastFour + state().enteredCvv + state().twoFactorCode;
    if (now.card) {
        if (name == "logo") return now.card->networkLogo;
        if (name == "name") return now.card->name;
        if (name == "offers") return now.card->button;
        if (name == "card") return joined(now.card->message);
        if (name == "image") return std::to_string(now.card->image ? now.card->image->size() : 0);
    }
    if (name == "controls") return std::to_string(now.controls.size());
    if (name.starts_with("calls ")) {
        const auto& requests = device.urlSession->requests();
        return std::to_string(
            std::count_if(requests.begin() + requests_, requests.end(),
                          [&](const UrlRequest& each) { return each.url.ends_with("/" + name.substr(6)); }));
    }
    for (const StateField& field : now.state) {
        if (field.name == name) return asText(field);
    }
    if (const auto row = entry(now.rows, name); row != now.rows.end()) return row->value;
    if (const auto control = entry(now.controls, name); control != now.controls.end())
        return control->enabled ? "on" : "off";
    if (const auto dot = name.find('.'); dot != std::string::npos)
        return sent(name.substr(0, dot), "encrypted" + name.substr(dot + 1));
    return "none";
}

}  // namespace korvane
