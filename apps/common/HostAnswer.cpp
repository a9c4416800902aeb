// SPDX-License-Identifier: Apache-2.0
#include "common/HostAnswer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane {

rapidjson::Document readHostAnswer(std::string_view body) {
    constexpr auto how = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    rapidjson::Document document;
    if (body.size() <= longestHostAnswer) document.Parse<how>(body.data(), body.size());
    if (document.HasParseError()) document.SetNull();
    return document;
}

std::string textMember(const rapidjson::Value& object, const char* name) {
    if (!object.IsObject()) return {};
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd() || !member->value.IsString()) return {};
    return {member->value.GetString(), member->value.GetStringLength()};
}

std::optional<HostIvAnswer> ivOf(const rapidjson::Value& answer) {
    constexpr std::size_t longestText = 255;
    HostIvAnswer iv{textMember(answer, "ivId"), textMember(answer, "iv")};
    const bool isUsable = std::ranges::all_of(std::array{&iv.id, &iv.bytes}, [](const std::string* text) {
        return !text->empty() && text->size() <= longestText && text->find('\0') == text->npos;
    });
    return isUsable ? std::optional{std::move(iv)} : std::nullopt;
}

}  // namespace korvane
