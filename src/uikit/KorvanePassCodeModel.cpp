// SPDX-License-Identifier: Apache-2.0
#include "uikit/KorvanePassCodeModel.h"

#include <regex>

namespace korvane {

bool isWeakPIN(const std::string& pin) {
    static const std::regex weak{KorvanePassCodeModel::goodPINRegex.begin(),
                                 KorvanePassCodeModel::goodPINRegex.end()};
    return std::regex_search(pin, weak);
}

}  // namespace korvane
