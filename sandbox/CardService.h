// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane::sandbox {

struct CardServiceOptions {
    /// An address of this machine or a name that stands for one; "0.0.0.0" and "::" are all of them.
    std::string address = "127.0.0.1";
    int port = 0;     ///< 0 takes a free one
    bool tls = true;  ///< false: plain HTTP, on the loopback interface alone

    /// Where the CA is kept, so that clients go on trusting it; empty: in memory.
    std::string tlsDirectory{};

    /// SQLite file for cards, IVs, tokens and the key; empty: in memory.
    std::string databaseFile{};

    /// Pre-shared key of 16, 24 or 32 bytes (RFC 4648, section 4); empty: that of
    /// the database file, or 32 fresh bytes.
    std::string keyBase64{};

    /// Makes key, IVs, tokens and codes the same at every start, given the same requests in the same order.
    /// For tests alone: whoever knows the seed knows them all. TLS keys are random all the same.
    std::optional<std::uint64_t> seed{};

    /// The bytes of every card's picture; empty: one is drawn for the card's type.
    std::string picture{};

    /// Fault rules in force from the start, as JSON (see FaultRule.h); empty: none.
    std::string faultRules{};

    std::chrono::seconds ivLife{600};
    std::chrono::seconds pciTokenLife{300};
    std::chrono::seconds smsTokenLife{300};
    std::chrono::seconds bearerTokenLife{300};

    /// Takes one line for each request, without line end. Called on server threads, one at a time.
    std::function<void(const std::string& line)> log{};
    bool logSecrets = false;  ///< the lines also show deciphered fields and SMS codes
};

struct CardSummary {
    std::string id;
    std::string type;
    std::string status;
    std::string name;  ///< for a list in a host app: type and last four digits
};

/// The card service for development: the ten endpoints that the component calls, and a host side under
/// "/host/" that stands for the bank's own systems and asks nobody who they are. It listens on the loopback
/// interface unless told otherwise. "GET /" is a page that shows what goes on.
///
/// Any thread may call any method, but not from inside the log or SMS callback, which may call `lastSmsCode`
/// and `cards` only. Nothing throws. The process ignores SIGPIPE from the first start on.
class CardService {
  public:
    explicit CardService(CardServiceOptions options = {});
    ~CardService();
    CardService(const CardService&) = delete;
    CardService& operator=(const CardService&) = delete;

    /// Starts serving on threads of its own. Answers "" or the reason of the
    /// failure: a bad option, a port in use, a file that cannot be used, a key
    /// that is not that of the database file, or "already running". After `stop`
    /// it starts again, with a new key and new state unless they were given or
    /// are in a file.
    [[nodiscard]] std::string start();

    /// Answers no further request, waits for those under way, and frees everything. Does nothing when
    /// stopped.
    void stop();

    /// "https://localhost:PORT", or the address listened on; "" before the first start, as the three below.
    std::string url() const;
    std::string caPem() const;      ///< CA certificate for clients to trust; "" in plain HTTP
    std::string keyBase64() const;  ///< the pre-shared key
    std::string ivUrl() const;      ///< where a host app gets IVs: POST, answers {"ivId", "iv"}

    /// The last code sent, to the card's holder or with no card id to anybody; "" when there is none.
    std::string lastSmsCode(const std::string& cardId = {}) const;

    std::vector<CardSummary> cards() const;  ///< not those that force a failure; empty when stopped

    /// Called on a server thread, after the code is in force and before the request is answered. Replaces the
    /// former callback; an empty one ends it. The former one may still run when this returns.
    void onSms(std::function<void(std::string cardId, std::string code)> callback);

    /// Whether only this machine reaches the address.
    static bool isLoopback(const std::string& address);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace korvane::sandbox
