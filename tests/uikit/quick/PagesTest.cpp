// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Language.h>

#include "flows/EnterSMSCodeView.h"
#include "flows/NavigationStack.h"
#include "flows/ResultPage.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "sdk/JourneyState.h"
#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

/// Every page and every screen with digit boxes, these with all that they can tell.
std::vector<ScreenSnapshot> allPages() {
    const auto stack = std::make_shared<NavigationStack>(
        std::make_shared<JourneyState>(SdkConfig::sharedInstance(), "card-1"));
    stack->start(makeScreen(stack, view::SMSExplainView, ScreenArguments{}));
    std::vector<std::shared_ptr<Screen>> screens{std::make_shared<EnterSMSCodeView>(stack)};
    for (const std::string_view name :
         {view::SMSExplainView, view::EnterCardPINView, view::ConfirmCardPINView, view::EnterCardLastFourView,
          view::EnterCardCVVView})
        screens.push_back(makeScreen(stack, name, ScreenArguments{"8642"}));
    for (const ResultPage::Row& row : ResultPage::rows())
        screens.push_back(makeScreen(stack, row.view, ScreenArguments{}));
    std::vector<ScreenSnapshot> pages(screens.size());
    for (std::size_t i = 0; i < pages.size(); ++i) {
        stack->push(screens[i]);
        stack->describe(pages[i]);
        if (screens[i]->viewName() == view::EnterSMSCodeView) pages[i].message = "sdk.sms.code.incorrect";
        if (screens[i]->viewName() == view::ConfirmCardPINView)
            pages[i].message = "sdk.error.matchpin.message";
        stack->dismiss(*screens[i]);
    }
    stack->end();
    return pages;
}

class PagesTest : public QuickFixture {
  protected:
    /// Draws the snapshot and tells what is wrong.
    QStringList faultsOf(const ScreenSnapshot& snapshot, QSize size, double textScale, bool mayScroll) {
        ScreenModel model;
        model.load(snapshot);
        const QQuickItem* const page =
            show("ScreenPage { current: true; move: JourneyModel.None; progress: 1 }", size,
                 {{"screen", QVariant::fromValue(&model)}});
        theme().setTextScale(textScale);
        settle();
        QStringList found = faults();
        for (const QQuickItem* const item : page->findChildren<QQuickItem*>()) {
            if (item->inherits("QQuickFlickable") && !mayScroll &&
                item->property("contentHeight").toDouble() > item->height())
                found << "must be scrolled";
        }
        for (const Control& control : snapshot.controls) {
            const QQuickItem* const item = find(QString::fromStdString(control.id));
            const bool whole =
                item && QRectF(QPointF(), size).contains(item->mapRectToScene(item->boundingRect()));
            if (!item || (item->inherits("QQuickAbstractButton") && !whole))
                found << "out of sight: " + QString::fromStdString(control.id);
        }
        delete page;
        return found;
    }
};

TEST_F(PagesTest, EveryPageIsWholeAtEverySizeInEveryLanguageAndNeedsNoScrollingOnASmallPhone) {
    const std::vector<ScreenSnapshot> pages = allPages();
    // A host's own bar takes 56 of the small phone's 568 points. Twice the size of text (WCAG 2.2, 1.4.4) may
    // need scrolling, but nothing is lost.
    const QSize small{320, 512}, lying{844, 390};
    const std::pair<QSize, double> looks[] = {{small, 1},       {{320, 568}, 1}, {{390, 844}, 1}, {lying, 1},
                                              {{1280, 800}, 1}, {small, 2},      {lying, 2}};
    for (const auto& [size, textScale] : looks) {
        for (const std::string& language : languages()) {
            if (language != "en" && (textScale == 2 || (size != small && size != lying))) continue;
            ASSERT_TRUE(setLanguage(language));
            for (const ScreenSnapshot& page : pages) {
                EXPECT_EQ(faultsOf(page, size, textScale, size != small || textScale == 2), QStringList())
                    << page.view << " in " << language << " at " << size.width() << "x" << size.height();
            }
        }
    }
}

}  // namespace
}  // namespace korvane
