// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/StdoutConsole.h"

#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace korvane {

void StdoutConsole::line(std::string_view text) {
    // Past the stream's buffer, which would cut a long line in pieces and keep a copy of it: some lines print
    // secrets (deliberate). One call for line and line feed, without putting megabytes together for it.
    char lineFeed = '\n';
    std::array<iovec, 2> parts{{{const_cast<char*>(text.data()), text.size()}, {&lineFeed, 1}}};

    flockfile(stream_);  // keeps lines apart, also from those that others print to the stream
    std::fflush(stream_);
    while (parts[0].iov_len + parts[1].iov_len > 0) {
        const ssize_t written = writev(fileno(stream_), parts.data(), parts.size());
        if (written < 0 && errno != EINTR) break;
        auto size = static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        for (iovec& part : parts) {
            const std::size_t done = std::min(size, part.iov_len);
            part = {static_cast<char*>(part.iov_base) + done, part.iov_len - done};
            size -= done;
        }
    }
    funlockfile(stream_);
}

}  // namespace korvane
