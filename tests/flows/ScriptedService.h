// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/Journey.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/fakes/FakePorts.h"

namespace korvane {

/// A card service in a few lines, behind the fake session: it answers each endpoint ("pinSet") as it was
/// told, else with success. Making it installs fake ports and initializes the component.
class ScriptedService {
  public:
    ScriptedService();

    /// The next answers of an endpoint, in order.
    void next(const std::string& endpoint, UrlReply reply);
    /// HTTP 200 with that result word.
    UrlReply result(const std::string& word) const;
    /// HTTP status with an enciphered failure text in its body.
    UrlReply refusal(int status, const std::string& word) const;
    /// Leaves the next request of the endpoint unanswered.
    void hang(const std::string& endpoint) { hanging_.push_back(endpoint); }

    /// Runs the main queue until nothing is left.
    void settle() { device.mainQueue->runAll(); }
    /// How often the endpoint was called, and what the field held the last time, deciphered.
    int calls(const std::string& endpoint) const;
    std::string sent(const std::string& endpoint, const std::string& key) const;

    FakePorts device;
    std::string cardStatus = "A1";
    std::string cardType = "physical";
    /// What the card's details are, by the reply's field.
    std::map<std::string, std::string> cardDetails;
    bool hostSuppliesIvs = true;
    int ivsSupplied = 0;

  private:
    std::optional<UrlReply> answer(const UrlRequest& request);
    UrlReply success(const std::string& endpoint) const;
    std::string body(const std::map<std::string, std::string>& fields) const;

    std::map<std::string, std::deque<UrlReply>> scripted_;
    std::vector<std::string> hanging_;
};

/// A journey on that service, driven as a person would.
class DrivenJourney {
  public:
    DrivenJourney(ScriptedService& service, JourneyKind kind);

    std::string view() const { return journey->screen().view; }
    /// Performs and lets everything settle.
    Journey::Outcome tap(const std::string& controlId);
    Journey::Outcome type(const std::string& digits);
    bool enabled(const std::string& controlId) const;
    /// The text of a state field: "true", "3", "…"; "none" when there is no such field.
    std::string state(const std::string& name) const;
    /// What is shown in the row.
    std::string row(const std::string& id) const;
    /// Through the SMS step with the right code, from its explanation on.
    void verifyBySMS();
    /// From the PIN entry to the press of the confirm button.
    void enterAndConfirm(const std::string& pin);

    std::unique_ptr<Journey> journey;
    std::vector<std::string> closed;  ///< results of the close notifications so far

  private:
    ScriptedService& service_;
    std::shared_ptr<NotificationCenter::Observation> observation_;
};

}  // namespace korvane
