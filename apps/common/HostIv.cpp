// SPDX-License-Identifier: Apache-2.0
#include "common/HostIv.h"

#include <memory>
#include <utility>

#include "common/HostCalls.h"

namespace korvane {

IvCallback hostIvCallback(std::string ivUrl) {
    return [url = std::move(ivUrl), calls = std::make_shared<HostCalls>()](const IvReply& ivReply) {
        calls->start("POST", url, "{}", [ivReply](const rapidjson::Document& iv) {
            const std::string id = textMember(iv, "ivId");
            const std::string bytes = textMember(iv, "iv");
            if (id.empty() || bytes.empty()) {
                ivReply(std::nullopt, std::nullopt);
            } else {
                ivReply(id, bytes);
            }
        });
    };
}

}  // namespace korvane
