// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <glib.h>

#include <functional>

namespace korvane {

/// Attaches a source to `context` (none: the default one) that runs `dispatch` when its ready time has come,
/// or when a descriptor that the caller adds is readable; in nested loops too. The caller owns the reference.
/// `dispatch` may destroy the source.
GSource* attachSource(GMainContext* context, const char* name, std::function<void()> dispatch);

/// Detaches the source and gives the reference back. Any thread.
void releaseSource(GSource* source);

}  // namespace korvane
