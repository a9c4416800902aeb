// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "flows/FailureRoute.h"
#include "operations/Operations.h"

namespace korvane {

/// Freezes and unfreezes a card: asks first, then calls. The switch follows the card, never the tap. Main
/// thread.
class FreezeSwitch : public std::enable_shared_from_this<FreezeSwitch> {
  public:
    enum class Outcome { done, failed, verifyBySMS };

    /// @param cardStatus the service's code: "A1", "BT", "P2"; with any other the switch cannot be used
    /// @param ended runs when a call has come to its end; not after this object is gone
    FreezeSwitch(StatePtr state, std::string_view cardStatus, std::function<void(Outcome)> ended);

    bool isCardActivated() const { return isCardActivated_; }
    bool isCardNotYetActivated() const { return isCardNotYetActivated_; }
    bool isCardFrozen() const { return isCardFrozen_; }
    bool isCalling() const { return calling_; }

    bool canAsk() const { return (isCardActivated_ || isCardNotYetActivated_) && !calling_ && !asking_; }
    /// Opens the question that fits the card's state.
    void ask() { asking_ = true; }
    /// The question that is open.
    std::optional<Popup> question() const;
    void cancel() { asking_ = false; }
    void confirm();
    /// What `ended` refers to is gone: the switch may live until a call that is running returns.
    void detach() { ended_ = nullptr; }
    /// Makes the call that asked for a verification by SMS again.
    void callAgain() { reEntrantSetCardStatus(); }

  private:
    void reEntrantSetCardStatus();
    void answered(const KorvaneRetStruct& result);
    void end(Outcome outcome);

    const StatePtr state_;
    bool isCardActivated_;
    bool isCardNotYetActivated_;
    bool isCardFrozen_;
    bool asking_ = false;
    bool calling_ = false;
    std::function<void(Outcome)> ended_;
    Recovery recovery_;
};

}  // namespace korvane
