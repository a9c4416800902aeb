// SPDX-License-Identifier: Apache-2.0
#include "transport/Json.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>

#include "base/Text.h"
#include "transport/FlatJson.h"

namespace korvane {
namespace {

// Iterative, so that a hostile depth of nesting cannot run the stack over.
constexpr unsigned parseFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag;

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

/// An escape stands for the second half of a surrogate pair without the first, which names no character (RFC
/// 8259, section 8.2). The library looks at first halves alone, and would make text of it that is not UTF-8.
bool hasLoneSecondHalf(std::string_view json) {
    for (std::size_t at = json.find('\\'); at < json.size(); at = json.find('\\', at + 2)) {
        const std::string escape = lowercased(json.substr(at, 4));
        if (escape >= "\\udc" && escape <= "\\udf") return true;
        if (escape >= "\\ud8" && escape <= "\\udb") at += 6;  // to the second half
    }
    return false;
}

std::optional<JsonError> parse(rapidjson::Document& document, std::string& json) {
    // In situ the end is a NUL: one inside the text would hide what follows it.
    if (json.find('\0') != std::string::npos) return JsonError{"a NUL stands in the text"};
    // Not by the library's own check: at a character that is cut off, that reads past the end of the text.
    if (!isUtf8(json)) return JsonError{"the text is not UTF-8"};
    if (hasLoneSecondHalf(json)) return JsonError{"half of a surrogate pair stands in the text"};
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

std::optional<JsonError> write(Writer& writer, const TextMap& texts) {
    writer.StartObject();
    for (const auto& [key, text] : texts.entries()) {
        if (!isUtf8(text)) return JsonError{"the entry \"" + std::string{key} + "\" is not UTF-8"};
        writer.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }
    writer.EndObject();
    return std::nullopt;
}

std::string textOf(const rapidjson::StringBuffer& buffer) {
    return {buffer.GetString(), buffer.GetSize()};
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
    if (auto json = writeFlatJson(texts)) return *std::move(json);
    rapidjson::StringBuffer buffer;
    Writer writer{buffer};
    if (auto error = write(writer, texts)) return *std::move(error);
    return textOf(buffer);
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
    rapidjson::StringBuffer buffer;
    Writer writer{buffer};
    writer.StartObject();
    if (disclosures.CardDisclosures) {
        writer.Key("CardDisclosures");
        writer.StartArray();
        for (const DecryptedCardDisclosureItem& item : *disclosures.CardDisclosures) {
            if (auto error = write(writer, textsOf(item))) return *std::move(error);
        }
        writer.EndArray();
    }
    writer.EndObject();
    return textOf(buffer);
}

}  // namespace korvane
