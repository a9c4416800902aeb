// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Database.h"

#include <sqlite3.h>

#include "sandbox/OwnFile.h"
#include "sandbox/SeedCards.h"
#include "sandbox/Statement.h"

namespace korvane::sandbox {
namespace {

constexpr const char* schema =
    "CREATE TABLE IF NOT EXISTS cards (id TEXT PRIMARY KEY, type TEXT NOT NULL, status TEXT NOT NULL,"
    " status_before_freeze TEXT NOT NULL, pin TEXT NOT NULL, pan TEXT NOT NULL, cvv TEXT NOT NULL,"
    " expiry TEXT NOT NULL, first_name TEXT NOT NULL, middle_name TEXT NOT NULL, last_name TEXT NOT NULL,"
    " network TEXT NOT NULL) STRICT;"
    "CREATE TABLE IF NOT EXISTS ivs (number INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT NOT NULL UNIQUE,"
    " bytes BLOB NOT NULL, expires INTEGER NOT NULL) STRICT;"
    "CREATE TABLE IF NOT EXISTS tokens (kind INTEGER NOT NULL, text TEXT NOT NULL, card_id TEXT NOT NULL,"
    " code TEXT NOT NULL, wrong_codes INTEGER NOT NULL, expires INTEGER NOT NULL, PRIMARY KEY (kind, text)) "
    "STRICT;"
    "CREATE TABLE IF NOT EXISTS messages (number INTEGER PRIMARY KEY AUTOINCREMENT, card_id TEXT NOT NULL,"
    " code TEXT NOT NULL) STRICT;"
    "CREATE TABLE IF NOT EXISTS keys (number INTEGER PRIMARY KEY CHECK (number = 1), base64 TEXT NOT NULL) "
    "STRICT;";

constexpr std::string_view cardColumns =
    "SELECT id, type, status, status_before_freeze, pin, pan, cvv, expiry, first_name, middle_name, "
    "last_name,"
    " network FROM cards ";

std::int64_t number(TokenKind kind) {
    return static_cast<std::int64_t>(kind);
}

Card cardOf(const Statement& row) {
    return {row.text(0), row.text(1), row.text(2), row.text(3), row.text(4),  row.text(5),
            row.text(6), row.text(7), row.text(8), row.text(9), row.text(10), row.text(11)};
}

std::optional<Iv> ivOf(Statement row) {
    if (!row.step()) return std::nullopt;
    return Iv{row.text(0), row.blob(1), row.integer(2)};
}

}  // namespace

void Database::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

Database::Database(const std::string& file) {
    if (!file.empty()) {
        // SQLite follows links and takes a journal that lies beside the file.
        for (const char* const beside : {"-journal", "-wal", "-shm"})
            if (const std::string wrong = ownFileProblem(file + beside); !wrong.empty())
                throw DatabaseError(wrong);
        if (const std::string wrong = claimOwnFile(file); !wrong.empty()) throw DatabaseError(wrong);
    }
    sqlite3* handle = nullptr;
    // The caller holds a lock already, so SQLite needs none of its own.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int opened = sqlite3_open_v2(file.empty() ? ":memory:" : file.c_str(), &handle, flags, nullptr);
    handle_.reset(handle);
    if (opened != SQLITE_OK || sqlite3_exec(handle, schema, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw DatabaseError("database " + file + ": " + (handle ? sqlite3_errmsg(handle) : "out of memory"));
    }
    addMissingCards();
}

void Database::addMissingCards() {
    for (const Card& seed : seedCards()) {
        if (!card(seed.id)) putCard(seed);
    }
}

void Database::reset(std::int64_t now) {
    for (const char* const table : {"cards", "tokens", "messages"}) {
        Statement(handle_.get(), std::string("DELETE FROM ") + table).step();
    }
    Statement(handle_.get(), "UPDATE ivs SET expires = ?1 WHERE expires > ?1", now).step();
    addMissingCards();
}

std::string Database::key() {
    Statement row(handle_.get(), "SELECT base64 FROM keys");
    return row.step() ? row.text(0) : std::string{};
}

void Database::putKey(const std::string& base64) {
    Statement(handle_.get(), "INSERT INTO keys VALUES (1, ?)", base64).step();
}

std::vector<Card> Database::cards() {
    Statement row(handle_.get(), std::string(cardColumns) + "ORDER BY rowid");
    std::vector<Card> result;
    while (row.step()) result.push_back(cardOf(row));
    return result;
}

std::optional<Card> Database::card(std::string_view id) {
    Statement row(handle_.get(), std::string(cardColumns) + "WHERE id = ?", id);
    if (!row.step()) return std::nullopt;
    return cardOf(row);
}

void Database::putCard(const Card& card) {
    Statement(
        handle_.get(),
        "INSERT INTO cards VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (id) DO UPDATE SET"
        " type = excluded.type, status = excluded.status,"
        " status_before_freeze = excluded.status_before_freeze, pin = excluded.pin, pan = excluded.pan,"
        " cvv = excluded.cvv, expiry = excluded.expiry, first_name = excluded.first_name,"
        " middle_name = excluded.middle_name, last_name = excluded.last_name, network = excluded.network",
        card.id, card.type, card.status, card.statusBeforeFreeze, card.pin, card.pan, card.cvv, card.expiry,
        card.firstName, card.middleName, card.lastName, card.network)
        .step();
}

void Database::addIv(const Iv& iv) {
    Statement(handle_.get(), "INSERT OR REPLACE INTO ivs (id, bytes, expires) VALUES (?, ?, ?)", iv.id,
              iv.bytes, iv.expires)
        .step();
}

std::optional<Iv> Database::iv(std::string_view id) {
    return ivOf({handle_.get(), "SELECT id, bytes, expires FROM ivs WHERE id = ?", id});
}

std::optional<Iv> Database::newestIv() {
    return ivOf({handle_.get(), "SELECT id, bytes, expires FROM ivs ORDER BY number DESC LIMIT 1"});
}

void Database::expireIv(std::string_view id, std::int64_t now) {
    Statement(handle_.get(), "UPDATE ivs SET expires = ? WHERE id = ?", now, id).step();
}

void Database::forgetIv(std::string_view id) {
    Statement(handle_.get(), "UPDATE ivs SET id = '-' || number WHERE id = ?", id).step();
}

void Database::putToken(const Token& token) {
    Statement(handle_.get(), "INSERT OR REPLACE INTO tokens VALUES (?, ?, ?, ?, ?, ?)", number(token.kind),
              token.text, token.cardId, token.code, std::int64_t{token.wrongCodes}, token.expires)
        .step();
}

std::optional<Token> Database::token(TokenKind kind, std::string_view text) {
    Statement row(handle_.get(),
                  "SELECT card_id, code, wrong_codes, expires FROM tokens WHERE kind = ? AND text = ?",
                  number(kind), text);
    if (!row.step()) return std::nullopt;
    return Token{kind,          std::string(text), row.text(0), row.text(1), static_cast<int>(row.integer(2)),
                 row.integer(3)};
}

void Database::removeToken(TokenKind kind, std::string_view text) {
    Statement(handle_.get(), "DELETE FROM tokens WHERE kind = ? AND text = ?", number(kind), text).step();
}

void Database::removeSmsTokensOf(std::string_view cardId) {
    Statement(handle_.get(), "DELETE FROM tokens WHERE kind = ? AND card_id = ?", number(TokenKind::sms),
              cardId)
        .step();
}

void Database::addSms(const Sms& sms) {
    Statement(handle_.get(), "INSERT INTO messages (card_id, code) VALUES (?, ?)", sms.cardId, sms.code)
        .step();
}

std::optional<Sms> Database::lastSms(std::string_view cardId) {
    Statement row(
        handle_.get(),
        "SELECT card_id, code FROM messages WHERE ?1 = '' OR card_id = ?1 ORDER BY number DESC LIMIT 1",
        cardId);
    if (!row.step()) return std::nullopt;
    return Sms{row.text(0), row.text(1)};
}

void Database::forgetExpiredBefore(std::int64_t time) {
    Statement(handle_.get(), "DELETE FROM ivs WHERE expires < ?", time).step();
    Statement(handle_.get(), "DELETE FROM tokens WHERE expires < ?", time).step();
}

}  // namespace korvane::sandbox
