// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/StdoutConsole.h"

#include <unistd.h>

#include <cerrno>
#include <string>

#include "base/Secret.h"

namespace korvane {

void StdoutConsole::line(std::string_view text) {
    // Past the stream's buffer, which would cut a long line in pieces and keep a copy of it: some lines print
    // secrets (deliberate).
    Wiped<std::string> whole;
    whole->reserve(text.size() + 1);
    whole->append(text).push_back('\n');

    flockfile(stream_);  // keeps lines apart, also from those that others print to the stream
    std::fflush(stream_);
    std::string_view rest = *whole;
    while (!rest.empty()) {
        const ssize_t size = write(fileno(stream_), rest.data(), rest.size());
        if (size < 0 && errno != EINTR) break;
        if (size > 0) rest.remove_prefix(static_cast<std::size_t>(size));
    }
    funlockfile(stream_);
}

}  // namespace korvane
