// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

/// The names of screens, the currency of navigation: compared as they stand.
namespace korvane::view {

inline constexpr std::string_view SetPIN = "SetPIN";
inline constexpr std::string_view SetPIN_NoNav = "SetPIN_NoNav";
inline constexpr std::string_view ActivateCardAndSetPIN = "ActivateCardAndSetPIN";
inline constexpr std::string_view ActivateCardAndSetPIN_NoNav = "ActivateCardAndSetPIN_NoNav";
inline constexpr std::string_view GetCardImage = "GetCardImage";
inline constexpr std::string_view CardImage_NoNav = "CardImage_NoNav";

inline constexpr std::string_view SMSExplainView = "SMSExplainView";
inline constexpr std::string_view EnterSMSCodeView = "EnterSMSCodeView";
inline constexpr std::string_view EnterCardPINView = "EnterCardPINView";
inline constexpr std::string_view ConfirmCardPINView = "ConfirmCardPINView";
inline constexpr std::string_view EnterCardLastFourView = "EnterCardLastFourView";
inline constexpr std::string_view EnterCardCVVView = "EnterCardCVVView";

inline constexpr std::string_view YouCanDoBetterView = "YouCanDoBetterView";
inline constexpr std::string_view SomethingDoesntMatchView = "SomethingDoesntMatchView";
inline constexpr std::string_view SuccessPinSetView = "SuccessPinSetView";
inline constexpr std::string_view SuccessCardActivatedAndPinSetView = "SuccessCardActivatedAndPinSetView";
inline constexpr std::string_view CardAlreadyActivatedView = "CardAlreadyActivatedView";
inline constexpr std::string_view CardIsNotYetActivatedView = "CardIsNotYetActivatedView";
inline constexpr std::string_view UhOhTryAgainView = "UhOhTryAgainView";
inline constexpr std::string_view UhOhTryAgainWithErrorMsgView = "UhOhTryAgainWithErrorMsgView";
inline constexpr std::string_view UhOhContactSupportView = "UhOhContactSupportView";

// Multi views: pushed, but never seen themselves.
inline constexpr std::string_view EnterCardPINMultiView = "EnterCardPINMultiView";
inline constexpr std::string_view ConfirmCardPINMultiView = "ConfirmCardPINMultiView";
inline constexpr std::string_view AutoNavMultiView = "AutoNavMultiView";
inline constexpr std::string_view ActivateCardAndSetPINMultiView = "ActivateCardAndSetPINMultiView";
inline constexpr std::string_view CardImageActivateMultiView = "CardImageActivateMultiView";

}  // namespace korvane::view
