// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

/// Whether the log that a set of ports brings has values in it: PINs, codes, card data, tokens, keys, ids.
/// Masked, each of them is "•••", as `RedactingConsole` does it. It holds for the console that comes with the
/// ports, and not for one that a host puts in its place.
enum class LogValues {
    byBuild,  ///< masked when the adapter library was compiled with NDEBUG, which release builds define;
              ///< clear otherwise. How the host itself was compiled does not matter.
    masked,   ///< in every build
    clear,    ///< in every build: for development
};

}  // namespace korvane
