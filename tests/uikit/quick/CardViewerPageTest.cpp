// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/ViewController.h>

#include <QAccessible>
#include <QBuffer>
#include <QPainter>
#include <QRandomGenerator>
#include <QTest>
#include <cmath>

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

    /// Every text that QML can read, and every accessible one.
    std::pair<QString, QString> told() const {
        std::pair<QString, QString> texts;
        for (QQuickItem* const item : visibleItems(window.contentItem())) {
            QObjectList objects{item};
            if (const auto model = item->property("modelData").value<QObject*>()) objects << model;
            for (const QObject* const object : objects) {
                const QMetaObject& type = *object->metaObject();
                for (int i = 0; i < type.propertyCount(); ++i)
                    texts.first += type.property(i).read(object).toString() + "|";
            }
            if (QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(item))
                texts.second +=
                    spoken->text(QAccessible::Name) + spoken->text(QAccessible::Description) + "|";
        }
        return texts;
    }
    bool revealed() const { return told().second.contains("8 6 4 2"); }

    QQuickItem* root = nullptr;
};

TEST_F(CardViewerPageTest, NumbersAreInNoPropertyAndSpokenOnlyWhileRevealed) {
    showViewer();
    const QImage masked = window.grabWindow();
    EXPECT_TRUE(told().second.contains("Security code, Hidden"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(told().second.contains("5 5 5"));
        EXPECT_FALSE(revealed());
        EXPECT_FALSE(told().first.contains("8642") || told().first.contains("5555"));
        tap(details + "reveal");
        EXPECT_NE(window.grabWindow(), masked);
        EXPECT_TRUE(revealed());
        EXPECT_FALSE(told().first.contains("8642") || told().first.contains("5555"));
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
    service.device.urlSession->reply(service.device.urlSession->requests().size() - 1,
                                     service.result("Success"));
    settle();
    EXPECT_TRUE(isOn());
    EXPECT_TRUE(told().second.contains("Your card is frozen"));
}

TEST_F(CardViewerPageTest, CardIsActivatedFromItsButtonAndBackLeadsToTheCard) {
    service.cardStatus = "P2";
    showViewer();
    QStringList results;
    const auto closing = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const auto& info) { results << QString::fromStdString(info.at("result")); });
    tap("sdk.cardviewer.activateAndSetPin.onCardButton");
    ASSERT_EQ(view(), "EnterCardLastFourView");
    EXPECT_FALSE(find("xmark")) << "one frame, with one way out";
    tap("back");
    ASSERT_EQ(view(), "CardImage_NoNav");
    tap("xmark");
    EXPECT_EQ(results, QStringList("CANCELED"));
    const auto controller = GetCardImageFactory::create("card-9");
    EXPECT_EQ(service.config.cardId, "card-9");
}

TEST_F(CardViewerPageTest, PictureCoversTheCardUndistortedOrAPlaceholderIsDrawn) {
    QImage wide(1200, 300, QImage::Format_RGB32);
    wide.fill(Qt::black);
    QPainter(&wide).fillRect(525, 75, 150, 150, Qt::white);  // half its height, in the middle
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
                for (const QQuickItem* const item : visibleItems(root)) {
                    const QRectF area = item->mapRectToScene(item->boundingRect());
                    const auto what = item->metaObject()->className() + item->property("text").toString();
                    EXPECT_TRUE(area.left() >= 0 && area.right() <= size.width()) << what.toStdString();
                    if (item->inherits("QQuickText")) {
                        EXPECT_LE(item->property("contentWidth").toDouble(), std::ceil(item->width()))
                            << what.toStdString();
                    }
                    if (item->inherits("QQuickAbstractButton")) {
                        EXPECT_GE(std::min(area.width(), area.height()), 44) << what.toStdString();
                    }
                }
            }
            delete root;
        }
    }
}

}  // namespace
}  // namespace korvane
