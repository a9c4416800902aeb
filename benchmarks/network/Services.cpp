// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/network/Services.h"

#include <korvane/Initialize.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "apps/common/HostIv.h"
#include "benchmarks/support/BareCipher.h"
#include "benchmarks/support/CannedService.h"
#include "benchmarks/support/Fatal.h"
#include "operations/Operations.h"
#include "sandbox/CardService.h"
#include "sdk/SdkConfig.h"

namespace korvane::bench {
namespace {

class Ready final : public Service {
  public:
    explicit Ready(bool tls) : service_(tls) {}

    std::string url() const override { return service_.server().url(); }
    std::string caFile() const override { return service_.server().caFile(); }
    void enter(OwnClient&) override {
        CannedService::initialize(url());
        SdkConfig::sharedInstance().currentPciToken = "pci-token";
    }

  private:
    CannedService service_;
};

class Development final : public Service {
  public:
    explicit Development(bool tls)
        : service_({.tls = tls,
                    .keyBase64 = base64(key),
                    .ivLife = std::chrono::hours(1),
                    .pciTokenLife = std::chrono::hours(1),
                    .bearerTokenLife = std::chrono::hours(1)}) {
        const std::string failure = service_.start();
        require(failure.empty(), failure);
        if (!tls) return;
        std::string pattern = (std::filesystem::temp_directory_path() / "korvane-bench-XXXXXX").string();
        require(::mkdtemp(pattern.data()) != nullptr, "no temporary directory");
        folder_ = pattern;
        std::ofstream(caFile()) << service_.caPem();
    }
    ~Development() override {
        std::error_code ignored;
        if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
    }

    std::string url() const override { return service_.url(); }
    std::string caFile() const override { return folder_.empty() ? "" : (folder_ / "ca.pem").string(); }
    void enter(OwnClient& own) override {
        require(initialize(service_.keyBase64(), url(), hostIvCallback(service_.ivUrl()), false, {}, {}),
                "the component takes no key");
        own.run(doPciTokenRequest);
        own.state()->twoFactorCode = service_.lastSmsCode(own.state()->cardId);
        own.run(doPciTokenSubmission);
    }

  private:
    sandbox::CardService service_;
    std::filesystem::path folder_;
};

}  // namespace

std::unique_ptr<Service> readyService(bool tls) {
    return std::make_unique<Ready>(tls);
}

std::unique_ptr<Service> developmentService(bool tls) {
    return std::make_unique<Development>(tls);
}

}  // namespace korvane::bench
