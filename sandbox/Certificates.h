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

/// Makes a server certificate (EC P-256) for localhost, 127.0.0.1 and ::1, and
/// for `host` if that is not empty: an IP address or a DNS name. It is signed
/// by a CA of its own.
///
/// With an empty `directory` the CA lives in memory. Else it is kept there as "ca.pem" and "ca-key.pem"
/// (readable by the owner alone), made when both are missing or run out within 30 days, so that clients go on
/// trusting the service after a restart. The server certificate is made anew at each start and never stored.
///
/// The CA is constrained to these names (RFC 5280, 4.2.1.10): whoever gets hold
/// of its key gains next to nothing on a machine that trusts it.
///
/// Fails when a file cannot be read or written, what it holds is no such
/// certificate and key, the CA that is kept is for other names, or `host` is
/// neither address nor name.
Outcome<ServerCertificate> makeServerCertificate(const std::string& directory, const std::string& host = {});

}  // namespace korvane::sandbox
