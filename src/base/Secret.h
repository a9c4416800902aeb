// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace korvane {

/// Overwrites with zeros in a way that the compiler cannot leave out, then empties.
KORVANE_API void wipe(std::string& text);
KORVANE_API void wipe(std::vector<std::uint8_t>& bytes);
/// The zeros alone.
void wipe(void* memory, std::size_t size);

/// Owns a text or bytes that held a secret, and wipes them when it goes.
template <class Buffer>
class Wiped {
  public:
    Wiped() = default;
    // A short text is moved by copying its bytes: the original is wiped too.
    explicit Wiped(Buffer value) : value_(std::move(value)) { wipe(value); }
    Wiped(Wiped&& other) noexcept : value_(std::move(other.value_)) { wipe(other.value_); }
    Wiped& operator=(Wiped&& other) noexcept {
        std::swap(value_, other.value_);
        wipe(other.value_);
        return *this;
    }
    Wiped(const Wiped&) = delete;
    Wiped& operator=(const Wiped&) = delete;
    ~Wiped() { wipe(value_); }

    Buffer& operator*() { return value_; }
    const Buffer& operator*() const { return value_; }
    Buffer* operator->() { return &value_; }
    const Buffer* operator->() const { return &value_; }

  private:
    Buffer value_;
};

}  // namespace korvane
