// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Language.h>
#include <korvane/platform/Ports.h>

#include <QLocale>
#include <array>

#include "tests/uikit/quick/QuickFixture.h"
#include "uikit/quick/ComponentTexts.h"

namespace korvane {
namespace {

class LanguagesTest : public QuickFixture {
  protected:
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
    EXPECT_EQ(text("sdk.setpin.fourdigits"), "Utilisez quatre chiffres") << "under the sheet";
    walk({"sdk.setpin.fourdigits.info.button", "type 8642", "sdk.setpin.button", "type 86"});
    ASSERT_TRUE(setLanguage("de"));
    EXPECT_EQ(screen()->passcodeDescription(), "Neue PIN, noch einmal, 2 von 4 Ziffern eingegeben");
    EXPECT_EQ(text("back"), "Zurück");
    EXPECT_EQ(host->property("evaluations").value<QJSValue>().property("length").toInt(), 1)
        << "the host's binding was evaluated again";
    EXPECT_FALSE(setLanguage("pt-BR") || setLanguage(""));
    EXPECT_EQ(language(), "de");
}

TEST_F(LanguagesTest, AToastFollowsAndADisclosureThatCameBeforeStays) {
    show("GetCardImage { cardId: 'card-1' }");
    tap("sdk.cardviewer.device.details.cardholderName");
    ASSERT_TRUE(setLanguage("es"));
    EXPECT_EQ(screen()->toast(), "Copiado");
    EXPECT_EQ(screen()->disclosure(), QStringList("hello"));
    show("GetCardImage { cardId: 'card-1' }");
    EXPECT_EQ(screen()->disclosure(), QStringList("hola"));
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
    key(Qt::Key_Return);
    EXPECT_GT(middle("back").x(), window.width() - 60.0);
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
