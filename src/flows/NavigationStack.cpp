// SPDX-License-Identifier: Apache-2.0
#include "flows/NavigationStack.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "flows/Screen.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewHost.h"
#include "flows/ViewNames.h"

namespace korvane {
namespace {

constexpr std::chrono::seconds toastDuration{4};

}  // namespace

void NavigationStack::start(std::shared_ptr<Screen> root) {
    frames_.push_back(std::move(root));
    changed();
}

void NavigationStack::end() {
    toastTimer_.reset();
    observer_ = nullptr;
    // Out of the member first: a screen that goes may call back.
    const auto frames = std::exchange(frames_, {});
}

void NavigationStack::push(std::shared_ptr<Screen> destination) {
    if (frames_.empty()) return;
    frames_.push_back(std::move(destination));
    changed();
}

void NavigationStack::dismiss(const Screen& screen) {
    const std::size_t index = indexOf(screen);
    if (index == 0 || index >= frames_.size()) return;
    popAbove(index - 1);
    changed();
}

bool NavigationStack::canDismiss(const Screen& screen) const {
    const std::size_t index = indexOf(screen);
    return index > 0 && index < frames_.size();
}

NavigationStack::Chain NavigationStack::chainOf(const std::shared_ptr<Screen>& screen) {
    Chain chain;
    for (auto next = screen; next; next = next->shown()) chain.push_back(next);
    return chain;
}

std::size_t NavigationStack::indexOf(const Screen& screen) const {
    for (std::size_t i = frames_.size(); i-- > 0;) {
        const Chain chain = chainOf(frames_[i]);
        if (std::any_of(chain.begin(), chain.end(), [&](const auto& link) { return link.get() == &screen; }))
            return i;
    }
    return frames_.size();
}

void NavigationStack::popAbove(std::size_t index) {
    // One by one from the top, each out of the stack before it is destroyed.
    while (frames_.size() > index + 1) {
        const auto popped = std::move(frames_.back());
        frames_.pop_back();
    }
}

std::shared_ptr<Screen> NavigationStack::inView() const {
    return frames_.empty() ? nullptr : chainOf(frames_.back()).back();
}

bool NavigationStack::isInView(const Screen& screen) const {
    return inView().get() == &screen;
}

void NavigationStack::leaveSMSStep(std::string_view viewName) {
    std::size_t step = frames_.size();
    Chain chain;
    while (step-- > 0) {
        chain = chainOf(frames_[step]);
        if (chain.back()->viewName() == view::SMSExplainView) break;
    }
    if (step >= frames_.size()) return;  // the step was left while its last answer was on the way

    for (std::size_t i = step; i-- > 0;) {
        const auto earlier = chainOf(frames_[i]).back();
        if (earlier->viewName() != viewName) continue;
        earlier->resumeAfterSMSVerify();
        popAbove(i);
        changed();
        return;
    }
    popAbove(step);
    for (auto link = chain.rbegin(); link != chain.rend(); ++link) {
        const auto host = std::dynamic_pointer_cast<ViewHost>(*link);
        if (host && host->canShow(viewName)) {
            host->show(viewName);
            return;
        }
    }
    push(makeAutoNavMultiView(shared_from_this(), viewName));
}

void NavigationStack::showToasts(std::vector<std::string> messageIds) {
    toastMsgIds_ = std::move(messageIds);
    startToast();
}

void NavigationStack::startToast() {
    changed();
    if (toastMsgIds_.empty()) return;
    toastTimer_ = ports().timers->start(toastDuration, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->toastMsgIds_.erase(self->toastMsgIds_.begin());
        self->startToast();
    });
}

void NavigationStack::hideSensitive() {
    for (const auto& frame : frames_) {
        for (const auto& screen : chainOf(frame)) screen->hideSensitive();
    }
}

void NavigationStack::settle() {
    if (settling_) {
        unsettled_ = true;
        return;
    }
    settling_ = true;
    do {
        unsettled_ = false;
        if (frames_.empty()) break;
        const Chain chain = chainOf(frames_.back());
        const auto before = std::exchange(appeared_, {});
        for (const auto& screen : chain) appeared_.push_back(screen->instance());
        for (const auto& screen : chain) {
            if (std::find(before.begin(), before.end(), screen->instance()) == before.end())
                screen->onAppear();
        }
    } while (unsettled_);
    settling_ = false;
}

void NavigationStack::changed() {
    const auto self = shared_from_this();  // what comes into view may end the journey
    settle();
    if (!observer_ || observerScheduled_) return;
    observerScheduled_ = true;
    ports().mainQueue->post([weak = weak_from_this()] {
        const auto stack = weak.lock();
        if (!stack) return;
        stack->observerScheduled_ = false;
        const auto observer = stack->observer_;
        if (observer) observer();
    });
}

void NavigationStack::onChange(std::function<void()> observer) {
    observer_ = std::move(observer);
}

void NavigationStack::describe(ScreenSnapshot& snapshot) const {
    for (const auto& frame : frames_) {
        for (const auto& screen : chainOf(frame)) {
            if (screen->hasContent()) snapshot.stack.emplace_back(screen->viewName());
        }
    }
    snapshot.depth = frames_.empty() ? 0 : static_cast<int>(frames_.size()) - 1;
    if (!toastMsgIds_.empty()) snapshot.toast = toastMsgIds_.front();
    if (const auto screen = inView()) screen->describe(snapshot);
}

}  // namespace korvane
