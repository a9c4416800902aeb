// SPDX-License-Identifier: Apache-2.0
#include "flows/SMSExplainView.h"

#include <utility>

#include "flows/EnterSMSCodeView.h"
#include "flows/NavigationStack.h"
#include "flows/SMSCodeRequest.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "sdk/JourneyState.h"

namespace korvane {

SMSExplainView::SMSExplainView(std::shared_ptr<NavigationStack> stack)
    : Screen(std::move(stack), view::SMSExplainView),
      send_(
          "sdk.sms.explain.button", [this] { return std::make_shared<EnterSMSCodeView>(sharedStack()); },
          [this](const KorvaneNavigationToken& token) {
              showSpinner_ = true;
              request_ =
                  requestSMSCode(sharedState(), [weak = weak(this), token](const KorvaneRetStruct& result) {
                      const auto self = weak.lock();
                      if (!self) return;
                      self->showSpinner_ = false;
                      if (!result.error) {
                          token();
                      } else if (self->stack().isInView(*self)) {
                          self->stack().push(makeScreen(
                              self->sharedStack(), view::UhOhTryAgainWithErrorMsgView, ScreenArguments{}));
                      }
                      self->changed();
                  });
              changed();
          }) {}

void SMSExplainView::onAppear() {
    state().viewToShowAfterSMSVerifyBackup = state().viewToShowAfterSMSVerify;
}

std::vector<Screen::ScreenControl> SMSExplainView::controls() {
    return {back(), button(send_.content(), !showSpinner_, [this] { send_.tap(*this, stack()); })};
}

void SMSExplainView::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.image = "sms";
    snapshot.title = "sdk.sms.explain.header";
    snapshot.body = {"sdk.sms.explain.subheader"};
    snapshot.spinner = showSpinner_;
    snapshot.state.push_back({"showSpinner", showSpinner_});
}

}  // namespace korvane
