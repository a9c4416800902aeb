// SPDX-License-Identifier: Apache-2.0
#include "transport/API.h"

#include <functional>

#include "base/Base64.h"
#include "tests/support/ServiceFixture.h"
#include "transport/BearerToken.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

class Api : public ServiceFixture {
  protected:
    template <class Record>
    Completion<Record> keep() {
        return [this](std::optional<Record> record, std::optional<CallError> error) {
            ++ends;
            result = record ? record->encryptedResult : std::nullopt;
            failure = std::move(error);
        };
    }
    CancelHandle pinSet() { return API{}.pinSet("iv-0", "C", "P", "T", keep<RestPinSet>()); }
    const KorvaneRetStruct& renewalFailure() const { return std::get<KorvaneRetStruct>(*failure); }
    UrlReply token(const std::string& text) const {
        return ok({{"encryptedResult", "Success"}, {"encryptedAccessToken", text}});
    }
    int ends = 0;
    std::optional<std::string> result;
    std::optional<CallError> failure;
};

TEST_F(Api, EachMethodCallsItsEndpointWithItsKeys) {
    API api;
    config.apiUrl = "https://elsewhere.example";  // too late for this object
    const std::map<std::string, std::string> common{
        {"offsetId", "I"}, {"encryptedCardId", "C"}, {"UUID", ""}, {"brandId", ""}};
    struct Case {
        std::string path;
        std::function<void()> call;
        std::map<std::string, std::string> further;
        bool bearer = true;
    };
    const Case cases[] = {
        {"token",
         [&] { api.getBearerToken("I", "C", "U", "W", keep<RestBearerToken>()); },
         {{"encryptedUsername", "U"}, {"encryptedPassword", "W"}},
         false},
        {"pciTokenRequest", [&] { api.pciTokenRequest("I", "C", keep<RestPciTokenRequest>()); }, {}},
        {"pciTokenSubmission",
         [&] { api.pciTokenSubmission("I", "C", "S", "2", "B", keep<RestPciTokenSubmission>()); },
         {{"encryptedPciSmsToken", "S"}, {"encryptedTwoFactorCode", "2"}, {"encryptedUseBiometrics", "B"}}},
        {"pinSet",
         [&] { api.pinSet("I", "C", "P", "T", keep<RestPinSet>()); },
         {{"encryptedPIN", "P"}, {"encryptedPciToken", "T"}}},
        {"getCardStatus",
         [&] { api.getCardStatus("I", "C", "T", keep<RestGetCardStatus>()); },
         {{"encryptedPciToken", "T"}}},
        {"cardStatus",
         [&] { api.setCardStatus("I", "C", "S", "T", keep<RestSetCardStatus>()); },
         {{"encryptedStatus", "S"}, {"encryptedPciToken", "T"}}},
        {"cardImage",
         [&] { api.getCardImage("I", "C", "T", keep<RestGetCardImage>()); },
         {{"encryptedPciToken", "T"}}},
        {"physicalCardActivationAndPinSet",
         [&] {
             api.physicalCardActivationAndPinSet("I", "C", "4", "V", "P", "T",
                                                 keep<RestPhysicalCardActivationAndPinSet>());
         },
         {{"encryptedCVV", "V"},
          {"encryptedPIN", "P"},
          {"encryptedLastFourOfPan", "4"},
          {"encryptedPciToken", "T"}}},
        {"virtualCardActivationAndPinSet",
         [&] {
             api.virtualCardActivationAndPinSet("I", "C", "P", "T",
                                                keep<RestVirtualCardActivationAndPinSet>());
         },
         {{"encryptedPIN", "P"}, {"encryptedPciToken", "T"}}},
        {"wearableCardActivationAndPinSet",
         [&] {
             api.wearableCardActivationAndPinSet("I", "C", "P", "T",
                                                 keep<RestWearableCardActivationAndPinSet>());
         },
         {{"encryptedPIN", "P"}, {"encryptedPciToken", "T"}}},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        cases[i].call();
        const UrlRequest& request = device.urlSession->requests().at(i);
        EXPECT_EQ(request.url, "https://cards.example/api/sdk/" + cases[i].path);
        EXPECT_EQ(request.method, "POST");
        EXPECT_EQ(request.headers[0].second, cases[i].bearer ? "Bearer bearer-0" : "application/json");
        auto body = cases[i].further;
        body.insert(common.begin(), common.end());
        EXPECT_EQ(sent(i), body) << cases[i].path;
    }
    EXPECT_EQ(api.cardImageUrl, "https://cards.example/api/sdk/cardImage");
}

TEST_F(Api, A401RenewsTheBearerTokenAndRepeatsTheCall) {
    willAnswer({answer(401, {}), token("bearer-1"), answer(200, {{"encryptedResult", "Success"}})});
    pinSet();
    settle();
    EXPECT_EQ(called(), (Lines{"pinSet", "token", "pinSet"}));
    EXPECT_EQ(result, encipher("Success"));
    EXPECT_EQ(config.currentBearerToken, "bearer-1");
    EXPECT_EQ(device.urlSession->requests()[2].headers[0].second, "Bearer bearer-1");
    EXPECT_EQ(sent(0), sent(2));
    EXPECT_EQ(decipher(sent(1)["encryptedCardId"]), "card-1");
    EXPECT_EQ(decipher(sent(1)["encryptedUsername"]), base64Encode(config.preSharedKeyByteArray));
    EXPECT_EQ(decipher(sent(1)["encryptedPassword"]), base64Encode(iv));
    const std::string tokenBody = device.urlSession->requests()[1].body;
    const Lines expected{
        "inside doRequest<T: ...>",
        "Status code and JSON response at base:\n",
        "401",
        "{}",
        "Got 401... calling reAuthClosure...",
        "pinSet - now inside the reAuthClosure... calling refreshBearerToken...",
        "inside refreshBearerToken( ... )",
        "have iv (now?)... use it:",
        "refreshBearerToken(...) on track...",
        "cardId: card-1",
        "encrypted cardId: " + sent(1)["encryptedCardId"],
        "encryptedUsername = " + sent(1)["encryptedUsername"],
        "encryptedPassword = " + sent(1)["encryptedPassword"],
        "getBearerToken request dictionary: " + tokenBody.substr(0, tokenBody.find(",\"UUID\"")) + "}",
        "inside doRequest<T: ...>",
        "Status code and JSON response at base:\n",
        "200",
        token("bearer-1").body,
        "theEncAccToken: " + encipher("bearer-1"),
        "decAccessToken: bearer-1",
        "Setting SdkConfig.sharedInstance.currentBearerToken to bearer-1",
        "Success! Got new bearer token... now re-calling pinSet...",
        "inside doRequest<T: ...>",
        "Status code and JSON response at base:\n",
        "200",
        ok({{"encryptedResult", "Success"}}).body,
    };
    EXPECT_EQ(lines(), expected);
}

TEST_F(Api, MethodsPrintTheirOwnLines) {
    willAnswer({answer(401, {}), answer(500, {})});
    API{}.pciTokenRequest("iv-0", "C", keep<RestPciTokenRequest>());
    settle();
    const Lines request = lines();
    EXPECT_EQ(request[0], R"(pciTokenRequest request dictionary: {"offsetId":"iv-0","encryptedCardId":"C"})");
    EXPECT_THAT(request,
                testing::Contains(
                    "pciTokenRequest -  now inside the reAuthClosure... calling refreshBearerToken..."));
    EXPECT_EQ(request.back(), "pciTokenRequest - refreshBearerToken failed");

    API{}.getCardStatus("iv-0", "C", "T", keep<RestGetCardStatus>());
    EXPECT_EQ(lines(), (Lines{"Inside getCardStatus api level...", "Current bearer token: bearer-0",
                              "Current PCI token: pci-token", "inside doRequest<T: ...>"}));
}

TEST_F(Api, RepeatsWithoutLimitForAsLongAsTheServiceAnswers401) {
    int calls = 0;
    device.urlSession->answerWith([&](const UrlRequest& request) -> std::optional<UrlReply> {
        if (request.url.ends_with("/token")) return token("bearer");
        return ++calls <= 300 ? answer(401, {}) : ok({{"encryptedResult", "Success"}});
    });
    pinSet();
    settle();
    EXPECT_EQ(calls, 301);
    EXPECT_EQ(result, encipher("Success"));
    EXPECT_EQ(API{}.retryMaxTimesOn401, 5);
    EXPECT_EQ(API{}.currentRetryCount, 0);
}

TEST_F(Api, AFailedRenewalIsTheFailureOfTheCall) {
    struct Case {
        UrlReply token;
        std::string errorMsg, errorMsgDec;
    };
    const Case cases[] = {
        {answer(500, {{"encryptedResult", "Failure: x"}}), "500 error", "Failure: x"},
        {answer(401, {}), "401 error", ""},
        {{418, "<html>", ""}, "418 error", ""},
        {{0, "", "no route"}, "-1 error", ""},
        {{200, "not JSON", ""}, "-1 error", ""},
        {ok({{"encryptedResult", "Failure: unknown card"}}), "Failure: unknown card", ""},
        {ok({{"encryptedResult", "Failure: x"}, {"encryptedAccessToken", ""}}), "Failure: x", ""},
    };
    for (const Case& each : cases) {
        willAnswer({answer(401, {}), each.token});
        failure.reset();
        ends = 0;
        pinSet();
        settle();
        ASSERT_TRUE(failure) << each.errorMsg;
        EXPECT_EQ(ends, 1);
        EXPECT_TRUE(renewalFailure().error);
        EXPECT_EQ(renewalFailure().errorMsg, each.errorMsg);
        EXPECT_EQ(renewalFailure().errorMsgDec, each.errorMsgDec);
        EXPECT_EQ(lines().back(), "pinSet - refreshBearerToken failed");
    }
    EXPECT_EQ(config.currentBearerToken, "bearer-0");

    config.ivCallback = [](const IvReply& reply) { reply(std::nullopt, std::nullopt); };
    willAnswer({answer(401, {})});
    pinSet();
    dropIv();
    settle();
    EXPECT_EQ(renewalFailure().errorMsg, "ivId is nil");
}

TEST_F(Api, ARefusedIvIsReplacedAndTheRenewalRunsAgain) {
    struct Case {
        UrlReply refusal;
        std::string word, line;
    };
    const std::string expired =
        "iv expired: Got new iv -- re-calling self.refreshBearerToken() -- refreshBearerToken()";
    const std::string invalid = "iv invalid: Got new iv -- self.refreshBearerToken() -- refreshBearerToken()";
    const Case cases[] = {
        {answer(400, {{"encryptedResult", "failure: iv is expired"}}), "failure: iv is expired", expired},
        {answer(401, {{"encryptedResult", "Failure: Invalid offsetId"}}), "Failure: Invalid offsetId",
         invalid},
        {ok({{"encryptedResult", "Failure: IV is expired"}}), "Failure: IV is expired", expired},
    };
    for (const Case& each : cases) {
        willAnswer({each.refusal, token("bearer-2")});
        std::optional<KorvaneRetStruct> outcome = KorvaneRetStruct{};
        lines();
        const int ivsBefore = ivsSupplied;
        refreshBearerToken([&](std::optional<KorvaneRetStruct> renewal) { outcome = std::move(renewal); });
        settle();
        EXPECT_FALSE(outcome) << each.word;
        EXPECT_EQ(config.currentBearerToken, "bearer-2");
        EXPECT_EQ(ivsSupplied, ivsBefore + 1);
        EXPECT_EQ(sent(device.urlSession->startedCount() - 1)["offsetId"], config.ivIdStr);
        const Lines printed = lines();
        const auto word = std::find(printed.begin(), printed.end(), each.word);
        ASSERT_NE(word, printed.end());
        EXPECT_EQ(*(word + 1), each.line);
        EXPECT_EQ(*(word + 2), "inside refreshBearerToken( ... )");
    }
}

TEST_F(Api, TheRenewalPrintsWhatAnErrorBrought) {
    willAnswer({answer(403, {{"encryptedResult", "Failure: x"}}), answer(400, {})});
    dropIv();
    for (int i = 0; i < 2; ++i) {
        refreshBearerToken([](auto&&) {});
        settle();
    }
    const Lines printed = lines();
    const auto from = [&](const std::string& line, std::size_t count) {
        const auto first = std::find(printed.begin(), printed.end(), line);
        return Lines(first, first + static_cast<std::ptrdiff_t>(count));
    };
    const std::string word = encipher("Failure: x");
    EXPECT_EQ(from("need to get new iv...", 3),
              (Lines{"need to get new iv...", "got iv.. now recalling the method... refreshBearerToken...",
                     "inside refreshBearerToken( ... )"}));
    EXPECT_EQ(
        from("api.refreshBearerToken err != nil", 6),
        (Lines{"api.refreshBearerToken err != nil", "err response HAS Data !", "theEncErrResult: " + word,
               "handleNon200or401...\n", word, "decResultStr: Failure: x"}));
    EXPECT_EQ(
        from("err has response with no data (no biggie)", 4),
        (Lines{"err has response with no data (no biggie)", "handleNon200or401...\n", "", "decResultStr: "}));
}

TEST_F(Api, CancellingEndsTheCallWhereverItIs) {
    const auto expectCancelled = [this](const CancelHandle& call) {
        failure.reset();
        ends = 0;
        call->cancel();
        EXPECT_EQ(ends, 0);
        call->cancel();
        settle();
        ASSERT_EQ(ends, 1);
        EXPECT_EQ(std::get<RequestError>(*failure).code, -999);
    };
    expectCancelled(pinSet());
    EXPECT_TRUE(device.urlSession->wasCancelled(0));

    willAnswer({answer(401, {})});  // the token call stays open
    CancelHandle call = pinSet();
    settle();
    expectCancelled(call);
    EXPECT_TRUE(device.urlSession->wasCancelled(2));

    IvReply host;
    config.ivCallback = [&](IvReply reply) { host = std::move(reply); };
    willAnswer({answer(401, {})});
    call = pinSet();
    dropIv();
    settle();
    expectCancelled(call);
    host("late", base64Encode(iv));
    settle();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(device.urlSession->startedCount(), 4u);
}

}  // namespace
}  // namespace korvane
