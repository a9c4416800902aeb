// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GLibThread.h"

#include <glib.h>
#include <pthread.h>
#include <signal.h>

#include <utility>

namespace korvane {

GLibThread::GLibThread(const char* name) : context_(g_main_context_new(), g_main_context_unref) {
    thread_ = std::thread([this, name] { run(name); });
}

GLibThread::~GLibThread() {
    stopping_ = true;
    g_main_context_wakeup(context_.get());
    thread_.join();
}

void GLibThread::post(std::function<void()> work) {
    work_.push(std::move(work));
    g_main_context_wakeup(context_.get());
}

void GLibThread::run(const char* name) {
    pthread_setname_np(pthread_self(), name);
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // the host's signal handlers do not expect this thread

    g_main_context_push_thread_default(context_.get());
    while (!stopping_) {
        // A wake-up that comes between the look and the wait is kept by the context.
        if (const auto piece = work_.take()) {
            piece();
            g_main_context_iteration(context_.get(),
                                     FALSE);  // answers get their turn, however much is posted
        } else {
            g_main_context_iteration(context_.get(), TRUE);
        }
    }
    while (g_main_context_iteration(context_.get(), FALSE))
        continue;  // what GIO has ended goes with its owner
    g_main_context_pop_thread_default(context_.get());
}

}  // namespace korvane
