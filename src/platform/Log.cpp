// SPDX-License-Identifier: Apache-2.0
#include "platform/Log.h"

#include <korvane/platform/Ports.h>

#include "base/Secret.h"

namespace korvane {
namespace {

constexpr std::string_view mask = "•••";

std::string_view told(const LogPiece& piece, bool whole) {
    const bool masked = piece.isSecret() && !whole && !piece.text().empty();
    return masked ? mask : piece.text();
}

}  // namespace

void log(std::initializer_list<LogPiece> pieces) {
    Console& console = *ports().console;
    const bool whole = console.takesSecrets();
    if (pieces.size() == 1) return console.line(told(*pieces.begin(), whole));  // an answer has megabytes
    Wiped<std::string> line;  // some lines print secrets (deliberate); this copy of them need not stay
    std::size_t size = 0;
    for (const LogPiece& piece : pieces) size += told(piece, whole).size();
    line->reserve(size);
    for (const LogPiece& piece : pieces) line->append(told(piece, whole));
    console.line(*line);
}

}  // namespace korvane
