// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricContext.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "sdk/KorvaneRetStruct.h"

namespace korvane {

/// The decision that a journey host makes when it first appears: brings the PCI token back, asks for the
/// card's status, and names the first view. Main thread.
class AppearStruct : public std::enable_shared_from_this<AppearStruct> {
  public:
    /// What the journeys differ in.
    struct Journey {
        std::string_view name;                        ///< in console lines: "SetPinAppearStruct"
        std::string_view host;                        ///< where the SMS step comes back to: "SetPIN_NoNav"
        std::function<std::string_view()> firstView;  ///< the view to start on once the status is known
    };

    /// @param decided runs when `viewToShow` names the first view
    AppearStruct(Journey journey, std::function<void()> decided);

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
    void decide(const KorvaneRetStruct& result);
    void verifyBySMS(std::string_view reason);
    void renewIv(std::string_view reason);
    void fail();
    void finish(std::string_view viewName);

    Journey journey_;
    std::function<void()> decided_;
    std::shared_ptr<BiometricEvaluation> gate_;
};

}  // namespace korvane
