// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/capi/CHost.h"

namespace korvane::testing {
namespace {

const std::string number = masked("5555550000000791907"), endOfNumber = masked("00791907"),
                  cvv = masked("0411");

TEST(SecretsLeaveTheCInterface, CodeAndDetailsThatWereTypedRevealedReadAndCopied) {
    CHost host;
    ASSERT_EQ(host.begin(), KORVANE_OK);
    ASSERT_TRUE(host.comesTo("SMSExplainView"));
    host.use("sdk.sms.explain.button");
    ASSERT_TRUE(host.comesTo("EnterSMSCodeView"));
    const std::string code = host.smsCode(), fiveDigits = code.substr(0, 5);
    ASSERT_EQ(code.size(), 6);
    ASSERT_EQ(find(fiveDigits), nowhere);
    korvane_journey_replace(host.journey, shown(fiveDigits)->c_str());
    EXPECT_EQ(host.view(), "EnterSMSCodeView");  // with the digits: its boxes are not masked
    korvane_journey_type(host.journey, shown(code.substr(5))->c_str());
    ASSERT_TRUE(host.comesTo("CardImage_NoNav"));
    EXPECT_EQ(find(code), nowhere);
    EXPECT_EQ(find(fiveDigits), nowhere);

    host.use("sdk.cardviewer.device.details.reveal");
    EXPECT_EQ(host.view(), "CardImage_NoNav");  // with the values
    char* shownJson = nullptr;
    ASSERT_EQ(korvane_journey_screen(host.journey, &shownJson), KORVANE_OK);
    EXPECT_EQ(find(number).size(), 2) << "the shared state's, and the host's until it frees it";
    korvane_free(shownJson);
    EXPECT_EQ(find(number).size(), 1);
    for (const char* const row : {"cardNumber", "cvv"}) {
        EXPECT_EQ(host.use(std::string("sdk.cardviewer.device.details.") + row), KORVANE_OK);
        EXPECT_EQ(host.view(), "CardImage_NoNav");
    }
    host.use("xmark");
    EXPECT_TRUE(host.closed);
    host.destroy();
    for (const std::string& secret : {number, endOfNumber, cvv, code}) EXPECT_EQ(find(secret), nowhere);
    ASSERT_EQ(host.end(), KORVANE_OK);
}

}  // namespace
}  // namespace korvane::testing
