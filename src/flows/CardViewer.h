// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Timers.h>

#include <memory>
#include <string>

#include "flows/CardDetails.h"
#include "flows/CopiedCardData.h"
#include "flows/FreezeSwitch.h"
#include "flows/KorvaneActionNavigationLink.h"
#include "flows/Screen.h"
#include "sdk/CardPicture.h"

namespace korvane {

/// The card with its details, to be copied, frozen or activated. The number and the CVV stand behind masks
/// until they are revealed. What the details retrieval left in the shared state is wiped when this goes.
///
/// The shared state holds the details of one card: those of the viewer that was made last. An earlier one
/// that is still there shows none from then on, and leaves the later one's alone.
class CardViewer final : public Screen {
  public:
    /// Takes the card's status out of the journey's state.
    explicit CardViewer(std::shared_ptr<NavigationStack> stack);
    ~CardViewer() override;

    void onAppear() override;
    void resumeAfterSMSVerify() override;
    void hideSensitive() override;
    CloseResult closeResult() const override {
        return completed_ ? CloseResult::success : CloseResult::canceled;
    }

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;

  private:
    /// By reference: card data has as few copies as can be.
    struct Detail {
        std::string_view id;
        const std::string& value;
        const std::string* mask = nullptr;  ///< null: shown as it is
    };
    std::vector<Detail> details() const;

    void close();
    void copy(const std::string& value);
    void toggleReveal();
    void freezeEnded(FreezeSwitch::Outcome outcome);
    CardFace face() const;
    bool offersActivation() const;

    const CardPicture picture_;
    const eKorvaneCardType type_;
    const std::string cardholderName_;
    const std::string disclosureText_;
    std::string viewToShowNext_;
    KorvaneActionNavigationLink activate_;
    std::shared_ptr<FreezeSwitch> freeze_;
    CopiedCardData copied_;
    std::unique_ptr<Timer> revealed_;  // runs while number and CVV are in clear
    bool failuresTold_ = false;
    bool completed_ = false;
};

}  // namespace korvane
