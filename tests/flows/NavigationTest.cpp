// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>

#include <map>
#include <memory>
#include <optional>

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/NavigationStack.h"
#include "flows/ResultPage.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewHost.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "platform/fakes/FakePorts.h"

namespace korvane {
namespace {

/// A screen that counts how often it came into view.
class Page final : public Screen {
  public:
    explicit Page(const std::shared_ptr<NavigationStack>& stack) : Screen(stack, "Page") {}
    void onAppear() override { ++appeared; }
    int appeared = 0;

  protected:
    std::vector<ScreenControl> controls() override { return {back()}; }
    void describeContent(ScreenSnapshot&) const override {}
};

class Navigation : public testing::Test {
  protected:
    Navigation() { stack->start(root); }
    ~Navigation() override { stack->end(); }

    int depth() const {
        ScreenSnapshot snapshot;
        stack->describe(snapshot);
        return snapshot.depth;
    }

    FakePorts device;
    std::shared_ptr<NavigationStack> stack = std::make_shared<NavigationStack>();
    std::shared_ptr<Page> root = std::make_shared<Page>(stack);
};

TEST_F(Navigation, ScreensAppearWhenShownAndWhenUncovered) {
    const auto page = std::make_shared<Page>(stack);
    stack->push(page);
    EXPECT_EQ(page->appeared, 1);
    stack->changed();
    EXPECT_EQ(page->appeared, 1);
    stack->dismiss(*page);
    EXPECT_EQ(root->appeared, 2);
    stack->dismiss(*root);
    EXPECT_TRUE(stack->isInView(*root));
}

TEST_F(Navigation, LinkPushesWhenItsTokenIsCalledAndOnlyOnce) {
    std::optional<KorvaneNavigationToken> kept;
    const KorvaneActionNavigationLink link(
        "label", [this] { return std::make_shared<Page>(stack); },
        [&](KorvaneNavigationToken token) { kept = std::move(token); });
    link.tap(*root, *stack);
    EXPECT_EQ(depth(), 0);
    (*kept)();
    EXPECT_EQ(depth(), 1);
    (*kept)();
    EXPECT_EQ(depth(), 1);

    link.tap(*root, *stack);
    (*kept)();
    EXPECT_EQ(depth(), 1) << "the link's screen was not in view";
    stack->dismiss(*stack->inView());
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

TEST_F(Navigation, EveryTabledNameIsAScreen) {
    const ViewTable* const tables[] = {&table::setPIN,
                                       &table::activateCardAndSetPIN,
                                       &table::getCardImage,
                                       &table::enterCardPINMultiView,
                                       &table::autoNavMultiView,
                                       &table::activateCardAndSetPINMultiView,
                                       &table::cardImageActivateMultiView};
    for (const ViewTable* const each : tables) {
        for (const std::string_view name : each->views) {
            const auto screen = makeScreen(stack, name, ScreenArguments{"1357"});
            ASSERT_NE(screen, nullptr) << name;
            EXPECT_EQ(screen->viewName(), name);
        }
    }
}

TEST_F(Navigation, EveryClosingPagePostsOnceATapWithItsResult) {
    const std::map<std::string, std::string> expected{
        {"sdk.errorPage.tryagain.button", "FAILURE"},
        {"sdk.errorPage.contactSupport.button.one", "FAILURE"},
        {"sdk.success.setpin.button", "SUCCESS"},
        {"sdk.success.cardActivatedAndSetPin.button", "SUCCESS"},
        {"sdk.cardnotactivated.button.two", "CANCELED"},
        {"sdk.cardactivated.button.one", "CANCELED"},
    };
    std::vector<std::string> results;
    const auto observation = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo& info) {
            EXPECT_EQ(info.size(), 1u);
            results.push_back(info.at("result"));
        });
    for (const ResultPage::Row& row : ResultPage::rows()) {
        const auto page = std::make_shared<ResultPage>(stack, row);
        stack->push(page);
        for (const ResultPage::Button& button : row.buttons) {
            const auto closing = expected.find(std::string{button.id});
            if (closing == expected.end()) continue;
            results.clear();
            page->perform(button.id);
            EXPECT_EQ(results, (std::vector<std::string>{closing->second})) << button.id;
        }
        EXPECT_TRUE(stack->isInView(*page));
        stack->dismiss(*page);
    }
}

}  // namespace
}  // namespace korvane
