// SPDX-License-Identifier: Apache-2.0
#include "common/HostCalls.h"

#include <korvane/platform/Ports.h>

#include <utility>

#include "common/HostAnswer.h"

namespace korvane {

void HostCalls::start(const std::string& method, const std::string& url, const std::string& body,
                      const Answer& answer) {
    UrlRequest request{.method = method,
                       .url = url,
                       .headers = {{"Content-Type", "application/json"}, {"Accept", "application/json"}},
                       .body = body};
    const auto task = tasks_.emplace(tasks_.end());
    *task = ports().urlSession->start(std::move(request), [weak = weak_from_this(), task, answer,
                                                           queue = ports().mainQueue](const UrlReply& reply) {
        queue->post([weak, task, answer, reply] {
            const auto self = weak.lock();
            if (!self) return;
            self->tasks_.erase(task);
            answer(readHostAnswer(reply.status == 200 ? reply.body : ""));
        });
    });
}

}  // namespace korvane
