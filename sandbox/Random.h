// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvane::sandbox {

/// Random bytes of the system, or, with a seed, the same ones at every start: for tests alone, whoever knows
/// the seed knows every key and code. Not thread-safe.
class Random {
  public:
    explicit Random(std::optional<std::uint64_t> seed) : seed_(seed) {}

    /// Throws std::runtime_error when the system's source fails; nothing weaker stands in for it.
    std::vector<std::uint8_t> bytes(std::size_t count);

    /// Lower-case hexadecimal text of `count` random bytes.
    std::string hex(std::size_t count);

    /// Decimal digits, each of them equally likely.
    std::string digits(std::size_t count);

  private:
    std::optional<std::uint64_t> seed_;
    std::uint64_t blocks_ = 0;
};

}  // namespace korvane::sandbox
