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
    /// Makes the service's next answer at that endpoint ("pinSet") wait, to see what a slow one does.
    void delayNext(const std::string& endpoint, int milliseconds, const std::function<void()>& done);
    /// The PIN that is stored for the card: a development service shows it, a real one never would.
    void pin(const std::string& cardId, const std::function<void(std::string)>& answer);

  private:
    class SmsWatch;
    std::string url_;
    std::shared_ptr<HostCalls> calls_;
};

}  // namespace korvane
