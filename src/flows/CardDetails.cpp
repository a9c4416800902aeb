// SPDX-License-Identifier: Apache-2.0
#include "flows/CardDetails.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "base/Text.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

bool isWearable(const SdkConfig& config) {
    return config.currentCardType == eKorvaneCardType::wearable;
}

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

std::string_view disclosureLanguage() {
    const std::string& set = SdkConfig::sharedInstance().deviceLanguageCode;
    const std::string shown = ports().stringTable->language();
    const std::string& code = !set.empty() ? set : !shown.empty() ? shown : ports().languageCode;
    return equalIgnoringCase(std::string_view{code}.substr(0, 2), "es") ? "Spanish" : "English";
}

}  // namespace

std::string takeCardStatus() {
    return std::exchange(SdkConfig::sharedInstance().decCardStatus, {});
}

CardPicture cardPicture() {
    const SdkConfig& config = SdkConfig::sharedInstance();
    if (isWearable(config) && config.wearableImage) {
        if (auto decoded = ports().imageDecoder->decode(*config.wearableImage)) {
            return {std::make_shared<const ImageData>(*config.wearableImage), std::move(decoded), {}};
        }
    }
    return decodedPicture(config.decCardImage);
}

std::string cardName(eKorvaneCardType type) {
    const SdkConfig& config = SdkConfig::sharedInstance();
    if (type == eKorvaneCardType::wearable && !config.wearableName.value_or("").empty())
        return *config.wearableName;
    return cardTypeDisplayName(type);
}

std::string cardholderName() {
    const SdkConfig& config = SdkConfig::sharedInstance();
    std::string whole;
    for (const std::string* const part : {&config.decFirstName, &config.decMiddleName, &config.decLastName}) {
        if (!part->empty()) whole += (whole.empty() ? "" : " ") + *part;
    }
    return whole;
}

std::string cardDisclosure() {
    const auto& decoded = SdkConfig::sharedInstance().decodedDisclosuresStruct;
    if (!decoded || !decoded->CardDisclosures || decoded->CardDisclosures->empty()) return {};
    const auto& items = *decoded->CardDisclosures;
    const auto wanted = std::find_if(items.begin(), items.end(), [](const auto& item) {
        return equalIgnoringCase(item.Language.value_or(""), disclosureLanguage());
    });
    return (wanted == items.end() ? items.front() : *wanted).CardDisclosure.value_or("");
}

void wipeCardDetails() {
    SdkConfig& config = SdkConfig::sharedInstance();
    config.decodedDisclosuresStruct.reset();
    for (std::string* const field :
         {&config.decCardImage, &config.decPan, &config.decMaskedPan, &config.decCvv, &config.decMaskedCvv,
          &config.decExpiryDate, &config.decFirstName, &config.decMiddleName, &config.decLastName,
          &config.decCardNetwork}) {
        wipe(*field);
    }
}

}  // namespace korvane
