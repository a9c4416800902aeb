// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Initialize.h>

/// A picture of the watch that pays, drawn here, as a PNG file. Needs a QGuiApplication.
korvane::ImageData watchPicture();
