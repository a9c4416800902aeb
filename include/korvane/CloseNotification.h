// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace korvane {

/// Name of the notification that ends a journey: "NotificationCloseUI".
inline constexpr std::string_view NotificationCloseUI = "NotificationCloseUI";

/// What a notification carries. `NotificationCloseUI` has one entry: "result", which is "SUCCESS", "CANCELED"
/// or "FAILURE".
using NotificationUserInfo = std::map<std::string, std::string>;

/// Names a journey: each has another, for as long as the process runs. 0 names none.
using JourneyId = std::uint64_t;

/// Where the component posts and the host observes. Main thread only.
class KORVANE_API NotificationCenter {
  public:
    /// Called at each post, with what it carries. It may end the journey that posts.
    using Observer = std::function<void(const NotificationUserInfo&)>;
    /// The same, and which journey posted (`Journey::id`, `ViewController::journeyId`); 0 when none did.
    using JourneyObserver = std::function<void(const NotificationUserInfo&, JourneyId)>;
    class KORVANE_HIDDEN Observation;

    /// The one that the component posts to. It lives as long as the process.
    static NotificationCenter& defaultCenter();

    /// Calls `observer` at each post of `name`, on the main thread, until the returned handle is released.
    /// Observers may add and release observations, their own included, while they are called.
    [[nodiscard]] std::shared_ptr<Observation> observe(std::string_view name, Observer observer);
    /// The same for an observer that is also gets the journey that posted.
    [[nodiscard]] std::shared_ptr<Observation> observe(std::string_view name, JourneyObserver observer);

    /// Calls the observers that are there now, in the order in which they came.
    void post(std::string_view name, const NotificationUserInfo& userInfo);
    /// The same, for the journey that posts.
    void post(std::string_view name, const NotificationUserInfo& userInfo, JourneyId journey);

  private:
    std::multimap<std::string, std::weak_ptr<Observation>, std::less<>> observations_;
};

}  // namespace korvane
