// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "custody/AuthenticateBiometric.h"
#include "platform/fakes/FakeSecureItemStore.h"
#include "sdk/SdkConfig.h"

namespace korvane {

/// The item of this account, of the key and the service that the component has now.
inline FakeSecureItemStore::Name storedItem(const std::string& account) {
    return {"KorvanePCISDKService", account, AuthenticateBiometric::ownerOf(SdkConfig::sharedInstance())};
}

}  // namespace korvane
