// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FprintdContext.h"

#include <atomic>
#include <future>
#include <utility>

#include "platform/linux/FprintdReader.h"
#include "platform/linux/GLibSource.h"
#include "platform/linux/GLibThread.h"

namespace korvane {
namespace {

constexpr int triesOfACheck = 3;
constexpr auto probeLimit = 2 * G_USEC_PER_SEC;

}  // namespace

/// What the main thread tells the thread that runs a check.
class FprintdContext::Wish {
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

void FprintdContext::run(const Wish& wish, std::int64_t deadline, const Tell& tell,
                         const Finish& finish) const {
    int triesLeft = triesOfACheck;
    using Outcome = FprintdReader::Outcome;
    while (waitUntilArmed(wish, deadline)) {
        FprintdReader reader(thread_->context().get(), deadline, [&wish] { return !wish.armed(); });
        if (!reader.open(options_.busAddress) || !reader.claim()) {
            if (reader.wasInterrupted()) continue;
            finish(false);
            return;
        }
        while (true) {
            const Outcome outcome = reader.verify([&tell] { tell("sdk.biometrics.retry"); });
            if (outcome == Outcome::interrupted) break;
            const bool again = outcome == Outcome::noMatch || outcome == Outcome::unread;
            if (!again || --triesLeft == 0) {
                finish(outcome == Outcome::match);  // before the reader is released: that takes time
                return;
            }
            tell(outcome == Outcome::noMatch ? "sdk.biometrics.nomatch" : "sdk.biometrics.retry");
        }
    }
    finish(false);
}

/// False when the check ended, or its time did.
bool FprintdContext::waitUntilArmed(const Wish& wish, std::int64_t deadline) const {
    GMainContext* const context = thread_->context().get();
    GSource* alarm = attachSource(context, "korvane fingerprint check", [] {});
    while (!wish.armed() && !wish.ended() && g_get_monotonic_time() < deadline) {
        g_source_set_ready_time(alarm, deadline);
        g_main_context_iteration(context, TRUE);
    }
    releaseSource(alarm);
    return wish.armed() && g_get_monotonic_time() < deadline;
}

FprintdContext::FprintdContext(std::shared_ptr<MainQueue> mainQueue, std::shared_ptr<BiometricPrompt> prompt,
                               FprintdContextOptions options)
    : mainQueue_(std::move(mainQueue)),
      prompt_(std::move(prompt)),
      options_(std::move(options)),
      thread_(std::make_unique<GLibThread>("korvane-finger")) {}

FprintdContext::~FprintdContext() {
    for (const auto& weak : checks_) {
        if (const auto check = weak.lock()) check->drop();
    }
}

bool FprintdContext::canEvaluate() {
    bool found = false;
    std::promise<void> done;
    GLibThread thread("korvane-reader");  // a check may hold the other one up
    thread.post([&] {
        FprintdReader reader(thread.context().get(), g_get_monotonic_time() + probeLimit,
                             [] { return false; });
        found = reader.open(options_.busAddress);
        done.set_value();
    });
    done.get_future().wait();
    return found;
}

std::unique_ptr<BiometricEvaluation> FprintdContext::evaluate(std::string reason,
                                                              std::function<void(bool)> reply) {
    const auto deadline = g_get_monotonic_time() + std::chrono::microseconds(options_.timeout).count();
    const auto check = std::make_shared<Check>();
    check->reply = std::move(reply);
    check->wish = std::make_shared<Wish>(thread_->context());
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
        thread_->post(
            [this, wish = check->wish, deadline, tell, finish] { run(*wish, deadline, tell, finish); });
    } else {
        finish(false);
    }
    return std::make_unique<Evaluation>(check);
}

}  // namespace korvane
