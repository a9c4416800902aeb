// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Language.h>
#include <korvane/platform/Ports.h>

#include <QLocale>
#include <array>

#include "tests/uikit/quick/QuickFixture.h"
#include "uikit/quick/BiometricSheetModel.h"
#include "uikit/quick/ComponentTexts.h"

namespace korvane {
namespace {

class LanguagesTest : public QuickFixture {
  protected:
    /// How far the tip of the back arrow, which is half-way down, lies to the right of the middle of its ink.
    double tip() {
        const QRect area = find("back")->mapRectToScene(find("back")->boundingRect()).toRect();
        const QImage picture = window.grabWindow().copy(area);
        double all = 0, row = 0, points = 0, inRow = 0;
        for (int y = 0; y < area.height(); ++y) {
            for (int x = 0; x < area.width(); ++x) {
                if (picture.pixelColor(x, y).lightness() > 128) continue;
                all += x, ++points;
                if (y == area.height() / 2) row += x, ++inRow;
            }
        }
        return row / inRow - all / points;
    }
    /// Where the next digit goes.
    double caret() const {
        const QQuickItem* const boxes = find(screen()->passcode()->name());
        return boxes->inputMethodQuery(Qt::ImCursorRectangle).toRectF().center().x();
    }
};

TEST_F(LanguagesTest, SwitchChangesAllThatIsShownAndNothingOfTheHosts) {
    const QQuickItem* const host = show(
        "Item {\n"
        "  property var evaluations: []\n"
        "  property string hosts: { evaluations.push(1); return qsTr('mine') }\n"
        "  SetPIN { anchors.fill: parent; cardId: 'card-1' }\n"
        "}");
    tap("sdk.setpin.fourdigits");
    ASSERT_TRUE(setLanguage("fr"));
    EXPECT_EQ(screen()->sheetText().left(18), "Votre code PIN com");
    EXPECT_EQ(text("sdk.setpin.fourdigits.info.button"), "J’ai compris");
    EXPECT_EQ(text("sdk.setpin.fourdigits"), "Utilisez quatre chiffres") << "under the sheet";
    walk({"sdk.setpin.fourdigits.info.button", "type 8642", "sdk.setpin.button", "type 86"});
    ASSERT_TRUE(setLanguage("es_MX"));
    EXPECT_EQ(language(), "es-MX");
    EXPECT_EQ(text("back"), "Atrás");
    ASSERT_TRUE(setLanguage("de"));
    EXPECT_EQ(screen()->title(), "PIN noch einmal eingeben");
    EXPECT_EQ(screen()->passcodeDescription(), "Neue PIN, noch einmal, 2 von 4 Ziffern eingegeben");
    EXPECT_EQ(text("back"), "Zurück");
    EXPECT_EQ(host->property("evaluations").value<QJSValue>().property("length").toInt(), 1)
        << "the host's binding was evaluated again";
    EXPECT_FALSE(setLanguage("pt-BR") || setLanguage(""));
    EXPECT_EQ(language(), "de");
}

TEST_F(LanguagesTest, MessagesToastsAndDisclosuresFollow) {
    const QString freezing = "sdk.cardviewer.card.activateAndSetPin.";
    show("GetCardImage { cardId: 'card-1' }");
    tap(freezing + "freezeMyCard");
    ASSERT_TRUE(setLanguage("fr"));
    EXPECT_EQ(screen()->popupHeader().left(19), "Bloquer votre carte");
    walk({freezing + "freezeCardPopup.cancelButton", "sdk.cardviewer.device.details.cardholderName"});
    EXPECT_EQ(screen()->toast(), "Copié");
    ASSERT_TRUE(setLanguage("es"));
    EXPECT_EQ(screen()->toast(), "Copiado");
    EXPECT_EQ(screen()->card()->name(), "Tarjeta física");
    EXPECT_EQ(screen()->disclosure(), "hello") << "it came before the switch";
    show("GetCardImage { cardId: 'card-1' }");
    EXPECT_EQ(screen()->disclosure(), "hola");

    BiometricSheetModel sheet(ports().stringTable->text("enrollment.enableFaceID.reason"), [] {});
    ASSERT_TRUE(setLanguage("de"));
    EXPECT_EQ(sheet.reason().left(17), "Bestätigen Sie, d");
    EXPECT_EQ(sheet.cancel()->label(), "Abbrechen");
}

TEST_F(LanguagesTest, HostsTextTakesThePlaceOfAnySingleOne) {
    toPinEntry();
    // The host's text for a language, the language that is then shown, the button and what is not the host's.
    const std::array<const char*, 5> steps[] = {
        {"Next", "", "en", "Next", "Use four digits"},
        {"Schritt", "de", "en", "Next", "Use four digits"},
        {"Schritt, gäll", "de_CH", "de", "Schritt", "Verwenden Sie vier Ziffern"},
        {"Schritt, gäll", "de-CH", "de-CH", "Schritt, gäll", "Verwenden Sie vier Ziffern"},
        {"", "de-CH", "de-CH", "Schritt", "Verwenden Sie vier Ziffern"},
        {"Avançar", "pt", "pt-BR", "Avançar", "Use four digits"}};  // a language of the host's
    for (const auto& [hosts, of, shown, expected, other] : steps) {
        ASSERT_TRUE(overrideText("sdk.setpin.button", hosts, of));
        if (language() != shown) {
            ASSERT_TRUE(setLanguage(shown)) << shown;
        }
        EXPECT_EQ(text("sdk.setpin.button"), expected);
        EXPECT_EQ(text("sdk.setpin.fourdigits"), other);
    }
}

TEST_F(LanguagesTest, ArabicMirrorsTheScreensAndKeepsDigitsFromLeftToRight) {
    toPinEntry();
    const double left = caret();
    ASSERT_TRUE(setLanguage("ar"));
    settle();
    EXPECT_EQ(caret(), left);
    type("8");
    EXPECT_GT(caret(), left);
    type("642");
    theme().setReducedMotion(false);
    key(Qt::Key_Return);
    wait(60);
    EXPECT_LT(middle("ConfirmCardPINView").x(), window.width() / 2.0) << "it comes in from where lines end";
    wait(400);
    EXPECT_GT(middle("back").x(), window.width() - 60.0);
    EXPECT_GT(tip(), 0);
    ASSERT_TRUE(setLanguage("en"));
    settle();
    EXPECT_LT(middle("back").x(), 60.0);
    EXPECT_LT(tip(), 0) << "the arrow points the other way";
}

TEST(Languages, StartWithTheUsersThatTheComponentSpeaksElseEnglish) {
    for (const auto& [locale, text] :
         {std::pair{"de_AT", "Weiter"}, {"pt_BR", "Continue"}, {"ar_EG", "متابعة"}, {"C", "Continue"}}) {
        QLocale::setDefault(QLocale(locale));
        EXPECT_EQ(componentTexts()->text("sdk.setpin.button"), text) << locale;
    }
    EXPECT_EQ(languages(), (std::vector<std::string>{"ar", "de", "en", "es", "fr"}));
}

}  // namespace
}  // namespace korvane
