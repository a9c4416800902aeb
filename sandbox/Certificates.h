// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "sandbox/Outcome.h"

namespace korvane::sandbox {

/// What the service shows to its clients; all texts are PEM (RFC 7468).
struct ServerCertificate {
    std::string caCertificate;  ///< for the clients to trust
    std::string certificate;
    std::string privateKey;
};

/// Makes a server certificate for localhost, 127.0.0.1 and ::1 (EC P-256), signed by a CA of its own.
///
/// With an empty `directory` the CA lives in memory. Else it is kept there as "ca.pem" and "ca-key.pem"
/// (readable by the owner alone), made when both are missing or run out within 30 days, so that clients go on
/// trusting the service after a restart. The server certificate is made anew at each start and never stored.
///
/// The CA is constrained to the three loopback names (RFC 5280, 4.2.1.10): whoever gets hold of its key gains
/// nothing on a machine that trusts it.
///
/// Fails when a file cannot be read or written, or what it holds is no such certificate and key.
Outcome<ServerCertificate> makeServerCertificate(const std::string& directory);

}  // namespace korvane::sandbox
