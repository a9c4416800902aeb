// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <string>
#include <variant>

namespace korvane {

struct JourneyArguments {
    JourneyKind journey = JourneyKind::setPIN;
    std::string card;
    std::string service;
    std::string key;
    std::string ivUrl;  ///< "/host/iv" under the service's URL unless told otherwise
    std::string caFile;
    bool biometrics = false;
};

extern const char* const usage;

/// The arguments, or what is wrong with them.
std::variant<JourneyArguments, std::string> parseArguments(int argc, const char* const* argv);

}  // namespace korvane
