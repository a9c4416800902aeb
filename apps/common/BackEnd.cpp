// SPDX-License-Identifier: Apache-2.0
#include "common/BackEnd.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

#include "sandbox/CardService.h"
#include "sandbox/OwnFile.h"

namespace korvane {
namespace {

/// A card service, and its CA's certificate in a directory that nobody else can write to.
class LocalBackEnd {
  public:
    LocalBackEnd() = default;
    ~LocalBackEnd() {
        std::error_code ignored;
        if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
    }
    LocalBackEnd(const LocalBackEnd&) = delete;
    LocalBackEnd& operator=(const LocalBackEnd&) = delete;

    std::string start() {
        if (std::string failure = service_.start(); !failure.empty()) return failure;
        std::error_code error;
        std::string pattern = (std::filesystem::temp_directory_path(error) / "korvane-XXXXXX").string();
        if (error || !::mkdtemp(pattern.data())) return "no temporary directory";
        directory_ = pattern;
        return sandbox::writeOwnFile(caFile(), service_.caPem());
    }

    std::string caFile() const { return (directory_ / "ca.pem").string(); }
    const sandbox::CardService& service() const { return service_; }

  private:
    sandbox::CardService service_;
    std::filesystem::path directory_;
};

}  // namespace

BackEnd backEnd(const std::string& service, const std::string& key, const std::string& ivUrl,
                const std::string& caFile) {
    if (!service.empty()) return {service, key, ivUrl.empty() ? service + "/host/iv" : ivUrl, caFile};
    const auto local = std::make_shared<LocalBackEnd>();
    BackEnd own;
    own.failure = local->start();
    if (!own.failure.empty()) return own;
    return {local->service().url(),
            local->service().keyBase64(),
            local->service().ivUrl(),
            local->caFile(),
            {},
            local};
}

}  // namespace korvane
