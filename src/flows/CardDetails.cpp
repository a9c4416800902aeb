// SPDX-License-Identifier: Apache-2.0
#include "flows/CardDetails.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "operations/FieldLimits.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

std::string_view disclosureLanguage(const SdkConfig& config) {
    const std::string& set = config.deviceLanguageCode;
    const std::string shown = ports().stringTable->language();
    const std::string& code = !set.empty() ? set : !shown.empty() ? shown : ports().languageCode;
    return equalIgnoringCase(std::string_view{code}.substr(0, 2), "es") ? "Spanish" : "English";
}

}  // namespace

std::string takeCardStatus(JourneyState& state) {
    return std::exchange(state.decCardStatus, {});
}

std::string cardName(const JourneyState& state, eKorvaneCardType type) {
    if (type == eKorvaneCardType::wearable && !state.sdk.wearableName.value_or("").empty())
        return cutText(*state.sdk.wearableName, wearableNameLimit);
    return cardTypeDisplayName(type);
}

std::string cardholderName(const JourneyState& state) {
    std::string whole;
    for (const std::string* const part : {&state.decFirstName, &state.decMiddleName, &state.decLastName}) {
        if (!part->empty()) whole += (whole.empty() ? "" : " ") + *part;
    }
    return whole;
}

std::string cardDisclosure(const JourneyState& state) {
    const auto& decoded = state.decodedDisclosuresStruct;
    if (!decoded || !decoded->CardDisclosures || decoded->CardDisclosures->empty()) return {};
    const auto& items = *decoded->CardDisclosures;
    const auto wanted = std::find_if(items.begin(), items.end(), [&](const auto& item) {
        return equalIgnoringCase(item.Language.value_or(""), disclosureLanguage(state.sdk));
    });
    return (wanted == items.end() ? items.front() : *wanted).CardDisclosure.value_or("");
}

}  // namespace korvane
