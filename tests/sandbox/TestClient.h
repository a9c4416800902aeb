// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "sandbox/CardService.h"

namespace korvane::sandbox {

using Texts = std::map<std::string, std::string>;

/// A client of its own making: it trusts the service's CA alone, enciphers, and deciphers what comes back.
class TestClient {
  public:
    struct Answer {
        CURLcode transport = CURLE_OK;
        long status = 0;
        std::string body;
        Texts fields;  ///< of a JSON object; deciphered where it was enciphered

        std::string result() const {
            return fields.contains("encryptedResult") ? fields.at("encryptedResult") : "";
        }
    };

    explicit TestClient(const CardService& service);
    TestClient(std::string url, std::string caPem, const std::string& keyBase64);

    Answer send(const std::string& method, const std::string& path, const std::string& body = {},
                const std::vector<std::string>& headers = {});

    /// Asks for an IV, and enciphers under it from now on.
    void renewIv();

    /// A wire body: the plain fields enciphered, and the keys that every request carries.
    std::string bodyOf(const Texts& plain) const;
    Answer call(const std::string& path, const Texts& plain);

    void signIn();
    /// The SMS road up to the PCI token of the card.
    std::string pciToken(const std::string& cardId);
    std::string lastCode(const std::string& cardId);
    Answer pinSet(const std::string& cardId, const std::string& pin, const std::string& token);
    Texts card(const std::string& cardId) { return send("GET", "/host/cards/" + cardId).fields; }

    std::string ivId;
    std::vector<std::uint8_t> iv;
    std::string bearer;
    std::vector<std::uint8_t> key;
    /// As the wire asks for them; a test breaks them.
    std::vector<std::string> wireHeaders{"Content-Type: application/json", "Accept: application/json"};

  private:
    struct Closer {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    std::string encipher(const std::string& plain) const;

    std::string url_;
    std::string caPem_;
    std::unique_ptr<CURL, Closer> curl_;
};

/// A service that must start, and a client of it.
struct Bench {
    explicit Bench(CardServiceOptions options = {});
    CardService service;
    std::unique_ptr<TestClient> client;
};

}  // namespace korvane::sandbox
