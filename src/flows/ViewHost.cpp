// SPDX-License-Identifier: Apache-2.0
#include "flows/ViewHost.h"

#include <algorithm>
#include <utility>

#include "flows/NavigationStack.h"

namespace korvane {

bool ViewTable::lists(std::string_view name) const {
    return std::find(views.begin(), views.end(), name) != views.end();
}

ViewHost::ViewHost(std::shared_ptr<NavigationStack> stack, const ViewTable& table,
                   const ScreenArguments& arguments)
    : Screen(std::move(stack), table.host), table_(table), arguments_(arguments) {}

void ViewHost::show(std::string_view viewName) {
    showScreen(viewName, canShow(viewName) ? makeScreen(sharedStack(), viewName, arguments_) : nullptr);
}

void ViewHost::showScreen(std::string_view viewName, std::shared_ptr<Screen> screen) {
    viewToShow_ = viewName;
    // The screen that was shown may be the one that asked: it lives until it has answered.
    const auto replaced = std::exchange(shown_, std::move(screen));
    changed();
}

void ViewHost::showNothing() {
    viewToShow_.clear();
    shown_ = nullptr;
}

void ViewHost::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.state.push_back({"viewToShow", viewToShow_});
}

}  // namespace korvane
