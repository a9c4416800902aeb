// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace korvane::sandbox {

/// What SQLite reported. Thrown inside this folder alone: a request answers it with status 500.
class DatabaseError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Card {
    std::string id;
    std::string type;
    std::string status;
    std::string statusBeforeFreeze;  ///< what lifting the freeze goes back to; "" when not frozen
    std::string pin;                 ///< "" before the first one is set
    std::string pan;
    std::string cvv;
    std::string expiry;  ///< MM/YY
    std::string firstName;
    std::string middleName;
    std::string lastName;
    std::string network;
};

struct Iv {
    std::string id;
    std::vector<std::uint8_t> bytes;
    std::int64_t expires = 0;  ///< milliseconds since 1970, as every time here
};

enum class TokenKind { bearer, sms, pci };

struct Token {
    TokenKind kind = TokenKind::bearer;
    std::string text;
    std::string cardId;  ///< "" for a bearer token
    std::string code;    ///< of an SMS token alone
    int wrongCodes = 0;  ///< of an SMS token alone
    std::int64_t expires = 0;
};

struct Sms {
    std::string cardId;
    std::string code;
};

/// The service's whole state, in memory or in a file. Every method throws DatabaseError. Not thread-safe.
class Database {
  public:
    /// In memory when `file` is empty. A file is made readable by its owner
    /// alone, as it holds the key. Puts in the seed cards that are missing.
    explicit Database(const std::string& file);

    /// Cards as at the start; no token, no SMS; every IV handed out so far is
    /// expired, so that a client that still holds one learns it.
    void reset(std::int64_t now);

    /// The pre-shared key in base64; "" before one is put.
    std::string key();
    void putKey(const std::string& base64);

    std::vector<Card> cards();
    std::optional<Card> card(std::string_view id);
    /// Replaces the card of the same id, or adds it.
    void putCard(const Card& card);

    void addIv(const Iv& iv);
    std::optional<Iv> iv(std::string_view id);
    std::optional<Iv> newestIv();
    /// The bytes stay: the answer that says so is enciphered under them.
    void expireIv(std::string_view id, std::int64_t now);
    /// Gives the IV another id; its bytes stay for the answer.
    void forgetIv(std::string_view id);

    /// Replaces the token of the same text, or adds it.
    void putToken(const Token& token);
    std::optional<Token> token(TokenKind kind, std::string_view text);
    void removeToken(TokenKind kind, std::string_view text);
    void removeSmsTokensOf(std::string_view cardId);

    void addSms(const Sms& sms);
    /// The last one of the card, or of any card when `cardId` is empty.
    std::optional<Sms> lastSms(std::string_view cardId);

    /// Drops IVs and tokens that expired before `time`, so that a database file does not grow for ever.
    void forgetExpiredBefore(std::int64_t time);

  private:
    void addMissingCards();

    struct Closer {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Closer> handle_;
};

}  // namespace korvane::sandbox
