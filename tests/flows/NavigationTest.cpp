// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>

#include <map>
#include <memory>
#include <optional>

#include "flows/ActivationStartPage.h"
#include "flows/CardViewer.h"
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

TEST_F(Navigation, EveryClosingControlPostsOnceATapWithItsResultAndNoOtherPosts) {
    const std::map<std::string, std::string> expected{
        {"UhOhTryAgainView sdk.errorPage.tryagain.button", "FAILURE"},
        {"UhOhContactSupportView sdk.errorPage.contactSupport.button.one", "FAILURE"},
        {"SuccessPinSetView sdk.success.setpin.button", "SUCCESS"},
        {"SuccessCardActivatedAndPinSetView sdk.success.cardActivatedAndSetPin.button", "SUCCESS"},
        {"CardIsNotYetActivatedView sdk.cardnotactivated.button.two", "CANCELED"},
        {"CardAlreadyActivatedView sdk.cardactivated.button.one", "CANCELED"},
        {"ActivateCardAndSetPIN_NoNav xmark", "CANCELED"},
        {"CardImage_NoNav xmark", "CANCELED"},
    };
    std::map<std::string, std::string> posted;
    std::string tapped;
    const auto observation = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo& info) {
            EXPECT_EQ(info.size(), 1u);
            EXPECT_TRUE(posted.emplace(tapped, info.at("result")).second) << "twice: " << tapped;
        });

    std::vector<std::shared_ptr<Screen>> screens{std::make_shared<ActivationStartPage>(stack),
                                                 std::make_shared<CardViewer>(stack)};
    for (const ResultPage::Row& row : ResultPage::rows())
        screens.push_back(std::make_shared<ResultPage>(stack, row));
    const ViewTable* const tables[] = {&table::setPIN, &table::enterCardPINMultiView,
                                       &table::activateCardAndSetPINMultiView};
    for (const ViewTable* const each : tables) {
        for (const std::string_view name : each->views) {
            if (ResultPage::find(name) || name.ends_with("_NoNav")) continue;
            screens.push_back(makeScreen(stack, name, ScreenArguments{"1357"}));
        }
    }
    for (const auto& screen : screens) {
        ScreenSnapshot before;
        screen->describe(before);
        for (const Control& control : before.controls) {
            stack->push(screen);
            tapped = std::string{screen->viewName()} + " " + control.id;
            screen->perform(control.id);
            stack->dismiss(*screen);
        }
    }
    EXPECT_EQ(posted, expected);
}

}  // namespace
}  // namespace korvane
