// SPDX-License-Identifier: Apache-2.0
#include "tests/uikit/quick/QuickFixture.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlComponent>
#include <cmath>

#include "platform/qt/QtStringTable.h"
#include "uikit/quick/JourneyModel.h"

namespace korvane {
namespace {

/// One application for the process, offscreen and drawn in software.
class Application : public testing::Environment {
  public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        app_.emplace(count_, nullptr);
    }
    void TearDown() override { app_.reset(); }

  private:
    int count_ = 0;
    std::optional<QGuiApplication> app_;
};

const auto* const application = testing::AddGlobalTestEnvironment(new Application);

/// Every visible item from `item` down, itself included.
QList<QQuickItem*> visibleItems(QQuickItem* item) {
    if (!item->isVisible() || item->opacity() == 0) return {};
    QList<QQuickItem*> items{item};
    for (QQuickItem* const child : item->childItems()) items += visibleItems(child);
    return items;
}

void collectTexts(QAccessibleInterface* node, QStringList& texts) {
    if (!node) return;
    for (const auto kind :
         {QAccessible::Name, QAccessible::Description, QAccessible::Value, QAccessible::Help})
        texts << node->text(kind);
    if (auto* const text = node->textInterface()) texts << text->text(0, text->characterCount());
    for (int i = 0; i < node->childCount(); ++i) collectTexts(node->child(i), texts);
}

}  // namespace

QuickFixture::QuickFixture() {
    QObject::connect(&engine_, &QQmlEngine::warnings, &engine_, [](const QList<QQmlError>& warnings) {
        for (const QQmlError& warning : warnings) ADD_FAILURE() << warning.toString().toStdString();
    });
    auto texts = std::make_shared<QtStringTable>();
    EXPECT_TRUE(texts->load(":/korvane/i18n/korvane_en.qm"));
    Ports device = ports();
    device.stringTable = texts;
    EXPECT_TRUE(installPorts(device));
}

QuickFixture::~QuickFixture() {
    delete root_;
}

QQuickItem* QuickFixture::show(const QByteArray& qml, QSize size, const QVariantMap& properties) {
    delete root_;
    QQmlComponent component(&engine_);
    component.setData("import QtQuick\nimport Korvane\n" + qml, QUrl("test.qml"));
    root_ = qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties));
    EXPECT_TRUE(root_) << component.errorString().toStdString();
    if (!root_) return nullptr;
    theme().setReducedMotion(true);
    window.resize(size);
    root_->setParentItem(window.contentItem());
    root_->setSize(size);
    window.show();
    window.requestActivate();
    settle();
    return root_;
}

QQuickItem* QuickFixture::toPinEntry(QSize size) {
    show("SetPIN { cardId: 'card-1' }", size);
    EXPECT_EQ(view(), "EnterCardPINView");
    return root_;
}

void QuickFixture::settle() {
    service.settle();  // long answers are read on another thread
    do {
        QTest::qWait(0);
    } while (service.device.mainQueue->runAll() > 0);
    wait(20);
}

QQuickItem* QuickFixture::find(const QString& objectName) const {
    for (QQuickItem* const item : visibleItems(window.contentItem())) {
        if (item->objectName() == objectName) return item;
    }
    return nullptr;
}

QPointF QuickFixture::middle(const QString& objectName) const {
    const QQuickItem* const item = find(objectName);
    return item ? item->mapToScene(item->boundingRect().center()) : QPointF(-1, -1);
}

bool QuickFixture::tap(const QString& objectName) {
    if (!find(objectName)) return false;
    QTest::mouseClick(&window, Qt::LeftButton, {}, middle(objectName).toPoint());
    settle();
    return true;
}

void QuickFixture::key(int key, const QString& text, Qt::KeyboardModifiers modifiers) {
    QTest::sendKeyEvent(QTest::Click, &window, Qt::Key(key), text, modifiers);
    settle();
}

void QuickFixture::type(const QString& text) {
    for (const QChar letter : text) key(letter.toUpper().unicode(), letter);
}

void QuickFixture::walk(const QStringList& steps) {
    for (const QString& step : steps) {
        const QString act = step.section(" > ", 0, 0), seen = step.section(" > ", 1);
        if (act.startsWith("type ")) {
            type(act.mid(5));
        } else if (act.startsWith("key ")) {
            key(QKeySequence(act.mid(4))[0].key());
        } else {
            EXPECT_TRUE(tap(act)) << step.toStdString();
        }
        EXPECT_TRUE(seen.isEmpty() || view() == seen) << step.toStdString() << ": " << view().toStdString();
    }
}

ScreenModel* QuickFixture::screen() const {
    auto* const journey = root_ ? root_->findChild<JourneyModel*>() : nullptr;
    return journey ? journey->current() : nullptr;
}

QString QuickFixture::view() const {
    const ScreenModel* const shown = screen();
    // What the person sees, not what the model says: the item of that name must be there.
    return shown && find(shown->view()) ? shown->view() : "none";
}

QString QuickFixture::text(const QString& objectName) const {
    const QQuickItem* const item = find(objectName);
    return item ? item->property("text").toString() : "none";
}

QString QuickFixture::focused() const {
    return window.activeFocusItem() ? window.activeFocusItem()->objectName() : "none";
}

std::pair<QString, QString> QuickFixture::readable() {
    QStringList texts, spoken;
    QObjectList objects = window.findChildren<QObject*>();
    for (QQuickItem* const item : visibleItems(window.contentItem()))
        objects << item << item->findChildren<QObject*>();
    for (const QObject* const object : objects) {
        const QMetaObject* const type = object->metaObject();
        for (int i = 0; i < type->propertyCount(); ++i)
            texts << type->property(i).read(object).toStringList();
        for (const QByteArray& name : object->dynamicPropertyNames())
            texts << object->property(name).toString();
    }
    const QQuickItem* const focus = window.activeFocusItem();
    for (const auto query :
         {Qt::ImSurroundingText, Qt::ImCurrentSelection, Qt::ImTextBeforeCursor, Qt::ImTextAfterCursor})
        texts << (focus ? focus->inputMethodQuery(query).toString() : "");
    QAccessible::setActive(true);
    collectTexts(QAccessible::queryAccessibleInterface(&window), spoken);
    return {texts.join("|"), spoken.join("|")};
}

QStringList QuickFixture::faults() const {
    QStringList found;
    for (QQuickItem* const item : visibleItems(root_)) {
        const QRectF area = item->mapRectToScene(item->boundingRect());
        const QString words = item->property("text").toString();
        const QString what = item->objectName() + " \"" + words + '"';
        if (item->inherits("QQuickText")) {
            if (words.startsWith("sdk.")) found << "no text for " + what;
            if (item->property("truncated").toBool() ||
                item->property("contentWidth").toDouble() > std::ceil(item->width()))
                found << "cut: " + what;
        }
        if (item->inherits("QQuickAbstractButton") && std::min(area.width(), area.height()) < 44)
            found << "too small to hit: " + what;
        if (area.left() < 0 || area.right() > window.width()) found << "sticks out: " + what;
    }
    return found;
}

}  // namespace korvane
