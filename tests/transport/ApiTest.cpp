// SPDX-License-Identifier: Apache-2.0
#include "transport/API.h"

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
    EXPECT_EQ(sent(1), "token offsetId=iv-0 CardId=card-1 Username=" + keyText + " Password=" + ivText +
                           " UUID= brandId=");
    EXPECT_EQ(requests[2].url, "https://cards.example/v1/api/sdk/pinSet");
    EXPECT_EQ(requests[2].body, requests[0].body);
    EXPECT_EQ(requests[0].headers[0].second, "Bearer bearer-0");
    EXPECT_EQ(requests[1].headers.size(), 2u);
    EXPECT_EQ(requests[2].headers[0].second, "Bearer bearer-1");

    const std::string values = requests[1].body.substr(0, requests[1].body.find(",\"UUID\"")) + "}";
    const std::string lines = printed();
    EXPECT_THAT(lines, HasSubstr("|Got 401... calling reAuthClosure...|"
                                 "pinSet - now inside the reAuthClosure... calling refreshBearerToken...|"
                                 "inside refreshBearerToken( ... )|have iv (now?)... use it:|"
                                 "refreshBearerToken(...) on track...|cardId: card-1|encrypted cardId: " +
                                 encipher("card-1") + "|encryptedUsername = " + encipher(keyText) +
                                 "|encryptedPassword = " + encipher(ivText) +
                                 "|getBearerToken request dictionary: " + values + "|inside doRequest"));
    EXPECT_THAT(
        lines,
        HasSubstr("|theEncAccToken: " + encipher("bearer-1") +
                  "|decAccessToken: bearer-1|Setting SdkConfig.sharedInstance.currentBearerToken to bearer-1|"
                  "Success! Got new bearer token... now re-calling pinSet...|inside doRequest"));
}

TEST_F(Api, MethodsPrintTheirOwnLines) {
    willAnswer({answer(401, {}), answer(500, {})});
    API{}.pciTokenRequest("iv-0", "C", keep<RestPciTokenRequest>());
    settle();
    const std::string own = "pciTokenRequest -  now inside the reAuthClosure...";
    EXPECT_THAT(printed(), AllOf(HasSubstr("pciTokenRequest request dictionary: "
                                           R"({"offsetId":"iv-0","encryptedCardId":"C"}|)"),
                                 HasSubstr("|" + own + " calling refreshBearerToken...|"),
                                 EndsWith("|pciTokenRequest - refreshBearerToken failed")));
    API{}.getCardStatus("iv-0", "C", "T", keep<RestGetCardStatus>());
    EXPECT_EQ(printed(),
              "Inside getCardStatus api level...|Current bearer token: bearer-0|"
              "Current PCI token: pci-token|inside doRequest<T: ...>");
}

TEST_F(Api, AFailedRenewalIsTheFailureOfTheCall) {
    const std::pair<UrlReply, std::string> cases[] = {
        {refusal(500, "Failure: x"), "500 error|Failure: x"},
        {answer(401, {}), "401 error|"},
        {{0, "", "no route"}, "-1 error|"},
        {ok({{"encryptedResult", "Failure: x"}, {"encryptedAccessToken", ""}}), "Failure: x|"},
        {{}, "ivId is nil|"},  // not even asked: the host has no IV
    };
    for (const auto& [reply, texts] : cases) {
        willAnswer({answer(401, {}), reply});
        hostSuppliesIvs = false;
        pinSet();
        if (texts == "ivId is nil|") dropIv();
        settle();
        const auto& record = std::get<KorvaneRetStruct>(failure.value());
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg + "|" + record.errorMsgDec, texts);
        EXPECT_THAT(printed(), EndsWith("|pinSet - refreshBearerToken failed"));
    }
    EXPECT_EQ(config.currentBearerToken, "bearer-0");
}

TEST_F(Api, ARefusedIvIsReplacedAndTheRenewalRunsAgain) {
    const std::string expired = "iv expired: Got new iv -- re-calling self.refreshBearerToken()";
    const std::string invalid = "iv invalid: Got new iv -- self.refreshBearerToken()";
    const std::pair<UrlReply, std::string> cases[] = {
        {refusal(400, "failure: iv is expired"),
         "|err response HAS Data !|theEncErrResult: " + encipher("failure: iv is expired") +
             "|failure: iv is expired|" + expired},
        {refusal(401, "failure: INVALID offsetid"), "|failure: INVALID offsetid|" + invalid},
        {result("Failure: IV is expired"), "|Failure: IV is expired|" + expired},
    };
    dropIv();
    for (const auto& [reply, lines] : cases) {
        willAnswer({reply, token("bearer-2")});
        config.currentBearerToken.clear();
        refreshBearerToken(
            [](const std::optional<KorvaneRetStruct>& renewalFailure) { EXPECT_FALSE(renewalFailure); });
        settle();
        EXPECT_EQ(config.currentBearerToken, "bearer-2");
        EXPECT_THAT(printed(),
                    HasSubstr(lines + " -- refreshBearerToken()|inside refreshBearerToken( ... )|"));
    }
    EXPECT_EQ(ivsSupplied, 4) << "one each, and one to start with";
}

}  // namespace
}  // namespace korvane
