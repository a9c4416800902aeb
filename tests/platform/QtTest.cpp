// SPDX-License-Identifier: Apache-2.0
#include <korvane/contracts/ImageDecoderContract.h>
#include <korvane/contracts/MainQueueContract.h>
#include <korvane/contracts/TimersContract.h>
#include <QClipboard>
#include <QEventLoop>
#include <QGuiApplication>
#include <QMimeData>
#include <QTranslator>
#include <array>
#include <string>

#include "platform/qt/QtImageDecoder.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtStringTable.h"
#include "platform/qt/QtTimers.h"

namespace korvane::testing {
namespace {

/// An application without a screen.
struct QtApplication {
    std::array<std::string, 3> arguments{"qt_test", "-platform", "offscreen"};
    std::array<char*, 4> pointers{arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
    int count = 3;
    QGuiApplication application{count, pointers.data()};
};

struct QtQueueDriver : private QtApplication {
    std::shared_ptr<QtMainQueue> queue = std::make_shared<QtMainQueue>();

    void turn() {
        QEventLoop loop;
        while (loop.processEvents()) continue;
    }
    template <class Condition>
    void runUntil(Condition condition) {
        while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, MainQueueContract, QtQueueDriver);

struct QtTimersDriver : private QtApplication {
    std::shared_ptr<QtTimers> timers = std::make_shared<QtTimers>();

    void pass(std::chrono::duration<double> time) {
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end) QCoreApplication::processEvents();
        while (QEventLoop().processEvents()) continue;  // what is due at the same moment
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, TimersContract, QtTimersDriver);

TEST(QtMainQueue, TakesWorkBeforeThereIsAnApplication) {
    QtMainQueue queue;
    bool ran = false;
    queue.post([&ran] { ran = true; });
    const QtApplication application;
    QCoreApplication::processEvents();
    EXPECT_TRUE(ran);
}

TEST(QtStringTable, AsksItsOwnTableThenTheHostsThenGivesTheKey) {
    const QtApplication application;
    QtStringTable table;
    EXPECT_EQ(table.text("sdk.both"), "sdk.both");

    QTranslator host;
    ASSERT_TRUE(host.load(":/host.qm"));
    QCoreApplication::installTranslator(&host);
    EXPECT_EQ(table.text("sdk.both"), "host’s both");

    ASSERT_TRUE(table.load(":/component.qm"));
    EXPECT_EQ(table.text("sdk.both"), "both");
    EXPECT_EQ(table.text("sdk.host.only"), "host’s only");
    EXPECT_EQ(table.text("sdk.empty"), "host’s empty") << "an empty text counts as none";
    EXPECT_EQ(table.text("sdk.unknown"), "sdk.unknown");
    EXPECT_EQ(qtTrId("sdk.component.only"), "sdk.component.only")
        << "the component's table leaks into the host";
    EXPECT_FALSE(table.load(":/missing.qm"));
    EXPECT_EQ(table.text("sdk.both"), "both") << "a table that cannot be read takes the place of a good one";
}

TEST(QtPasteboard, PutsPlainTextMarkedAsSecretAndClearsOnlyThat) {
    QtPasteboard pasteboard;
    EXPECT_FALSE(pasteboard.setString("there is no clipboard yet"));
    pasteboard.clearIfHolds("there is no clipboard yet");
    const QtApplication application;
    pasteboard.setString("first");
    EXPECT_TRUE(pasteboard.setString("4111 1111 – é"));
    pasteboard.clearIfHolds("first");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "4111 1111 – é");
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data("x-kde-passwordManagerHint"), "secret");
    pasteboard.clearIfHolds("4111 1111 – é");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "");
}

struct QtDecoderDriver : QtQueueDriver {
    std::shared_ptr<QtImageDecoder> decoder = std::make_shared<QtImageDecoder>(queue);

    void settle() {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(5);
        while (std::chrono::steady_clock::now() < end) turn();
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, ImageDecoderContract, QtDecoderDriver);

}  // namespace
}  // namespace korvane::testing
