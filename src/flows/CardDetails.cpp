// SPDX-License-Identifier: Apache-2.0
#include "flows/CardDetails.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <utility>

#include "base/Base64.h"
#include "base/Text.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

CardPicture decodedPicture(const std::string& base64) {
    if (base64.empty()) return {nullptr, nullptr, "errors.decodedimgstrempty.failed"};
    const auto image = std::make_shared<ImageData>(base64Room(base64));
    const auto size = base64Decode(base64, reinterpret_cast<std::uint8_t*>(image->data()));
    if (!size) return {nullptr, nullptr, "errors.base64todata.failed"};
    image->resize(*size);
    auto decoded = ports().imageDecoder->decode(*image);
    if (!decoded) return {nullptr, nullptr, "errors.datatoimage.failed"};
    return {image, std::move(decoded), {}};
}

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

CardPicture cardPicture(const JourneyState& state) {
    const auto& hosts = state.sdk.wearableImage;
    if (state.currentCardType == eKorvaneCardType::wearable && hosts) {
        if (auto decoded = ports().imageDecoder->decode(*hosts)) {
            return {std::make_shared<const ImageData>(*hosts), std::move(decoded), {}};
        }
    }
    return decodedPicture(state.decCardImage);
}

std::string cardName(const JourneyState& state, eKorvaneCardType type) {
    if (type == eKorvaneCardType::wearable && !state.sdk.wearableName.value_or("").empty())
        return *state.sdk.wearableName;
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
