// SPDX-License-Identifier: Apache-2.0
#include "operations/FieldLimits.h"
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

std::optional<std::string> storeCardDetails(JourneyState& state, RestGetCardImage& reply,
                                            const std::vector<std::uint8_t>& iv) {
    const auto store = [&](std::string JourneyState::*field, WireText& enciphered, std::string_view name) {
        state.*field = decipherAndLog(enciphered, name, iv);
        if (field != &JourneyState::decCardImage) limitField(name, state.*field);
    };
    std::optional<std::string> report;

    store(&JourneyState::decCardImage, reply.encryptedCardImage, "CardImage");
    auto disclosures = decodeDisclosures(
        decipherAndLog(reply.encryptedCardDisclosures, "CardDisclosures", iv), maxDisclosures + 1);
    if (auto* const decoded = std::get_if<DecryptedCardDisclosure>(&disclosures)) {
        limitDisclosures(*decoded);
        state.decodedDisclosuresStruct = std::move(*decoded);
    } else {
        state.decodedDisclosuresStruct.reset();
        report = "disclosure decode failed";
        log(inClear(*report));
    }
    store(&JourneyState::decPan, reply.encryptedPan, "Pan");
    // Fixed, so that a mask tells nothing of what it hides, not even its length (deliberate).
    state.decMaskedPan = "################";
    store(&JourneyState::decCvv, reply.encryptedCvv, "Cvv");
    state.decMaskedCvv = "###";
    store(&JourneyState::decExpiryDate, reply.encryptedExpiryDate, "ExpiryDate");
    store(&JourneyState::decFirstName, reply.encryptedFirstName, "FirstName");
    store(&JourneyState::decMiddleName, reply.encryptedMiddleName, "MiddleName");
    store(&JourneyState::decLastName, reply.encryptedLastName, "LastName");
    store(&JourneyState::decCardNetwork, reply.encryptedCardNetwork, "CardNetwork");
    return report;
}

}  // namespace

Handle doCardImage(StatePtr state, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doCardImage",
        .endpoint = "getCardImage",
        .values = {{&JourneyState::cardId}, {&SdkConfig::currentPciToken}},
        .send = sendTo<RestGetCardImage, &API::getCardImage, 2, storeCardDetails>,
        .noReplyMsg = "api.getCardStatus resp is nil",  // names another operation (deliberate)
        .noResultMsg = "Encrypted result nil",
        .storeTextIsFailure = false,  // the card can be used without its disclosures
    };
    return runOperation(description, std::move(state), {}, std::move(completion));
}

}  // namespace korvane
