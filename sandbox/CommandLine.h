// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "sandbox/CardService.h"
#include "sandbox/Outcome.h"

namespace korvane::sandbox {

struct CommandLine {
    CardServiceOptions service;
    std::string caOut;  ///< where to write the CA's certificate; empty: nowhere
    bool help = false;
    bool verbose = false;
};

/// The program's arguments without its name. Fails with a text for the user on an unknown option, a missing
/// value or one that is out of range.
Outcome<CommandLine> readCommandLine(std::span<char*> arguments);

std::string helpText();

}  // namespace korvane::sandbox
