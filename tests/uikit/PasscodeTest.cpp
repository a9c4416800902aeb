// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "uikit/KorvanePassCodeInput.h"

namespace korvane {
namespace {

TEST(WeakPin, IsWhatThePatternFinds) {
    for (const char* const weak :
         {"1234", "4321", "0987", "6789", "3210", "0123", "1111", "5999", "1223", "1222", "2111"})
        EXPECT_TRUE(isWeakPIN(weak)) << weak;
    for (const char* const accepted :
         {"7890", "8901", "1098", "2109", "1123", "1122", "1357", "2580", "9012"})
        EXPECT_FALSE(isWeakPIN(accepted)) << accepted;
}

TEST(DigitBoxes, FillFromTheFirstAndForgiveBlanksAndDashes) {
    KorvanePassCodeInput input = KorvanePassCodeViewPIN("pin");
    // What is inserted, what the boxes then hold, and the one that has the focus.
    const std::tuple<const char*, const char*, int> inserted[] = {{"1", "1", 1},
                                                                  {"3", "13", 2},
                                                                  {"5", "135", 3},
                                                                  {"7", "1357", 3},
                                                                  {"9", "1357", 3},
                                                                  // What is pasted starts at the first box.
                                                                  {"12 3", "123", 3},
                                                                  {"24-6 80", "2468", 3},
                                                                  {"12a", "2468", 3}};
    EXPECT_EQ(input.firstResponderIndex(), 0);
    for (const auto& [text, held, focused] : inserted) {
        EXPECT_EQ(input.insertText(text), text != std::string{"12a"});
        EXPECT_EQ(input.inputModel().passCodeString, held);
        EXPECT_EQ(input.inputModel().isValid, std::string{held}.size() == 4);
        EXPECT_EQ(input.firstResponderIndex(), focused);
    }
    input.deleteBackward();
    EXPECT_FALSE(input.inputModel().isValid);
    for (int i = 0; i < 5; ++i) input.deleteBackward();
    EXPECT_EQ(input.filled(), 0);
    EXPECT_FALSE(input.replaceText("x"));
    input.replaceText("7");
    input.startOverOnNextInsert();
    for (const char* const digit : {"8", "9"}) input.insertText(digit);
    EXPECT_EQ(input.inputModel().passCodeString, "89");
}

}  // namespace
}  // namespace korvane
