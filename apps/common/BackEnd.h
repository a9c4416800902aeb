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

    std::string failure{};            ///< why there is no service; empty when there is one
    std::shared_ptr<void> running{};  ///< keeps a service of this process going, and its CA file

    /// Base URL of the host's own server.
    std::string hostUrl() const { return ivUrl.substr(0, ivUrl.rfind('/')); }
};

/// The servers that the arguments name. With no card service among them one is started in this process, on a
/// free port of the loopback interface, with invented cards.
BackEnd backEnd(const std::string& service, const std::string& key, const std::string& ivUrl,
                const std::string& caFile);

}  // namespace korvane
