// SPDX-License-Identifier: Apache-2.0
// The clipboard of a real X server, with other programs that own it, also one that hangs.
#include <gtest/gtest.h>
#include <signal.h>

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProcess>
#include <QThread>

#include "platform/qt/QtPasteboard.h"

namespace korvane::testing {
namespace {

/// An X server of the test's own.
class Display {
  public:
    Display() {
        server_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "64x64x24", "-nolisten", "tcp"});
        server_.waitForReadyRead(20'000);
        qputenv("DISPLAY", ":" + server_.readAllStandardOutput().trimmed());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    ~Display() {
        server_.kill();
        server_.waitForFinished();
    }
    Display(const Display&) = delete;

  private:
    QProcess server_;
};

/// Another program that copies; with -quiet it stays in the foreground.
class Owner {
  public:
    explicit Owner(const QByteArray& text) {
        process_.start("xclip", {"-quiet", "-selection", "clipboard"});
        process_.write(text);
        process_.closeWriteChannel();
        while (QGuiApplication::clipboard()->ownsClipboard()) QCoreApplication::processEvents();
    }
    ~Owner() {
        hang(false);
        process_.kill();
        process_.waitForFinished();
    }
    Owner(const Owner&) = delete;
    void hang(bool hangs) { kill(static_cast<pid_t>(process_.processId()), hangs ? SIGSTOP : SIGCONT); }

  private:
    QProcess process_;
};

/// As another program reads it.
QByteArray read() {
    QProcess reader;
    reader.start("xclip", {"-o", "-selection", "clipboard"});
    while (!reader.waitForFinished(5)) QCoreApplication::processEvents();
    return reader.readAllStandardOutput();
}

struct X11 : ::testing::Test {
    Display display;
    int count = 0;
    QGuiApplication application{count, nullptr};
    QtPasteboard pasteboard;
};

TEST_F(X11, AValueIsClearedAsLongAsItIsThere) {
    ASSERT_TRUE(pasteboard.setString("5555 0000 0007 9190"));
    EXPECT_EQ(read(), "5555 0000 0007 9190");
    pasteboard.clearIfHolds("another");
    EXPECT_EQ(read(), "5555 0000 0007 9190");
    pasteboard.clearIfHolds("5555 0000 0007 9190");
    EXPECT_EQ(read(), "");
}

TEST_F(X11, WhatAnotherProgramPutStaysAndNobodyWaitsForIt) {
    ASSERT_TRUE(pasteboard.setString("5555"));
    Owner other("5555");  // the same text is theirs, too
    pasteboard.clearIfHolds("5555");
    EXPECT_EQ(read(), "5555");
    other.hang(true);
    QElapsedTimer time;
    time.start();
    pasteboard.clearIfHolds("5555");
    EXPECT_LT(time.elapsed(), 500);
    other.hang(false);
    EXPECT_EQ(read(), "5555");
    EXPECT_TRUE(pasteboard.setString("again"));
    EXPECT_EQ(read(), "again");
}

}  // namespace
}  // namespace korvane::testing
