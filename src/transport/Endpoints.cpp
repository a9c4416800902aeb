// SPDX-License-Identifier: Apache-2.0
#include "transport/Endpoints.h"

namespace korvane {
namespace {

constexpr std::array<Endpoint, endpointCount> endpoints{{
    {.method = "getBearerToken",
     .path = "/api/sdk/token",
     .bearer = false,
     .keys = {"encryptedCardId", "encryptedUsername", "encryptedPassword"},
     .printsBody = true},
    {.method = "pciTokenRequest",
     .path = "/api/sdk/pciTokenRequest",
     .bearer = true,
     .keys = {"encryptedCardId"},
     .printsBody = true,
     .reAuthDash = " -  "},  // two blanks in this one (deliberate)
    {.method = "pciTokenSubmission",
     .path = "/api/sdk/pciTokenSubmission",
     .bearer = true,
     .keys = {"encryptedCardId", "encryptedPciSmsToken", "encryptedTwoFactorCode", "encryptedUseBiometrics"}},
    {.method = "pinSet",
     .path = "/api/sdk/pinSet",
     .bearer = true,
     .changes = true,
     .keys = {"encryptedCardId", "encryptedPIN", "encryptedPciToken"}},
    {.method = "getCardStatus",
     .path = "/api/sdk/getCardStatus",
     .bearer = true,
     .keys = {"encryptedCardId", "encryptedPciToken"}},
    {.method = "setCardStatus",
     .path = "/api/sdk/cardStatus",
     .bearer = true,
     .changes = true,
     .keys = {"encryptedCardId", "encryptedStatus", "encryptedPciToken"}},
    {.method = "getCardImage",
     .path = "/api/sdk/cardImage",
     .bearer = true,
     .keys = {"encryptedCardId", "encryptedPciToken"}},
    {.method = "physicalCardActivationAndPinSet",
     .path = "/api/sdk/physicalCardActivationAndPinSet",
     .bearer = true,
     .changes = true,
     .keys = {"encryptedCardId", "encryptedCVV", "encryptedPIN", "encryptedLastFourOfPan",
              "encryptedPciToken"}},
    {.method = "virtualCardActivationAndPinSet",
     .path = "/api/sdk/virtualCardActivationAndPinSet",
     .bearer = true,
     .changes = true,
     .keys = {"encryptedCardId", "encryptedPIN", "encryptedPciToken"}},
    {.method = "wearableCardActivationAndPinSet",
     .path = "/api/sdk/wearableCardActivationAndPinSet",
     .bearer = true,
     .changes = true,
     .keys = {"encryptedCardId", "encryptedPIN", "encryptedPciToken"}},
}};

}  // namespace

const Endpoint& endpoint(EndpointId id) {
    return endpoints[static_cast<std::size_t>(id)];
}

}  // namespace korvane
