// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/JourneyFixture.h"

#include <algorithm>

namespace korvane {

std::string JourneyFixture::shown(Journey::Outcome outcome) {
    settle();
    // In the order of the outcomes.
    const char* const refusals[] = {"done", "no such control", "not enabled", "not digits"};
    if (outcome != Journey::Outcome::done) return refusals[static_cast<int>(outcome)];
    return journey ? screen().view : "";
}

std::string JourneyFixture::start(JourneyKind kind, const std::string& status, const std::string& type) {
    cardStatus = status;
    cardType = type;
    closed.clear();
    journey = std::make_unique<Journey>(kind, "card-1");
    journey->appear();
    return shown(Journey::Outcome::done);
}

std::string JourneyFixture::tap(const std::string& controlId) {
    return shown(journey->perform(controlId));
}

std::string JourneyFixture::type(const std::string& digits) {
    return shown(journey->replaceText(digits));
}

std::string JourneyFixture::insert(const std::string& digits) {
    return shown(journey->insertText(digits));
}

std::string JourneyFixture::verifyBySMS() {
    tap("sdk.sms.explain.button");
    return type("123456");
}

std::string JourneyFixture::enterAndConfirm(const std::string& pin) {
    type(pin);
    tap("sdk.setpin.button");
    type(pin);
    return tap("sdk.confirmpin.button");
}

void JourneyFixture::pass(std::chrono::duration<double> time) {
    device.timers->advance(time);
    settle();
}

bool JourneyFixture::enabled(const std::string& controlId) const {
    const auto controls = screen().controls;
    return std::any_of(controls.begin(), controls.end(),
                       [&](const Control& each) { return each.id == controlId && each.enabled; });
}

std::string JourneyFixture::state() const {
    std::string text;
    for (const StateField& field : screen().state) {
        text += field.name + "=";
        if (const auto* const flag = std::get_if<bool>(&field.value)) text += *flag ? "true" : "false";
        if (const auto* const value = std::get_if<int>(&field.value)) text += std::to_string(*value);
        if (const auto* const words = std::get_if<std::string>(&field.value)) text += *words;
        text += " ";
    }
    return text;
}

std::string JourneyFixture::row(const std::string& id) const {
    for (const DetailRow& each : screen().rows) {
        if (each.id == id) return each.value;
    }
    return "none";
}

}  // namespace korvane
