// SPDX-License-Identifier: Apache-2.0
#include "transport/Json.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <algorithm>

#include "transport/FlatJson.h"

namespace korvane {
namespace {

// Iterative, so that a hostile depth of nesting cannot run the stack over.
constexpr unsigned parseFlags =
    rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

std::optional<JsonError> parse(rapidjson::Document& document, std::string& json) {
    // In situ the end is a NUL: one inside the text would hide what follows it.
    if (json.find('\0') != std::string::npos) return JsonError{"a NUL stands in the text"};
    document.ParseInsitu<parseFlags>(json.data());
    if (!document.HasParseError()) return std::nullopt;
    return JsonError{std::string{rapidjson::GetParseError_En(document.GetParseError())} + " (at byte " +
                     std::to_string(document.GetErrorOffset()) + ")"};
}

std::optional<JsonError> fill(const rapidjson::Value& object, std::span<const TextSlot> slots) {
    if (!object.IsObject()) return JsonError{"not a JSON object"};
    for (const auto& member : object.GetObject()) {
        const std::string_view key{member.name.GetString(), member.name.GetStringLength()};
        const auto slot = std::ranges::find(slots, key, &TextSlot::key);
        if (slot == slots.end()) continue;
        if (member.value.IsNull()) {
            slot->text->reset();
        } else if (member.value.IsString()) {
            slot->text->emplace(member.value.GetString(), member.value.GetStringLength());
        } else {
            return JsonError{"the value of \"" + std::string{key} + "\" is not a text"};
        }
    }
    return std::nullopt;
}

std::optional<JsonError> append(std::string& json, const TextMap& texts) {
    std::size_t size = 2;
    for (const auto& [key, text] : texts.entries()) size += key.size() + text.size() + 6;
    json.reserve(json.size() + size);  // growing step by step took as long as one field's cipher
    json += '{';
    for (const auto& [key, text] : texts.entries()) {
        if (json.back() != '{') json += ',';
        json.append("\"").append(key).append("\":");
        if (!appendJsonString(json, text))
            return JsonError{"the entry \"" + std::string{key} + "\" is not UTF-8"};
    }
    json += '}';
    return std::nullopt;
}

}  // namespace

void TextMap::set(std::string_view key, std::string text) {
    const auto entry = std::ranges::find(entries_, key, &Entry::first);
    if (entry == entries_.end()) {
        entries_.emplace_back(key, std::move(text));
    } else {
        entry->second = std::move(text);
    }
}

std::variant<std::string, JsonError> encodeTexts(const TextMap& texts) {
    std::string json;
    if (auto error = append(json, texts)) return *std::move(error);
    return json;
}

std::variant<std::monostate, JsonError> decodeTexts(std::string_view json, std::span<const TextSlot> slots) {
    if (readFlatJson(json, slots)) return std::monostate{};
    std::string copy{json};
    rapidjson::Document document;
    if (auto error = parse(document, copy)) return *std::move(error);
    if (auto error = fill(document, slots)) return *std::move(error);
    return std::monostate{};
}

std::variant<DecryptedCardDisclosure, JsonError> decodeDisclosures(std::string json) {
    rapidjson::Document document;
    if (auto error = parse(document, json)) return *std::move(error);
    const rapidjson::Value& root = document;
    if (!root.IsObject()) return JsonError{"not a JSON object"};
    DecryptedCardDisclosure disclosures;
    for (const auto& member : root.GetObject()) {
        if (std::string_view{member.name.GetString(), member.name.GetStringLength()} != "CardDisclosures")
            continue;
        disclosures.CardDisclosures.reset();
        if (member.value.IsNull()) continue;
        if (!member.value.IsArray()) return JsonError{"the value of \"CardDisclosures\" is not a list"};
        auto& list = disclosures.CardDisclosures.emplace();
        for (const auto& element : member.value.GetArray()) {
            if (auto error = fill(element, slotsOf(list.emplace_back()))) return *std::move(error);
        }
    }
    return disclosures;
}

std::variant<std::string, JsonError> encodeDisclosures(const DecryptedCardDisclosure& disclosures) {
    std::string json = "{";
    if (disclosures.CardDisclosures) {
        json += "\"CardDisclosures\":[";
        for (const DecryptedCardDisclosureItem& item : *disclosures.CardDisclosures) {
            if (json.back() != '[') json += ',';
            if (auto error = append(json, textsOf(item))) return *std::move(error);
        }
        json += ']';
    }
    json += '}';
    return json;
}

}  // namespace korvane
