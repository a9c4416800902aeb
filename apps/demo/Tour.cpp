// SPDX-License-Identifier: Apache-2.0
#include "Tour.h"

#include <QDir>
#include <QGuiApplication>
#include <cstdio>
#include <optional>

#include "Hands.h"

namespace {

const QString card = QStringLiteral("card-physical-active");
const QString weakPin = QStringLiteral("1234");
const QString chosenPin = QStringLiteral("7391");
const QString otherPin = QStringLiteral("7319");

/// Why the tour cannot go on.
struct Stopped {
    QString reason;
};

class Tour {
  public:
    Tour(QQuickWindow& window, korvane::HostService& service, const QString& directory)
        : hands_(window), service_(service), directory_(directory) {}

    void play() {
        require(QDir().mkpath(directory_.path()), "cannot make the folder " + directory_.path());
        openJourney();
        verifyBySms();
        choosePin();
        confirmPin();
        checkService();
        say(QString("%1 pictures are in %2").arg(pictures_).arg(directory_.absolutePath()));
        say("For a window, run this with a display (DISPLAY or WAYLAND_DISPLAY set) and without --tour.");
    }

  private:
    void openJourney() {
        await("setPin:" + card);
        picture("Host");
        delay("getCardStatus");
        tap("setPin:" + card);
        see("SetPIN");
    }

    void verifyBySms() {
        see("SMSExplainView");
        tap("sdk.sms.explain.button");
        await("EnterSMSCodeView");
        await("host.sms");
        const QString code =
            hands_.find("host.sms") ? hands_.find("host.sms")->property("text").toString() : "";
        picture("EnterSMSCodeView");
        say("Typing a code that is not the one that was sent.");
        hands_.type(code.startsWith("000000") ? "111111" : "000000");
        waitForMessage("sdk.sms.code.input");
        picture("EnterSMSCodeView-incorrect");
        tap("host.sms");
    }

    void choosePin() {
        see("EnterCardPINView");
        tap("sdk.setpin.fourdigits");
        await("sdk.setpin.fourdigits.info.button");
        picture("EnterCardPINView-info");
        tap("sdk.setpin.fourdigits.info.button");
        say("Typing a weak PIN.");
        typePin(weakPin, "sdk.setpin.button");
        picture("EnterCardPINView-filled");
        tap("sdk.setpin.button");
        see("YouCanDoBetterView");
        tap("sdk.youcandobetter.button");
        see("EnterCardPINView", false);
        typePin(chosenPin, "sdk.setpin.button");
        tap("sdk.setpin.button");
    }

    void confirmPin() {
        see("ConfirmCardPINView");
        say("Typing another PIN than before.");
        typePin(otherPin, "sdk.confirmpin.button");
        tap("sdk.confirmpin.button");
        waitForMessage("sdk.confirmpin.input");
        picture("ConfirmCardPINView-mismatch");
        typePin(chosenPin, "sdk.confirmpin.button");
        delay("pinSet");
        tap("sdk.confirmpin.button");
        picture("ConfirmCardPINView-submitting");
        see("SuccessPinSetView");
        tap("sdk.success.setpin.button");
        await("setPin:" + card);
        picture("Host-closed");
    }

    void checkService() {
        std::optional<std::string> stored;
        service_.pin(card.toStdString(), [&stored](const std::string& pin) { stored = pin; });
        require(hands_.waitUntil([&] { return stored.has_value(); }), "the service does not tell the PIN");
        require(stored == chosenPin.toStdString(), "the service holds another PIN than the one typed");
        say("The service holds the PIN that was typed.");
    }

    void see(const QString& view, bool withPicture = true) {
        require(hands_.waitFor(view), view + " did not come");
        if (withPicture) picture(view);
    }

    void tap(const QString& control) {
        say("Tapping " + control);
        require(hands_.tap(control), "cannot tap " + control);
    }

    void await(const QString& control) { require(hands_.waitFor(control), control + " did not come"); }

    void typePin(const QString& pin, const QString& button) {
        hands_.look();
        hands_.type(pin);
        await(button);
    }

    void waitForMessage(const QString& boxes) {
        await(boxes);
        require(hands_.waitUntil([&] { return hands_.find("message") != nullptr; }), "no message came");
    }

    /// So that a picture shows the wheel, which a service in the same process hardly gives the time to see.
    void delay(const std::string& endpoint) {
        bool done = false;
        service_.delayNext(endpoint, 2000, [&done] { done = true; });
        require(hands_.waitUntil([&] { return done; }), "the service takes no delay");
    }

    void picture(const QString& name) {
        const QString file = QString("%1-%2.png").arg(++pictures_, 2, 10, QChar('0')).arg(name);
        require(hands_.look().save(directory_.filePath(file)), "cannot write " + file);
        say("Picture " + file);
    }

    static void require(bool good, const QString& otherwise) {
        if (!good) throw Stopped{otherwise};
    }
    static void say(const QString& line) {
        std::printf("%s\n", qPrintable(line));
        std::fflush(stdout);
    }

    Hands hands_;
    korvane::HostService& service_;
    QDir directory_;
    int pictures_ = 0;
};

}  // namespace

int playTour(QQuickWindow& window, korvane::HostService& service, const QString& directory) {
    try {
        Tour(window, service, directory).play();
        return 0;
    } catch (const Stopped& stopped) {
        std::fprintf(stderr, "The tour stopped: %s\n", qPrintable(stopped.reason));
        return 1;
    }
}
