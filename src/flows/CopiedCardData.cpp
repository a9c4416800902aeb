// SPDX-License-Identifier: Apache-2.0
#include "flows/CopiedCardData.h"

#include <korvane/platform/Ports.h>

#include <chrono>

namespace korvane {
namespace {

constexpr std::chrono::seconds timeOnPasteboard{60};

}  // namespace

CopiedCardData::~CopiedCardData() {
    clear();
}

bool CopiedCardData::copy(const std::string& text) {
    if (!ports().pasteboard->setString(text)) return false;
    text_ = Wiped<std::string>{text};
    timer_ = ports().timers->start(timeOnPasteboard, [this] { clear(); });
    return true;
}

void CopiedCardData::clear() {
    timer_.reset();
    if (text_->empty()) return;
    ports().pasteboard->clearIfHolds(*text_);
    wipe(*text_);
}

}  // namespace korvane
