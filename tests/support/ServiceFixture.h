// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {

using Fields = std::vector<std::pair<std::string, std::string>>;

/// The component set up on fake ports, with a key and a host that supplies IVs; and the service's side of the
/// cipher. An IV is held from the start, "iv-0".
class ServiceFixture : public testing::Test {
  protected:
    ServiceFixture();
    ~ServiceFixture() override;

    std::string encipher(const std::string& text) const;
    std::string decipher(const std::string& base64Text) const;
    /// A JSON object with these texts as they are.
    static std::string json(const Fields& fields);
    /// HTTP 200 with these texts enciphered.
    UrlReply ok(const Fields& fields) const { return answer(200, fields); }
    UrlReply answer(int status, const Fields& fields) const;

    /// The service's answers to come, in order; further requests stay unanswered.
    void willAnswer(std::vector<UrlReply> replies);
    /// The body of the n-th request.
    std::map<std::string, std::string> sent(std::size_t index) const;
    /// Last parts of the URLs called, in order.
    std::vector<std::string> called() const;
    void dropIv();
    void settle() { device.mainQueue->runAll(); }
    /// The console lines since the last call of this.
    std::vector<std::string> lines();

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
    const std::vector<std::uint8_t> iv{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    int ivsSupplied = 0;
};

}  // namespace korvane
