// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

/// Alive around each call into the host. It counts on each thread by itself, since log lines come on any.
class HostCallback {
  public:
    HostCallback() { ++depth_; }
    ~HostCallback() { --depth_; }
    HostCallback(const HostCallback&) = delete;
    HostCallback& operator=(const HostCallback&) = delete;

    /// This thread is inside a callback of the host.
    static bool isRunning() { return depth_ > 0; }

  private:
    static inline thread_local int depth_ = 0;
};

}  // namespace korvane
