// SPDX-License-Identifier: Apache-2.0
#include "JourneyArguments.h"

#include <map>
#include <string_view>

namespace korvane {

const char* const usage =
    "usage: korvane-journey set-pin|activate|card --card ID --service URL --key BASE64\n"
    "                       [--iv-url URL] [--ca FILE] [--biometrics on|off] [--log clear|masked]\n"
    "\n"
    "Runs a journey without a window: one JSON object a line on standard output, one command a line on\n"
    "standard input, the component's log on standard error.\n"
    "\n"
    "  --card ID         the card\n"
    "  --service URL     base URL of the card service\n"
    "  --key BASE64      the pre-shared key\n"
    "  --iv-url URL      where the host supplies IVs (default: /host/iv under the service's URL)\n"
    "  --ca FILE         trust the authorities of this PEM file in place of the system's\n"
    "  --biometrics on   keep the PCI token in the device's secure store (default: off)\n"
    "  --log masked      write the log without the values of secrets (default: clear)\n"
    "\n"
    "commands: type DIGITS | erase | tap CONTROL-ID | wait VIEW [SECONDS] | state | custody | quit\n"
    "\n"
    "exit status: 0 SUCCESS, 3 CANCELED, 4 FAILURE, 2 bad arguments, 5 input ended before the journey did\n";

std::variant<JourneyArguments, std::string> parseArguments(int argc, const char* const* argv) {
    static const std::map<std::string_view, korvane_journey_kind> journeys{
        {"set-pin", KORVANE_SET_PIN},
        {"activate", KORVANE_ACTIVATE_CARD_AND_SET_PIN},
        {"card", KORVANE_GET_CARD_IMAGE}};
    if (argc < 2) return "which journey?";
    const auto journey = journeys.find(argv[1]);
    if (journey == journeys.end()) return "no such journey: " + std::string{argv[1]};

    JourneyArguments arguments;
    arguments.journey = journey->second;
    std::string biometrics = "off", log = "clear";
    const std::map<std::string_view, std::string*> options{
        {"--card", &arguments.card},
        {"--service", &arguments.service},
        {"--key", &arguments.key},
        {"--iv-url", &arguments.ivUrl},
        {"--ca", &arguments.caFile},
        {"--biometrics", &biometrics},
        {"--log", &log},
    };
    for (int i = 2; i < argc; i += 2) {
        const auto option = options.find(argv[i]);
        if (option == options.end()) return "no such option: " + std::string{argv[i]};
        if (i + 1 == argc) return std::string{argv[i]} + " needs a value";
        *option->second = argv[i + 1];
    }
    for (const char* const needed : {"--card", "--service", "--key"}) {
        if (options.at(needed)->empty()) return std::string{needed} + " is missing";
    }
    if (biometrics != "on" && biometrics != "off") return "--biometrics is on or off";
    if (log != "clear" && log != "masked") return "--log is clear or masked";
    arguments.biometrics = biometrics == "on";
    arguments.maskSecrets = log == "masked";
    if (arguments.service.ends_with('/')) arguments.service.pop_back();
    if (arguments.ivUrl.empty()) arguments.ivUrl = arguments.service + "/host/iv";
    return arguments;
}

}  // namespace korvane
