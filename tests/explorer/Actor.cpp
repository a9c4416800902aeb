// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/Actor.h"

#include "capi/SnapshotJson.h"

namespace korvane::explorer {
namespace {

using Texts = std::vector<const std::string*>;

/// On these the component's behaviour depends.
Texts decisive(const JourneyState& of) {
    return {&of.pendingPin,      &of.decCardStatus, &of.viewToShowAfterSMSVerify,
            &of.enteredLastFour, &of.enteredCvv,    &of.viewToShowAfterSMSVerifyBackup,
            &of.decCardImage,    &of.decPan};
}

/// These are only sent or shown.
Texts others(const JourneyState& of) {
    return {&of.decryptedPciSmsToken, &of.twoFactorCode, &of.viewToShowAfterFaceId,
            &of.decMaskedPan,         &of.decCvv,        &of.decMaskedCvv,
            &of.decExpiryDate,        &of.decFirstName,  &of.decMiddleName,
            &of.decLastName,          &of.decCardNetwork};
}

std::string flags(const JourneyState& of) {
    std::string text{cardTypeCaseName(of.currentCardType)};
    for (const bool flag :
         {of.setPinOnly, of.verifiedBySMS, of.decodedDisclosuresStruct.has_value(), of.resultPosted})
        text += flag ? "1" : "0";
    return text;
}

}  // namespace

std::vector<std::string_view> Person::entries(std::string_view box) const {
    if (box == "sdk.setpin.input") return {pin, "1234", pin.substr(0, 2)};
    if (box == "sdk.confirmpin.input") return {pin, otherPin, pin.substr(0, 2)};
    const std::string_view whole = box == "sdk.activatecard.lastfourdigits.input" ? lastFour
                                   : box == "sdk.activatecard.cvv.input"          ? cvv
                                                                                  : code;
    return {whole, whole.substr(0, 2)};
}

std::string foundIn(std::string_view text, std::span<const std::string_view> these) {
    const auto isIn = [&](std::string_view each) { return text.find(each) != text.npos; };
    const auto found = std::ranges::find_if(these, isIn);
    return found == these.end() ? "" : std::string{*found};
}

bool runs(const ScreenSnapshot& screen) {
    return std::ranges::any_of(screen.state, [](const StateField& field) {
        return (field.name == "resendSeconds" && field.value != StateValue{0}) ||
               (field.name == "detailsRevealed" && field.value == StateValue{true});
    });
}

void Actor::construct() {
    journey = std::make_unique<Journey>(kind, std::string{person->card});
    state = JourneyProbe::state(*journey);
    id = journey->id();
}

std::string Actor::typedIn(const ScreenSnapshot& now) const {
    if (!now.passcode || now.passcode->filled == 0) return {};
    return now.passcode->filled == now.passcode->size ? typed.at(now.passcode->id) : "partly";
}

std::string Actor::screenKey(const ScreenSnapshot& now) const {
    std::string key;
    for (const std::string& name : now.stack) key += name + ">";
    for (const StateField& field : now.state) {
        key += field.name + "=";
        if (const auto* const text = std::get_if<std::string>(&field.value)) key += *text;
        key += field.value == StateValue{0} || field.value == StateValue{false} ? "0" : "1";
    }
    for (const Control& control : now.controls)
        key += control.id + (control.enabled ? "!" : "") + (control.on ? "1" : "");
    key += typedIn(now) + now.message + (now.spinner ? "spinner" : "");
    for (const DetailRow& row : now.rows) key += row.value;
    return key;
}

std::string Actor::coveredKey(const ScreenSnapshot& now) const {
    return (now.card ? screenKey(now) : typedIn(now)) + (runs(now) ? "~" : "");
}

std::string Actor::key() const {
    if (isGone()) return "gone";
    std::string key = std::to_string(static_cast<int>(kind));
    if (!journey) return key + "none";
    key += (appeared ? screenKey(screen()) : "made") + (doneSomething ? "#1" : "#0");
    for (const std::string& each : covered) key += "/" + each;
    const JourneyState& now = *state.lock();
    for (const std::string* const text : decisive(now)) key += "|" + *text;
    const auto secrets = person->secrets();
    const auto digits = std::span(secrets).subspan(1);  // a token is only sent
    for (const std::string* const text : others(now)) key += foundIn(*text, digits).empty() ? "-" : "s";
    return key + flags(now);
}

std::string Actor::everything() const {
    const auto now = state.lock();
    if (!journey || !now) return key() + (now ? " with a state" : "");
    std::string all = *snapshotJson(screen()) + flags(*now) + now->cardId;
    for (const Texts& texts : {decisive(*now), others(*now)})
        for (const std::string* const text : texts) all += "|" + *text;
    return all;
}

}  // namespace korvane::explorer
