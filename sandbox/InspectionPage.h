// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "sandbox/HttpServer.h"

namespace korvane::sandbox {

/// The text of inspection.html.
extern const std::string_view inspectionPageText;

/// The page that shows in a browser what the service holds and hears. Its
/// script and its style alone run, each time under a nonce of its own (Content
/// Security Policy, level 3), and it talks to its own origin alone.
///
/// @param token  what it sends with each change
HttpAnswer inspectionPage(const std::string& token);

}  // namespace korvane::sandbox
