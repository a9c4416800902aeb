// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rapidjson/document.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/fakes/FakeBiometricContext.h"
#include "platform/fakes/FakePasteboard.h"
#include "platform/fakes/FakeSecureItemStore.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

/// The real main loop and network under the component, and the card service in a process of its own: nothing
/// that the service holds is found here. Reader, store and pasteboard are scripted. Log lines are masked, as
/// in a release build, and dropped.
class RealDevice {
  public:
    explicit RealDevice(CurlUrlSessionOptions session = {}, bool tls = true);
    ~RealDevice();
    RealDevice(const RealDevice&) = delete;

    /// Puts a new reader into the ports, and installs them.
    void install();
    void initialize(bool useBiometrics = false);
    /// Runs the main loop; false when the condition did not come true within a minute.
    bool until(const std::function<bool()>& condition) const;
    void pass(std::chrono::milliseconds time) const;
    /// Asks the host side of the card service; null when there is no such thing.
    rapidjson::Document ask(const std::string& method, const std::string& path, const std::string& body = {});
    std::string smsCode(const std::string& cardId);

    /// Requests of the component that were given up, having taken too long.
    int timeOuts() const;

    std::shared_ptr<GLibMainQueue> mainQueue = std::make_shared<GLibMainQueue>();
    std::shared_ptr<GLibTimers> timers = std::make_shared<GLibTimers>();
    std::shared_ptr<FakeBiometricContext> reader;
    std::shared_ptr<FakeSecureItemStore> store = std::make_shared<FakeSecureItemStore>();
    std::shared_ptr<FakePasteboard> pasteboard = std::make_shared<FakePasteboard>();
    std::string url, key, ivUrl;

  private:
    class Lines;
    const TemporaryFolder folder_;
    const std::string caFile_ = folder_ / "ca.pem";
    int process_ = 0;
    std::shared_ptr<Lines> lines_;
    std::shared_ptr<UrlSession> session_, host_;
};

}  // namespace korvane::testing
