// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Database.h"

namespace korvane::sandbox {

/// A prepared SQLite statement with its values bound in order. Throws DatabaseError.
class Statement {
  public:
    template <class... Values>
    Statement(sqlite3* database, std::string_view sql, const Values&... values) : database_(database) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr));
        statement_.reset(statement);
        int index = 0;
        (bind(++index, values), ...);
    }

    /// True when there is a row to read.
    bool step() {
        const int result = sqlite3_step(statement_.get());
        if (result != SQLITE_ROW && result != SQLITE_DONE) check(result);
        return result == SQLITE_ROW;
    }

    std::string text(int column) const {
        const auto bytes = blob(column);
        return {bytes.begin(), bytes.end()};
    }
    std::int64_t integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
    std::vector<std::uint8_t> blob(int column) const {
        const auto* data = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement_.get(), column));
        return {data, data + sqlite3_column_bytes(statement_.get(), column)};
    }

  private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    void check(int result) const {
        if (result != SQLITE_OK) throw DatabaseError(std::string("database: ") + sqlite3_errmsg(database_));
    }
    // The values outlive the statement: each call binds its arguments and steps before it returns.
    void bind(int index, std::string_view text) {
        check(sqlite3_bind_text64(statement_.get(), index, text.data() ? text.data() : "", text.size(),
                                  SQLITE_STATIC, SQLITE_UTF8));
    }
    void bind(int index, std::int64_t number) { check(sqlite3_bind_int64(statement_.get(), index, number)); }
    void bind(int index, const std::vector<std::uint8_t>& bytes) {
        check(sqlite3_bind_blob64(statement_.get(), index, bytes.data(), bytes.size(), SQLITE_STATIC));
    }

    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

}  // namespace korvane::sandbox
