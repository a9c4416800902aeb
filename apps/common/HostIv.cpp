// SPDX-License-Identifier: Apache-2.0
#include "common/HostIv.h"

#include <memory>
#include <utility>

#include "common/HostAnswer.h"
#include "common/HostCalls.h"

namespace korvane {

IvCallback hostIvCallback(std::string ivUrl) {
    return [url = std::move(ivUrl), calls = std::make_shared<HostCalls>()](const IvReply& ivReply) {
        calls->start("POST", url, "{}", [ivReply](const rapidjson::Document& answer) {
            const auto iv = ivOf(answer);
            iv ? ivReply(iv->id, iv->bytes) : ivReply(std::nullopt, std::nullopt);
        });
    };
}

}  // namespace korvane
