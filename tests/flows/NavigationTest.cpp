// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/NavigationStack.h"
#include "flows/ViewHost.h"
#include "flows/ViewTables.h"
#include "platform/fakes/FakePorts.h"

namespace korvane {
namespace {

class Page final : public Screen {
  public:
    explicit Page(const std::shared_ptr<NavigationStack>& stack) : Screen(stack, "Page") {}

  protected:
    std::vector<ScreenControl> controls() override { return {back()}; }
    void describeContent(ScreenSnapshot&) const override {}
};

class Navigation : public testing::Test {
  protected:
    Navigation() { stack->start(root); }
    ~Navigation() override { stack->end(); }

    FakePorts device;
    std::shared_ptr<NavigationStack> stack = std::make_shared<NavigationStack>();
    std::shared_ptr<Page> root = std::make_shared<Page>(stack);
};

TEST_F(Navigation, LinkPushesWhenItsTokenIsCalledAndOnlyOnce) {
    std::optional<KorvaneNavigationToken> kept;
    const KorvaneActionNavigationLink link(
        "label", [this] { return std::make_shared<Page>(stack); },
        [&](KorvaneNavigationToken token) { kept = std::move(token); });
    link.tap(*root, *stack);
    EXPECT_TRUE(stack->isInView(*root));
    (*kept)();
    const auto pushed = stack->inView();
    EXPECT_NE(pushed, root);
    (*kept)();
    EXPECT_EQ(stack->inView(), pushed);
    link.tap(*root, *stack);
    (*kept)();
    EXPECT_EQ(stack->inView(), pushed) << "the link's screen was not in view";
    stack->dismiss(*pushed);
    link.tap(*root, *stack);
    stack->end();
    (*kept)();
    EXPECT_EQ(stack->inView(), nullptr);
}

TEST_F(Navigation, UnlistedNameShowsNoneOfTheListedScreens) {
    const auto host = std::make_shared<MultiView>(stack, table::autoNavMultiView);
    host->show("uhohtryagainview");
    stack->push(host);
    EXPECT_EQ(stack->inView(), host);
    EXPECT_TRUE(stack->canDismiss(*host));
}

}  // namespace
}  // namespace korvane
