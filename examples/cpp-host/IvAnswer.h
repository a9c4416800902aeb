// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rapidjson/document.h>

#include <optional>
#include <string>
#include <string_view>

struct IvAnswer {
    std::string id;
    std::string bytes;  ///< in base64
};

/// What the bank's own server answers for an IV: {"ivId": text, "iv": base64}. None when it is anything else.
inline std::optional<IvAnswer> readIvAnswer(std::string_view body) {
    constexpr std::size_t longest = 4096, longestText = 255;
    rapidjson::Document answer;
    // Without recursion: brackets in brackets would use up the stack.
    constexpr auto how = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    if (body.size() > longest || answer.Parse<how>(body.data(), body.size()).HasParseError() ||
        !answer.IsObject())
        return {};
    const auto text = [&answer](const char* name) -> std::string {
        const auto member = answer.FindMember(name);
        if (member == answer.MemberEnd() || !member->value.IsString()) return {};
        return {member->value.GetString(), member->value.GetStringLength()};
    };
    IvAnswer iv{text("ivId"), text("iv")};
    for (const std::string& each : {iv.id, iv.bytes})
        if (each.empty() || each.size() > longestText || each.find('\0') != each.npos) return {};
    return iv;
}
