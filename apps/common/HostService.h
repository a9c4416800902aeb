// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane {

class HostCalls;

struct HostCard {
    std::string id;
    std::string name;
    std::string type;
    std::string status;  ///< in words: "Active", "Frozen", "Not activated"; else the service's own code
};

/// What is printed on a card, its PIN, and its status code.
struct HostCardRecord {
    std::string number;
    std::string cvv;
    std::string pin;
    std::string status;
};

/// What a bank's app would ask its own server, asked here of the development card service's host side. It
/// goes through the installed `UrlSession`. Main thread only; callbacks run there, never from inside a call,
/// and never after the object is gone. A server that does not answer, or answers something else, gives an
/// empty value.
class HostService {
  public:
    /// @param url  base URL, without "/" at its end: "https://localhost:PORT/host"
    explicit HostService(std::string url);
    ~HostService();

    void cards(const std::function<void(std::vector<HostCard>)>& answer);
    /// Tells each code that is sent to the card's holder by SMS from now on, as the holder's phone would,
    /// until the returned handle is released.
    [[nodiscard]] std::shared_ptr<void> watchSms(const std::string& cardId,
                                                 const std::function<void(std::string)>& arrived);
    /// Has the service do something wrong, or slowly, once: `rule` is the JSON that its fault endpoint takes.
    void fault(const std::string& rule, const std::function<void(bool taken)>& done);
    /// What is stored for the card: a development service shows it, a real one never would.
    void card(const std::string& cardId, const std::function<void(HostCardRecord)>& answer);

  private:
    class SmsWatch;
    std::string url_;
    std::shared_ptr<HostCalls> calls_;
};

}  // namespace korvane
