// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/IvCallback.h>

#include <string>

namespace korvane {

/// A host's supply of IVs: a POST to `ivUrl`, which answers {"ivId": text, "iv": base64}. It goes through the
/// installed `UrlSession`. Any other answer, or none, supplies no IV. Use it on the main thread.
IvCallback hostIvCallback(std::string ivUrl);

}  // namespace korvane
