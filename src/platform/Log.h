// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <string_view>

namespace korvane {

/// Writes one console line, the pieces joined as they are.
void log(std::initializer_list<std::string_view> pieces);
void log(std::string_view text);

}  // namespace korvane
