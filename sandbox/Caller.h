// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "sandbox/HttpServer.h"

namespace korvane::sandbox {

/// Why the request is not answered: a page that a browser has of elsewhere sent it. "" when it may be.
///
/// - The host that it is for is an address, "localhost" or `ownHost`: any other name is one that somebody had
///   stand for this machine (DNS rebinding), and the browser takes its page for ours. Ports do not matter,
///   since korvane-wire has another.
/// - With an Origin (RFC 6454, 7) it comes from a browser: from our own page, and a change then has `token`,
///   which that page alone knows. Other programs send no Origin and need no token.
std::string refusalOf(const HttpRequest& request, const std::string& ownHost, const std::string& token);

}  // namespace korvane::sandbox
