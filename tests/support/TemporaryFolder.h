// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace korvane::testing {

/// A folder that goes with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "korvane-XXXXXX";
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;

    std::string operator/(std::string_view name) const { return path_ / name; }
    /// Writes a file, and gives its path.
    std::string file(std::string_view name, std::string_view content) const {
        std::ofstream(path_ / name) << content;
        return path_ / name;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace korvane::testing
