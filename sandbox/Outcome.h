// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace korvane::sandbox {

struct Failure {
    std::string reason;
};

/// A value, or the reason why there is none.
template <class T>
class Outcome {
  public:
    Outcome(T value) : value_(std::move(value)) {}
    Outcome(Failure failure) : reason_(std::move(failure.reason)) {}

    explicit operator bool() const { return value_.has_value(); }
    T& operator*() { return *value_; }
    const T& operator*() const { return *value_; }
    T* operator->() { return &*value_; }
    const T* operator->() const { return &*value_; }
    const std::string& reason() const { return reason_; }

  private:
    std::optional<T> value_;
    std::string reason_;
};

}  // namespace korvane::sandbox
