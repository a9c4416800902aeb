// SPDX-License-Identifier: Apache-2.0
#include <korvane/Version.h>

const double KorvaneiOSSDKVersionNumber = 1.0;
const unsigned char KorvaneiOSSDKVersionString[] = "@(#)PROGRAM:KorvaneiOSSDK  PROJECT:KorvaneiOSSDK-1\n";
