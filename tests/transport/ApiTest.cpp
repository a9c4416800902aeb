// SPDX-License-Identifier: Apache-2.0
#include "transport/API.h"

#include "base/Base64.h"
#include "tests/support/ServiceFixture.h"
#include "transport/BearerToken.h"

namespace korvane {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class Api : public ServiceFixture {
  protected:
    template <class Record>
    Completion<Record> keep() {
        return [this](std::optional<Record> record, std::optional<CallError> error) {
            response = record ? record->encryptedResult : std::nullopt;
            failure = std::move(error);
        };
    }
    void pinSet() { API{}.pinSet("iv-0", "C", "P", "T", keep<RestPinSet>()); }
    UrlReply token(const std::string& text) const { return ok({{"encryptedAccessToken", text}}); }

    std::optional<std::string> response;
    std::optional<CallError> failure;
};

TEST_F(Api, A401RenewsTheBearerTokenAndRepeatsTheCall) {
    willAnswer({answer(401, {}), token("bearer-1"), result("Success")});
    config.apiUrl = "https://cards.example/v1";
    API api;
    config.apiUrl = "https://cards.example";  // too late for this object
    api.pinSet("iv-0", encipher("C"), encipher("P"), encipher("T"), keep<RestPinSet>());
    settle();
    const auto& requests = device.urlSession->requests();
    EXPECT_EQ(response, encipher("Success"));
    EXPECT_EQ(sent(0), "pinSet offsetId=iv-0 CardId=C PIN=P PciToken=T UUID= brandId=");
    EXPECT_EQ(sent(1),
              "token offsetId=iv-0 CardId=card-1 Username=" + base64Encode(config.preSharedKeyByteArray) +
                  " Password=" + ivText + " UUID= brandId=");
    EXPECT_EQ(requests[2].url, "https://cards.example/v1/api/sdk/pinSet");
    EXPECT_EQ(requests[2].body, requests[0].body);
    EXPECT_EQ(requests[0].headers[0].second, "Bearer bearer-0");
    EXPECT_EQ(requests[1].headers.size(), 2u);
    EXPECT_EQ(requests[2].headers[0].second, "Bearer bearer-1");

    const std::string values = requests[1].body.substr(0, requests[1].body.find(",\"UUID\"")) + "}";
    const std::string name = encipher(base64Encode(config.preSharedKeyByteArray));
    const std::string answered = "inside doRequest<T: ...>|Status code and JSON response at base:\n|";
    EXPECT_EQ(
        printed(),
        answered +
            "401|{}|Got 401... calling reAuthClosure...|"
            "pinSet - now inside the reAuthClosure... calling refreshBearerToken...|"
            "inside refreshBearerToken( ... )|have iv (now?)... use it:|refreshBearerToken(...) on track...|"
            "cardId: card-1|encrypted cardId: " +
            encipher("card-1") + "|encryptedUsername = " + name + "|encryptedPassword = " + encipher(ivText) +
            "|getBearerToken request dictionary: " + values + "|" + answered + "200|" +
            token("bearer-1").body + "|theEncAccToken: " + encipher("bearer-1") +
            "|decAccessToken: bearer-1|Setting SdkConfig.sharedInstance.currentBearerToken to bearer-1|"
            "Success! Got new bearer token... now re-calling pinSet...|" +
            answered + "200|" + result("Success").body);
}

TEST_F(Api, MethodsPrintTheirOwnLines) {
    willAnswer({answer(401, {}), answer(500, {})});
    API{}.pciTokenRequest("iv-0", "C", keep<RestPciTokenRequest>());
    settle();
    const std::string lines = printed();
    EXPECT_THAT(
        lines,
        HasSubstr(R"(pciTokenRequest request dictionary: {"offsetId":"iv-0","encryptedCardId":"C"}|)"));
    EXPECT_THAT(
        lines,
        HasSubstr("|pciTokenRequest -  now inside the reAuthClosure... calling refreshBearerToken...|"));
    EXPECT_THAT(lines, EndsWith("|pciTokenRequest - refreshBearerToken failed"));
    API{}.getCardStatus("iv-0", "C", "T", keep<RestGetCardStatus>());
    EXPECT_EQ(printed(),
              "Inside getCardStatus api level...|Current bearer token: bearer-0|"
              "Current PCI token: pci-token|inside doRequest<T: ...>");
}

TEST_F(Api, RepeatsWithoutLimitForAsLongAsTheServiceAnswers401) {
    int calls = 0;
    device.urlSession->answerWith([&](const UrlRequest& request) -> std::optional<UrlReply> {
        if (request.url.ends_with("/token")) return token("bearer");
        return ++calls <= 300 ? answer(401, {}) : result("Success");
    });
    pinSet();
    settle();
    EXPECT_EQ(calls, 301);
    EXPECT_EQ(response, encipher("Success"));
}

TEST_F(Api, AFailedRenewalIsTheFailureOfTheCall) {
    const std::tuple<UrlReply, std::string, std::string> cases[] = {
        {answer(500, {{"encryptedResult", "Failure: x"}}), "500 error", "Failure: x"},
        {answer(401, {}), "401 error", ""},
        {{0, "", "no route"}, "-1 error", ""},
        {ok({{"encryptedResult", "Failure: x"}, {"encryptedAccessToken", ""}}), "Failure: x", ""},
    };
    const auto expectFailure = [this](const std::string& errorMsg, const std::string& errorMsgDec) {
        pinSet();
        settle();
        const auto& record = std::get<KorvaneRetStruct>(failure.value());
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg + "|" + record.errorMsgDec, errorMsg + "|" + errorMsgDec);
        EXPECT_THAT(printed(), EndsWith("|pinSet - refreshBearerToken failed"));
    };
    for (const auto& [reply, errorMsg, errorMsgDec] : cases) {
        willAnswer({answer(401, {}), reply});
        expectFailure(errorMsg, errorMsgDec);
    }
    EXPECT_EQ(config.currentBearerToken, "bearer-0");
    config.ivCallback = [](const IvReply& reply) { reply(std::nullopt, std::nullopt); };
    willAnswer({answer(401, {})});
    dropIv();
    expectFailure("ivId is nil", "");
}

TEST_F(Api, ARefusedIvIsReplacedAndTheRenewalRunsAgain) {
    const std::string expired = "re-calling self.refreshBearerToken() -- refreshBearerToken()";
    const std::string word = encipher("failure: iv is expired");
    const std::pair<UrlReply, std::string> cases[] = {
        {answer(400, {{"encryptedResult", "failure: iv is expired"}}),
         "|api.refreshBearerToken err != nil|err response HAS Data !|theEncErrResult: " + word +
             "|failure: iv is expired|iv expired: Got new iv -- " + expired},
        {answer(401, {{"encryptedResult", "Failure: Invalid offsetId"}}),
         "|Failure: Invalid offsetId|iv invalid: Got new iv -- self.refreshBearerToken() -- "
         "refreshBearerToken()"},
        {result("Failure: IV is expired"), "|Failure: IV is expired|iv expired: Got new iv -- " + expired},
    };
    dropIv();
    for (int i = 0; i < 3; ++i) {
        willAnswer({cases[i].first, token("bearer-2")});
        config.currentBearerToken.clear();
        refreshBearerToken(
            [](const std::optional<KorvaneRetStruct>& renewalFailure) { EXPECT_FALSE(renewalFailure); });
        settle();
        EXPECT_EQ(config.currentBearerToken, "bearer-2");
        EXPECT_THAT(printed(), HasSubstr(cases[i].second + "|inside refreshBearerToken( ... )|"));
        EXPECT_EQ(ivsSupplied, i + 2);  // one to start with
    }
}

}  // namespace
}  // namespace korvane
