// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <deque>
#include <list>
#include <string>
#include <thread>

namespace korvane::bench {

/// A long way on the loopback interface: a TCP proxy on a free port of 127.0.0.1 that hands each byte on
/// after half a round-trip time, in either direction. The kernel connects at once, so what a client sends
/// first is kept for one more round trip, as if it had had to wait for the connection.
///
/// Works on one thread of its own, which sleeps between the bytes.
class DelayingProxy {
  public:
    DelayingProxy(int targetPort, std::chrono::nanoseconds roundTrip);
    ~DelayingProxy();
    DelayingProxy(const DelayingProxy&) = delete;
    DelayingProxy& operator=(const DelayingProxy&) = delete;

    int port() const { return port_; }

  private:
    using Clock = std::chrono::steady_clock;
    struct Chunk {
        Clock::time_point due;
        std::string bytes;  ///< empty: the end of the stream
    };
    struct Direction {
        int from;
        int to;
        std::chrono::nanoseconds delay;
        Clock::time_point earliest{};  ///< nothing goes on before
        bool ended = false;
        std::deque<Chunk> chunks{};
    };

    void run();
    void accept();
    void receive(Direction& direction);
    static void sendDue(Direction& direction, Clock::time_point now);

    const int targetPort_;
    const std::chrono::nanoseconds roundTrip_;
    int port_ = 0;
    int listener_;
    int stop_[2]{};  ///< a pipe; its end stops the thread
    std::list<Direction> directions_;
    std::thread thread_;
};

}  // namespace korvane::bench
