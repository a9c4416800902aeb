// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Ports.h>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace korvane {

/// How long a journey waits for the secure store or the reader: longer than one call of either takes.
inline constexpr std::chrono::seconds backgroundLimit{3};

/// Runs `work` on the background queue, then `done` on the main queue with the result that `work` filled in.
/// When the time is up first, `done` gets a result of which nothing is filled in, and what comes later is
/// dropped; so is everything once the ports are uninstalled. Main thread.
template <class Result>
void inBackground(std::function<void(Result&)> work, std::function<void(Result&)> done) {
    struct Piece {
        std::function<void(Result&)> done;  // none once it ran; main thread
        std::unique_ptr<Timer> limit;       // main thread
        Result result{};                    // of `work`, then of the main thread

        void end(Result& with) {
            const auto tell = std::exchange(done, nullptr);
            if (tell && portsInstalled()) tell(with);
        }
    };
    const auto piece = std::make_shared<Piece>();
    piece->done = std::move(done);
    piece->limit = ports().timers->start(backgroundLimit, [weak = std::weak_ptr(piece)] {
        Result nothing{};
        if (const auto late = weak.lock()) late->end(nothing);
    });
    ports().backgroundQueue->post([piece, work = std::move(work), queue = ports().mainQueue]() mutable {
        work(piece->result);
        // The last reference goes along: what `done` holds is released on the main thread.
        queue->post([piece = std::move(piece)] {
            piece->limit.reset();
            piece->end(piece->result);
        });
    });
}

}  // namespace korvane
