// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sandbox/FaultRule.h"

namespace korvane::sandbox {

/// A request to one of the ten endpoints, and what came of it. Values are
/// plain; a long one is clipped.
struct JournalEntry {
    std::int64_t number = 0;  ///< from 1 on, never used twice
    std::int64_t time = 0;    ///< milliseconds since 1970
    std::int64_t tookMs = 0;  ///< until the answer was ready; its way to the client is not in it
    std::string endpoint;
    std::string card;  ///< "" when the request could not be read, as are its fields then
    std::vector<std::pair<std::string, std::string>> request;
    int status = 0;  ///< 0 while there is no answer, and where none is sent
    std::vector<std::pair<std::string, std::string>> answer;
    std::string note;  ///< the result word, or why the request was refused
    std::string sms;   ///< the code that it sent
    JsonObject fault;  ///< the rule that acted
};

struct JournalQuery {
    std::string endpoint;  ///< "" for all, as with the card
    std::string card;
    std::int64_t since = 0;  ///< entries of a higher number
    std::int64_t last = kept;

    static constexpr std::int64_t kept = 1000;
};

/// The last 1000 requests, and the count of all. Not thread-safe.
class Journal {
  public:
    /// A request has come; answers its number.
    std::int64_t open(std::string_view endpoint);

    /// Puts the entry in the place of the one of its number, if that is still
    /// kept. Time and number stay.
    void close(JournalEntry entry);

    void clear();

    /// {"counts": {endpoint: n, …}, "next": number of the next entry, "entries":
    /// [oldest first]}. The counts are those of all requests since the start or
    /// the last `clear`.
    std::string toJson(const JournalQuery& query) const;

  private:
    std::deque<JournalEntry> entries_;
    std::map<std::string, std::int64_t, std::less<>> counts_;
    std::int64_t next_ = 1;
};

}  // namespace korvane::sandbox
