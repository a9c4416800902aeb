// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/CurlUrlSession.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/Secret.h"
#include "platform/linux/CurlTransfer.h"
#include "platform/linux/TimerFd.h"

namespace korvane {
namespace {

/// What a task and the worker share. The lock is held while the reply runs, so that a release on another
/// thread waits for its end; it is recursive, so that a release inside the reply does not.
struct Call {
    std::recursive_mutex mutex;
    std::function<void(UrlReply)> reply;  // none once it ran or was dropped
    UrlRequest request;

    bool wanted() {
        const std::lock_guard lock(mutex);
        return static_cast<bool>(reply);
    }

    /// True when this call dropped it.
    bool drop() {
        std::function<void(UrlReply)> dropped;  // outlives the lock: what goes with it may be anything
        const std::lock_guard lock(mutex);
        dropped.swap(reply);
        return static_cast<bool>(dropped);
    }
};

}  // namespace

/// The thread and its multi handle. It stands apart from the session because a reply may destroy the session.
class CurlUrlSession::Worker {
  public:
    explicit Worker(CurlUrlSessionOptions options) : options_(std::move(options)) {}

    static std::shared_ptr<Worker> launch(const CurlUrlSessionOptions& options) {
        auto worker = std::make_shared<Worker>(options);
        worker->thread_ = std::thread([worker] { worker->run(); });
        return worker;
    }

    ~Worker() { close(wakeUp_); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void submit(std::shared_ptr<Call> call) {
        {
            const std::lock_guard lock(mutex_);
            submitted_.push_back(std::move(call));
        }
        wake();
    }

    /// Has the worker look for transfers that nobody waits for any more.
    void reap() { wake(); }

    void stop() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        wake();
        if (thread_.get_id() == std::this_thread::get_id()) {
            thread_.detach();  // inside a reply; the thread ends by itself, and finds no other reply to run
            for (const auto& [easy, active] : active_) active->call->drop();
        } else {
            thread_.join();
        }
        for (const auto& call : std::exchange(submitted_, {})) call->drop();
    }

  private:
    struct Active {
        Active(std::shared_ptr<Call> owner, const CurlUrlSessionOptions& options)
            : call(std::move(owner)), transfer(std::move(call->request), options) {}

        std::shared_ptr<Call> call;
        CurlTransfer transfer;
        std::int64_t moved = -1;
        std::chrono::nanoseconds lastMove{};
    };
    using ActiveMap = std::map<CURL*, std::unique_ptr<Active>>;

    void run();
    bool takeCommands();
    void add(std::shared_ptr<Call> call);
    void remove(ActiveMap::iterator active);
    void deliver(Call& call, UrlReply reply);
    void finishTransfers();
    void endStalled();
    void closeIdleConnections();
    void setMulti(CURLM* multi);
    void waitForWork();
    int pollTimeout() const;

    void wake() { eventfd_write(wakeUp_, 1); }

    const CurlUrlSessionOptions options_;
    std::thread thread_;
    // Not libcurl's own way to wake a poll, which goes with the multi handle, and so would need the lock
    // while the woken thread wants it.
    const int wakeUp_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

    std::mutex mutex_;  // for the next two
    std::deque<std::shared_ptr<Call>> submitted_;
    bool stopping_ = false;

    // Worker's thread only.
    CURLM* multi_ = nullptr;
    ActiveMap active_;
    bool connected_ = false;  // the multi handle may hold open connections
    bool doubtful_ = false;   // one of them may be dead
    std::chrono::nanoseconds lastUse_{};
};

void CurlUrlSession::Worker::run() {
    pthread_setname_np(pthread_self(), "korvane-http");
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // the host's signal handlers do not expect this thread

    // At the first request and not before: a host that opens no journey pays nothing.
    if (startCurl().empty()) setMulti(curl_multi_init());

    while (takeCommands()) {
        if (multi_) {
            int running = 0;
            curl_multi_perform(multi_, &running);
            finishTransfers();
            endStalled();
        }
        waitForWork();
    }

    for (auto active = active_.begin(); active != active_.end(); active = active_.begin()) {
        {
            const std::lock_guard lock(mutex_);
            submitted_.push_back(active->second->call);  // whose replies go with the session, on its thread
        }
        remove(active);
    }
    setMulti(nullptr);
}

void CurlUrlSession::Worker::waitForWork() {
    bool woken = true;
    if (multi_) {
        curl_waitfd commands{wakeUp_, CURL_WAIT_POLLIN, 0};
        curl_multi_poll(multi_, &commands, 1, pollTimeout(), nullptr);
        woken = commands.revents != 0;
    } else {
        pollfd commands{wakeUp_, POLLIN, 0};
        poll(&commands, 1, pollTimeout());
    }
    eventfd_t ignored = 0;
    if (woken) eventfd_read(wakeUp_, &ignored);
}

/// Does what other threads asked for; false when the session is gone.
bool CurlUrlSession::Worker::takeCommands() {
    for (auto active = active_.begin(); active != active_.end();) {
        const auto current = active++;
        if (current->second->call->wanted()) continue;
        doubtful_ = true;  // often a request is given up because its connection hangs
        remove(current);
    }
    closeIdleConnections();
    for (;;) {
        std::shared_ptr<Call> call;
        {
            const std::lock_guard lock(mutex_);
            if (stopping_ || submitted_.empty()) return !stopping_;
            call = std::move(submitted_.front());
            submitted_.pop_front();
        }
        add(std::move(call));
    }
}

void CurlUrlSession::Worker::add(std::shared_ptr<Call> call) {
    if (!call->wanted()) return;
    if (!multi_) {
        const std::string& failure = startCurl();
        return deliver(*call, UrlReply{0, {}, failure.empty() ? "out of memory" : failure});
    }
    auto active = std::make_unique<Active>(call, options_);
    CURL* easy = active->transfer.easy();
    std::string refusal = active->transfer.refusal();
    if (refusal.empty() && curl_multi_add_handle(multi_, easy) != CURLM_OK) refusal = "out of memory";
    if (!refusal.empty()) {
        deliver(*call, UrlReply{0, {}, std::move(refusal)});
        return;
    }
    connected_ = true;
    active_.emplace(easy, std::move(active));
}

void CurlUrlSession::Worker::remove(ActiveMap::iterator active) {
    // Leaves a name look-up that is under way to its own thread; libcurl would wait for its end.
    curl_easy_setopt(active->first, CURLOPT_QUICK_EXIT, 1L);
    curl_multi_remove_handle(multi_, active->first);
    active_.erase(active);
    lastUse_ = TimerFd::now();
}

void CurlUrlSession::Worker::finishTransfers() {
    std::vector<std::pair<CURL*, CURLcode>> done;  // removing a handle would spoil the messages behind it
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        if (message->msg == CURLMSG_DONE) done.emplace_back(message->easy_handle, message->data.result);
    }
    for (const auto& [easy, result] : done) {
        const auto active = active_.find(easy);
        const auto call = active->second->call;
        doubtful_ = doubtful_ || result != CURLE_OK;
        lastUse_ = TimerFd::now();
        // Whoever waits comes first; the handle is put away while the answer is being read.
        deliver(*call, active->second->transfer.finish(result));
        remove(active);
    }
}

/// Ends the transfers without data for too long. libcurl's own limits are on the whole time and on a mean
/// speed.
void CurlUrlSession::Worker::endStalled() {
    const auto now = TimerFd::now();
    for (auto next = active_.begin(); next != active_.end();) {
        const auto current = next++;
        Active& active = *current->second;
        const std::int64_t moved = active.transfer.moved();
        if (moved != active.moved || !active.transfer.isConnected()) {
            active.moved = moved;
            active.lastMove = now;
        }
        if (now - active.lastMove < options_.timeout) continue;
        doubtful_ = true;
        const std::string waited = std::to_string(options_.timeout.count());
        deliver(*active.call, UrlReply{0, {}, "timed out: no data for " + waited + " ms"});
        remove(current);
    }
}

void CurlUrlSession::Worker::deliver(Call& call, UrlReply reply) {
    const std::lock_guard lock(call.mutex);
    if (const auto callback = std::exchange(call.reply, nullptr)) {
        callback(std::move(reply));
    } else {
        wipe(reply.body);
    }
}

/// Replaces the multi handle, which owns the connections: libcurl's own age limit neither counts sleep nor
/// closes a connection before the next request.
void CurlUrlSession::Worker::closeIdleConnections() {
    if (!connected_ || !active_.empty()) return;
    if (!doubtful_ && TimerFd::now() - lastUse_ < options_.connectionIdle) return;
    CURLM* fresh = curl_multi_init();
    if (!fresh) return;
    setMulti(fresh);
    connected_ = doubtful_ = false;
}

void CurlUrlSession::Worker::setMulti(CURLM* multi) {
    if (multi_) curl_multi_cleanup(multi_);
    multi_ = multi;
}

/// In milliseconds. libcurl shortens it to its own timers; commands and a stop wake the poll.
int CurlUrlSession::Worker::pollTimeout() const {
    std::optional<std::chrono::nanoseconds> due;
    if (connected_ && active_.empty()) due = lastUse_ + options_.connectionIdle;
    for (const auto& [easy, active] : active_) {
        const auto stalled = active->lastMove + options_.timeout;
        due = std::min(due.value_or(stalled), stalled);
    }
    const int longest = wakeUp_ < 0 ? 100 : 3'600'000;  // where no descriptor was left, nobody can wake it
    if (!due) return longest;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - TimerFd::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, longest));
}

class CurlUrlSession::Task final : public UrlTask {
  public:
    Task(std::shared_ptr<Worker> worker, std::shared_ptr<Call> call)
        : worker_(std::move(worker)), call_(std::move(call)) {}

    ~Task() override {
        if (call_->drop()) worker_->reap();
    }

  private:
    std::shared_ptr<Worker> worker_;
    std::shared_ptr<Call> call_;
};

CurlUrlSession::CurlUrlSession(CurlUrlSessionOptions options) : options_(std::move(options)) {}

CurlUrlSession::~CurlUrlSession() {
    if (worker_) worker_->stop();
}

std::unique_ptr<UrlTask> CurlUrlSession::start(UrlRequest request, std::function<void(UrlReply)> reply) {
    if (!worker_) worker_ = Worker::launch(options_);
    auto call = std::make_shared<Call>();
    call->reply = std::move(reply);
    call->request = std::move(request);
    worker_->submit(call);
    return std::make_unique<Task>(worker_, std::move(call));
}

}  // namespace korvane
