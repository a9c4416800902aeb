// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace korvane {

/// The component's log.
class Console {
  public:
    virtual ~Console() = default;

    /// Writes one line of UTF-8; the line feed is added here. Any thread; lines of different threads do not
    /// mix.
    virtual void line(std::string_view text) = 0;

    /// False: each value in a line that may be a secret, or comes from one, arrives as "•••". Any thread.
    virtual bool takesSecrets() const { return true; }
};

}  // namespace korvane
