// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeUrlSession.h"

#include <cassert>
#include <map>
#include <set>
#include <utility>

namespace korvane {

struct FakeUrlSession::State {
    struct Open {
        std::function<void(UrlReply)> reply;
        bool answered = false;  // the reply is queued
    };

    explicit State(std::shared_ptr<MainQueue> mainQueue) : queue(std::move(mainQueue)) {}

    std::shared_ptr<MainQueue> queue;
    std::shared_ptr<Answer> answer;
    bool record = true;
    std::size_t started = 0;
    std::vector<UrlRequest> requests;
    std::map<std::size_t, Open> open;  // by number; one goes when its reply runs or it is cancelled
    std::set<std::size_t> cancelled;   // recorded requests only: a very long run must not grow

    static bool post(const std::shared_ptr<State>& state, std::size_t index, UrlReply reply);
};

class FakeUrlSession::Task final : public UrlTask {
  public:
    Task(std::weak_ptr<State> state, std::size_t index, bool recorded)
        : state_(std::move(state)), index_(index), recorded_(recorded) {}

    ~Task() override {
        const auto state = state_.lock();
        if (!state) return;
        // The reply may own other tasks, so it goes only once the map is whole again.
        const auto dropped = state->open.extract(index_);
        if (dropped && recorded_) state->cancelled.insert(index_);
    }

  private:
    std::weak_ptr<State> state_;
    std::size_t index_;
    bool recorded_;
};

bool FakeUrlSession::State::post(const std::shared_ptr<State>& state, std::size_t index, UrlReply reply) {
    const auto request = state->open.find(index);
    if (request == state->open.end() || request->second.answered) return false;
    request->second.answered = true;
    state->queue->post([weak = std::weak_ptr(state), index, reply = std::move(reply)]() mutable {
        const auto alive = weak.lock();
        if (!alive) return;
        // Taken out first: the reply may release its own task, or the session.
        const auto taken = alive->open.extract(index);
        if (taken) taken.mapped().reply(std::move(reply));
    });
    return true;
}

FakeUrlSession::FakeUrlSession(std::shared_ptr<MainQueue> queue)
    : state_(std::make_shared<State>(std::move(queue))) {}

FakeUrlSession::~FakeUrlSession() {
    const auto dropped = std::exchange(state_->open, {});
}

std::unique_ptr<UrlTask> FakeUrlSession::start(UrlRequest request, std::function<void(UrlReply)> reply) {
    const auto state = state_;
    assert(state->queue->isMainThread());
    const std::size_t index = state->started++;
    const bool recorded = state->record;
    state->open.emplace(index, State::Open{std::move(reply)});
    auto task = std::make_unique<Task>(state, index, recorded);
    if (recorded) state->requests.push_back(request);
    // A copy of the pointer, not of the function: an answer may count in its captures, and may set the next
    // answer.
    if (const auto answer = state->answer; answer && *answer) {
        if (auto made = (*answer)(request)) State::post(state, index, std::move(*made));
    }
    return task;
}

void FakeUrlSession::answerWith(Answer answer) {
    state_->answer = std::make_shared<Answer>(std::move(answer));
}

bool FakeUrlSession::reply(std::size_t index, UrlReply reply) {
    assert(state_->queue->isMainThread());
    return State::post(state_, index, std::move(reply));
}

const std::vector<UrlRequest>& FakeUrlSession::requests() const {
    return state_->requests;
}

void FakeUrlSession::recordRequests(bool record) {
    state_->record = record;
}

bool FakeUrlSession::wasCancelled(std::size_t index) const {
    return state_->cancelled.contains(index);
}

std::size_t FakeUrlSession::startedCount() const {
    return state_->started;
}

}  // namespace korvane
