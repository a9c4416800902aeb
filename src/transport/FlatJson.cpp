// SPDX-License-Identifier: Apache-2.0
#include "transport/FlatJson.h"

#include <algorithm>
#include <optional>

#include "base/Text.h"

namespace korvane {
namespace {

class Reader {
  public:
    explicit Reader(std::string_view json) : rest_(json) {}

    /// Goes past this token, and white space before it, if it comes next.
    bool take(std::string_view token) {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
        if (!rest_.starts_with(token)) return false;
        rest_.remove_prefix(token.size());
        return true;
    }

    std::optional<std::string_view> key() {
        if (!take("\"")) return std::nullopt;
        const std::string_view key = rest_.substr(0, plainJsonLength(rest_));
        rest_.remove_prefix(key.size());
        if (!endText()) return std::nullopt;
        return key;
    }

    /// A text or null, into the slot if there is one. A long text is copied while the piece that was just
    /// looked through lies in the cache: a fifth less time for the largest pictures.
    bool value(WireText* into) {
        if (take("null")) {
            if (into) into->reset();
            return true;
        }
        if (!take("\"")) return false;
        if (into) into->emplace();
        constexpr std::size_t pieceSize = 16 * 1024;
        for (std::size_t length = pieceSize; length == pieceSize;) {
            length = plainJsonLength(rest_.substr(0, pieceSize));
            if (into && length == pieceSize) (*into)->reserve(rest_.size());  // all of it, the first time
            if (into) (*into)->append(rest_, 0, length);
            rest_.remove_prefix(length);
        }
        // The rest was not its own alone.
        if (into && (*into)->capacity() / 2 > (*into)->size()) (*into)->shrink_to_fit();
        return endText();
    }

    bool atEnd() const { return rest_.find_first_not_of(" \t\r\n") == std::string_view::npos; }

  private:
    bool endText() {
        if (!rest_.starts_with('"')) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::string_view rest_;
};

}  // namespace

bool readFlatJson(std::string_view json, std::span<const TextSlot> slots) {
    Reader reader{json};
    if (!reader.take("{")) return false;
    if (reader.take("}")) return reader.atEnd();
    do {
        const auto key = reader.key();
        if (!key || !reader.take(":")) return false;
        const auto slot = std::ranges::find(slots, *key, &TextSlot::key);
        if (!reader.value(slot == slots.end() ? nullptr : slot->text)) return false;
    } while (reader.take(","));
    return reader.take("}") && reader.atEnd();
}

std::optional<std::string> writeFlatJson(const TextMap& texts) {
    if (texts.entries().empty()) return "{}";
    std::size_t size = 1;
    for (const auto& [key, text] : texts.entries()) {
        if (plainJsonLength(text) < text.size()) return std::nullopt;
        size += key.size() + text.size() + std::string_view{R"("":"",)"}.size();
    }
    std::string json(size, '{');
    char* out = json.data() + 1;
    const auto put = [&out](std::string_view piece) { out += piece.copy(out, piece.size()); };
    for (const auto& [key, text] : texts.entries()) {
        put("\"");
        put(key);
        put("\":\"");
        put(text);
        put("\",");
    }
    json.back() = '}';
    return json;
}

}  // namespace korvane
