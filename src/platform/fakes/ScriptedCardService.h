// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "FakePorts.h"

namespace korvane {

/// A card service in memory with a device of fakes around it, for tests without a network: journeys run
/// against it in milliseconds. Every answer is really enciphered (AES-256-CBC), under one key and one IV.
/// Each endpoint, named by the last part of its path ("pinSet"), answers as it was told, else with success:
/// an active physical card, any SMS code is right. It checks nothing of a request; `sent` tells what was in
/// it. Main thread only. Let it outlive the journeys.
class KORVANE_API ScriptedCardService {
  public:
    /// Texts by the names that they have in a body.
    using Fields = std::vector<std::pair<std::string, std::string>>;

    /// Installs the fakes in the place of whatever was installed, and initializes the component without
    /// biometrics and with a host that supplies IVs at once: "iv-1", "iv-2", … A test of a host's own set-up
    /// calls `initialize` again, with `keyText` and an `IvCallback` that supplies `ivText`.
    ScriptedCardService();
    ScriptedCardService(const ScriptedCardService&) = delete;
    ScriptedCardService& operator=(const ScriptedCardService&) = delete;

    /// AES-256-CBC with PKCS#7 padding, in base64.
    std::string encipher(const std::string& text) const;
    /// An HTTP answer whose body has these texts, enciphered.
    UrlReply answer(int status, const Fields& fields) const;
    /// The same with status 200.
    UrlReply ok(const Fields& fields) const { return answer(200, fields); }
    /// Status 200 and a result word alone: "Success", "Failure: Invalid Token".
    UrlReply result(const std::string& word) const { return ok({{"encryptedResult", word}}); }
    /// Another status and a result word alone.
    UrlReply refusal(int status, const std::string& word) const {
        return answer(status, {{"encryptedResult", word}});
    }

    /// Answers the endpoint's next request with this; several calls queue up.
    void next(const std::string& endpoint, UrlReply reply) {
        scripted_[endpoint].push_back(std::move(reply));
    }
    /// Leaves the endpoint's next request unanswered, in the same queue; `device.urlSession` can answer it.
    void hang(const std::string& endpoint) { scripted_[endpoint].push_back(std::nullopt); }
    /// The next answers whatever is asked, in order, and no others from then on: what comes after them is
    /// left unanswered.
    void willAnswer(std::vector<UrlReply> replies);

    /// Runs the main queue until nothing is left; waits for long bodies that are read on another thread.
    void settle();
    /// How often the endpoint was called.
    int calls(const std::string& endpoint) const;
    /// What a field ("encryptedPIN") held the last time that the endpoint was called, deciphered. "absent"
    /// when the body lacks it, "not sent" when there was no such call.
    std::string sent(const std::string& endpoint, const std::string& name) const;
    /// The n-th request, from 0: "pinSet offsetId=iv-0 CardId=card-1 …". Values of "encrypted…" keys are
    /// deciphered and the keys cut, so that one that is not enciphered shows. There must be one.
    std::string sent(std::size_t index) const;

    /// The device; installed.
    FakePorts device;
    /// The key that host and service share.
    const std::vector<std::uint8_t> key;
    /// The same in base64, as `initialize` takes it.
    const std::string keyText;
    /// The IV behind every id, 16 bytes.
    const std::vector<std::uint8_t> iv;
    /// The same in base64, as an `IvCallback` supplies it.
    const std::string ivText;
    /// Whether the host supplies an IV when it is asked; if not, it answers with nothing.
    bool hostSuppliesIvs = true;
    /// How many IVs the host has supplied.
    int ivsSupplied = 0;
    /// What the card's status is.
    std::string cardStatus = "A1";
    /// What the card's type is.
    std::string cardType = "physical";
    /// What the card's details are, by the reply's field.
    std::map<std::string, std::string> cardDetails;

  private:
    KORVANE_HIDDEN UrlReply success(const std::string& endpoint) const;
    KORVANE_HIDDEN Fields plainFields(const UrlRequest& request) const;

    std::map<std::string, std::deque<std::optional<UrlReply>>> scripted_;
};

}  // namespace korvane
