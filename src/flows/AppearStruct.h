// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "flows/FailureRoute.h"
#include "operations/Operations.h"

namespace korvane {

/// The decision that a journey host makes when it first appears: brings the PCI token back, asks for the
/// card's status and what else the first view needs, and names that view. Main thread.
class AppearStruct : public std::enable_shared_from_this<AppearStruct> {
  public:
    /// What the journeys differ in.
    struct Journey {
        std::string_view name;                         ///< in console lines: "SetPinAppearStruct"
        std::string_view host;                         ///< where the SMS step comes back to: "SetPIN_NoNav"
        std::string_view (*firstView)(JourneyState&);  ///< the view to start on once all is known
        Handle (*details)(StatePtr, OperationCompletion) =
            nullptr;  ///< asked for once the status is known, then the card's picture is decoded, under
                      ///< the same spinner; null: nothing
    };

    /// @param decided runs when `viewToShow` names the first view
    AppearStruct(StatePtr state, Journey journey, std::function<void()> decided);

    /// Runs the decision once: later calls do nothing.
    void doAppear();

    std::string viewToShow;
    bool showSpinner = false;
    bool didCallAPI = false;
    std::string toastMsgId;
    bool showToast = false;

  private:
    bool startGate();
    void doAppearGuts();
    void fetchDetails();
    void readPicture();
    void handleCardImageError(const KorvaneRetStruct& result);
    void routeFailure(const KorvaneRetStruct& result);
    void verifyBySMS(std::string_view matched);
    void fail();
    void finish(std::string_view viewName);

    const StatePtr state_;
    Journey journey_;
    std::function<void()> decided_;
    Recovery recovery_;
};

}  // namespace korvane
