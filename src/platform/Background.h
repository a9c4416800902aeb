// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <functional>

namespace korvane {

/// Runs `work` on a thread of its own, and at once where no thread can be started. It must neither log nor
/// use a port but a main queue that it holds; what it has to report it posts there. Main thread.
void runInBackground(std::function<void()> work);

/// Waits until all such work has ended. `uninstallPorts` calls it: no thread outlives the ports. Main thread.
KORVANE_API void finishBackgroundWork();

}  // namespace korvane
