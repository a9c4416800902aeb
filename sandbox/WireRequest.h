// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/HttpServer.h"
#include "sandbox/Outcome.h"

namespace korvane::sandbox {

/// A row of the wire format. Every request also carries "offsetId", "encryptedCardId", "UUID" and "brandId".
struct Endpoint {
    std::string_view name;  ///< the client's name for it; faults and the journal go by it
    std::string_view path;
    bool needsBearerToken;
    std::vector<std::string_view> keys;     ///< the endpoint's own
    std::vector<std::string_view> answers;  ///< the keys of a good answer beside the result

    bool carriesPciToken() const;
    bool answersKey(std::string_view key) const;
};

std::span<const Endpoint> endpoints();

/// None has the value nullptr.
const Endpoint* endpointAt(std::string_view path);
const Endpoint* endpointNamed(std::string_view name);

/// Values by key: still enciphered in a body, plain once deciphered.
using Fields = std::map<std::string, std::string, std::less<>>;

/// The body of a request to the endpoint. Fails when the headers, the JSON or the set of keys is not exactly
/// that of the wire format.
Outcome<Fields> readWireBody(const Endpoint& endpoint, const HttpRequest& request);

/// The enciphered fields of a body in clear, under their wire keys. Fails, naming the field, when one does
/// not decipher to UTF-8 text.
Outcome<Fields> decipherFields(const Fields& body, std::span<const std::uint8_t> key,
                               std::span<const std::uint8_t> iv);

/// A JSON answer of enciphered fields.
std::string encipherFields(const std::vector<std::pair<std::string, std::string>>& plain,
                           std::span<const std::uint8_t> key, std::span<const std::uint8_t> iv);

}  // namespace korvane::sandbox
