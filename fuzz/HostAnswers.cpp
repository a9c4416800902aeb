// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <nlohmann/json.hpp>

#include "apps/common/HostAnswer.h"
#include "examples/cpp-host/IvAnswer.h"
#include "fuzz/Input.h"
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"  // it is C
#include "examples/c-host/iv_answer.h"
#pragma GCC diagnostic pop

namespace korvane::fuzz {
namespace {

using Json = nlohmann::json;
using Iv = std::optional<std::pair<std::string, std::string>>;

/// As curl hands it over, piece by piece; a transfer that was ended brings no IV.
Iv byCHost(std::string body, std::size_t piece) {
    iv_answer answer;  // as on the stack of a host: nothing is zero
    answer.size = 0;
    for (std::size_t at = 0; at < body.size(); at += piece) {
        const std::size_t count = std::min(piece, body.size() - at);
        if (iv_answer_keep(body.data() + at, 1, count, &answer) != count) return {};
    }
    char id[IV_TEXT_MAX], iv[IV_TEXT_MAX];
    return iv_answer_read(&answer, id, iv) ? Iv{{id, iv}} : Iv{};
}

Iv byCppHost(const std::string& body) {
    const auto iv = readIvAnswer(body);
    return iv ? Iv{{iv->id, iv->bytes}} : Iv{};
}

Iv byApps(const std::string& body) {
    const auto iv = ivOf(readHostAnswer(body));
    return iv ? Iv{{iv->id, iv->bytes}} : Iv{};
}

}  // namespace

/// What the hosts that are meant to be copied take for an IV.
void hostAnswers(Input& input) {
    const std::size_t piece = 1 + input.below(200) * 20;
    const std::size_t repeated = input.below(4) == 3 ? 1 + input.below(256) * 64 : 1;
    std::string body;  // also long, also deep
    for (std::size_t i = 0; i < repeated && body.size() < 2 * longestHostAnswer; ++i) body += input.bytes;
    for (const Iv& iv : {byCHost(body, piece), byCppHost(body), byApps(body)}) {
        if (!iv) continue;
        for (const std::string& text : {iv->first, iv->second})
            check(!text.empty() && text.size() < IV_TEXT_MAX, "an IV and its id are short texts");
        const std::string plain = Json{{"ivId", iv->first}, {"iv", iv->second}}.dump(
            -1, ' ', false, Json::error_handler_t::replace);
        if (plain.size() > IV_ANSWER_MAX) continue;
        for (const Iv& again : {byCHost(plain, piece), byCppHost(plain), byApps(plain)})
            check(again == iv, "all hosts take it, and as it is: " + plain);
    }
}

}  // namespace korvane::fuzz
