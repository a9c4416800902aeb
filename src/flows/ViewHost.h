// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "flows/Screen.h"
#include "flows/ScreenFactory.h"

namespace korvane {

/// The names that a host or a multi view can show, in the order in which they are tested.
struct ViewTable {
    std::string_view host;
    std::span<const std::string_view> views;

    bool lists(std::string_view name) const;
};

/// A screen that shows another one in its place, by name: the base of the journey hosts, and the whole of a
/// multi view.
class ViewHost : public Screen {
  public:
    ViewHost(std::shared_ptr<NavigationStack> stack, const ViewTable& table,
             const ScreenArguments& arguments = {});

    virtual bool canShow(std::string_view viewName) const { return table_.lists(viewName); }
    /// Shows the screen of that name in place of what was shown. A name that the table does not list shows
    /// nothing.
    virtual void show(std::string_view viewName);

    const std::string& viewToShow() const { return viewToShow_; }
    std::shared_ptr<Screen> shown() const override { return shown_; }

  protected:
    void showScreen(std::string_view viewName, std::shared_ptr<Screen> screen);
    void showNothing();
    std::vector<ScreenControl> controls() override { return {back()}; }
    void describeContent(ScreenSnapshot& snapshot) const override;

  private:
    const ViewTable& table_;
    ScreenArguments arguments_;
    std::string viewToShow_;
    std::shared_ptr<Screen> shown_;
};

/// A screen with no content of its own that is pushed knowing what to show.
class MultiView final : public ViewHost {
  public:
    using ViewHost::ViewHost;
    bool hasContent() const override { return shown() == nullptr; }
};

}  // namespace korvane
