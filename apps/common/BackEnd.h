// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

namespace korvane {

/// The servers behind a host app: the card service, and where the host gets IVs.
struct BackEnd {
    std::string service;  ///< base URL of the card service
    std::string key;      ///< its pre-shared key, in base64
    std::string ivUrl;
    std::string caFile;  ///< PEM file of the authorities to trust; empty: the system's

    std::string failure;            ///< why there is no service; empty when there is one
    std::shared_ptr<void> running;  ///< keeps a service of this process going, and its CA file
};

/// Starts a card service with invented cards in this process, on a free port of the loopback interface.
BackEnd startBackEnd();

}  // namespace korvane
