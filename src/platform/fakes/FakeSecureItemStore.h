// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/SecureItemStore.h>

#include <deque>
#include <map>
#include <mutex>
#include <utility>

namespace korvane {

/// A store in memory, with statuses that can be scripted. The port's calls may come from any thread.
class KORVANE_API FakeSecureItemStore final : public SecureItemStore {
  public:
    SecureItemStatus exists(std::string_view service, std::string_view account) override;
    SecureItemStatus add(std::string_view service, std::string_view account, std::string_view value) override;
    SecureItemStatus update(std::string_view service, std::string_view account,
                            std::string_view value) override;
    SecureItem copy(std::string_view service, std::string_view account) override;
    SecureItemStatus remove(std::string_view service, std::string_view account) override;

    /// The next calls answer these statuses, one each, and do nothing; 0 lets a call through.
    void failNext(std::deque<SecureItemStatus> statuses);
    /// Not locked: look at them while no call is under way.
    std::map<std::pair<std::string, std::string>, std::string>& items() { return items_; }

  private:
    SecureItemStatus scripted();

    std::mutex mutex_;
    std::map<std::pair<std::string, std::string>, std::string> items_;
    std::deque<SecureItemStatus> scripted_;
};

}  // namespace korvane
