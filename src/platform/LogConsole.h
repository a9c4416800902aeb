// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/LogValues.h>
#include <korvane/platform/RedactingConsole.h>

#include <memory>
#include <utility>

namespace korvane {

/// `console`, behind a mask where the option or this build wants one.
inline std::shared_ptr<Console> logConsole(std::shared_ptr<Console> console, LogValues values) {
#ifdef NDEBUG
    const bool isMasked = values != LogValues::clear;
#else
    const bool isMasked = values == LogValues::masked;
#endif
    return isMasked ? std::make_shared<RedactingConsole>(std::move(console)) : std::move(console);
}

}  // namespace korvane
