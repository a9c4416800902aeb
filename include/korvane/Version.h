// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

/// @file
/// The version, for tools. It changes with the meaning of the public names alone.

extern "C" {
/// The version as a number: 1.0.
KORVANE_API extern const double KorvaneiOSSDKVersionNumber;
/// NUL-terminated, for tools that look for "@(#)" in a binary.
KORVANE_API extern const unsigned char KorvaneiOSSDKVersionString[];
}
