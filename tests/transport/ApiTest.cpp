// SPDX-License-Identifier: Apache-2.0
#include "transport/API.h"

#include <korvane/platform/RedactingConsole.h>

#include <thread>

#include "tests/support/ServiceFixture.h"
#include "transport/BearerToken.h"
#include "transport/IvAcquisition.h"
#include "transport/RequestCore.h"

namespace korvane {
namespace {

using testing::AllOf;
using testing::ElementsAre;
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
    API api() { return API{config, "card-1"}; }
    void pinSet() { underWay = api().pinSet("iv-0", "C", "P", "T", keep<RestPinSet>()); }
    UrlReply token(const std::string& text) const { return ok({{"encryptedAccessToken", text}}); }

    std::optional<std::string> response;
    std::optional<CallError> failure;
    Handle underWay;
};

TEST_F(Api, A401RenewsTheBearerTokenAndRepeatsTheCall) {
    willAnswer({answer(401, {}), token("bearer-1"), result("Success")});
    config.apiUrl = "https://cards.example/v1";
    underWay = api().pinSet("iv-0", encipher("C"), encipher("P"), encipher("T"), keep<RestPinSet>());
    settle();
    const auto& requests = device.urlSession->requests();
    EXPECT_EQ(response, encipher("Success"));
    EXPECT_EQ(sent(0), "pinSet offsetId=iv-0 CardId=C PIN=P PciToken=T UUID= brandId=");
    EXPECT_EQ(sent(1), "token offsetId=iv-0 CardId=card-1 Username=" + keyText + " Password=" + ivText +
                           " UUID= brandId=");
    EXPECT_EQ(requests[2].url, "https://cards.example/v1/api/sdk/pinSet");
    EXPECT_EQ(requests[2].body, requests[0].body);
    EXPECT_EQ(requests[0].headers[0].second, "Bearer bearer-0");
    EXPECT_EQ(requests[1].headers.size(), 2u) << "the token is what it asks for";
    EXPECT_EQ(requests[2].headers[0].second, "Bearer bearer-1");

    const std::string lines = printed();
    EXPECT_THAT(lines, HasSubstr("|Got 401... calling reAuthClosure...|"
                                 "pinSet - now inside the reAuthClosure... calling refreshBearerToken...|"
                                 "inside refreshBearerToken( ... )|have iv (now?)... use it:|"
                                 "refreshBearerToken(...) on track...|cardId: card-1|encrypted cardId: " +
                                 encipher("card-1") + "|encryptedUsername = " + encipher(keyText) +
                                 "|encryptedPassword = " + encipher(ivText) +
                                 "|getBearerToken request dictionary: {"));
    EXPECT_THAT(
        lines,
        HasSubstr("|theEncAccToken: " + encipher("bearer-1") +
                  "|decAccessToken: bearer-1|Setting SdkConfig.sharedInstance.currentBearerToken to bearer-1|"
                  "Success! Got new bearer token... now re-calling pinSet...|inside doRequest"));
}

TEST_F(Api, MethodsPrintTheirOwnLines) {
    willAnswer({answer(401, {}), answer(500, {})});
    underWay = api().pciTokenRequest("iv-0", "C", keep<RestPciTokenRequest>());
    settle();
    const std::string own = "pciTokenRequest -  now inside the reAuthClosure...";
    EXPECT_THAT(printed(), AllOf(HasSubstr("pciTokenRequest request dictionary: "
                                           R"({"offsetId":"iv-0","encryptedCardId":"C"}|)"),
                                 HasSubstr("|" + own + " calling refreshBearerToken...|"),
                                 EndsWith("|pciTokenRequest - refreshBearerToken failed")));
    underWay = api().getCardStatus("iv-0", "C", "T", keep<RestGetCardStatus>());
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
    const std::pair<UrlReply, std::string> cases[] = {
        {refusal(400, "failure: iv is expired"),
         "|failure: iv is expired|iv expired: Got new iv -- re-calling"},
        {refusal(401, "failure: INVALID offsetid"), "|failure: INVALID offsetid|iv invalid: Got new iv --"},
        {result("Failure: IV is expired"), "|Failure: IV is expired|iv expired: Got new iv -- re-calling"},
    };
    dropIv();
    for (const auto& [reply, lines] : cases) {
        willAnswer({reply, token("bearer-2")});
        config.currentBearerToken.clear();
        underWay = refreshBearerToken(
            config, "card-1",
            [](const std::optional<KorvaneRetStruct>& renewalFailure) { EXPECT_FALSE(renewalFailure); });
        settle();
        EXPECT_EQ(config.currentBearerToken, "bearer-2");
        EXPECT_THAT(printed(), HasSubstr(lines + " self.refreshBearerToken() -- refreshBearerToken()|"));
    }
    EXPECT_EQ(ivsSupplied, 4) << "one each, and one to start with";
}

TEST_F(Api, ATokenThatCannotStandInAHeaderIsAFailedRenewal) {
    using namespace std::string_literals;
    for (const std::string& text :
         {"a\nb"s, "a\r\nX-Evil: 1"s, "a\0b"s, "\x7F"s, "a\t"s, " a"s, "a "s, " "s}) {
        willAnswer({answer(401, {}), ok({{"encryptedResult", "Success"}, {"encryptedAccessToken", text}})});
        pinSet();
        settle();
        EXPECT_EQ(std::get<KorvaneRetStruct>(failure.value()).errorMsg,
                  "the bearer token cannot stand in a header")
            << text;
        EXPECT_EQ(config.currentBearerToken, "bearer-0") << text;
        EXPECT_THAT(printed(),
                    HasSubstr("|the bearer token cannot stand in a header: it has a control "
                              "character, or a blank at an end|pinSet - refreshBearerToken failed"));
    }
    for (const std::string& text : {"a b"s, "é"s, "!~"s}) {
        willAnswer({answer(401, {}), token(text), result("Success")});
        pinSet();
        settle();
        EXPECT_EQ(std::exchange(config.currentBearerToken, "bearer-0"), text);
    }
}

TEST_F(Api, AMaskedLogHidesWhyThereIsNoAnswer) {
    Ports masked = ports();
    masked.console = std::make_shared<RedactingConsole>(device.console);
    installPorts(std::move(masked));
    willAnswer({{0, "", "Could not resolve host: cards.example"}, {0, "", "gone", urlRequestCancelled}});
    for (int i = 0; i < 2; ++i) {
        pinSet();
        settle();
    }
    EXPECT_EQ(printed(),
              "inside doRequest<T: ...>|no response: •••|inside doRequest<T: ...>|no response: •••");
}

class RequestCore : public ServiceFixture {
  protected:
    void request(TextMap body = {}) {
        underWay = doRequest<RestPinSet>(
            config, {"https://cards.example/x", "POST", std::move(body), std::nullopt},
            [this](const RequestError& error) { ends.push_back("reAuth " + describe(error)); },
            [this](std::optional<RestPinSet> record, std::optional<CallError> error) {
                EXPECT_TRUE(device.mainQueue->isMainThread());
                EXPECT_NE(record.has_value(), error.has_value());
                ends.push_back(record ? record->encryptedResult.value_or("-")
                                      : describe(std::get<RequestError>(*error)));
            });
    }
    static std::string describe(const RequestError& error) {
        return error.domain + std::to_string(error.code) + " " + error.userInfo.at("Error") +
               (error.encryptedResult ? ": " + *error.encryptedResult : "");
    }

    std::vector<std::string> ends;
    Handle underWay;
};

TEST_F(RequestCore, SendsTheTrackingIdAndTheBrandInTheBodyIfTheyAreUtf8) {
    config.trackingUUID = "uuid";
    config.brandId = "brand \"A\"";
    TextMap body;
    body.set("brandId", "other");
    request(body);
    EXPECT_EQ(device.urlSession->requests()[0].body, R"({"brandId":"brand \"A\"","UUID":"uuid"})");
    config.brandId = "\xC0\xAF";
    request();
    settle();
    EXPECT_THAT(ends, ElementsAre("-1 Dictionary serialization error: the entry \"brandId\" is not UTF-8"));
    EXPECT_EQ(device.urlSession->startedCount(), 1u);
}

TEST_F(RequestCore, TurnsAnAnswerIntoARecordOrAnErrorAndKeepsItsBody) {
    const std::tuple<UrlReply, std::string, std::string> cases[] = {
        {{200, R"({"encryptedResult":"r"})", ""}, "r", R"(|200|{"encryptedResult":"r"})"},
        {{200, "\xEF\xBB\xBF{}", ""}, "-", "|200|\xEF\xBB\xBF{}"},
        {{500, R"({"encryptedResult":"r"})", ""},
         "500 status code = 500: r",
         R"(|500|{"encryptedResult":"r"})"},
        {{502, "<html>", ""}, "502 status code = 502", "|502|<html>"},
        {{418, "\xFF", ""}, "418 status code = 418", "|418|1 bytes, not UTF-8"},
        {{401, "?", ""}, "reAuth 401 status code = 401", "|401|?|Got 401... calling reAuthClosure..."},
        {{200, "5", ""}, "-1 not a JSON object", "|200|5|. JSON decode error: not a JSON object"},
        {{0, "", "name not found"}, "-1 name not found", "no response: name not found"},
        {{0, "", "suspended", urlRequestCancelled}, "-999 suspended", "no response: suspended"},
        {{0, "", "timed out", -1001}, "-1 timed out", "no response: timed out"},
    };
    for (const auto& [reply, end, lines] : cases) {
        willAnswer({reply});
        ends.clear();
        request();
        EXPECT_TRUE(ends.empty());
        settle();
        EXPECT_THAT(ends, ElementsAre(end));
        const std::string answered = reply.answered() ? "Status code and JSON response at base:\n" : "";
        EXPECT_EQ(printed(), "inside doRequest<T: ...>|" + answered + lines);
        EXPECT_EQ(config.lastJsonResponseStr, reply.answered() ? reply.body : "5") << "the last there was";
    }
}

class IvAcquisition : public ServiceFixture {
  protected:
    IvAcquisition() {
        dropIv();
        config.ivCallback = [this](IvReply reply) { host = std::move(reply); };
    }
    void ask(IvReason reason = IvReason::noneHeld) {
        underWay = obtainIv(config, reason, [this](const std::optional<KorvaneRetStruct>& failure) {
            EXPECT_TRUE(device.mainQueue->isMainThread());
            outcomes.push_back(failure ? failure->errorMsg : config.ivIdStr);
        });
    }

    Handle underWay;
    IvReply host;
    std::vector<std::string> outcomes;  ///< the IV's id, or the failure
};

TEST_F(IvAcquisition, StoresTheFirstGoodAnswerOfAnyLengthOnTheMainQueue) {
    for (const std::string& text : {ivText, std::string{"AAECAwQFBgcICQoL"}, std::string{}}) {
        ask();
        host("iv-7", text);
        host("late", "AAAA");
        EXPECT_TRUE(outcomes.empty() && !ivAtHand(config));
        settle();
        EXPECT_EQ(config.ivIdStr, "iv-7");
        EXPECT_EQ(config.ivByteArray.size(), text.size() / 4 * 3 - (text == ivText ? 2 : 0));
        EXPECT_EQ(std::exchange(outcomes, {}), std::vector<std::string>{"iv-7"});
        EXPECT_EQ(ivAtHand(config), !text.empty());
        dropIv();
    }
}

TEST_F(IvAcquisition, ABadAnswerLeavesTheStoredPairAlone) {
    const std::tuple<std::optional<std::string>, std::optional<std::string>, std::string> cases[] = {
        {std::nullopt, "AAAA", "ivId is nil"},
        {"iv-1", std::nullopt, "iv is nil"},
        {"iv-1", "AAECAwQF\nBgcICQoLDA0ODw==", "iv: Data(base64Encoded:) failed"},
    };
    config.ivIdStr = "old";
    for (const auto& [ivId, ivBase64, errorMsg] : cases) {
        ask();
        host(ivId, ivBase64);
        settle();
        EXPECT_EQ(outcomes.back(), errorMsg);
        EXPECT_EQ(printed(), "doIvCallbackAndDecoding - " + errorMsg);
    }
    config.ivCallback = nullptr;
    outcomes.clear();
    ask();
    settle();
    EXPECT_EQ(outcomes, std::vector<std::string>{"ivId is nil"});
    EXPECT_EQ(config.ivIdStr, "old");
    EXPECT_TRUE(config.ivByteArray.empty() && !config.gotInitialIV);
}

TEST_F(IvAcquisition, NoAnswerIsAFailureAndAnAnswerNobodyWaitsForStoresNothing) {
    ask();
    std::thread{[reply = std::exchange(host, nullptr)]() mutable { reply = nullptr; }}.join();
    EXPECT_TRUE(outcomes.empty());
    settle();
    config.ivCallback = [](const IvReply&) { throw std::runtime_error("the host's own"); };
    ask();
    EXPECT_EQ(outcomes.size(), 1u);
    settle();
    config.ivCallback = [this](const IvReply& reply) {
        reply("iv-9", ivText);
        throw std::runtime_error("after its answer");
    };
    ask();
    settle();
    EXPECT_THAT(outcomes, ElementsAre("resStructIv is nil", "resStructIv is nil", "iv-9"));

    config.ivCallback = [this](IvReply reply) { host = std::move(reply); };
    ask(IvReason::refused);
    EXPECT_FALSE(ivAtHand(config)) << "a refused IV is never used again";
    underWay.reset();
    host("late", ivText);
    settle();
    EXPECT_FALSE(ivAtHand(config));
    EXPECT_EQ(outcomes.size(), 3u);
}

TEST_F(IvAcquisition, TheHostMayReplaceItsCallbackFromInside) {
    config.ivCallback = [this, id = std::string(100, 'x')](const IvReply& reply) {
        config.ivCallback = nullptr;
        reply(id, ivText);
    };
    ask();
    settle();
    EXPECT_EQ(config.ivIdStr, std::string(100, 'x'));
}

}  // namespace
}  // namespace korvane
