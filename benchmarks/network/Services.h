// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "benchmarks/network/Clients.h"

namespace korvane::bench {

/// A card service of this process, and what its clients must know.
class Service {
  public:
    virtual ~Service() = default;
    virtual std::string url() const = 0;
    virtual std::string caFile() const = 0;
    /// Sets the component up for it and gets it a PCI token; the ports must be installed. Main thread.
    virtual void enter(OwnClient& own) = 0;
};

/// One whose answers are there before the question: what a call costs beside it is the client's.
std::unique_ptr<Service> readyService(bool tls);
/// The card service for development, which deciphers, checks and stores as a real one does.
std::unique_ptr<Service> developmentService(bool tls);

}  // namespace korvane::bench
