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

// Flat JSON (RFC 8259): all that the wire and the host side need. The one place that knows the JSON library.

using JsonValue = std::variant<bool, std::int64_t, std::string>;
using JsonObject = std::vector<std::pair<std::string, JsonValue>>;

/// One object whose values are texts, whole numbers or true/false. Fails on malformed JSON or UTF-8, a
/// repeated key, another kind of value, or text behind the object.
Outcome<JsonObject> readJsonObject(std::string_view text);

/// The same for one object or a list of them.
Outcome<std::vector<JsonObject>> readJsonObjects(std::string_view text);

std::string writeJson(const JsonObject& object);
std::string writeJson(const std::vector<JsonObject>& objects);

}  // namespace korvane::sandbox
