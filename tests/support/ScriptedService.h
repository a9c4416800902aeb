// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {

/// Texts by the names that they have in a body.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// A card service behind the fake session: it answers each endpoint ("pinSet") as it was told, else with
/// success. Making it installs fake ports and initializes the component with a host that supplies IVs at
/// once: "iv-1", "iv-2", …
class ScriptedService {
  public:
    ScriptedService();

    std::string encipher(const std::string& text) const;
    /// An answer whose body has these texts, enciphered.
    UrlReply answer(int status, const Fields& fields) const;
    UrlReply ok(const Fields& fields) const { return answer(200, fields); }
    UrlReply result(const std::string& word) const { return ok({{"encryptedResult", word}}); }
    UrlReply refusal(int status, const std::string& word) const {
        return answer(status, {{"encryptedResult", word}});
    }

    /// The next answers of an endpoint, in order; `hang` leaves a request unanswered.
    void next(const std::string& endpoint, UrlReply reply) { scripted_[endpoint].push_back(reply); }
    void hang(const std::string& endpoint) { scripted_[endpoint].push_back(std::nullopt); }
    /// The next answers whatever is asked, in order; further requests stay unanswered.
    void willAnswer(std::vector<UrlReply> replies);

    /// Runs the main queue until nothing is left.
    void settle() { device.mainQueue->runAll(); }
    /// How often the endpoint was called, and what the field held the last time, deciphered.
    int calls(const std::string& endpoint) const;
    std::string sent(const std::string& endpoint, const std::string& name) const;
    /// The n-th request: "pinSet offsetId=iv-0 CardId=card-1 …"; values of "encrypted…" keys are deciphered
    /// and the keys cut, so that one that is not enciphered shows.
    std::string sent(std::size_t index) const;
    /// The console lines since the last call of this, joined by "|".
    std::string printed();

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
    const std::vector<std::uint8_t> iv{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const std::string ivText = "AAECAwQFBgcICQoLDA0ODw==";
    bool hostSuppliesIvs = true;
    int ivsSupplied = 0;
    std::string cardStatus = "A1";
    std::string cardType = "physical";
    /// What the card's details are, by the reply's field.
    std::map<std::string, std::string> cardDetails;

  private:
    UrlReply success(const std::string& endpoint) const;
    Fields plainFields(const UrlRequest& request) const;

    std::map<std::string, std::deque<std::optional<UrlReply>>> scripted_;
};

}  // namespace korvane
