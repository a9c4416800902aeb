// SPDX-License-Identifier: Apache-2.0
#include "common/HostIv.h"

#include <korvane/platform/Ports.h>
#include <rapidjson/document.h>

#include <list>
#include <memory>
#include <utility>

namespace korvane {
namespace {

std::optional<std::string> textMember(const rapidjson::Document& body, const char* name) {
    if (!body.IsObject()) return std::nullopt;
    const auto member = body.FindMember(name);
    if (member == body.MemberEnd() || !member->value.IsString()) return std::nullopt;
    return std::string{member->value.GetString(), member->value.GetStringLength()};
}

void answer(const UrlReply& reply, const IvReply& ivReply) {
    rapidjson::Document body;
    if (reply.status == 200) body.Parse<rapidjson::kParseIterativeFlag>(reply.body.data(), reply.body.size());
    if (body.HasParseError()) body.SetNull();
    ivReply(textMember(body, "ivId"), textMember(body, "iv"));
}

/// The requests under way: each keeps its handle until it is answered.
using Tasks = std::list<std::unique_ptr<UrlTask>>;

}  // namespace

IvCallback hostIvCallback(std::string ivUrl) {
    return [url = std::move(ivUrl), tasks = std::make_shared<Tasks>()](const IvReply& ivReply) {
        UrlRequest request{.method = "POST",
                           .url = url,
                           .headers = {{"Content-Type", "application/json"}, {"Accept", "application/json"}},
                           .body = "{}"};
        const auto task = tasks->emplace(tasks->end());
        const std::weak_ptr<Tasks> weak = tasks;
        *task = ports().urlSession->start(
            std::move(request), [weak, task, ivReply, queue = ports().mainQueue](const UrlReply& reply) {
                queue->post([weak, task, ivReply, reply] {
                    if (const auto alive = weak.lock()) alive->erase(task);
                    answer(reply, ivReply);
                });
            });
    };
}

}  // namespace korvane
