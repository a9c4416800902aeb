// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvane::bench {

/// What nobody can do without: AES-256-CBC by EVP into a buffer that is there already, with a cipher that was
/// fetched before. The key is handled as the component handles it: a context, and with it a key schedule, is
/// made for each call and wiped with it. `output` has room for the input and one block more; gives the bytes
/// written, and ends the process on a failure.
std::size_t bareEncrypt(std::span<const std::uint8_t> input, std::uint8_t* output);
std::size_t bareDecrypt(std::span<const std::uint8_t> input, std::uint8_t* output);

}  // namespace korvane::bench
