// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/linux/CurlUrlSession.h"
#include "sandbox/CardService.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::sandbox {

using Texts = std::map<std::string, std::string>;

/// A client of its own making: it trusts the service's CA alone, enciphers, and deciphers what comes back.
/// The keys that begin with "encrypted" are named without it here.
class TestClient {
  public:
    struct Answer {
        UrlReply reply;
        Texts fields;  ///< of a JSON object; the enciphered ones deciphered
        std::string result() const { return fields.contains("Result") ? fields.at("Result") : ""; }
    };

    explicit TestClient(const CardService& service)
        : TestClient(service.url(), service.caPem(), service.keyBase64()) {}
    TestClient(std::string url, const std::string& caPem, const std::string& keyBase64);

    Answer send(const std::string& method, const std::string& path, const std::string& body = {},
                const Texts& headers = {});

    /// Asks for an IV, and enciphers under it from now on.
    void renewIv();
    /// A wire body: the plain fields enciphered, and the keys that every request carries.
    std::string bodyOf(const Texts& plain) const;
    Answer call(const std::string& endpoint, const Texts& plain);

    Answer signIn();
    /// The SMS road up to the PCI token of the card.
    std::string pciToken(const std::string& cardId);
    std::string lastCode(const std::string& cardId);
    /// The token that goes with the code that is sent.
    std::string smsToken(const std::string& cardId);
    Answer submit(const std::string& cardId, const std::string& smsToken, const std::string& code);
    Answer pinSet(const std::string& cardId, const std::string& pin, const std::string& token);
    Texts card(const std::string& cardId) { return send("GET", "/host/cards/" + cardId).fields; }

    std::string ivId;
    std::vector<std::uint8_t> iv;
    std::string bearer;
    std::vector<std::uint8_t> key;
    Texts wireHeaders{{"Content-Type", "application/json"}, {"Accept", "application/json"}};

  private:
    const std::string url_;
    const testing::TemporaryFolder folder_;
    CurlUrlSession session_;
};

/// A service that must start, and a client of it.
struct Bench {
    explicit Bench(CardServiceOptions options = {}) : service(std::move(options)) { EXPECT_EQ(error, ""); }

    CardService service;
    const std::string error = service.start();
    TestClient client{service};
};

}  // namespace korvane::sandbox
