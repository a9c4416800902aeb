// SPDX-License-Identifier: Apache-2.0
#include <glib.h>
#include <korvane/platform/Ports.h>

#include <QEventLoop>
#include <cstdio>
#include <utility>

#include "benchmarks/network/Clients.h"
#include "benchmarks/support/Fatal.h"
#include "operations/Operations.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "platform/linux/StdoutConsole.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtTimers.h"

namespace korvane::bench {
namespace {

class InLoop : public OwnClient {
  public:
    InLoop(std::shared_ptr<MainQueue> queue, std::shared_ptr<Timers> timers,
           std::shared_ptr<UrlSession> session)
        : device_{.mainQueue = std::move(queue),
                  .timers = std::move(timers),
                  .urlSession = std::move(session),
                  .console = std::make_shared<StdoutConsole>(std::fopen("/dev/null", "w"))} {}

    void prepare() override { require(installPorts(device_), "a port is missing"); }

    void setPin() override {
        run([](StatePtr state, OperationCompletion completion) {
            return doPinSet(std::move(state), "7391", std::move(completion));
        });
    }

    void run(const Start& start) override {
        done_ = false;
        const Handle call = start(state(), [this](const KorvaneRetStruct& result) {
            require(!result.error, "an operation failed: " + result.errorMsg);
            done_ = true;
            stop();
        });
        wait();
    }

    StatePtr state() override {
        if (!state_)
            state_ = std::make_shared<JourneyState>(SdkConfig::sharedInstance(), "card-physical-active");
        return state_;
    }

  protected:
    bool done() const { return done_; }

  private:
    virtual void wait() = 0;
    virtual void stop() {}

    Ports device_;
    StatePtr state_;
    bool done_ = false;
};

class OnGLib final : public InLoop {
  public:
    /// A context of its own, as Qt's loop has its sources in the default one.
    explicit OnGLib(std::shared_ptr<UrlSession> session) : OnGLib(g_main_context_new(), std::move(session)) {}
    ~OnGLib() override { g_main_context_unref(context_); }

  private:
    OnGLib(GMainContext* context, std::shared_ptr<UrlSession> session)
        : InLoop(std::make_shared<GLibMainQueue>(context), std::make_shared<GLibTimers>(context),
                 std::move(session)),
          context_(context) {}

    void wait() override {
        while (!done()) g_main_context_iteration(context_, TRUE);
    }

    GMainContext* const context_;
};

class OnQt final : public InLoop {
  public:
    explicit OnQt(std::shared_ptr<UrlSession> session)
        : InLoop(std::make_shared<QtMainQueue>(), std::make_shared<QtTimers>(), std::move(session)) {}

  private:
    void wait() override { loop_.exec(); }
    void stop() override { loop_.quit(); }

    QEventLoop loop_;
};

}  // namespace

std::unique_ptr<OwnClient> onGLib(std::shared_ptr<UrlSession> session) {
    return std::make_unique<OnGLib>(std::move(session));
}

std::unique_ptr<OwnClient> onQt(std::shared_ptr<UrlSession> session) {
    return std::make_unique<OnQt>(std::move(session));
}

}  // namespace korvane::bench
