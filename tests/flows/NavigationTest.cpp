// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <korvane/CloseNotification.h>

#include <memory>
#include <optional>
#include <set>

#include "flows/ActivationStartPage.h"
#include "flows/CardViewer.h"
#include "flows/KorvaneActionNavigationLink.h"
#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
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
    stack->dismiss(*root);
    EXPECT_TRUE(stack->isInView(*root)) << "the root stays";
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

TEST_F(Navigation, EveryTabledNameIsAScreenWhoseClosingControlsPostOnceATap) {
    std::vector<std::shared_ptr<Screen>> screens{std::make_shared<ActivationStartPage>(stack),
                                                 std::make_shared<CardViewer>(stack)};
    for (const ViewTable* const each :
         {&table::setPIN, &table::activateCardAndSetPIN, &table::getCardImage, &table::enterCardPINMultiView,
          &table::autoNavMultiView, &table::activateCardAndSetPINMultiView,
          &table::cardImageActivateMultiView}) {
        for (const std::string_view name : each->views) {
            screens.push_back(makeScreen(stack, name, ScreenArguments{"1357"}));
            ASSERT_NE(screens.back(), nullptr) << name;
            EXPECT_EQ(screens.back()->viewName(), name);
        }
    }
    std::set<std::string> posted;
    std::string tapped;
    const auto observation = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo& info) { tapped += " " + info.at("result"); });
    for (const auto& screen : screens) {
        ScreenSnapshot before;
        screen->describe(before);
        for (const Control& control : before.controls) {
            stack->push(screen);
            tapped = std::string{screen->viewName()} + " " + control.id;
            const std::size_t length = tapped.size();
            screen->perform(control.id);
            stack->dismiss(*screen);
            if (tapped.size() > length) posted.insert(tapped);
        }
    }
    EXPECT_THAT(posted, testing::UnorderedElementsAre(
                            "UhOhTryAgainView sdk.errorPage.tryagain.button FAILURE",
                            "UhOhContactSupportView sdk.errorPage.contactSupport.button.one FAILURE",
                            "SuccessPinSetView sdk.success.setpin.button SUCCESS",
                            "SuccessCardActivatedAndPinSetView "
                            "sdk.success.cardActivatedAndSetPin.button SUCCESS",
                            "CardIsNotYetActivatedView sdk.cardnotactivated.button.two CANCELED",
                            "CardAlreadyActivatedView sdk.cardactivated.button.one CANCELED",
                            "ActivateCardAndSetPIN_NoNav xmark CANCELED", "CardImage_NoNav xmark CANCELED"));
}

}  // namespace
}  // namespace korvane
