// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"

#include <functional>
#include <span>

#include "operations/OperationEngine.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Start = std::function<Operation(OperationCompletion)>;

/// What differs between the operations.
struct Row {
    std::string name, endpoint;  ///< as lines name them
    Start start;
    std::string tracking;  ///< lines on the way to the call
    std::string sent;
    std::string noResultMsg;
};

const std::string track = "ok we're back on track...";
const std::string bar = "|==================";
const std::string ids = "|offsetId = iv-0|cardId = card-1";
const std::string pinAndToken = "|pin = 1357|currentPciToken = pci-token";
const std::string nil = "Encrypted result nil";

Operation pinSet(OperationCompletion done) {
    return doPinSet("1357", std::move(done));
}

const std::vector<Row> rows{
    {"doPinSet", "pinSet", pinSet, track + ids + pinAndToken,
     "pinSet offsetId=iv-0 CardId=card-1 PIN=1357 PciToken=pci-token", nil},
    {"doActivatePhysicalCardAndSetPIN", "physicalCardActivationAndPinSet",
     [](auto done) { return doActivatePhysicalCardAndSetPIN("9876", "321", "1357", std::move(done)); },
     track + bar + ids + "|lastFourOfPan = 9876|cvv = 321" + pinAndToken,
     "physicalCardActivationAndPinSet offsetId=iv-0 CardId=card-1 CVV=321 PIN=1357 LastFourOfPan=9876 "
     "PciToken=pci-token",
     ""},
    {"doActivateVirtualCardAndSetPIN", "virtualCardActivationAndPinSet",
     [](auto done) { return doActivateVirtualCardAndSetPIN("1357", std::move(done)); },
     track + bar + ids + pinAndToken,
     "virtualCardActivationAndPinSet offsetId=iv-0 CardId=card-1 PIN=1357 PciToken=pci-token", ""},
    {"doActivateWearableCardAndSetPIN", "wearableCardActivationAndPinSet",
     [](auto done) { return doActivateWearableCardAndSetPIN("1357", std::move(done)); },
     track + bar + ids + pinAndToken,
     "wearableCardActivationAndPinSet offsetId=iv-0 CardId=card-1 PIN=1357 PciToken=pci-token", ""},
    {"doSetCardStatus", "setCardStatus", [](auto done) { return doSetCardStatus("BT", std::move(done)); },
     "doSetCardStatus(...) on track...",
     "cardStatus offsetId=iv-0 CardId=card-1 Status=BT PciToken=pci-token", nil},
    {"doGetCardStatus", "getCardStatus", doGetCardStatus, "doGetCardStatus(...) on track...",
     "getCardStatus offsetId=iv-0 CardId=card-1 PciToken=pci-token", nil},
    {"doCardImage", "getCardImage", doCardImage, track,
     "cardImage offsetId=iv-0 CardId=card-1 PciToken=pci-token", nil},
    {"doPciTokenSubmission", "pciTokenSubmission", doPciTokenSubmission,
     track + "|SdkConfig useBiometrics set to false from sdk initialize",
     "pciTokenSubmission offsetId=iv-0 CardId=card-1 PciSmsToken=sms TwoFactorCode=123456 "
     "UseBiometrics=false",
     nil},
    {"doPciTokenRequest", "pciTokenRequest", doPciTokenRequest, track,
     "pciTokenRequest offsetId=iv-0 CardId=card-1", ""},
};

class Operations : public ServiceFixture {
  protected:
    Operations() {
        config.decryptedPciSmsToken = "sms";
        config.twoFactorCode = "123456";
    }
    OperationCompletion keep() {
        return [this](KorvaneRetStruct record) {
            EXPECT_TRUE(device.mainQueue->isMainThread());
            results.push_back(std::move(record));
        };
    }
    /// Runs the operation against these answers, to its one completion.
    const KorvaneRetStruct& run(const Start& start, std::vector<UrlReply> replies) {
        willAnswer(std::move(replies));
        results.clear();
        printed();
        start(keep());
        EXPECT_TRUE(results.empty());
        settle();
        EXPECT_EQ(results.size(), 1u);
        EXPECT_EQ(config.lastJsonResponseStr, "");
        return results.at(0);
    }
    std::string lastSent() const { return sent(device.urlSession->startedCount() - 1); }

    std::vector<KorvaneRetStruct> results;
};

TEST_F(Operations, PinSetAsksForAnIvAndSucceeds) {
    dropIv();
    const KorvaneRetStruct& record = run(pinSet, {result("SUCCESS")});
    const std::string body = result("SUCCESS").body;
    EXPECT_FALSE(record.error);
    EXPECT_EQ(record.errorMsg, "");
    EXPECT_EQ(record.jsonResponseStr, body);
    EXPECT_EQ(
        printed(),
        "inside (middlelayer) doPinSet( ... )|need to get new iv...|"
        "got iv.. now recalling the method... doPinSet...|inside (middlelayer) doPinSet( ... )|"
        "have iv (now?)... use it:|ok we're back on track...|offsetId = iv-1|cardId = card-1|pin = 1357|"
        "currentPciToken = pci-token|Calling api.pinSet...|inside doRequest<T: ...>|"
        "Status code and JSON response at base:\n|200|" +
            body + "|theEncResult: " + encipher("SUCCESS") +
            "|decResult: SUCCESS|KorvaneRetStruct(error: false, errorMsg: \"\", errorMsgEnc: \"\", "
            "errorMsgDec: \"\", jsonResponseStr: \"" +
            body + "\")");
}

TEST_F(Operations, EachHasItsOwnLinesAndValuesOnTheWayToAFailure) {
    // The payload speaks of the IV, yet nothing recovers from an HTTP failure.
    const UrlReply refusal = answer(403, {{"encryptedResult", "Failure: IV is expired"}});
    const std::string word = encipher("Failure: IV is expired");
    for (const Row& row : rows) {
        const KorvaneRetStruct& record = run(row.start, {refusal});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg + "|" + record.errorMsgEnc + "|" + record.errorMsgDec,
                  "403 error|" + word + "|Failure: IV is expired");
        EXPECT_EQ(record.jsonResponseStr, refusal.body);
        EXPECT_EQ(lastSent(), row.sent + " UUID= brandId=");
        const std::string lines = printed();
        const std::string failing =
            row.name == "doGetCardStatus" ? "api.getCardStatus" : row.name + "() (middle layer)";
        EXPECT_THAT(lines,
                    StartsWith("inside (middlelayer) " + row.name + "( ... )|have iv (now?)... use it:|" +
                               row.tracking + "|Calling api." + row.endpoint + "...|"));
        EXPECT_THAT(lines, EndsWith("|" + refusal.body + "|" + failing +
                                    " err != nil|err response HAS Data|here it is:|" + word +
                                    "|theEncErrResult: " + word +
                                    "|decResultStr Failure: IV is expired|"
                                    "handleNon200or401...\n|" +
                                    word + "|decResultStr: Failure: IV is expired"));
    }
    EXPECT_EQ(ivsSupplied, 0);
}

TEST_F(Operations, AnHttpFailureGivesItsNumberWhateverItsBody) {
    const std::pair<UrlReply, std::string> cases[] = {
        {{400, "", ""}, "400 error"},       {{418, "{}", ""}, "418 error"},
        {{500, "<html>", ""}, "500 error"}, {{503, R"({"encryptedResult":1})", ""}, "503 error"},
        {{200, "<html>", ""}, "-1 error"},  {{0, "", "reset"}, "-1 error"}};
    for (const auto& [reply, errorMsg] : cases) {
        const KorvaneRetStruct& record = run(pinSet, {reply});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg + record.errorMsgEnc + record.errorMsgDec, errorMsg);
        EXPECT_EQ(record.jsonResponseStr, reply.body);
        EXPECT_THAT(
            printed(),
            EndsWith("|err has response with no data (no biggie)|handleNon200or401...\n||decResultStr: "));
    }
    // A failed renewal of the bearer token is the operation's failure too.
    const UrlReply refusal = answer(500, {{"encryptedResult", "Failure: x"}});
    const KorvaneRetStruct& record = run(pinSet, {answer(401, {}), refusal});
    EXPECT_EQ(record.errorMsg + "|" + record.errorMsgDec, "500 error|Failure: x");
    EXPECT_EQ(record.jsonResponseStr, refusal.body);
    EXPECT_THAT(printed(), HasSubstr("|doPinSet() (middle layer) err != nil|err response HAS Data|"));
    EXPECT_EQ(run(pinSet, {answer(401, {}), result("Failure: x")}).errorMsg, "Failure: x");
}

TEST_F(Operations, AMissingReplyOrResultGivesEachOperationsText) {
    for (const Row& row : rows) {
        const KorvaneRetStruct& record = run(row.start, {{200, "{}", ""}});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, row.noResultMsg) << row.name;
        EXPECT_EQ(record.jsonResponseStr, "{}");
    }
    // No answer of a real service brings neither a reply nor an error: the engine is handed that as it is.
    static ReplyHandler handler;
    static OperationDescription description{.name = "doX", .endpoint = "x", .values = {}, .send = nullptr};
    description.send = [](API&, const Sent&, ReplyHandler given) {
        handler = std::move(given);
        return CancelHandle{};
    };
    description.noReplyMsg = "no reply";
    runOperation(description, {}, keep());
    std::exchange(handler, nullptr)(std::nullopt, std::nullopt);
    EXPECT_TRUE(device.console->has("api.x - resp is nil"));
    EXPECT_EQ(results.back().errorMsg, "no reply");
}

TEST_F(Operations, ResultWordsAreComparedWholeAndWithoutCase) {
    EXPECT_FALSE(run(pinSet, {result("success")}).error);
    for (const std::string word : {"Success ", "Failure: Invalid Token", "Failure: IV is expired.", ""}) {
        const KorvaneRetStruct& record = run(pinSet, {result(word)});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, word);
    }
    // A reply is deciphered with the IV of its request, even if another operation got a new one meanwhile.
    results.clear();
    willAnswer({});
    doPinSet("1357", keep());
    config.ivByteArray = std::vector<std::uint8_t>(16, 0xEE);
    device.urlSession->reply(device.urlSession->startedCount() - 1, result("Success"));
    settle();
    EXPECT_FALSE(results.at(0).error);
    EXPECT_EQ(ivsSupplied, 0);
}

TEST_F(Operations, ARefusedIvIsReplacedAndTheOperationRunsAgain) {
    for (const Row& row : rows) {
        if (row.name == "doPciTokenRequest") continue;
        ivsSupplied = 0;
        EXPECT_EQ(run(row.start,
                      {result("failure: IV IS EXPIRED"), result("Failure: Invalid offsetId"), result("No")})
                      .errorMsg,
                  "No");
        EXPECT_THAT(lastSent(), HasSubstr("offsetId=iv-2 "));
        const std::string lines = printed();
        for (const std::string word : {"Failure: IV is expired", "Failure: Invalid offsetId"}) {
            EXPECT_THAT(lines, HasSubstr("|Got error = " + word +
                                         ".. calling api.refreshIV...|refreshed the IV... now recalling " +
                                         row.name + "|inside (middlelayer) " + row.name + "( ... )|"));
        }
    }
}

TEST_F(Operations, WithoutAnIvFromTheHostTheOperationFails) {
    config.ivCallback = [](const IvReply& reply) { reply("iv-1", std::nullopt); };
    // A refresh that brings no IV leaves the old one, with which the operation runs again.
    EXPECT_EQ(run(pinSet, {result("Failure: IV is expired"), result("No")}).errorMsg, "No");
    for (const Row& row : rows) {
        config.ivByteArray.clear();  // an id alone is no IV
        const KorvaneRetStruct& record = run(row.start, {});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, "iv is nil");
        EXPECT_EQ(printed(), "inside (middlelayer) " + row.name +
                                 "( ... )|need to get new iv...|doIvCallbackAndDecoding - iv is nil");
    }
}

TEST_F(Operations, CancellingEndsTheOperationWhereverItIs) {
    const auto expectCancelled = [this](const Operation& operation, const std::string& errorMsg) {
        results.clear();
        for (int i = 0; i < 2; ++i) operation->cancel();
        EXPECT_TRUE(results.empty());
        settle();
        operation->cancel();
        settle();
        ASSERT_EQ(results.size(), 1u);
        EXPECT_TRUE(results[0].error);
        EXPECT_EQ(results[0].errorMsg, errorMsg);
    };
    expectCancelled(doPinSet("1357", keep()), "-999 error");
    EXPECT_TRUE(device.urlSession->wasCancelled(0));

    willAnswer({answer(401, {})});  // the renewal stays open
    const Operation renewing = doPciTokenSubmission(keep());
    settle();
    expectCancelled(renewing, "forceSMSFlowReset");
    EXPECT_TRUE(device.urlSession->wasCancelled(2));
    EXPECT_THAT(printed(),
                HasSubstr("|doPciTokenSubmission() (middle layer) err != nil|Forcing SMS flow reset..."));

    std::vector<IvReply> host;
    config.ivCallback = [&](IvReply reply) { host.push_back(std::move(reply)); };
    willAnswer({result("Failure: IV is expired"), answer(401, {}), answer(401, {})});
    const Operation refreshing = doPinSet("1357", keep());
    settle();
    const Operation waitingInRenewal = doPinSet("1357", keep());
    const Operation droppedInRenewal = doPinSet("1357", keep());
    dropIv();
    settle();
    const Operation waiting = doPinSet("1357", keep());
    ASSERT_EQ(host.size(), 4u);
    host.erase(host.begin() + 2);  // nobody but its handle holds that operation now
    for (const Operation& each : {refreshing, waitingInRenewal, droppedInRenewal, waiting}) {
        expectCancelled(each, "-999 error");
    }
    const std::size_t started = device.urlSession->startedCount();
    for (const IvReply& late : host) late("late", ivText);
    settle();
    EXPECT_EQ(results.size(), 1u);
    EXPECT_EQ(device.urlSession->startedCount(), started);
}

TEST_F(Operations, TheHostMayCancelFromInsideItsIvCallback) {
    Operation operation;
    config.ivCallback = [&](const IvReply&) { operation->cancel(); };
    willAnswer({result("Failure: IV is expired")});
    operation = doPinSet("1357", keep());
    settle();
    EXPECT_EQ(results.at(0).errorMsg, "-999 error");
}

TEST_F(Operations, TheCallersTextsAreWipedWhereTheyStood) {
    for (std::string secret : {std::string{"1357"}, std::string(100, '7')}) {
        const std::span<const char> storage{secret.data(), secret.size()};
        const Arguments arguments = argumentsFrom({secret});
        EXPECT_THAT(storage, testing::Each('\0'));
        EXPECT_EQ(arguments[0]->size(), storage.size());
    }
}

}  // namespace
}  // namespace korvane
