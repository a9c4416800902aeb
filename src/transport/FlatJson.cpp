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

    std::optional<std::string_view> text() {
        if (!take("\"")) return std::nullopt;
        const std::string_view text = rest_.substr(0, plainJsonLength(rest_));
        rest_.remove_prefix(text.size());
        if (!rest_.starts_with('"')) return std::nullopt;
        rest_.remove_prefix(1);
        return text;
    }

    bool atEnd() const { return rest_.find_first_not_of(" \t\r\n") == std::string_view::npos; }

  private:
    std::string_view rest_;
};

}  // namespace

bool readFlatJson(std::string_view json, std::span<const TextSlot> slots) {
    Reader reader{json};
    if (!reader.take("{")) return false;
    if (reader.take("}")) return reader.atEnd();
    do {
        const auto key = reader.text();
        if (!key || !reader.take(":")) return false;
        const auto text = reader.text();
        if (!text && !reader.take("null")) return false;
        const auto slot = std::ranges::find(slots, *key, &TextSlot::key);
        if (slot == slots.end()) continue;
        if (text) {
            slot->text->emplace(*text);
        } else {
            slot->text->reset();
        }
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
