// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/Console.h>

#include <cstdio>

namespace korvane {

/// Writes each line at once, with one write to the stream's descriptor. An app whose standard output carries
/// something else hands in `stderr`. A line that cannot be written is lost: a log must not stop its app.
class KORVANE_API StdoutConsole final : public Console {
  public:
    /// The stream is not owned, and has a descriptor.
    explicit StdoutConsole(std::FILE* stream = stdout) : stream_(stream) {}

    void line(std::string_view text) override;

  private:
    std::FILE* stream_;
};

}  // namespace korvane
