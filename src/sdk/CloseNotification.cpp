// SPDX-License-Identifier: Apache-2.0
#include <korvane/CloseNotification.h>

#include <utility>
#include <vector>

namespace korvane {

class NotificationCenter::Observation {
  public:
    explicit Observation(JourneyObserver observer) : observer_(std::move(observer)) {}
    void call(const NotificationUserInfo& userInfo, JourneyId journey) const { observer_(userInfo, journey); }

  private:
    JourneyObserver observer_;
};

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter* const center = new NotificationCenter;
    return *center;
}

std::shared_ptr<NotificationCenter::Observation> NotificationCenter::observe(std::string_view name,
                                                                             Observer observer) {
    return observe(name, JourneyObserver{[observer = std::move(observer)](const auto& userInfo, JourneyId) {
                       observer(userInfo);
                   }});
}

std::shared_ptr<NotificationCenter::Observation> NotificationCenter::observe(std::string_view name,
                                                                             JourneyObserver observer) {
    std::erase_if(observations_, [](const auto& entry) { return entry.second.expired(); });
    auto observation = std::make_shared<Observation>(std::move(observer));
    observations_.emplace(name, observation);
    return observation;
}

void NotificationCenter::post(std::string_view name, const NotificationUserInfo& userInfo) {
    post(name, userInfo, 0);
}

void NotificationCenter::post(std::string_view name, const NotificationUserInfo& userInfo,
                              JourneyId journey) {
    // Weak copies first: an observer that is called may release another one, or add some.
    std::vector<std::weak_ptr<Observation>> present;
    for (auto [entry, end] = observations_.equal_range(name); entry != end; ++entry)
        present.push_back(entry->second);
    for (const auto& weak : present) {
        if (const auto observation = weak.lock()) observation->call(userInfo, journey);
    }
}

}  // namespace korvane
