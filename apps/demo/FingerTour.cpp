// SPDX-License-Identifier: Apache-2.0
#include "FingerTour.h"

#include <QDir>
#include <cstdio>

#include "Hands.h"

namespace {

class FingerTour {
  public:
    FingerTour(QQuickWindow& window, const QString& directory) : hands_(window), directory_(directory) {}

    /// Nothing is kept yet: the finger opens nothing, and an SMS code is needed.
    bool firstVisit() {
        return begin() && see("biometricSheet", "Sheet-over-the-host") && ask("right") && sheetGoes() &&
               openJourney() && tap("sdk.biometrics.cancel") && tap("sdk.sms.explain.button") &&
               tap("host.sms") && see("EnterCardPINView", "EnterCardPINView-by-SMS");
    }

    /// The token is in the keyring: the finger brings it back.
    bool secondVisit() {
        return begin() && await("biometricSheet") && tap("sdk.biometrics.cancel") && sheetGoes() &&
               openJourney() && see("biometricSheet", "Sheet-over-the-journey") && showFinger("wrong") &&
               picture("Sheet-no-match") && ask("right") &&
               see("EnterCardPINView", "EnterCardPINView-by-finger");
    }

  private:
    bool begin() { return QDir().mkpath(directory_.path()); }

    bool openJourney() { return tap("setPin:card-physical-active") && await("biometricSheet"); }

    bool await(const QString& name) {
        say("Waiting for " + name);
        return hands_.waitFor(name);
    }

    bool sheetGoes() {
        return hands_.waitUntil([&] { return !hands_.find("biometricSheet"); });
    }

    bool see(const QString& name, const QString& asPicture) { return await(name) && picture(asPicture); }

    bool tap(const QString& control) {
        say("Tapping " + control);
        return hands_.waitUntil([&] { return hands_.tap(control); });  // it may still be on its way up
    }

    /// Asks for a finger, and waits until the sheet says something about it.
    bool showFinger(const QString& finger) {
        const QString before = message();
        return ask(finger) && hands_.waitUntil([&] { return message() != before; });
    }

    QString message() const {
        const QQuickItem* const item = hands_.find("biometricMessage");
        return item ? item->property("text").toString() : QString();
    }

    static bool ask(const QString& finger) {
        say("Finger: " + finger);
        return true;
    }

    bool picture(const QString& name) {
        const QString file = QString("%1-%2.png").arg(++pictures_, 2, 10, QChar('0')).arg(name);
        say("Picture " + file);
        return hands_.look().save(directory_.filePath(file));
    }

    static void say(const QString& line) {
        std::printf("%s\n", qPrintable(line));
        std::fflush(stdout);
    }

    Hands hands_;
    QDir directory_;
    int pictures_ = 0;
};

}  // namespace

int playFingerTour(QQuickWindow& window, const QString& directory, bool nextVisit) {
    FingerTour tour(window, directory);
    if (nextVisit ? tour.secondVisit() : tour.firstVisit()) return 0;
    std::fputs("The tour stopped after its last line: what it waited for did not come.\n", stderr);
    return 1;
}
