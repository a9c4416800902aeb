// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace korvane {

/// What the host answers with: the IV's id and the IV in base64 (RFC 4648, padded, no line breaks). An absent
/// value says that there is none and fails the operation that asked. Any thread; the first call counts, any
/// further one is ignored.
using IvReply = std::function<void(std::optional<std::string> ivId, std::optional<std::string> iv)>;

/// Supplies an initialisation vector. Called on the main thread whenever one is needed, which may be often: a
/// service that keeps refusing IVs is asked again without limit. Answer at once or later, by calling the
/// reply.
using IvCallback = std::function<void(IvReply reply)>;

}  // namespace korvane
