// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/StringTable.h>

#include <memory>

namespace korvane {

/// The component's own texts in the first of the user's UI languages that it speaks, else in English.
std::shared_ptr<StringTable> componentTexts();

}  // namespace korvane
