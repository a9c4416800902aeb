// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/SecureItemStore.h>

#include <array>
#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace korvane {

/// A store in memory, with statuses that can be scripted. The port's calls may come from any thread.
class KORVANE_API FakeSecureItemStore final : public SecureItemStore {
  public:
    SecureItemStatus exists(const SecureItemName& name) override;
    SecureItemStatus add(const SecureItemName& name, std::string_view value) override;
    SecureItemStatus update(const SecureItemName& name, std::string_view value) override;
    SecureItem copy(const SecureItemName& name) override;
    SecureItemStatus remove(const SecureItemName& name) override;

    /// The next calls answer these statuses, one each, and do nothing; 0 lets a call through.
    void failNext(std::deque<SecureItemStatus> statuses);
    /// Service, account and owner of an item.
    using Name = std::array<std::string, 3>;
    /// Not locked: look at them while no call is under way.
    std::map<Name, std::string>& items() { return items_; }

  private:
    SecureItemStatus scripted();

    std::mutex mutex_;
    std::map<Name, std::string> items_;
    std::deque<SecureItemStatus> scripted_;
};

}  // namespace korvane
