// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "uikit/KorvanePassCodeInput.h"

namespace korvane {
namespace {

TEST(WeakPin, IsWhatThePatternFinds) {
    for (const char* const weak :
         {"1234", "4321", "0987", "6789", "3210", "0123", "1111", "5999", "1223", "1222", "2111"}) {
        EXPECT_TRUE(isWeakPIN(weak)) << weak;
    }
    for (const char* const accepted :
         {"7890", "8901", "1098", "2109", "1123", "1122", "1357", "2580", "9012"}) {
        EXPECT_FALSE(isWeakPIN(accepted)) << accepted;
    }
}

TEST(DigitBoxes, FillFromTheFirstAndFocusFollows) {
    KorvanePassCodeInput input = KorvanePassCodeViewPIN("pin");
    EXPECT_EQ(input.firstResponderIndex(), 0);
    for (const char* const digit : {"1", "3", "5"}) EXPECT_TRUE(input.insertText(digit));
    EXPECT_EQ(input.firstResponderIndex(), 3);
    EXPECT_FALSE(input.inputModel().isValid);
    input.insertText("7");
    EXPECT_TRUE(input.inputModel().isValid);
    input.insertText("9");
    EXPECT_EQ(input.inputModel().passCodeString, "1357");
    EXPECT_EQ(input.firstResponderIndex(), 3);
    input.deleteBackward();
    EXPECT_FALSE(input.inputModel().isValid);
    for (int i = 0; i < 5; ++i) input.deleteBackward();
    EXPECT_EQ(input.filled(), 0);
}

TEST(DigitBoxes, PasteStartsAtTheFirstBoxAndForgivesBlanksAndDashes) {
    KorvanePassCodeInput input = KorvanePassCodeViewTwoFactor("code");
    input.insertText("9");
    EXPECT_TRUE(input.insertText("12 34-56 78"));
    EXPECT_EQ(input.inputModel().passCodeString, "123456");
    EXPECT_FALSE(input.insertText("12a"));
    EXPECT_FALSE(input.replaceText("x"));
    EXPECT_EQ(input.inputModel().passCodeString, "123456");
    input.replaceText("7");
    EXPECT_EQ(input.inputModel().passCodeString, "7");
    input.startOverOnNextInsert();
    input.insertText("8");
    input.insertText("9");
    EXPECT_EQ(input.inputModel().passCodeString, "89");
}

}  // namespace
}  // namespace korvane
