// SPDX-License-Identifier: Apache-2.0
#include "sandbox/MagicCards.h"

#include <algorithm>
#include <array>

#include "sandbox/Json.h"

namespace korvane::sandbox {
namespace {

// In the order in which a journey meets them: its first question, the SMS step,
// then its own work.
constexpr std::array<MagicCard, 29> cards{{
    {"fault-unknown-card", "A1", R"("endpoint":"getCardStatus","result":"Failure: Unknown Card")",
     "the service does not know the card"},
    {"fault-400", "A1", R"("endpoint":"getCardStatus","status":400)", "the card's status: HTTP 400"},
    {"fault-403", "A1", R"("endpoint":"getCardStatus","status":403)", "the card's status: HTTP 403"},
    {"fault-500", "A1", R"("endpoint":"getCardStatus","status":500)", "the card's status: HTTP 500"},
    {"fault-503", "A1", R"("endpoint":"getCardStatus","status":503)", "the card's status: HTTP 503"},
    {"fault-no-json", "A1", R"("endpoint":"getCardStatus","body":"<html>")", "an answer that is no JSON"},
    {"fault-no-status", "A1", R"("endpoint":"getCardStatus","without":"encryptedCardStatus")",
     "an answer without the card's status"},
    {"fault-no-type", "A1", R"("endpoint":"getCardStatus","without":"encryptedCardType")",
     "an answer without the card's type"},
    {"fault-cut", "A1", R"("endpoint":"getCardStatus","cutAfter":20)", "an answer that ends too soon"},
    {"fault-reset", "A1", R"("endpoint":"getCardStatus","reset":true)", "a reset connection"},
    {"fault-reset-midway", "A1", R"("endpoint":"getCardStatus","resetAfter":20)",
     "a connection that is reset within the answer"},
    {"fault-hang", "A1", R"("endpoint":"getCardStatus","hang":true)", "no answer at all"},
    {"fault-slow", "A1", R"("endpoint":"getCardStatus","dripBytes":16,"dripMs":50)",
     "an answer that drips, and is whole in the end"},
    {"fault-iv-expired", "A1", R"("endpoint":"getCardStatus","expireIv":true)", "every IV is expired"},
    {"fault-iv-unknown", "A1", R"("endpoint":"getCardStatus","unknownIv":true)", "every IV is unknown"},
    {"fault-bearer-expired", "A1", R"("endpoint":"getCardStatus","expireBearer":true)",
     "every bearer token is expired"},
    {"fault-token-expired", "A1", R"("endpoint":"getCardStatus","expirePciToken":true)",
     "every PCI token is expired"},
    {"fault-sms-refused", "A1", R"("endpoint":"pciTokenRequest","result":"Failure: SMS Not Sent")",
     "no SMS is sent"},
    {"fault-code-refused", "A1",
     R"("endpoint":"pciTokenSubmission","result":"Failure: Incorrect SMS verification code")",
     "every SMS code is wrong"},
    {"fault-code-expired", "A1", R"("endpoint":"pciTokenSubmission","result":"Failure: Expired Token")",
     "every SMS code comes too late"},
    {"fault-code-500", "A1", R"("endpoint":"pciTokenSubmission","status":500)", "the SMS code: HTTP 500"},
    {"fault-pin-refused", "A1", R"("endpoint":"pinSet","result":"Failure: Invalid PIN")",
     "every PIN is refused"},
    {"fault-pin-token-expired", "A1", R"("endpoint":"pinSet","expirePciToken":true)",
     "the PCI token is expired when the PIN is set"},
    {"fault-pin-reset", "A1", R"("endpoint":"pinSet","resetAfter":0)",
     "the PIN is set, and the answer is lost"},
    {"fault-pin-hang", "A1", R"("endpoint":"pinSet","hang":true)", "no answer when the PIN is set"},
    {"fault-activation-refused", "P2",
     R"("endpoint":"physicalCardActivationAndPinSet","result":"Failure: Invalid Card Details")",
     "every activation is refused"},
    {"fault-image-refused", "A1", R"("endpoint":"getCardImage","result":"Failure: No Card Image")",
     "the card's details are refused"},
    {"fault-no-image", "A1", R"("endpoint":"getCardImage","without":"encryptedCardImage")",
     "details without a picture"},
    {"fault-freeze-refused", "A1", R"("endpoint":"setCardStatus","result":"Failure: Invalid Status")",
     "every freeze is refused"},
}};

}  // namespace

std::span<const MagicCard> magicCards() {
    return cards;
}

bool isMagic(std::string_view id) {
    return std::ranges::find(cards, id, &MagicCard::id) != cards.end();
}

std::string magicRule(const MagicCard& card) {
    return "{\"card\":\"" + std::string(card.id) + "\",\"count\":\"forever\"," + std::string(card.fault) +
           "}";
}

}  // namespace korvane::sandbox
