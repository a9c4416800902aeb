// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

// What the component posts to itself, through the notification center and with an empty user info, so that
// what is on screen is drawn anew. A host is told neither: it made the change.

/// `initialize` has stored a palette and radii.
inline constexpr const char* NotificationAppearanceChanged = "KorvaneAppearanceChanged";
/// Texts are others than before.
inline constexpr const char* NotificationLanguageChanged = "KorvaneLanguageChanged";

}  // namespace korvane
