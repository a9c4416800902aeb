// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {

using Fields = std::vector<std::pair<std::string, std::string>>;

/// The component set up on fake ports, with a key and a host that supplies IVs at once; and the service's
/// side of the cipher. An IV is held from the start, "iv-0".
class ServiceFixture : public testing::Test {
  protected:
    ServiceFixture();

    std::string encipher(const std::string& text) const;
    /// An answer whose body has these texts, enciphered.
    UrlReply answer(int status, const Fields& fields) const;
    UrlReply ok(const Fields& fields) const { return answer(200, fields); }
    UrlReply result(const std::string& word) const { return ok({{"encryptedResult", word}}); }

    /// The service's answers to come, in order; further requests stay unanswered.
    void willAnswer(std::vector<UrlReply> replies);
    /// The n-th request: "pinSet offsetId=iv-0 CardId=card-1 …"; values of "encrypted…" keys are deciphered
    /// and the keys cut, so that one that is not enciphered shows.
    std::string sent(std::size_t index) const;
    void dropIv() {
        config.ivIdStr.clear();
        config.ivByteArray.clear();
    }
    void settle() { device.mainQueue->runAll(); }
    /// The console lines since the last call of this, joined by "|".
    std::string printed();

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
    const std::vector<std::uint8_t> iv{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const std::string ivText = "AAECAwQFBgcICQoLDA0ODw==";
    int ivsSupplied = 0;
};

}  // namespace korvane
