// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"

#include <functional>
#include <span>

#include "operations/OperationEngine.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsSupersetOf;

class Operations : public ServiceFixture {
  protected:
    using Start = std::function<Operation(OperationCompletion)>;

    OperationCompletion keep() {
        return [this](KorvaneRetStruct record) {
            EXPECT_TRUE(device.mainQueue->isMainThread());
            results.push_back(std::move(record));
        };
    }
    /// Runs the operation against these answers, to its one completion.
    KorvaneRetStruct run(const Start& start, std::vector<UrlReply> replies) {
        willAnswer(std::move(replies));
        lines();
        const std::size_t before = results.size();
        start(keep());
        EXPECT_EQ(results.size(), before);
        settle();
        EXPECT_EQ(results.size(), before + 1);
        EXPECT_EQ(config.lastJsonResponseStr, "");
        return results.empty() ? KorvaneRetStruct{} : results.back();
    }
    /// The values of the last request's keys, deciphered.
    std::map<std::string, std::string> lastSent() const {
        auto body = sent(device.urlSession->startedCount() - 1);
        for (auto& [key, value] : body) {
            if (key.starts_with("encrypted")) value = decipher(value);
        }
        body.erase("UUID");
        body.erase("brandId");
        return body;
    }
    UrlReply result(const std::string& word) const { return ok({{"encryptedResult", word}}); }

    struct Row {
        std::string name, endpoint;  ///< as lines name them
        Start start;
        std::string onTrack, errLine;
        Lines values;  ///< lines between the tracking line and the call
        std::string noReplyMsg, noResultMsg;
    };
    const Start pinSet = [](OperationCompletion done) { return doPinSet("1357", std::move(done)); };
    const std::vector<Row> rows{
        {"doPinSet",
         "pinSet",
         pinSet,
         "ok we're back on track...",
         "doPinSet() (middle layer) err != nil",
         {"offsetId = iv-0", "cardId = card-1", "pin = 1357", "currentPciToken = pci-token"},
         "api.getCardStatus resp is nil",
         "Encrypted result nil"},
        {"doActivatePhysicalCardAndSetPIN",
         "physicalCardActivationAndPinSet",
         [](auto done) { return doActivatePhysicalCardAndSetPIN("9876", "321", "1357", std::move(done)); },
         "ok we're back on track...",
         "doActivatePhysicalCardAndSetPIN() (middle layer) err != nil",
         {"==================", "offsetId = iv-0", "cardId = card-1", "lastFourOfPan = 9876", "cvv = 321",
          "pin = 1357", "currentPciToken = pci-token"},
         "",
         ""},
        {"doActivateVirtualCardAndSetPIN",
         "virtualCardActivationAndPinSet",
         [](auto done) { return doActivateVirtualCardAndSetPIN("1357", std::move(done)); },
         "ok we're back on track...",
         "doActivateVirtualCardAndSetPIN() (middle layer) err != nil",
         {"==================", "offsetId = iv-0", "cardId = card-1", "pin = 1357",
          "currentPciToken = pci-token"},
         "",
         ""},
        {"doActivateWearableCardAndSetPIN",
         "wearableCardActivationAndPinSet",
         [](auto done) { return doActivateWearableCardAndSetPIN("1357", std::move(done)); },
         "ok we're back on track...",
         "doActivateWearableCardAndSetPIN() (middle layer) err != nil",
         {"==================", "offsetId = iv-0", "cardId = card-1", "pin = 1357",
          "currentPciToken = pci-token"},
         "",
         ""},
        {"doSetCardStatus",
         "setCardStatus",
         [](auto done) { return doSetCardStatus("BT", std::move(done)); },
         "doSetCardStatus(...) on track...",
         "doSetCardStatus() (middle layer) err != nil",
         {},
         "api.getCardStatus resp is nil",
         "Encrypted result nil"},
        {"doGetCardStatus",
         "getCardStatus",
         doGetCardStatus,
         "doGetCardStatus(...) on track...",
         "api.getCardStatus err != nil",
         {},
         "api.getCardStatus resp is nil",
         "Encrypted result nil"},
        {"doPciTokenSubmission",
         "pciTokenSubmission",
         doPciTokenSubmission,
         "ok we're back on track...",
         "doPciTokenSubmission() (middle layer) err != nil",
         {"SdkConfig useBiometrics set to false from sdk initialize"},
         "api.getCardStatus resp is nil",
         "Encrypted result nil"},
        {"doPciTokenRequest",
         "pciTokenRequest",
         doPciTokenRequest,
         "ok we're back on track...",
         "doPciTokenRequest() (middle layer) err != nil",
         {},
         "",
         ""},
    };

    std::vector<KorvaneRetStruct> results;
};

TEST_F(Operations, PinSetPrintsItsLinesInOrderAndKeepsTheAnswer) {
    dropIv();
    const KorvaneRetStruct record = run(pinSet, {result("SUCCESS")});
    EXPECT_FALSE(record.error);
    EXPECT_EQ(record.errorMsg, "");
    EXPECT_EQ(record.jsonResponseStr, result("SUCCESS").body);
    EXPECT_EQ(lastSent(), (std::map<std::string, std::string>{{"offsetId", "iv-1"},
                                                              {"encryptedCardId", "card-1"},
                                                              {"encryptedPIN", "1357"},
                                                              {"encryptedPciToken", "pci-token"}}));
    EXPECT_EQ(
        lines(),
        (Lines{"inside (middlelayer) doPinSet( ... )", "need to get new iv...",
               "got iv.. now recalling the method... doPinSet...", "inside (middlelayer) doPinSet( ... )",
               "have iv (now?)... use it:", "ok we're back on track...", "offsetId = iv-1", "cardId = card-1",
               "pin = 1357", "currentPciToken = pci-token", "Calling api.pinSet...",
               "inside doRequest<T: ...>", "Status code and JSON response at base:\n", "200",
               record.jsonResponseStr, "theEncResult: " + encipher("SUCCESS"), "decResult: SUCCESS",
               "KorvaneRetStruct(error: false, errorMsg: \"\", errorMsgEnc: \"\", errorMsgDec: \"\", "
               "jsonResponseStr: \"" +
                   record.jsonResponseStr + "\")"}));
}

TEST_F(Operations, EachHasItsOwnLinesOnTheWayToAFailure) {
    const std::string word = encipher("Failure: IV is expired");
    const std::string body = json({{"encryptedResult", word}});
    for (const Row& row : rows) {
        const KorvaneRetStruct record = run(row.start, {{403, body, ""}});
        Lines expected{"inside (middlelayer) " + row.name + "( ... )",
                       "have iv (now?)... use it:", row.onTrack};
        expected.insert(expected.end(), row.values.begin(), row.values.end());
        expected.push_back("Calling api." + row.endpoint + "...");
        Lines printed = lines();
        ASSERT_GT(printed.size(), expected.size());
        EXPECT_EQ(Lines(printed.begin(), printed.begin() + static_cast<std::ptrdiff_t>(expected.size())),
                  expected);
        printed.erase(printed.begin(), std::find(printed.begin(), printed.end(), body) + 1);
        EXPECT_EQ(printed, (Lines{row.errLine, "err response HAS Data", "here it is:", word,
                                  "theEncErrResult: " + word, "decResultStr Failure: IV is expired",
                                  "handleNon200or401...\n", word, "decResultStr: Failure: IV is expired"}));
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, "403 error");
        EXPECT_EQ(record.errorMsgEnc, word);
        EXPECT_EQ(record.errorMsgDec, "Failure: IV is expired");
        EXPECT_EQ(record.jsonResponseStr, body);
    }
    EXPECT_EQ(ivsSupplied, 0);
}

TEST_F(Operations, AnHttpFailureGivesItsNumberAndNeverNeedsABody) {
    const std::pair<UrlReply, std::string> cases[] = {
        {{400, "", ""}, "400 error"},       {{418, "{}", ""}, "418 error"},
        {{500, "<html>", ""}, "500 error"}, {{503, R"({"encryptedResult":1})", ""}, "503 error"},
        {{200, "<html>", ""}, "-1 error"},  {{0, "", "reset"}, "-1 error"}};
    for (const auto& [reply, errorMsg] : cases) {
        const KorvaneRetStruct record = run(pinSet, {reply});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, errorMsg);
        EXPECT_EQ(record.errorMsgEnc + record.errorMsgDec, "");
        EXPECT_EQ(record.jsonResponseStr, reply.body);
        EXPECT_THAT(lines(), IsSupersetOf({"err has response with no data (no biggie)", "decResultStr: "}));
    }
}

TEST_F(Operations, AMissingReplyOrResultGivesEachOperationsText) {
    for (const Row& row : rows) {
        const KorvaneRetStruct noResult = run(row.start, {{200, "{}", ""}});
        EXPECT_TRUE(noResult.error);
        EXPECT_EQ(noResult.errorMsg, row.noResultMsg) << row.name;
        EXPECT_EQ(noResult.jsonResponseStr, "{}");
    }
    // No answer of a real service brings neither a reply nor an error: the engine is handed that as it is.
    static OperationDescription description{.name = "doX", .endpoint = "x", .values = {}, .send = nullptr};
    static ReplyHandler handler;
    description.send = [](API&, const Sent&, ReplyHandler given) -> CancelHandle {
        handler = std::move(given);
        return nullptr;
    };
    description.noReplyMsg = "no reply";
    runOperation(description, {}, keep());
    config.lastJsonResponseStr = "body";
    std::exchange(handler, nullptr)(std::nullopt, std::nullopt);
    EXPECT_TRUE(device.console->has("api.x - resp is nil"));
    EXPECT_TRUE(results.back().error);
    EXPECT_EQ(results.back().errorMsg, "no reply");
    EXPECT_EQ(results.back().jsonResponseStr, "body");
}

TEST_F(Operations, ResultWordsAreComparedWholeAndWithoutCase) {
    for (const std::string word : {"Success", "success", "SUCCESS"}) {
        EXPECT_FALSE(run(pinSet, {result(word)}).error);
    }
    for (const std::string word :
         {"Success ", " Success", "Failure: Invalid Token", "Failure: IV is expired."}) {
        const KorvaneRetStruct record = run(pinSet, {result(word)});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, word);
    }
    const KorvaneRetStruct undeciphered = run(pinSet, {{200, R"({"encryptedResult":"AAAA"})", ""}});
    EXPECT_TRUE(undeciphered.error);
    EXPECT_EQ(undeciphered.errorMsg, "");
    EXPECT_EQ(ivsSupplied, 0);
}

TEST_F(Operations, ARefusedIvIsReplacedAndTheOperationRunsAgain) {
    for (const Row& row : rows) {
        if (row.name == "doPciTokenRequest") continue;
        ivsSupplied = 0;
        config.ivIdStr = "iv-0";
        const KorvaneRetStruct record = run(
            row.start, {result("failure: IV IS EXPIRED"), result("Failure: Invalid offsetId"), result("No")});
        EXPECT_EQ(record.errorMsg, "No") << row.name;
        EXPECT_EQ(ivsSupplied, 2);
        EXPECT_EQ(lastSent()["offsetId"], "iv-2");
        const Lines printed = lines();
        const std::string again = "refreshed the IV... now recalling " + row.name;
        for (const std::string reason : {"IV is expired", "Invalid offsetId"}) {
            const auto line = std::find(printed.begin(), printed.end(),
                                        "Got error = Failure: " + reason + ".. calling api.refreshIV...");
            ASSERT_NE(line, printed.end());
            EXPECT_EQ(*(line + 1), again);
            EXPECT_EQ(*(line + 2), "inside (middlelayer) " + row.name + "( ... )");
        }
    }
}

TEST_F(Operations, WithoutAnIvFromTheHostTheOperationFails) {
    config.ivCallback = [](const IvReply& reply) { reply("iv-1", std::nullopt); };
    for (const Row& row : rows) {
        dropIv();
        const KorvaneRetStruct record = run(row.start, {});
        EXPECT_TRUE(record.error);
        EXPECT_EQ(record.errorMsg, "iv is nil");
        EXPECT_THAT(lines(), ElementsAre("inside (middlelayer) " + row.name + "( ... )",
                                         "need to get new iv...", "doIvCallbackAndDecoding - iv is nil"));
    }
    // An id without bytes is no IV. A refresh that brings none shows on the next run.
    config.ivIdStr = "iv-0";
    EXPECT_EQ(run(pinSet, {}).errorMsg, "iv is nil");
    config.ivByteArray = iv;
    const KorvaneRetStruct record = run(pinSet, {result("Failure: IV is expired"), result("No")});
    EXPECT_EQ(record.errorMsg, "No");
    EXPECT_EQ(lastSent()["offsetId"], "iv-0");
}

TEST_F(Operations, AReplyIsDecipheredWithTheIvOfItsRequest) {
    doPinSet("1357", keep());
    config.ivByteArray = std::vector<std::uint8_t>(16, 0xEE);  // another operation got a new one meanwhile
    device.urlSession->reply(0, result("Success"));
    settle();
    EXPECT_FALSE(results.at(0).error);
}

TEST_F(Operations, AFailedRenewalOfTheBearerTokenIsTheOperationsFailure) {
    const KorvaneRetStruct record =
        run(pinSet, {answer(401, {}), answer(500, {{"encryptedResult", "Failure: x"}})});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg, "500 error");
    EXPECT_EQ(record.errorMsgDec, "Failure: x");
    EXPECT_EQ(record.jsonResponseStr, answer(500, {{"encryptedResult", "Failure: x"}}).body);
    EXPECT_THAT(lines(), IsSupersetOf({"pinSet - refreshBearerToken failed",
                                       "doPinSet() (middle layer) err != nil", "decResultStr Failure: x"}));

    const KorvaneRetStruct refused = run(pinSet, {answer(401, {}), result("Failure: unknown")});
    EXPECT_EQ(refused.errorMsg, "Failure: unknown");
    EXPECT_EQ(refused.jsonResponseStr, result("Failure: unknown").body);
}

TEST_F(Operations, CancellingEndsTheOperationWhereverItIs) {
    const auto expectCancelled = [this](const Operation& operation, const std::string& errorMsg) {
        results.clear();
        operation->cancel();
        EXPECT_TRUE(results.empty());
        operation->cancel();
        settle();
        operation->cancel();
        settle();
        ASSERT_EQ(results.size(), 1u);
        EXPECT_TRUE(results[0].error);
        EXPECT_EQ(results[0].errorMsg, errorMsg);
        EXPECT_EQ(config.lastJsonResponseStr, "");
    };
    expectCancelled(doPinSet("1357", keep()), "-999 error");
    EXPECT_TRUE(device.urlSession->wasCancelled(0));
    expectCancelled(doPciTokenSubmission(keep()), "forceSMSFlowReset");
    EXPECT_THAT(lines(), IsSupersetOf({"doPciTokenSubmission() (middle layer) err != nil",
                                       "Forcing SMS flow reset..."}));

    willAnswer({answer(401, {})});  // the renewal stays open
    const Operation renewing = doPciTokenSubmission(keep());
    settle();
    expectCancelled(renewing, "forceSMSFlowReset");
    EXPECT_TRUE(device.urlSession->wasCancelled(3));

    std::vector<IvReply> host;
    config.ivCallback = [&](IvReply reply) { host.push_back(std::move(reply)); };
    willAnswer({result("Failure: IV is expired"), answer(401, {})});
    const Operation refreshing = doPinSet("1357", keep());
    settle();
    expectCancelled(refreshing, "-999 error");
    const Operation waitingInRenewal = doPinSet("1357", keep());
    dropIv();
    settle();
    const Operation waiting = doPinSet("1357", keep());
    ASSERT_EQ(host.size(), 3u);
    expectCancelled(waiting, "-999 error");
    host.erase(host.begin() + 1);  // the host drops this reply: nobody but the handle holds the operation now
    settle();
    expectCancelled(waitingInRenewal, "-999 error");

    const std::size_t started = device.urlSession->startedCount();
    for (const IvReply& late : host) late("late", "AAECAwQFBgcICQoLDA0ODw==");
    settle();
    EXPECT_EQ(results.size(), 1u);
    EXPECT_EQ(device.urlSession->startedCount(), started);
}

TEST_F(Operations, TheCallersTextsAreWipedWhereTheyStood) {
    for (std::string secret : {std::string{"1357"}, std::string(100, '7')}) {
        const std::span<const char> storage{secret.data(), secret.size()};
        const Arguments arguments = argumentsFrom({secret});
        EXPECT_EQ(secret, "");
        EXPECT_THAT(storage, testing::Each('\0'));
        EXPECT_EQ(arguments[0]->size(), storage.size());
    }
}

TEST_F(Operations, TheHostMayCancelFromInsideItsIvCallback) {
    Operation operation;
    config.ivCallback = [&](const IvReply&) { operation->cancel(); };
    willAnswer({result("Failure: IV is expired")});
    operation = doPinSet("1357", keep());
    settle();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].errorMsg, "-999 error");
}

}  // namespace
}  // namespace korvane
