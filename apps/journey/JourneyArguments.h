// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/korvane.h>

#include <string>
#include <variant>

namespace korvane {

struct JourneyArguments {
    korvane_journey_kind journey = KORVANE_SET_PIN;
    std::string card;
    std::string service;
    std::string key;
    std::string ivUrl;  ///< "/host/iv" under the service's URL unless told otherwise
    std::string caFile;
    bool biometrics = false;
    bool maskSecrets = false;
};

extern const char* const usage;

/// The arguments, or what is wrong with them.
std::variant<JourneyArguments, std::string> parseArguments(int argc, const char* const* argv);

}  // namespace korvane
