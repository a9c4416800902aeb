// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Language.h>

#include "flows/ResultPage.h"
#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

ScreenSnapshot snapshotOf(const ResultPage::Row& row) {
    ScreenSnapshot snapshot;
    snapshot.view = row.view;
    snapshot.instance = 1;
    snapshot.image = row.image;
    snapshot.title = row.title;
    snapshot.body.assign(row.body.begin(), row.body.end());
    for (const auto& [symbol, text] : row.bullets)
        snapshot.bullets.push_back({std::string{symbol}, std::string{text}});
    for (const auto& button : row.buttons)
        snapshot.controls.push_back({std::string{button.id}, ControlKind::button, true});
    return snapshot;
}

/// Screens with digit boxes at their fullest: every part there.
ScreenSnapshot entrySnapshot(const std::string& group, int boxes, const std::string& message) {
    ScreenSnapshot snapshot;
    snapshot.view = group;
    snapshot.instance = 1;
    snapshot.depth = 1;
    snapshot.title = group + ".header";
    if (boxes == 6) snapshot.body = {group + ".subheader"};
    snapshot.message = message;
    snapshot.passcode = PasscodeBoxes{group + ".input", boxes, 0, 0, boxes == 4, ""};
    snapshot.controls = {{"back", ControlKind::back, true},
                         {group + ".input", ControlKind::passcode, true},
                         {group + ".button", ControlKind::button, false}};
    if (boxes == 6) snapshot.controls.push_back({"sdk.sms.code.resend", ControlKind::button, true});
    return snapshot;
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
    std::vector<ScreenSnapshot> pages{entrySnapshot("sdk.sms.code", 6, "sdk.sms.code.incorrect"),
                                      entrySnapshot("sdk.confirmpin", 4, "sdk.error.matchpin.message")};
    for (const ResultPage::Row& row : ResultPage::rows()) pages.push_back(snapshotOf(row));
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
