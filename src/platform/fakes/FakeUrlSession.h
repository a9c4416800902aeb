// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/MainQueue.h>
#include <korvane/platform/UrlSession.h>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace korvane {

/// A scripted session: it records the requests and answers by a function or by hand. Main thread only.
/// Replies are posted to the queue that it was made with, so they never run from inside `start`.
class FakeUrlSession final : public UrlSession {
  public:
    /// None leaves the request unanswered, for `reply` to answer later.
    using Answer = std::function<std::optional<UrlReply>(const UrlRequest&)>;

    explicit FakeUrlSession(std::shared_ptr<MainQueue> queue);
    ~FakeUrlSession() override;

    std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) override;

    /// Answers every request from now on.
    void answerWith(Answer answer);
    /// Answers the n-th request by hand; false when it was answered or cancelled before.
    bool reply(std::size_t index, UrlReply reply);

    /// Every request so far. Turn recording off for very long runs.
    const std::vector<UrlRequest>& requests() const;
    void recordRequests(bool record);
    bool wasCancelled(std::size_t index) const;
    std::size_t startedCount() const;

  private:
    struct State;
    class Task;
    std::shared_ptr<State> state_;
};

}  // namespace korvane
