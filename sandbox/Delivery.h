// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>

namespace korvane::sandbox {

/// What becomes of an answer on its way.
struct Delivery {
    enum class Kind {
        whole,
        none,   ///< the connection is reset before anything is sent
        hang,   ///< nothing is sent, and the connection stays until the client gives
                ///< up
        cut,    ///< the whole length is announced, `bytes` of the body are sent, the
                ///< connection is closed
        reset,  ///< the same, and the connection is reset
        drip,   ///< all of it, `bytes` of the body at a time
    };

    Kind kind = Kind::whole;
    std::int64_t bytes = 0;
    std::chrono::milliseconds interval{0};  ///< between two drips
};

}  // namespace korvane::sandbox
