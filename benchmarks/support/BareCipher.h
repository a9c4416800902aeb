// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace korvane::bench {

/// The one key of all measurements that go over a network, and an IV for a service that takes any.
inline const std::string key(32, '\7');
inline const std::string iv = "0123456789abcdef";

/// AES-256-CBC by OpenSSL as a person would write it who needs it once: a fresh context a call.
std::string encipher(std::string_view plain, std::string_view iv);
std::string decipher(std::string_view enciphered, std::string_view iv);

/// Standard base64, by OpenSSL.
std::string base64(std::string_view bytes);

}  // namespace korvane::bench
