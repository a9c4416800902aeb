// SPDX-License-Identifier: Apache-2.0
#pragma once

extern "C" {
/// 1.0
__attribute__((visibility("default"))) extern const double KorvaneiOSSDKVersionNumber;
/// NUL-terminated, for tools that look for "@(#)" in a binary.
__attribute__((visibility("default"))) extern const unsigned char KorvaneiOSSDKVersionString[];
}
