// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/MainQueue.h>
#include <korvane/platform/UrlSession.h>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace korvane {

/// A scripted session: it records the requests and answers by a function or by hand. Main thread only.
/// Replies are posted to the queue that it was made with, so they never run from inside `start`.
class KORVANE_API FakeUrlSession final : public UrlSession {
  public:
    /// None leaves the request unanswered, for `reply` to answer later.
    using Answer = std::function<std::optional<UrlReply>(const UrlRequest&)>;

    /// @param queue  where replies are posted; shared, never null
    explicit FakeUrlSession(std::shared_ptr<MainQueue> queue);
    ~FakeUrlSession() override;

    std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) override;

    /// Answers every request from now on.
    void answerWith(Answer answer);
    /// Answers the n-th request by hand; false when it was answered or cancelled before.
    bool reply(std::size_t index, UrlReply reply);

    /// Every request that was recorded, oldest first.
    const std::vector<UrlRequest>& requests() const;
    /// Whether requests are recorded from now on; off for very long runs. On at first.
    void recordRequests(bool record);
    /// The n-th request was released before its reply ran; known of recorded requests alone.
    bool wasCancelled(std::size_t index) const;
    /// Requests started so far, recorded or not.
    std::size_t startedCount() const;

  private:
    struct KORVANE_HIDDEN State;
    class KORVANE_HIDDEN Task;
    std::shared_ptr<State> state_;
};

}  // namespace korvane
