// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "sdk/DecryptedCardDisclosure.h"
#include "transport/WireRecords.h"

namespace korvane {

// JSON (RFC 8259) of the wire: flat objects of texts. Any thread. Of a key that occurs more than once the
// last value counts; unknown keys are skipped, and their values never built; what is nested more than 64 deep
// is refused, without recursion. A byte order mark in front is skipped. Reading holds a copy of the text and
// the texts that are read, no more.

/// Why a text could not be read or written, in plain English.
struct JsonError {
    std::string text;
};

/// A request's body: texts by key, in the order in which the keys came first. A key is not copied: it is one
/// of the names that stand in the code, ASCII that needs no escape.
class TextMap {
  public:
    using Entry = std::pair<std::string_view, std::string>;

    TextMap() { entries_.reserve(9); }  // as many as the longest body has

    /// Adds an entry, or replaces the text of the one with this key.
    void set(std::string_view key, std::string text);
    const std::vector<Entry>& entries() const { return entries_; }

  private:
    std::vector<Entry> entries_;
};

/// Fails when a text is not UTF-8.
std::variant<std::string, JsonError> encodeTexts(const TextMap& texts);

/// A key, and where its text is.
struct TextSlot {
    std::string_view key;
    WireText* text;
};

/// Fills the slots; a key that is missing or null leaves its slot absent. Fails when `json` is not one
/// well-formed JSON object in UTF-8, or when a value for a slot is not a text; some slots may be filled then.
std::optional<JsonError> decodeTexts(std::string_view json, std::span<const TextSlot> slots);

template <class Record>
auto slotsOf(Record& record) {
    std::array<TextSlot, fieldsOf<Record>.size()> slots;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        slots[i] = {fieldsOf<Record>[i].key, &(record.*fieldsOf<Record>[i].value)};
    }
    return slots;
}

/// The fields that are present.
template <class Record>
TextMap textsOf(const Record& record) {
    TextMap texts;
    for (const auto& [key, value] : fieldsOf<Record>) {
        if (record.*value) texts.set(key, *(record.*value));
    }
    return texts;
}

template <class Record>
std::variant<Record, JsonError> decodeRecord(std::string_view json) {
    Record record;
    if (auto error = decodeTexts(json, slotsOf(record))) return *std::move(error);
    return record;
}

template <class Record>
std::variant<std::string, JsonError> encodeRecord(const Record& record) {
    return encodeTexts(textsOf(record));
}

/// The card disclosures: {"CardDisclosures": [{"Language": …, "CardDisclosure": …}, …]}. Those behind the
/// first `most` are skipped. More than 4 MiB are refused.
std::variant<DecryptedCardDisclosure, JsonError> decodeDisclosures(std::string json, std::size_t most);
std::variant<std::string, JsonError> encodeDisclosures(const DecryptedCardDisclosure& disclosures);

}  // namespace korvane
