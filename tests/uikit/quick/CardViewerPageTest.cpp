// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QAccessible>
#include <QBuffer>
#include <QPainter>
#include <QRandomGenerator>
#include <QRegularExpression>

#include "platform/qt/QtImageDecoder.h"
#include "tests/uikit/quick/QuickFixture.h"
#include "uikit/quick/CardFaceItem.h"

namespace korvane {
namespace {

const QString details = QStringLiteral("sdk.cardviewer.device.details.");
const QString freezing = QStringLiteral("sdk.cardviewer.card.activateAndSetPin.");
const QString freezeSwitch = freezing + "freezeMyCard";

std::string png(const QImage& picture) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG", 100);  // 100: not compressed
    return bytes.toBase64().toStdString();
}

class CardViewerPageTest : public QuickFixture {
  protected:
    void showViewer(QSize size = {390, 1000}) {
        Ports device = ports();
        device.imageDecoder = std::make_shared<QtImageDecoder>();
        installPorts(device);
        root = show("import Korvane\nGetCardImage { cardId: \"card-1\" }", {}, size);
        ASSERT_EQ(view(), "CardImage_NoNav");
    }

    bool revealed() { return readable().second.contains("8 6 4 2"); }
    bool numbersInProperties() { return readable().first.contains(QRegularExpression("8642|5555")); }

    QQuickItem* root = nullptr;
};

TEST_F(CardViewerPageTest, NumbersAreInNoPropertyAndSpokenOnlyWhileRevealed) {
    showViewer();
    const QImage masked = window.grabWindow();
    EXPECT_TRUE(readable().second.contains("Security code, Hidden"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(readable().second.contains("5 5 5") || revealed() || numbersInProperties());
        tap(details + "reveal");
        EXPECT_NE(window.grabWindow(), masked);
        EXPECT_TRUE(revealed() && !numbersInProperties());
        find(details + "cvv")->forceActiveFocus(Qt::TabFocusReason);
        key(Qt::Key_Tab);
        const QAccessibleInterface* const focused =
            QAccessible::queryAccessibleInterface(window.activeFocusItem());
        ASSERT_TRUE(focused);
        EXPECT_EQ(focused->text(QAccessible::Name), "8 6 4 2");
        ASSERT_TRUE(focused->parent());
        tap(details + "reveal");
    }
    tap(details + "cardNumber");
    EXPECT_EQ(service.device.pasteboard->text(), "5555550000079197");
    EXPECT_EQ(screen()->toast(), "Copied");
}

TEST_F(CardViewerPageTest, MasksComeBackWhenOthersMaySeeTheScreen) {
    showViewer();
    QWindow other;
    other.show();
    const std::function<void()> hidings[] = {[&] { other.requestActivate(); },
                                             [&] { window.showMinimized(); }, [&] { window.hide(); },
                                             [&] { root->setVisible(false); }};
    for (const auto& hide : hidings) {
        window.showNormal();
        window.requestActivate();
        settle();
        tap(details + "reveal");
        ASSERT_TRUE(revealed());
        hide();
        settle();
        window.show();
        root->setVisible(true);
        settle();
        EXPECT_FALSE(revealed()) << &hide - hidings;
    }
}

TEST_F(CardViewerPageTest, FreezingIsAskedFirstAndTheSwitchFollowsTheCard) {
    showViewer();
    const auto isOn = [this] {
        return QAccessible::queryAccessibleInterface(find(freezeSwitch))->state().checked;
    };
    find(freezeSwitch)->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Space, " ");
    ASSERT_TRUE(find(freezing + "freezeCardPopup.freezeButton"));
    for (const char* const button : {"cancelButton", "freezeButton", "cancelButton"}) {
        EXPECT_EQ(window.activeFocusItem()->objectName(), freezing + "freezeCardPopup." + button);
        key(Qt::Key_Tab);
    }
    EXPECT_FALSE(usable("xmark")) << "nothing under the question can be reached";
    key(Qt::Key_Escape);
    EXPECT_FALSE(screen()->popupOpen());
    EXPECT_EQ(window.activeFocusItem()->objectName(), freezeSwitch);
    EXPECT_EQ(service.calls("cardStatus"), 0);

    tap(freezeSwitch);
    service.hang("cardStatus");
    tap(freezing + "freezeCardPopup.freezeButton");
    EXPECT_TRUE(find(freezeSwitch)->property("busy").toBool());
    EXPECT_FALSE(isOn());
    answer(service.result("Success"));
    EXPECT_TRUE(isOn());
    EXPECT_TRUE(readable().second.contains("Your card is frozen"));
}

TEST_F(CardViewerPageTest, PictureCoversTheCardUndistortedOrAPlaceholderIsDrawn) {
    QImage wide(1200, 300, QImage::Format_RGB32);
    wide.fill(Qt::black);
    QPainter(&wide).fillRect(525, 75, 150, 150,
                             Qt::white);  // half its height, in the middle
    QImage large(1200, 900, QImage::Format_RGB32);
    for (int y = 0; y < large.height(); ++y)
        QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(large.scanLine(y)), large.width());
    const std::string noise = png(large);
    ASSERT_GT(noise.size(), 4'000'000U);
    const std::pair<std::string, bool> cases[] = {{png(wide), true},
                                                  {noise, true},
                                                  {"", false},
                                                  {"no base64", false},
                                                  {"bm8gcGljdHVyZQ==", false},
                                                  {noise.substr(0, 4000), false}};
    for (const auto& [picture, drawn] : cases) {
        service.cardDetails["encryptedCardImage"] = picture;
        showViewer();
        const auto* const face = root->findChild<CardFaceItem*>();
        ASSERT_TRUE(face);
        EXPECT_EQ(face->placeholder(), !drawn);
        EXPECT_NEAR(face->width() / face->height(), 85.60 / 53.98, 0.01);
        EXPECT_EQ(screen()->toast().isEmpty(), drawn);
        if (picture == cases[0].first) {
            const QImage seen = window.grabWindow();
            const QPoint middle = face->mapToScene(QPointF(face->width() / 2, face->height() / 2)).toPoint();
            const int half = static_cast<int>(face->height() / 4);
            for (const QPoint way : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                EXPECT_EQ(seen.pixelColor(middle + way * (half - 2)), QColor(Qt::white));
                EXPECT_EQ(seen.pixelColor(middle + way * (half + 3)), QColor(Qt::black));
            }
        }
        delete root;
    }
}

TEST_F(CardViewerPageTest, NothingIsCutAtAnySizeAndTwiceTheTextSize) {
    service.cardDetails["encryptedLastName"] = "van den Heuvel-Szczepańska-Featherstonehaugh";
    for (const char* const status : {"BT", "P2"}) {
        for (const QSize size : {QSize{320, 568}, {390, 844}, {1280, 800}}) {
            service.cardStatus = status;
            showViewer(size);
            for (const double scale : {1.0, 2.0}) {
                theme().setTextScale(scale);
                settle();
                window.grabWindow();  // lays out what is left to lay out
                EXPECT_EQ(faults(), QStringList());
            }
            delete root;
        }
    }
}

}  // namespace
}  // namespace korvane
