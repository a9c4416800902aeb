// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Endpoints.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "base/Base64.h"
#include "sandbox/CardImage.h"
#include "sandbox/Json.h"

namespace korvane::sandbox {
namespace {

constexpr int wrongCodesAllowed = 5;
constexpr const char* biometricsTimer = "300";  // seconds

Reply failure(std::string result, int status = 200) {
    return {status, "Failure: " + std::move(result), {}, {}};
}

bool isDigits(std::string_view text, std::size_t count) {
    return text.size() == count && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

/// RFC 3339, UTC, whole seconds.
std::string timeText(std::int64_t time) {
    const std::time_t seconds = static_cast<std::time_t>(time / 1000);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 32> buffer;
    return {buffer.data(), std::strftime(buffer.data(), buffer.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

Token newToken(State& state, TokenKind kind, const std::string& cardId, std::chrono::seconds life) {
    return {kind, state.random.hex(32), cardId, {}, 0, after(life)};
}

/// Holds what the card-bound endpoints need.
struct Call {
    State& state;
    const Fields& plain;
    Card card;

    const std::string& operator[](std::string_view key) const { return plain.find(key)->second; }
};

Reply getBearerToken(State& state, const Fields& plain, const Iv& iv) {
    const bool known = plain.find("encryptedUsername")->second == base64Encode(state.key) &&
                       plain.find("encryptedPassword")->second == base64Encode(iv.bytes);
    if (!known) return failure("Invalid Credentials", 403);
    const Token token = newToken(state, TokenKind::bearer, {}, state.options.bearerTokenLife);
    state.database.putToken(token);
    Reply reply;
    reply.fields = {{"encryptedAccessToken", token.text}, {"encryptedExpiration", timeText(token.expires)}};
    return reply;
}

Reply pciTokenRequest(Call& call) {
    State& state = call.state;
    Token token = newToken(state, TokenKind::sms, call.card.id, state.options.smsTokenLife);
    token.code = state.random.digits(6);
    state.database.removeSmsTokensOf(call.card.id);  // only the code that came last counts
    state.database.putToken(token);
    Reply reply;
    reply.sms = Sms{call.card.id, token.code};
    state.database.addSms(*reply.sms);
    reply.fields = {{"encryptedPciSmsToken", token.text}};
    return reply;
}

Reply pciTokenSubmission(Call& call) {
    State& state = call.state;
    std::optional<Token> attempt = state.database.token(TokenKind::sms, call["encryptedPciSmsToken"]);
    if (!attempt || attempt->cardId != call.card.id) return failure("Invalid Token");
    if (attempt->expires <= now()) return failure("Expired Token");
    if (attempt->code != call["encryptedTwoFactorCode"]) {
        if (++attempt->wrongCodes == wrongCodesAllowed) {
            state.database.removeToken(TokenKind::sms, attempt->text);
        } else {
            state.database.putToken(*attempt);
        }
        return failure("Incorrect SMS verification code");
    }
    state.database.removeToken(TokenKind::sms, attempt->text);
    const Token token = newToken(state, TokenKind::pci, call.card.id, state.options.pciTokenLife);
    state.database.putToken(token);
    Reply reply;
    reply.fields = {{"encryptedPciToken", token.text},
                    {"encryptedPciTokenExpiration", timeText(token.expires)},
                    {"encryptedBiometricsAuthenticationTimer", biometricsTimer}};
    return reply;
}

Reply pinSet(Call& call) {
    Card& card = call.card;
    if (card.type == "physical" && card.status == "P2") return failure("Card not active");
    if (!isDigits(call["encryptedPIN"], 4)) return failure("Invalid PIN");
    card.pin = call["encryptedPIN"];
    call.state.database.putCard(card);
    return {};
}

Reply getCardStatus(Call& call) {
    Reply reply;
    reply.fields = {{"encryptedCardStatus", call.card.status}, {"encryptedCardType", call.card.type}};
    return reply;
}

/// Freezing remembers where the card was; lifting the freeze goes back there and nowhere else. Only
/// activation makes an active card of a new one. Asking for the status that the card has already is no fault:
/// an answer may have been lost.
Reply setCardStatus(Call& call) {
    Card& card = call.card;
    const std::string& wanted = call["encryptedStatus"];
    if (wanted != "A1" && wanted != "BT" && wanted != "P2") return failure("Invalid Status");
    if (wanted == card.status) return {};
    if (wanted == "BT" && (card.status == "A1" || card.status == "P2")) {
        card.statusBeforeFreeze = card.status;
    } else if (card.status == "BT" && wanted == card.statusBeforeFreeze) {
        card.statusBeforeFreeze.clear();
    } else {
        return failure("Invalid Status");
    }
    card.status = wanted;
    call.state.database.putCard(card);
    return {};
}

std::string disclosures() {
    const std::vector<JsonObject> items{
        {{"Language", "English"},
         {"CardDisclosure", "This card is issued by the sandbox for development. It buys nothing."}},
        {{"Language", "Spanish"},
         {"CardDisclosure", "Esta tarjeta la emite el entorno de pruebas. No sirve para comprar."}},
    };
    return "{\"CardDisclosures\":" + writeJson(items) + "}";
}

Reply getCardImage(Call& call) {
    const Card& card = call.card;
    std::string& picture = call.state.pictures[card.type];
    const std::string& given = call.state.options.picture;
    if (picture.empty() && !given.empty())
        picture = base64Encode({reinterpret_cast<const std::uint8_t*>(given.data()), given.size()});
    if (picture.empty()) picture = base64Encode(cardImagePng(card.type));
    if (picture.empty()) return failure("No Card Image");
    Reply reply;
    reply.fields = {{"encryptedCardImage", picture},
                    {"encryptedCardDisclosures", disclosures()},
                    {"encryptedPan", card.pan},
                    {"encryptedCvv", card.cvv},
                    {"encryptedExpiryDate", card.expiry},
                    {"encryptedFirstName", card.firstName},
                    {"encryptedMiddleName", card.middleName},
                    {"encryptedLastName", card.lastName},
                    {"encryptedCardNetwork", card.network}};
    return reply;
}

Reply activate(Call& call) {
    Card& card = call.card;
    if (card.status != "P2") return failure("Card already active");
    if (!isDigits(call["encryptedPIN"], 4)) return failure("Invalid PIN");
    card.status = "A1";
    card.pin = call["encryptedPIN"];
    call.state.database.putCard(card);
    return {};
}

/// For every type but the two that have an endpoint of their own: a client asks the holder of any other card
/// for its number and CVV, too.
Reply activatePhysical(Call& call) {
    const Card& card = call.card;
    if (card.type == "virtual" || card.type == "wearable") return failure("Invalid Card Type");
    const bool proven = call["encryptedLastFourOfPan"] == card.pan.substr(card.pan.size() - 4) &&
                        call["encryptedCVV"] == card.cvv;
    return proven ? activate(call) : failure("Invalid Card Details");
}

Reply activateVirtual(Call& call) {
    return call.card.type == "virtual" ? activate(call) : failure("Invalid Card Type");
}

Reply activateWearable(Call& call) {
    return call.card.type == "wearable" ? activate(call) : failure("Invalid Card Type");
}

struct Row {
    std::string_view name;
    Reply (*run)(Call&);
};

constexpr std::array<Row, 9> cardEndpoints{{
    {"pciTokenRequest", pciTokenRequest},
    {"pciTokenSubmission", pciTokenSubmission},
    {"pinSet", pinSet},
    {"getCardStatus", getCardStatus},
    {"setCardStatus", setCardStatus},
    {"getCardImage", getCardImage},
    {"physicalCardActivationAndPinSet", activatePhysical},
    {"virtualCardActivationAndPinSet", activateVirtual},
    {"wearableCardActivationAndPinSet", activateWearable},
}};

/// What speaks against the PCI token, if anything.
std::optional<Reply> refusal(State& state, const std::string& token, const std::string& cardId) {
    if (token.empty()) return failure("Invalid Token", 400);
    const std::optional<Token> known = state.database.token(TokenKind::pci, token);
    if (!known || known->cardId != cardId) return failure("Invalid Token");
    if (known->expires <= now()) return failure("Expired Token");
    return std::nullopt;
}

}  // namespace

Reply runEndpoint(State& state, const Endpoint& endpoint, const Fields& plain, const Iv& iv) {
    if (endpoint.name == "getBearerToken") return getBearerToken(state, plain, iv);
    const std::string& cardId = plain.find("encryptedCardId")->second;
    if (endpoint.carriesPciToken()) {
        if (auto refused = refusal(state, plain.find("encryptedPciToken")->second, cardId)) return *refused;
    }
    std::optional<Card> card = state.database.card(cardId);
    if (!card) return failure("Unknown Card");
    Call call{state, plain, std::move(*card)};
    return std::ranges::find(cardEndpoints, endpoint.name, &Row::name)->run(call);
}

}  // namespace korvane::sandbox
