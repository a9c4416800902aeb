// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

namespace korvane {

class Journey;
struct JourneyState;

/// Shows the state of a journey to the component's own tests.
class JourneyProbe {
  public:
    static std::shared_ptr<JourneyState> state(const Journey& journey);
};

}  // namespace korvane
