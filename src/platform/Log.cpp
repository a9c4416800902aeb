// SPDX-License-Identifier: Apache-2.0
#include "platform/Log.h"

#include <korvane/platform/Ports.h>

#include "base/Secret.h"

#include <string>

namespace korvane {

void log(std::initializer_list<std::string_view> pieces) {
    std::string text;
    std::size_t size = 0;
    for (const std::string_view piece : pieces) size += piece.size();
    text.reserve(size);
    for (const std::string_view piece : pieces) text += piece;
    log(text);
    wipe(text);  // some lines print secrets (deliberate); this copy of them need not stay
}

void log(std::string_view text) {
    ports().console->line(text);
}

}  // namespace korvane
