// SPDX-License-Identifier: Apache-2.0
#include "flows/ViewTables.h"

#include <array>

#include "flows/ViewNames.h"

namespace korvane::table {
namespace {

using namespace view;

constexpr std::array setPINViews{SMSExplainView, CardIsNotYetActivatedView, EnterCardPINView,
                                 SetPIN_NoNav,   UhOhContactSupportView,    UhOhTryAgainView};

// The host's own name stands for its start page.
constexpr std::array activateViews{CardAlreadyActivatedView,   EnterCardPINView,      UhOhContactSupportView,
                                   UhOhTryAgainView,           EnterCardLastFourView, SMSExplainView,
                                   ActivateCardAndSetPIN_NoNav};

constexpr std::array cardImageViews{SMSExplainView, CardImage_NoNav, UhOhContactSupportView,
                                    UhOhTryAgainView};

constexpr std::array enterCardPINViews{YouCanDoBetterView, ConfirmCardPINView};

constexpr std::array confirmCardPINViews{
    SuccessCardActivatedAndPinSetView, SuccessPinSetView, SomethingDoesntMatchView,
    UhOhTryAgainWithErrorMsgView,      SMSExplainView,    ConfirmCardPINView};

constexpr std::array autoNavViews{UhOhTryAgainView,
                                  UhOhContactSupportView,
                                  SMSExplainView,
                                  SetPIN_NoNav,
                                  CardImage_NoNav,
                                  ConfirmCardPINView,
                                  SuccessCardActivatedAndPinSetView,
                                  SuccessPinSetView};

constexpr std::array activateNextViews{CardAlreadyActivatedView, EnterCardLastFourView, SMSExplainView,
                                       CardImage_NoNav,          SetPIN_NoNav,          EnterCardPINView,
                                       UhOhTryAgainView,         UhOhContactSupportView};

constexpr std::array cardImageActivateViews{EnterCardLastFourView, EnterCardPINView, UhOhTryAgainView,
                                            UhOhContactSupportView};

}  // namespace

const ViewTable setPIN{SetPIN, setPINViews};
const ViewTable setPIN_NoNav{SetPIN_NoNav, setPINViews};
const ViewTable activateCardAndSetPIN{ActivateCardAndSetPIN, activateViews};
const ViewTable activateCardAndSetPIN_NoNav{ActivateCardAndSetPIN_NoNav, activateViews};
const ViewTable getCardImage{GetCardImage, cardImageViews};
const ViewTable cardImage_NoNav{CardImage_NoNav, cardImageViews};
const ViewTable enterCardPINMultiView{EnterCardPINMultiView, enterCardPINViews};
const ViewTable confirmCardPINMultiView{ConfirmCardPINMultiView, confirmCardPINViews};
const ViewTable autoNavMultiView{AutoNavMultiView, autoNavViews};
const ViewTable activateCardAndSetPINMultiView{ActivateCardAndSetPINMultiView, activateNextViews};
const ViewTable cardImageActivateMultiView{CardImageActivateMultiView, cardImageActivateViews};

}  // namespace korvane::table
