// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FprintdContext.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/linux/FprintdReader.h"
#include "platform/linux/GLibSource.h"
#include "platform/linux/GLibThread.h"

namespace korvane {
namespace {

constexpr int triesOfACheck = 3;
constexpr auto probeLimit = 30 * G_USEC_PER_SEC;
constexpr std::chrono::seconds probeWait{1};

/// What the main thread tells the thread that runs a check.
class Wish {
  public:
    explicit Wish(std::shared_ptr<GMainContext> context) : context_(std::move(context)) {}

    void setVisible(bool visible) {
        visible_ = visible;
        g_main_context_wakeup(context_.get());
    }
    void end() {
        ended_ = true;
        g_main_context_wakeup(context_.get());
    }
    bool ended() const { return ended_; }
    bool armed() const { return visible_ && !ended_; }

  private:
    const std::shared_ptr<GMainContext> context_;
    std::atomic<bool> visible_ = false;
    std::atomic<bool> ended_ = false;
};

/// How a check reports, from its thread.
struct Reports {
    std::function<void(const char* messageId)> tell;
    std::function<void(bool match)> finish;
};

}  // namespace

/// A check as the main thread sees it; its handle owns it, and the thread never does.
struct FprintdContext::Check {
    std::function<void(bool)> reply;  // none once it ran, or was dropped
    std::unique_ptr<BiometricPrompt::Handle> prompt;
    std::shared_ptr<Wish> wish;
    bool declined = false;

    ~Check() { drop(); }

    void drop() {
        wish->end();
        prompt.reset();
        const auto dropped = std::exchange(reply, nullptr);
    }

    static void finish(const std::weak_ptr<Check>& weak, bool match) {
        auto check = weak.lock();
        if (!check) return;
        const auto reply = std::exchange(check->reply, nullptr);
        const bool success = match && !check->declined;
        check->drop();
        check.reset();  // the reply may release the handle
        if (reply) reply(success);
    }
};

class FprintdContext::Evaluation final : public BiometricEvaluation {
  public:
    explicit Evaluation(std::shared_ptr<Check> check) : check_(std::move(check)) {}
    ~Evaluation() override { check_->drop(); }

  private:
    std::shared_ptr<Check> check_;
};

/// The thread, and what the last probe found.
class FprintdContext::Worker {
  public:
    explicit Worker(std::string busAddress) : busAddress_(std::move(busAddress)) { probe(); }
    ~Worker() {
        stopping_ = true;  // the thread, which goes first, wakes up
    }

    const std::shared_ptr<GMainContext>& context() const { return thread_.context(); }

    bool lastProbe() {
        probe();
        std::unique_lock lock(mutex_);
        // Waited for once: a daemon that hangs would cost the main thread as much at each call.
        if (!probed_.wait_for(lock, probeWait, [this] { return found_.has_value(); })) found_ = false;
        return *found_;
    }

    void run(std::shared_ptr<Wish> wish, std::int64_t deadline, Reports reports) {
        ++checks_;
        g_main_context_wakeup(context().get());  // a probe that is running gives way
        thread_.post([this, wish = std::move(wish), deadline, reports = std::move(reports)] {
            check(*wish, deadline, reports);
            --checks_;
        });
    }

  private:
    void probe();
    void check(const Wish& wish, std::int64_t deadline, const Reports& reports);
    bool waitUntilArmed(const Wish& wish, std::int64_t deadline);

    const std::string busAddress_;
    std::atomic<bool> stopping_ = false;
    std::atomic<int> checks_ = 0;  // running or waiting
    std::mutex mutex_;             // for the next three
    std::condition_variable probed_;
    std::optional<bool> found_;
    bool probing_ = false;
    GLibThread thread_{"korvane-finger"};
};

void FprintdContext::Worker::probe() {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(probing_, true)) return;
    }
    thread_.post([this] {
        FprintdReader reader(thread_.context().get(), g_get_monotonic_time() + probeLimit,
                             [this] { return stopping_ || checks_ > 0; });
        const bool found = reader.open(busAddress_);
        const std::lock_guard lock(mutex_);
        if (!reader.wasInterrupted()) found_ = found;
        probing_ = false;
        probed_.notify_all();
    });
}

void FprintdContext::Worker::check(const Wish& wish, std::int64_t deadline, const Reports& reports) {
    int triesLeft = triesOfACheck;
    using Outcome = FprintdReader::Outcome;
    while (waitUntilArmed(wish, deadline)) {
        FprintdReader reader(thread_.context().get(), deadline, [&wish] { return !wish.armed(); });
        if (!reader.open(busAddress_) || !reader.claim()) {
            if (reader.wasInterrupted()) continue;
            reports.finish(false);
            return;
        }
        while (true) {
            const Outcome outcome = reader.verify([&reports] { reports.tell("sdk.biometrics.retry"); });
            if (outcome == Outcome::interrupted) break;
            const bool again = outcome == Outcome::noMatch || outcome == Outcome::unread;
            if (!again || --triesLeft == 0) {
                reports.finish(outcome == Outcome::match);  // before the reader is released: that takes time
                return;
            }
            reports.tell(outcome == Outcome::noMatch ? "sdk.biometrics.nomatch" : "sdk.biometrics.retry");
        }
    }
    reports.finish(false);
}

/// False when the check ended, or its time did.
bool FprintdContext::Worker::waitUntilArmed(const Wish& wish, std::int64_t deadline) {
    GSource* alarm = attachSource(context().get(), "korvane fingerprint check", [] {});
    while (!wish.armed() && !wish.ended() && g_get_monotonic_time() < deadline) {
        g_source_set_ready_time(alarm, deadline);
        g_main_context_iteration(context().get(), TRUE);
    }
    releaseSource(alarm);
    return wish.armed() && g_get_monotonic_time() < deadline;
}

FprintdContext::FprintdContext(std::shared_ptr<MainQueue> mainQueue, std::shared_ptr<BiometricPrompt> prompt,
                               FprintdContextOptions options)
    : mainQueue_(std::move(mainQueue)),
      prompt_(std::move(prompt)),
      options_(std::move(options)),
      worker_(std::make_unique<Worker>(options_.busAddress)) {}

FprintdContext::~FprintdContext() {
    for (const auto& weak : checks_) {
        if (const auto check = weak.lock()) check->drop();
    }
}

bool FprintdContext::canEvaluate() {
    return worker_->lastProbe();
}

std::unique_ptr<BiometricEvaluation> FprintdContext::evaluate(std::string reason,
                                                              std::function<void(bool)> reply) {
    const auto deadline = g_get_monotonic_time() + std::chrono::microseconds(options_.timeout).count();
    const auto check = std::make_shared<Check>();
    check->reply = std::move(reply);
    check->wish = std::make_shared<Wish>(worker_->context());
    const std::weak_ptr<Check> weak = check;
    std::erase_if(checks_, [](const auto& other) { return other.expired(); });
    checks_.push_back(weak);

    const auto finish = [queue = mainQueue_, weak](bool match) {
        queue->post([weak, match] { Check::finish(weak, match); });
    };
    const auto tell = [queue = mainQueue_, weak](const char* messageId) {
        queue->post([weak, messageId] {
            const auto told = weak.lock();
            if (told && told->prompt) told->prompt->tell(messageId);
        });
    };
    BiometricPrompt::Callbacks callbacks;
    callbacks.visibilityChanged = [wish = check->wish](bool visible) { wish->setVisible(visible); };
    callbacks.cancelled = [weak, finish] {
        const auto declined = weak.lock();
        if (!declined) return;
        declined->declined = true;  // also when a match is on its way
        declined->wish->end();
        finish(false);
    };
    check->prompt = prompt_->show(reason, std::move(callbacks));
    if (check->prompt) {
        worker_->run(check->wish, deadline, {tell, finish});
    } else {
        finish(false);
    }
    return std::make_unique<Evaluation>(check);
}

}  // namespace korvane
