// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace korvane {

/// A stretch of a console line. What is written in the code is told as it is; anything else counts as a
/// secret, which a console may have masked, unless the caller says `inClear`.
class LogPiece {
  public:
    template <std::size_t size>
    constexpr LogPiece(const char (&literal)[size]) : text_(literal, size - 1) {}
    template <std::size_t size>
    LogPiece(char (&buffer)[size]) = delete;  // its text may end sooner
    constexpr LogPiece(std::string_view value) : text_(value), secret_(true) {}
    LogPiece(const std::string& value) : LogPiece(std::string_view(value)) {}

    std::string_view text() const { return text_; }
    bool isSecret() const { return secret_; }

  private:
    friend constexpr LogPiece inClear(std::string_view text);

    std::string_view text_;
    bool secret_ = false;
};

/// For names and words that the component itself chose.
constexpr LogPiece inClear(std::string_view text) {
    LogPiece piece(text);
    piece.secret_ = false;
    return piece;
}

/// Writes one console line, the pieces joined as they are.
void log(std::initializer_list<LogPiece> pieces);
inline void log(const LogPiece& whole) {
    log({whole});
}

}  // namespace korvane
