// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "sandbox/Outcome.h"

namespace korvane::sandbox {

// Flat JSON (RFC 8259): all that is read, on the wire and on the host side. The
// one place that knows the JSON library.

/// JSON that is written as it stands; reading never gives it.
struct RawJson {
    std::string text;
};

using JsonValue = std::variant<bool, std::int64_t, std::string, RawJson>;
using JsonObject = std::vector<std::pair<std::string, JsonValue>>;

/// One object whose values are texts, whole numbers or true/false. Fails on
/// malformed JSON or UTF-8, a repeated key, another kind of value, or text
/// behind the object; malformed JSON with its line and column.
Outcome<JsonObject> readJsonObject(std::string_view text);

/// The same for one object or a list of them. The reason names the element, the
/// first being 1.
Outcome<std::vector<JsonObject>> readJsonObjects(std::string_view text);

std::string writeJson(const JsonObject& object);
std::string writeJson(const std::vector<JsonObject>& objects);

}  // namespace korvane::sandbox
