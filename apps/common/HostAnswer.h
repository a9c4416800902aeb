// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rapidjson/document.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korvane {

/// No answer of a host's own server is longer.
inline constexpr std::size_t longestHostAnswer = 1 << 20;

/// The answer as JSON, read without recursion; null when it is longer or no JSON.
rapidjson::Document readHostAnswer(std::string_view body);

/// The text member of that name; "" when `object` has none.
std::string textMember(const rapidjson::Value& object, const char* name);

/// An IV and its id.
struct HostIvAnswer {
    std::string id;
    std::string bytes;  ///< in base64
};

/// Of {"ivId": text, "iv": base64}; none when it is anything else, or a text has more than 255 bytes or a
/// NUL.
std::optional<HostIvAnswer> ivOf(const rapidjson::Value& answer);

}  // namespace korvane
