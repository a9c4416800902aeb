// SPDX-License-Identifier: Apache-2.0
#include <korvane/Version.h>

#define KORVANE_TEXT_OF(value) #value
#define KORVANE_TEXT(value) KORVANE_TEXT_OF(value)

// The build hands in the project's version.
const double KorvaneiOSSDKVersionNumber = KORVANE_VERSION;
const unsigned char KorvaneiOSSDKVersionString[] =
    "@(#)PROGRAM:KorvaneiOSSDK  PROJECT:KorvaneiOSSDK-" KORVANE_TEXT(KORVANE_VERSION_MAJOR) "\n";
