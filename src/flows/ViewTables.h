// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "flows/ViewHost.h"

/// What each journey host and multi view can show, in the order in which the names are tested.
namespace korvane::table {

extern const ViewTable setPIN;
extern const ViewTable setPIN_NoNav;
extern const ViewTable activateCardAndSetPIN;
extern const ViewTable activateCardAndSetPIN_NoNav;
extern const ViewTable getCardImage;
extern const ViewTable cardImage_NoNav;
extern const ViewTable enterCardPINMultiView;
extern const ViewTable confirmCardPINMultiView;
extern const ViewTable autoNavMultiView;
extern const ViewTable activateCardAndSetPINMultiView;
extern const ViewTable cardImageActivateMultiView;

}  // namespace korvane::table
