// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace korvane {

/// Runs at the beginning of `uninstallPorts`, while the ports are still there; set by the layer above. Main
/// thread.
std::function<void()>& beforeUninstallPorts();

}  // namespace korvane
