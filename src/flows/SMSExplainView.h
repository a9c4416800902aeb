// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/Screen.h"
#include "operations/Operations.h"

namespace korvane {

/// Explains why a code is needed, asks the service to send it, and leads to where it is typed.
class SMSExplainView final : public Screen {
  public:
    explicit SMSExplainView(std::shared_ptr<NavigationStack> stack);

    void onAppear() override;

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;

  private:
    KorvaneActionNavigationLink send_;
    Handle request_;
    bool showSpinner_ = false;
};

}  // namespace korvane
