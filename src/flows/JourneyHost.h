// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "flows/AppearStruct.h"
#include "flows/ViewHost.h"

namespace korvane {

/// The screen that a journey stands on: it shows a spinner while the first decision is made, and then the
/// decided view in its place. The same for the outermost host, which has the navigation stack, and for one
/// that stands inside another journey's.
class JourneyHost : public ViewHost {
  public:
    /// What the journeys differ in.
    struct Kind {
        const ViewTable& table;
        std::string_view
            noNavName;  ///< the name by which other journeys show this one, and the SMS step returns
        std::string_view appearName;  ///< "SetPinAppearStruct"
        std::string_view (*firstView)(JourneyState&);
        bool setPinOnly = false;  ///< whether this journey, left to itself, only sets the PIN
        /// The page that the host's own name stands for as a first view; null when there is none.
        std::shared_ptr<Screen> (*startPage)(const std::shared_ptr<NavigationStack>&) = nullptr;
        Handle (*details)(StatePtr,
                          OperationCompletion) = nullptr;  ///< what the first view needs but the status
        std::string_view consoleName =
            noNavName;               ///< of `noNavName` in console lines of its coming into view
        bool printsCardIds = false;  ///< then, too
    };

    JourneyHost(std::shared_ptr<NavigationStack> stack, const Kind& kind);

    void onAppear() override;
    /// The host's own name starts its decision anew.
    void show(std::string_view viewName) override;

  protected:
    void describeContent(ScreenSnapshot& snapshot) const override;

  private:
    void logAppearance(std::string_view name) const;
    void startDecision();
    void decided();

    const Kind& kind_;
    std::shared_ptr<AppearStruct> appearStruct_;
};

namespace journey {
extern const JourneyHost::Kind setPIN;
extern const JourneyHost::Kind setPIN_NoNav;
extern const JourneyHost::Kind activateCardAndSetPIN;
extern const JourneyHost::Kind activateCardAndSetPIN_NoNav;
extern const JourneyHost::Kind getCardImage;
extern const JourneyHost::Kind cardImage_NoNav;
}  // namespace journey

}  // namespace korvane
