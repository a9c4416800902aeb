// SPDX-License-Identifier: Apache-2.0
#include "transport/Json.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>

#include "base/Text.h"
#include "transport/FlatJson.h"

namespace korvane {
namespace {

/// Objects and lists inside each other. The deepest of the wire are the disclosures, three.
constexpr int deepest = 64;

constexpr unsigned parseFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag;

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

/// Read on the main thread. So much do 16 texts of 65,536 characters take in UTF-8.
constexpr std::size_t longestDisclosures = std::size_t{4} << 20;

/// Some services and gateways write one; a reader may pass over it (RFC 8259, section 8.1).
std::size_t byteOrderMarkSize(std::string_view json) {
    return json.starts_with("\xEF\xBB\xBF") ? 3 : 0;
}

/// An escape stands for the second half of a surrogate pair without the first, which names no character (RFC
/// 8259, section 8.2). The library looks at first halves alone, and would make text of it that is not UTF-8.
bool hasLoneSecondHalf(std::string_view json) {
    for (std::size_t at = json.find('\\'); at < json.size(); at = json.find('\\', at + 2)) {
        if (json.substr(at, 2) != "\\u") continue;
        const std::string escape = lowercased(json.substr(at, 4));
        if (escape >= "\\udc" && escape <= "\\udf") return true;
        if (escape >= "\\ud8" && escape <= "\\udb") at += 6;  // to the second half
    }
    return false;
}

enum class Token { null, text, otherValue, key, object, list, end };

/// Hands the JSON library's events to `Receiver::take(Token, text)`, which returns none or why it refuses.
/// Nothing is built on the way.
template <class Receiver>
class Events : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Events<Receiver>> {
  public:
    explicit Events(Receiver& receiver) : receiver_(receiver) {}

    bool Default() { return take(Token::otherValue); }
    bool Null() { return take(Token::null); }
    bool String(const char* text, rapidjson::SizeType size, bool) { return take(Token::text, {text, size}); }
    bool Key(const char* text, rapidjson::SizeType size, bool) { return take(Token::key, {text, size}); }
    bool StartObject() { return begin(Token::object); }
    bool StartArray() { return begin(Token::list); }
    bool EndObject(rapidjson::SizeType) { return end(); }
    bool EndArray(rapidjson::SizeType) { return end(); }

    std::optional<JsonError> refusal;

  private:
    bool begin(Token token) {
        if (++depth_ <= deepest) return take(token);
        refusal = JsonError{"nested more than " + std::to_string(deepest) + " deep"};
        return false;
    }
    bool end() {
        --depth_;
        return take(Token::end);
    }
    bool take(Token token, std::string_view text = {}) {
        refusal = receiver_.take(token, text);
        return !refusal;
    }

    Receiver& receiver_;
    int depth_ = 0;
};

template <class Receiver>
std::optional<JsonError> parse(std::string json, Receiver receiver) {
    // In situ the end is a NUL: one inside the text would hide what follows it.
    if (json.find('\0') != std::string::npos) return JsonError{"a NUL stands in the text"};
    // Not by the library's own check: at a character that is cut off, that reads past the end of the text.
    if (!isUtf8(json)) return JsonError{"the text is not UTF-8"};
    if (hasLoneSecondHalf(json)) return JsonError{"half of a surrogate pair stands in the text"};
    rapidjson::Reader reader;
    rapidjson::InsituStringStream stream{json.data()};
    Events events{receiver};
    const rapidjson::ParseResult result = reader.Parse<parseFlags>(stream, events);
    if (events.refusal) return std::move(events.refusal);
    if (!result.IsError()) return std::nullopt;
    return JsonError{std::string{rapidjson::GetParseError_En(result.Code())} + " (at byte " +
                     std::to_string(result.Offset()) + ")"};
}

/// Fills the slots from one object.
class SlotFiller {
  public:
    explicit SlotFiller(std::span<const TextSlot> slots) : slots_(slots) {}

    std::optional<JsonError> take(Token token, std::string_view text) {
        const int depth = depth_;
        if (token == Token::object || token == Token::list) ++depth_;
        if (token == Token::end) --depth_;
        if (depth == 0 && token != Token::object) return JsonError{"not a JSON object"};
        if (depth != 1 || token == Token::end) return std::nullopt;
        if (token == Token::key) {
            const auto slot = std::ranges::find(slots_, text, &TextSlot::key);
            slot_ = slot == slots_.end() ? nullptr : &*slot;
        } else if (!slot_) {
            return std::nullopt;
        } else if (token == Token::null) {
            slot_->text->reset();
        } else if (token == Token::text) {
            slot_->text->emplace(text);
        } else {
            return JsonError{"the value of \"" + std::string{slot_->key} + "\" is not a text"};
        }
        return std::nullopt;
    }

    /// The object has ended.
    bool isDone() const { return depth_ == 0; }

  private:
    std::span<const TextSlot> slots_;
    const TextSlot* slot_ = nullptr;  // of the key that came last
    int depth_ = 0;
};

/// Fills the disclosures from {"CardDisclosures": [{…}, …]}.
class DisclosuresFiller {
  public:
    DisclosuresFiller(DecryptedCardDisclosure& disclosures, std::size_t most)
        : list_(disclosures.CardDisclosures), most_(most) {}

    std::optional<JsonError> take(Token token, std::string_view text) {
        if (item_) return takeOfItem(token, text);
        if (isInList_ && token != Token::end) return beginItem(token);
        const int depth = depth_;
        if (token == Token::object || token == Token::list) ++depth_;
        if (token == Token::end) --depth_;
        if (depth == 0 && token != Token::object) return JsonError{"not a JSON object"};
        if (token == Token::end) isInList_ = false;
        if (depth != 1 || token == Token::end) return std::nullopt;
        if (token != Token::key) return isListNext_ ? beginList(token) : std::nullopt;
        isListNext_ = text == "CardDisclosures";
        return std::nullopt;
    }

  private:
    std::optional<JsonError> beginList(Token token) {
        list_.reset();
        if (token == Token::null) return std::nullopt;
        if (token != Token::list) return JsonError{"the value of \"CardDisclosures\" is not a list"};
        list_.emplace();
        isInList_ = true;
        return std::nullopt;
    }

    std::optional<JsonError> beginItem(Token token) {
        const bool isKept = list_->size() < most_;
        if (isKept) slots_ = slotsOf(list_->emplace_back());
        item_.emplace(std::span<const TextSlot>(slots_).first(isKept ? slots_.size() : 0));
        return takeOfItem(token, {});
    }

    std::optional<JsonError> takeOfItem(Token token, std::string_view text) {
        auto error = item_->take(token, text);
        if (item_->isDone()) item_.reset();
        return error;
    }

    std::optional<std::vector<DecryptedCardDisclosureItem>>& list_;
    const std::size_t most_;
    decltype(slotsOf(std::declval<DecryptedCardDisclosureItem&>())) slots_{};
    std::optional<SlotFiller> item_;  // reads the list's element
    bool isListNext_ = false;         // the key that came last is that of the list
    bool isInList_ = false;
    int depth_ = 0;
};

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

std::optional<JsonError> decodeTexts(std::string_view json, std::span<const TextSlot> slots) {
    json.remove_prefix(byteOrderMarkSize(json));
    if (readFlatJson(json, slots)) return std::nullopt;
    for (const TextSlot& slot : slots) slot.text->reset();  // a long one would count in what is held
    return parse(std::string{json}, SlotFiller{slots});
}

std::variant<DecryptedCardDisclosure, JsonError> decodeDisclosures(std::string json, std::size_t most) {
    if (json.size() > longestDisclosures) return JsonError{"longer than 4 MiB"};
    json.erase(0, byteOrderMarkSize(json));
    DecryptedCardDisclosure disclosures;
    if (auto error = parse(std::move(json), DisclosuresFiller{disclosures, most})) return *std::move(error);
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
