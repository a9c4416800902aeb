// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace korvane {

/// Result of an operation.
struct KorvaneRetStruct {
    bool error = false;
    std::string errorMsg;     ///< the service's deciphered result, "400 error" and the like, or a fixed text
    std::string errorMsgEnc;  ///< the enciphered payload that came with an HTTP failure, as received
    std::string errorMsgDec;  ///< that payload deciphered
    std::string jsonResponseStr;  ///< body of the last answer
};

}  // namespace korvane
