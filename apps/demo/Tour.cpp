// SPDX-License-Identifier: Apache-2.0
#include "Tour.h"

#include <QDir>
#include <QGuiApplication>
#include <cstdio>
#include <optional>

#include "Hands.h"

namespace {

const QString activeCard = QStringLiteral("card-physical-active");
const QString newCard = QStringLiteral("card-physical-new");
const QString chosenPin = QStringLiteral("7391");
const QString details = QStringLiteral("sdk.cardviewer.device.details.");
const QString freezing = QStringLiteral("sdk.cardviewer.card.activateAndSetPin.");
const QString freezeSwitch = freezing + "freezeMyCard";
const QString onCardButton = QStringLiteral("sdk.cardviewer.activateAndSetPin.onCardButton");

/// Why the tour cannot go on.
struct Stopped {
    QString reason;
};

class Tour {
  public:
    Tour(QQuickWindow& window, korvane::HostService& service, const QString& directory,
         const QList<QSize>& sizes)
        : window_(window), hands_(window), service_(service), directory_(directory), sizes_(sizes) {}

    void play() {
        await("setPin:" + activeCard);
        picture("Host");
        setPin();
        activate();
        viewCard();
        say(QString("%1 screens are in %2").arg(pictures_).arg(directory_.absolutePath()));
        say("For a window, run this with a display (DISPLAY or WAYLAND_DISPLAY set) and without --tour.");
    }

  private:
    void setPin() {
        slow("getCardStatus");
        tap("setPin:" + activeCard);
        see("SetPIN");
        verifyBySms();
        see("EnterCardPINView");
        tap("sdk.setpin.fourdigits");
        await("sdk.setpin.fourdigits.info.button");
        picture("EnterCardPINView-info");
        tap("sdk.setpin.fourdigits.info.button");
        say("Typing a weak PIN.");
        typeDigits("1234", "sdk.setpin.button");
        picture("EnterCardPINView-filled");
        tap("sdk.setpin.button");
        see("YouCanDoBetterView");
        tap("sdk.youcandobetter.button");
        await("EnterCardPINView");
        typeDigits(chosenPin, "sdk.setpin.button");
        tap("sdk.setpin.button");
        see("ConfirmCardPINView");
        say("Typing another PIN than before.");
        typeDigits("7319", "sdk.confirmpin.button");
        tap("sdk.confirmpin.button");
        waitForMessage("sdk.confirmpin.input");
        picture("ConfirmCardPINView-mismatch");
        typeDigits(chosenPin, "sdk.confirmpin.button");
        slow("pinSet");
        tap("sdk.confirmpin.button");
        picture("ConfirmCardPINView-submitting");
        see("SuccessPinSetView");
        tap("sdk.success.setpin.button");
        await("setPin:" + activeCard);
        picture("Host-closed");
        require(record(activeCard).pin == chosenPin.toStdString(), "the service holds another PIN");
        say("The service holds the PIN that was typed.");

        fault(R"({"endpoint":"getCardStatus","status":500})");
        tap("setPin:" + activeCard);
        see("UhOhTryAgainView");
        tap("sdk.errorPage.tryagain.button");
    }

    void verifyBySms() {
        see("SMSExplainView");
        fault(R"({"endpoint":"pciTokenRequest","result":"Failure: try it later","count":2})");
        tap("sdk.sms.explain.button");
        see("UhOhTryAgainWithErrorMsgView");
        tap("sdk.registration.errorPage.button");
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

    void activate() {
        say("Another number or security code than the card's activates nothing.");
        const auto card = record(newCard);
        const auto wrong = [](std::string digits) {
            for (char& digit : digits) digit = digit == '0' ? '1' : '0';
            return digits;
        };
        for (const bool wrongNumber : {true, false}) {
            open("activate:", newCard, "ActivateCardAndSetPIN_NoNav");
            tap("sdk.cardarrived.start");
            enterLastFour(wrongNumber ? wrong(card.number) : card.number);
            enterCvv(wrongNumber ? card.cvv : wrong(card.cvv));
            enterPinTwice();
            await("UhOhTryAgainView");
            tap("sdk.errorPage.tryagain.button");
            require(record(newCard).status == "P2", "the card is active");
        }

        say("A PIN is asked for a card that is not active yet: it is activated first.");
        open("setPin:", newCard, "CardIsNotYetActivatedView");
        picture("CardIsNotYetActivatedView");
        tap("sdk.cardnotactivated.button.one");
        see("ActivateCardAndSetPIN_NoNav");
        tap("sdk.cardarrived.start");
        see("EnterCardLastFourView");
        say("Other digits first, and back to put them right.");
        enterLastFour(wrong(card.number));
        see("EnterCardCVVView");
        tap("back");
        await("EnterCardLastFourView");
        hands_.look();
        hands_.type("\b\b\b\b");
        enterLastFour(card.number);
        enterCvv(card.cvv);
        enterPinTwice();
        see("SuccessCardActivatedAndPinSetView");
        tap("sdk.success.cardActivatedAndSetPin.button");
        await("setPin:" + newCard);
        checkActivated(newCard);

        open("activate:", "card-wearable-new", "ActivateCardAndSetPIN_NoNav");
        tap("sdk.cardarrived.start");
        enterPinTwice();
        await("SuccessCardActivatedAndPinSetView");
        tap("sdk.success.cardActivatedAndSetPin.button");
        checkActivated("card-wearable-new");

        open("activate:", newCard, "CardAlreadyActivatedView");
        picture("CardAlreadyActivatedView");
        tap("sdk.cardactivated.button.two");
        await("EnterCardPINView");
        tap("host.close");
    }

    void viewCard() {
        open("view:", activeCard, "CardImage_NoNav");
        tap("xmark");
        slow("getCardImage");
        tap("view:" + activeCard);
        see("GetCardImage");
        see("CardImage_NoNav");
        tap(details + "reveal");
        picture("CardImage_NoNav-revealed");
        tap(details + "cardNumber");
        picture("CardImage_NoNav-copied");
        require(hands_.waitUntil([&] { return !hands_.find("toast"); }), "the toast stays");
        tap(freezeSwitch);
        await(freezing + "freezeCardPopup.freezeButton");
        picture("CardImage_NoNav-freezePopup");
        slow("setCardStatus");
        tap(freezing + "freezeCardPopup.freezeButton");
        picture("CardImage_NoNav-freezing");
        await(freezeSwitch);
        picture("CardImage_NoNav-frozen");
        require(record(activeCard).status == "BT", "the card is not frozen");
        tap(freezeSwitch);
        await(freezing + "unFreezeCardPopup.unFreezeButton");
        picture("CardImage_NoNav-unFreezePopup");
        fault(R"({"endpoint":"setCardStatus","status":500})");
        tap(freezing + "unFreezeCardPopup.unFreezeButton");
        await(freezeSwitch);
        picture("CardImage_NoNav-unFreezeFailed");
        tap("xmark");

        for (const char* const type : {"virtual", "wearable", "paywallet"}) {
            open("view:", QString("card-%1-active").arg(type), "CardImage_NoNav");
            picture(QString("CardImage_NoNav-") + type);
            tap("xmark");
        }
        open("view:", "card-unknown-status", "CardImage_NoNav");
        picture("CardImage_NoNav-unknownStatus");
        tap("xmark");
        fault(R"({"endpoint":"getCardImage","result":"Success"})");  // and nothing but this word
        open("view:", "card-unknown-type", "CardImage_NoNav");
        picture("CardImage_NoNav-nothingCame");
        tap("xmark");

        say("A card that is not active yet is activated from the viewer.");
        open("view:", "card-virtual-new", "CardImage_NoNav");
        picture("CardImage_NoNav-notActivated");
        tap(onCardButton);
        enterPinTwice();
        await("SuccessCardActivatedAndPinSetView");
        tap("sdk.success.cardActivatedAndSetPin.button");
        checkActivated("card-virtual-new");
    }

    /// Opens a journey, with a code by SMS where the last one is too old.
    void open(const QString& button, const QString& card, const QString& view) {
        tap(button + card);
        require(hands_.waitUntil([&] { return hands_.find(view) || hands_.find("SMSExplainView"); }),
                view + " did not come");
        if (hands_.find(view)) return;
        tap("sdk.sms.explain.button");
        tap("host.sms");
        await(view);
    }

    void enterLastFour(const std::string& number) {
        await("EnterCardLastFourView");
        typeDigits(QString::fromStdString(number).right(4), "sdk.activatecard.lastfourdigits.button");
        tap("sdk.activatecard.lastfourdigits.button");
    }

    void enterCvv(const std::string& cvv) {
        await("EnterCardCVVView");
        typeDigits(QString::fromStdString(cvv), "sdk.activatecard.cvv.button");
        tap("sdk.activatecard.cvv.button");
    }

    void checkActivated(const QString& card) {
        const auto activated = record(card);
        require(activated.status == "A1" && activated.pin == chosenPin.toStdString(),
                "the service holds no active card with the PIN that was typed");
        say("The service holds an active card with the PIN that was typed.");
    }

    void enterPinTwice() {
        await("EnterCardPINView");
        typeDigits(chosenPin, "sdk.setpin.button");
        tap("sdk.setpin.button");
        await("ConfirmCardPINView");
        typeDigits(chosenPin, "sdk.confirmpin.button");
        tap("sdk.confirmpin.button");
    }

    korvane::HostCardRecord record(const QString& card) {
        std::optional<korvane::HostCardRecord> stored;
        service_.card(card.toStdString(),
                      [&stored](const korvane::HostCardRecord& answer) { stored = answer; });
        require(hands_.waitUntil([&] { return stored.has_value(); }),
                "the service does not tell of the card");
        return *stored;
    }

    void see(const QString& view) {
        await(view);
        picture(view);
    }

    void tap(const QString& control) {
        say("Tapping " + control);
        require(hands_.tap(control), "cannot tap " + control);
    }

    void await(const QString& control) { require(hands_.waitFor(control), control + " did not come"); }

    void typeDigits(const QString& digits, const QString& button) {
        hands_.look();
        hands_.type(digits);
        await(button);
    }

    void waitForMessage(const QString& boxes) {
        await(boxes);
        require(hands_.waitUntil([&] { return hands_.find("message") != nullptr; }), "no message came");
    }

    void fault(const std::string& rule) {
        std::optional<bool> done;
        service_.fault(rule, [&done](bool taken) { done = taken; });
        require(hands_.waitUntil([&] { return done.has_value(); }) && *done, "the service takes no fault");
    }

    /// So that the pictures show the wheel, which a service in the same process hardly gives the time to see.
    void slow(const std::string& endpoint) {
        fault(R"({"endpoint":")" + endpoint + R"(","delayMs":)" + std::to_string(2000 * sizes_.size()) + "}");
    }

    void picture(const QString& name) {
        ++pictures_;
        for (const QSize size : sizes_) {
            window_.resize(size);
            hands_.scroll(false);
            save(name, size, "");
            if (!hands_.scroll(true)) continue;
            save(name, size, "-end");
            hands_.scroll(false);
        }
    }

    void save(const QString& name, QSize size, const char* part) {
        const QString folder =
            sizes_.size() == 1 ? "." : QString("%1x%2").arg(size.width()).arg(size.height());
        const QString file =
            QString("%1/%2-%3%4.png").arg(folder).arg(pictures_, 2, 10, QChar('0')).arg(name).arg(part);
        require(directory_.mkpath(folder) && hands_.look().save(directory_.filePath(file)),
                "cannot write " + file);
        say("Picture " + file);
    }

    static void require(bool good, const QString& otherwise) {
        if (!good) throw Stopped{otherwise};
    }
    static void say(const QString& line) {
        std::printf("%s\n", qPrintable(line));
        std::fflush(stdout);
    }

    QQuickWindow& window_;
    Hands hands_;
    korvane::HostService& service_;
    QDir directory_;
    QList<QSize> sizes_;
    int pictures_ = 0;
};

}  // namespace

int playTour(QQuickWindow& window, korvane::HostService& service, const QString& directory,
             const QList<QSize>& sizes) {
    try {
        Tour(window, service, directory, sizes).play();
        return 0;
    } catch (const Stopped& stopped) {
        std::fprintf(stderr, "The tour stopped: %s\n", qPrintable(stopped.reason));
        return 1;
    }
}
