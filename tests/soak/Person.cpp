// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/Person.h"

#include <korvane/CloseNotification.h>

#include <algorithm>
#include <vector>

#include "apps/common/HostCalls.h"

namespace korvane::testing {

Person::Person(RealDevice& device, std::mt19937& dice, std::string cardId)
    : device_(device), dice_(dice), cardId_(std::move(cardId)) {
    const auto card = device_.ask("GET", "/host/cards/" + cardId_);
    number_ = textMember(card, "pan");
    cvv_ = textMember(card, "cvv").substr(0, 3);
}

std::string Person::walk(Journey& journey) {
    const auto closed = NotificationCenter::defaultCenter().observe(NotificationCloseUI,
                                                                    [this](const NotificationUserInfo& info) {
                                                                        if (!result.empty())
                                                                            result = "closed twice: ";
                                                                        result += info.at("result");
                                                                    });
    std::string last;
    for (int patience = 500; result.empty(); --patience) {
        const bool rests = device_.until([&] {
            device_.reader->answer(chance(80));
            return !journey.screen().spinner;
        });
        const ScreenSnapshot screen = journey.screen();
        if (!rests || patience == 0) return "stuck on " + screen.view + " after " + last;
        const bool usable = std::ranges::any_of(screen.controls, &Control::enabled);
        if (!usable || screen.view.empty()) return "nothing to do on " + screen.view + " after " + last;
        last = screen.view;
        learn(screen);
        act(journey, screen);
    }
    return last;
}

void Person::learn(const ScreenSnapshot& screen) {
    if (screen.view.starts_with("Success")) believes.pin = pin_;
    if (screen.view == "SuccessCardActivatedAndPinSetView") believes.status = "A1";
    if (!screen.card) return;
    const auto [before, isNew] = frozen_.try_emplace(screen.instance, screen.card->frozen);
    if (std::exchange(before->second, screen.card->frozen) == screen.card->frozen) return;
    believes.status = screen.card->frozen ? "BT" : screen.card->activated ? "A1" : "P2";
}

std::string Person::digitsFor(const std::string& view) {
    const std::string some = std::to_string(100'000 + dice_() % 900'000);
    if (view == "EnterSMSCodeView") return chance(90) ? device_.smsCode(cardId_) : some;
    if (view == "EnterCardLastFourView")
        return chance(95) ? number_.substr(number_.size() - 4) : some.substr(2);
    if (view == "EnterCardCVVView") return chance(95) ? cvv_ : some.substr(3);
    if (view == "ConfirmCardPINView") return chance(90) ? pin_ : some.substr(2);
    return pin_ = chance(90) ? some.substr(2) : "1234";  // a weak one
}

void Person::act(Journey& journey, const ScreenSnapshot& screen) {
    if (screen.passcode && !screen.sheet) {
        journey.replaceText(digitsFor(screen.view));
        if (screen.view == "EnterSMSCodeView") return;  // submits by itself
    }
    const ScreenSnapshot now = journey.screen();
    std::vector<std::string> forward, others;
    for (const Control& control : now.controls) {
        if (!control.enabled || control.kind == ControlKind::passcode) continue;
        (control.kind == ControlKind::button ? forward : others).push_back(control.id);
    }
    // In the viewer there is no one next thing.
    if (screen.card) others.insert(others.end(), forward.begin(), forward.end());
    if (!screen.card && !forward.empty() && (others.empty() || chance(93))) {
        journey.perform(forward[chance(80) ? 0 : dice_() % forward.size()]);
    } else if (!others.empty()) {
        journey.perform(others[dice_() % others.size()]);
    }
}

}  // namespace korvane::testing
