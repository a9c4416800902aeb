// SPDX-License-Identifier: Apache-2.0
#include <korvane/Journey.h>

#include <openssl/evp.h>

#include <nlohmann/json.hpp>

#include "base/Base64.h"
#include "base/Text.h"
#include "flows/CardDetails.h"
#include "flows/JourneyProbe.h"
#include "fuzz/Input.h"
#include "sdk/JourneyState.h"
#include "tests/support/ScriptedService.h"
#include "transport/AesCbc.h"
#include "transport/FieldCipher.h"
#include "transport/FlatJson.h"

namespace korvane::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Json = nlohmann::json;

std::string byOpenSsl(const Bytes& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // and a NUL
    auto* const to = reinterpret_cast<unsigned char*>(text.data());
    EVP_EncodeBlock(to, bytes.data(), static_cast<int>(bytes.size()));
    text.pop_back();
    return text;
}

/// OpenSSL's decoder is forgiving, so only a text that it would write counts.
std::optional<Bytes> strictlyByOpenSsl(const std::string& text) {
    Bytes bytes(text.size() + 3);
    const auto* const from = reinterpret_cast<const unsigned char*>(text.data());
    const int size = EVP_DecodeBlock(bytes.data(), from, static_cast<int>(text.size()));
    bytes.resize(static_cast<std::size_t>(std::max(0L, size - std::ranges::count(text, '='))));
    return byOpenSsl(bytes) == text ? std::optional{bytes} : std::nullopt;
}

/// A number that the other library does not hold. The component passes over numbers.
bool hasTooLargeNumber(std::string_view json) {
    try {
        return Json::parse(json).is_discarded();
    } catch (const Json::exception& error) {
        return error.id == 406;  // out_of_range.406
    }
}

/// Read and written again: an object; a text when it is refused.
template <class Record>
Json byComponent(const std::string& json) {
    const auto outcome = decodeRecord<Record>(json);
    if (const auto* const error = std::get_if<JsonError>(&outcome)) return error->text;
    return Json::parse(std::get<std::string>(encodeRecord(std::get<Record>(outcome))));
}

/// The same by another library; null when it is refused.
template <class Record>
Json byOtherLibrary(const std::string& json) {
    const Json document = Json::parse(json, nullptr, false);
    // It takes a NUL for the end.
    if (!document.is_object() || json.find('\0') != json.npos) return nullptr;
    Json texts = Json::object();
    for (const auto& field : fieldsOf<Record>) {
        const Json value = document.value(std::string{field.key}, Json{});
        if (!value.is_string() && !value.is_null()) return nullptr;
        if (value.is_string()) texts[std::string{field.key}] = value;
    }
    return texts;
}

template <class Record>
void compare(std::string json) {
    if (hasTooLargeNumber(json)) return;
    const Json read = byComponent<Record>(json), other = byOtherLibrary<Record>(json);
    // Of equal keys the other library sees the last alone; it has greater numbers and greater depths.
    const std::string why = read.is_string() ? read.get<std::string>() : "";
    const bool isStricter =
        why.ends_with("not a text") || why.find("too big") != why.npos || why.starts_with("nested");
    check(isStricter || (read.is_string() ? other.is_null() : read == other), "both libraries agree " + why);
    Record record;
    if (!readFlatJson(json, slotsOf(record))) return;
    const std::size_t next = json.find_first_not_of(" \t\r\n", json.find('{') + 1);
    json.insert(next, json[next] == '}' ? R"("":0)" : R"("":0,)");  // the short way leaves it to the library
    check(byComponent<Record>(json) == read, "both ways read the same");
}

}  // namespace

/// The field cipher, which works in place and piece by piece, against its steps one after the other.
void decipher(Input& input) {
    ScriptedService service;
    auto& key = service.config.preSharedKeyByteArray;
    key.assign(std::array{16u, 24u, 32u, 0u, 20u}.at(input.below(5)), 7);
    const Bytes iv(std::array{16u, 0u, 17u}.at(input.below(3)), 7);
    const bool isPlain = input.below(2) == 0, canEncipher = key.size() % 20 != 0 && iv.size() == 16;
    const std::size_t damage = input.below(256), times = input.below(256) == 255 ? 2'000 : 1;
    std::string text;  // some are longer than the pieces
    for (std::size_t i = 0; i < times && text.size() < 30'000; ++i) text += input.bytes;
    std::string field = isPlain ? encryptField(iv, text) : text;
    check(!isPlain || field.empty() != canEncipher, "the right sizes of key and IV encipher, and no others");
    if (damage > 0 && !field.empty()) field[damage * 251 % field.size()] = 'A';

    const auto bytes = strictlyByOpenSsl(field);
    const auto plain = bytes ? aesCbcDecrypt(key, iv, *bytes) : std::nullopt;
    std::string expected = plain ? std::string{plain->begin(), plain->end()} : "";
    check(!isPlain || damage > 0 || !canEncipher || expected == text, "a text comes back as it was");
    if (!isUtf8(expected)) expected = utf8FromUtf16(*plain).value_or("");
    check(decryptField(iv, field) == expected, "pieces decipher to what the whole does");
    check(isUtf8(expected), "what is deciphered is UTF-8");
}

/// Every form of the base64 loops against OpenSSL's.
void base64(Input& input) {
    const bool isText = input.below(2) == 0;
    const Bytes bytes{input.bytes.begin(), input.bytes.end()};
    const std::string text = isText ? std::string{input.bytes} : byOpenSsl(bytes);
    const auto expected = strictlyByOpenSsl(text);
    check(base64Decode(text) == expected, "the one right text of some bytes is read, nothing else");
    for (const TextKernels& form : runnableTextKernels()) {
        Bytes read(base64Room(text));  // exact, so that a byte too many is seen
        const auto count = base64Decode(text, read.data(), form);
        read.resize(count.value_or(0));
        check((count ? std::optional{read} : std::nullopt) == expected, "each form reads alike");
        check(base64Encode(bytes, form) == byOpenSsl(bytes), "each form writes alike");
    }
}

/// Every record: the short way of reading JSON, the JSON library and another JSON library.
void records(Input& input) {
    const std::array comparisons{compare<RestBearerToken>,        compare<RestPciTokenRequest>,
                                 compare<RestPciTokenSubmission>, compare<RestGetCardStatus>,
                                 compare<RestGetCardImage>,       compare<RestPinSet>};
    const auto chosen =
        comparisons.at(input.below(comparisons.size()));  // the others have the last one's field
    chosen(std::string{input.bytes});
}

/// The card's disclosures against what another library reads, and the one that is shown.
void disclosures(Input& input) {
    ScriptedService service;
    service.config.deviceLanguageCode = std::array{"", "es-MX", "en", "e"}.at(input.below(4));
    const auto outcome = decodeDisclosures(std::string{input.bytes}, std::string::npos);
    if (outcome.index() == 1) return check(!std::get<JsonError>(outcome).text.empty(), "a refusal says why");
    if (hasTooLargeNumber(input.bytes)) return;
    const auto& read = std::get<DecryptedCardDisclosure>(outcome);
    const Json written = Json::parse(std::get<std::string>(encodeDisclosures(read)));
    const Json list = Json::parse(input.bytes).value("CardDisclosures", Json{});
    Json texts = list.is_null() ? Json{} : Json::array();
    for (const Json& item : list) texts.push_back(byOtherLibrary<DecryptedCardDisclosureItem>(item.dump()));
    check(written.value("CardDisclosures", Json{}) == texts, "all are read, and come back as they were");
    JourneyState state(service.config, "card-1");
    state.decodedDisclosuresStruct = read;
    const std::string shown = cardDisclosure(state);
    const auto isShown = [&](const Json& item) { return item.value("CardDisclosure", "") == shown; };
    check(list.empty() ? shown.empty() : std::ranges::any_of(texts, isShown), "one of them is shown");
}

/// A card's picture, from the service's answer to the viewer.
void imageText(Input& input) {
    ScriptedService service;
    service.config.currentPciToken = "pci-token";
    const bool isText = input.below(2) == 0;
    const Bytes given{input.bytes.begin(), input.bytes.end()};
    service.cardDetails["encryptedCardImage"] = isText ? std::string{input.bytes} : byOpenSsl(given);
    Journey journey(JourneyKind::getCardImage, "card-1");
    journey.appear();
    service.settle();
    const ScreenSnapshot screen = journey.screen();
    check(screen.card && screen.rows.size() == 4, "the viewer shows the card whatever its picture");
    check(screen.toast.empty() == (screen.card->image != nullptr), "a picture, or why there is none");
    if (!screen.card->image) return;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(screen.card->image->data());
    const std::string shown = byOpenSsl({bytes, bytes + screen.card->image->size()});
    check(shown == JourneyProbe::state(journey)->decCardImage, "the picture is what was sent");
}

}  // namespace korvane::fuzz
