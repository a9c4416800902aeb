// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/SecureItemStore.h>

#include <deque>
#include <map>
#include <utility>

namespace korvane {

/// A store in memory, with statuses that can be scripted.
class FakeSecureItemStore final : public SecureItemStore {
  public:
    SecureItemStatus exists(std::string_view service, std::string_view account) override;
    SecureItemStatus add(std::string_view service, std::string_view account, std::string_view value) override;
    SecureItemStatus update(std::string_view service, std::string_view account, std::string_view value) override;
    SecureItem copy(std::string_view service, std::string_view account) override;
    SecureItemStatus remove(std::string_view service, std::string_view account) override;

    /// The next calls answer these statuses, one each, and do nothing; 0 lets a call through.
    void failNext(std::deque<SecureItemStatus> statuses);
    std::map<std::pair<std::string, std::string>, std::string>& items() { return items_; }

  private:
    SecureItemStatus scripted();

    std::map<std::pair<std::string, std::string>, std::string> items_;
    std::deque<SecureItemStatus> scripted_;
};

}  // namespace korvane
