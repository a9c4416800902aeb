// SPDX-License-Identifier: Apache-2.0
#include "operations/OperationEngine.h"

#include "platform/Log.h"
#include "transport/FieldCipher.h"
#include "transport/Json.h"

namespace korvane {
namespace {

/// The plain text; "" when the reply has none, and the values behind it are still taken.
std::string decipherAndLog(WireText& value, std::string_view name, const std::vector<std::uint8_t>& iv) {
    if (!value) return {};
    log({"theEnc", inClear(name), ": ", *value});
    decryptFieldInPlace(iv, *value);  // the picture has megabytes
    log({"dec", inClear(name), ": ", *value});
    return *std::move(value);
}

std::optional<std::string> storeCardDetails(RestGetCardImage& reply, const std::vector<std::uint8_t>& iv) {
    SdkConfig& config = SdkConfig::sharedInstance();
    const auto store = [&](std::string SdkConfig::*field, WireText& enciphered, std::string_view name) {
        config.*field = decipherAndLog(enciphered, name, iv);
    };
    std::optional<std::string> report;

    store(&SdkConfig::decCardImage, reply.encryptedCardImage, "CardImage");
    auto disclosures =
        decodeDisclosures(decipherAndLog(reply.encryptedCardDisclosures, "CardDisclosures", iv));
    if (auto* const decoded = std::get_if<DecryptedCardDisclosure>(&disclosures)) {
        config.decodedDisclosuresStruct = std::move(*decoded);
    } else {
        config.decodedDisclosuresStruct.reset();
        report = "disclosure decode failed";
        log(inClear(*report));
    }
    store(&SdkConfig::decPan, reply.encryptedPan, "Pan");
    // Fixed, so that a mask tells nothing of what it hides, not even its length (deliberate).
    config.decMaskedPan = "################";
    store(&SdkConfig::decCvv, reply.encryptedCvv, "Cvv");
    config.decMaskedCvv = "###";
    store(&SdkConfig::decExpiryDate, reply.encryptedExpiryDate, "ExpiryDate");
    store(&SdkConfig::decFirstName, reply.encryptedFirstName, "FirstName");
    store(&SdkConfig::decMiddleName, reply.encryptedMiddleName, "MiddleName");
    store(&SdkConfig::decLastName, reply.encryptedLastName, "LastName");
    store(&SdkConfig::decCardNetwork, reply.encryptedCardNetwork, "CardNetwork");
    return report;
}

}  // namespace

Operation doCardImage(OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doCardImage",
        .endpoint = "getCardImage",
        .values = {{&SdkConfig::cardId}, {&SdkConfig::currentPciToken}},
        .send = sendTo<RestGetCardImage, &API::getCardImage, 2, storeCardDetails>,
        .noReplyMsg = "api.getCardStatus resp is nil",  // names another operation (deliberate)
        .noResultMsg = "Encrypted result nil",
        .storeTextIsFailure = false,  // the card can be used without its disclosures
    };
    return runOperation(description, {}, std::move(completion));
}

}  // namespace korvane
