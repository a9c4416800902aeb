// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"

#include <malloc.h>

#include <functional>

#include "operations/OperationEngine.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Start = std::function<Handle(StatePtr, OperationCompletion)>;

/// What differs between the operations.
struct Row {
    std::string name, endpoint;  ///< as lines name them
    Start start;
    std::string tracking;  ///< lines on the way to the call
    std::string sent;
    std::string noResultMsg;
};

const std::string track = "ok we're back on track...";
const std::string ids = "|offsetId = iv-0|cardId = card-1";
const std::string pinAndToken = "|pin = 1357|currentPciToken = pci-token";
const std::string barred = track + "|==================" + ids;
const std::string to = " offsetId=iv-0 CardId=card-1";
const std::string token = " PciToken=pci-token";
const std::string nil = "Encrypted result nil";

Handle pinSet(StatePtr state, OperationCompletion done) {
    return doPinSet(std::move(state), "1357", std::move(done));
}

const std::vector<Row> rows{
    {"doPinSet", "pinSet", pinSet, track + ids + pinAndToken, "pinSet" + to + " PIN=1357" + token, nil},
    {"doActivatePhysicalCardAndSetPIN", "physicalCardActivationAndPinSet",
     [](auto state, auto done) {
         return doActivatePhysicalCardAndSetPIN(state, "9876", "321", "1357", done);
     },
     barred + "|lastFourOfPan = 9876|cvv = 321" + pinAndToken,
     "physicalCardActivationAndPinSet" + to + " CVV=321 PIN=1357 LastFourOfPan=9876" + token, ""},
    {"doActivateVirtualCardAndSetPIN", "virtualCardActivationAndPinSet",
     [](auto state, auto done) { return doActivateVirtualCardAndSetPIN(state, "1357", done); },
     barred + pinAndToken, "virtualCardActivationAndPinSet" + to + " PIN=1357" + token, ""},
    {"doActivateWearableCardAndSetPIN", "wearableCardActivationAndPinSet",
     [](auto state, auto done) { return doActivateWearableCardAndSetPIN(state, "1357", done); },
     barred + pinAndToken, "wearableCardActivationAndPinSet" + to + " PIN=1357" + token, ""},
    {"doSetCardStatus", "setCardStatus",
     [](auto state, auto done) { return doSetCardStatus(state, "BT", done); },
     "doSetCardStatus(...) on track...", "cardStatus" + to + " Status=BT" + token, nil},
    {"doGetCardStatus", "getCardStatus", doGetCardStatus, "doGetCardStatus(...) on track...",
     "getCardStatus" + to + token, nil},
    {"doCardImage", "getCardImage", doCardImage, track, "cardImage" + to + token, nil},
    {"doPciTokenSubmission", "pciTokenSubmission", doPciTokenSubmission,
     track + "|SdkConfig useBiometrics set to false from sdk initialize",
     "pciTokenSubmission" + to + " PciSmsToken=sms TwoFactorCode=123456 UseBiometrics=false", nil},
    {"doPciTokenRequest", "pciTokenRequest", doPciTokenRequest, track, "pciTokenRequest" + to, ""},
};

class Operations : public ServiceFixture {
  protected:
    Operations() {
        state->decryptedPciSmsToken = "sms";
        state->twoFactorCode = "123456";
    }
    OperationCompletion keep() {
        return [this](KorvaneRetStruct record) { results.push_back(std::move(record)); };
    }
    /// Runs the operation against these answers, to its one completion.
    const KorvaneRetStruct& run(const Start& start, std::vector<UrlReply> replies) {
        willAnswer(std::move(replies));
        results.clear();
        printed();
        const Handle underWay = start(state, keep());
        EXPECT_TRUE(results.empty());
        settle();
        EXPECT_EQ(results.size(), 1u);
        EXPECT_EQ(config.lastJsonResponseStr, "");
        return results.at(0);
    }
    std::string lastSent() const { return sent(device.urlSession->startedCount() - 1); }

    std::vector<KorvaneRetStruct> results;
};

TEST_F(Operations, EachHasItsOwnLinesValuesAndTexts) {
    // The payload speaks of the IV, yet nothing recovers from an HTTP failure.
    const UrlReply refused = refusal(403, "Failure: IV is expired");
    const std::string word = encipher("Failure: IV is expired");
    for (const Row& row : rows) {
        const KorvaneRetStruct& record = run(row.start, {refused});
        EXPECT_EQ(record.errorMsg + "|" + record.errorMsgEnc + "|" + record.errorMsgDec,
                  "403 error|" + word + "|Failure: IV is expired");
        EXPECT_EQ(record.jsonResponseStr, refused.body);
        EXPECT_EQ(lastSent(), row.sent + " UUID= brandId=");
        const std::string lines = printed();
        const std::string failing =
            row.name == "doGetCardStatus" ? "api.getCardStatus" : row.name + "() (middle layer)";
        EXPECT_THAT(lines,
                    StartsWith("inside (middlelayer) " + row.name + "( ... )|have iv (now?)... use it:|" +
                               row.tracking + "|Calling api." + row.endpoint + "...|"));
        EXPECT_THAT(lines,
                    EndsWith("|" + failing + " err != nil|err response HAS Data|here it is:|" + word +
                             "|theEncErrResult: " + word + "|decResultStr Failure: IV is expired|" +
                             "handleNon200or401...\n|" + word + "|decResultStr: Failure: IV is expired"));
        const KorvaneRetStruct& empty = run(row.start, {{200, "{}", ""}});
        EXPECT_TRUE(empty.error);
        EXPECT_EQ(empty.errorMsg + empty.jsonResponseStr, row.noResultMsg + "{}") << row.name;
    }
    EXPECT_EQ(ivsSupplied, 0);
}

TEST_F(Operations, AnIvIsAskedForOneThatIsRefusedIsReplacedAndTheOperationRunsAgain) {
    dropIv();
    const UrlReply success = result("SUCCESS");
    run(pinSet, {result("failure: IV IS EXPIRED"), result("FAILURE: invalid offsetid"), success});
    EXPECT_FALSE(results[0].error);
    EXPECT_EQ(results[0].errorMsg + results[0].jsonResponseStr, success.body);
    EXPECT_THAT(lastSent(), HasSubstr("offsetId=iv-3 "));
    const std::string lines = printed();
    EXPECT_THAT(lines, StartsWith("inside (middlelayer) doPinSet( ... )|need to get new iv...|"
                                  "got iv.. now recalling the method... doPinSet...|inside"));
    EXPECT_THAT(lines, EndsWith("|decResult: SUCCESS|KorvaneRetStruct(error: false, errorMsg: \"\", "
                                "errorMsgEnc: \"\", errorMsgDec: \"\", jsonResponseStr: \"" +
                                success.body + "\")"));
    for (const std::string refused : {"Failure: IV is expired", "Failure: Invalid offsetId"}) {
        EXPECT_THAT(lines, HasSubstr("|Got error = " + refused +
                                     ".. calling api.refreshIV...|refreshed the IV... now recalling"));
    }
    // A refused IV is never used again: without another one the next run fails.
    hostSuppliesIvs = false;
    const auto started = device.urlSession->startedCount();
    EXPECT_EQ(run(pinSet, {result("Failure: IV is expired"), result("No")}).errorMsg, "ivId is nil");
    EXPECT_EQ(device.urlSession->startedCount(), started + 1);
    config.ivIdStr = "an id alone is no IV";
    EXPECT_EQ(run(pinSet, {}).errorMsg, "ivId is nil");
}

TEST_F(Operations, ResultWordsAreComparedWholeAndHttpFailuresGiveTheirNumber) {
    const std::pair<UrlReply, std::string> cases[] = {
        {result("Success "), "Success "},
        {result("Failure: IV is expired."), "Failure: IV is expired."},
        {{0, "", "reset"}, "-1 error"},
        {{503, R"({"encryptedResult":1})", ""}, "503 error"}};
    for (const auto& [reply, errorMsg] : cases) {
        const KorvaneRetStruct& record = run(pinSet, {reply});
        EXPECT_TRUE(record.error) << reply.body;
        EXPECT_EQ(record.errorMsg + record.errorMsgEnc + record.errorMsgDec, errorMsg);
        EXPECT_EQ(record.jsonResponseStr, reply.body);
    }
}

TEST_F(Operations, AReplyIsDecipheredWithTheIvOfItsRequest) {
    const Handle underWay = doPinSet(state, "1357", keep());
    config.ivByteArray = std::vector<std::uint8_t>(16, 0xEE);  // another operation got a new one meanwhile
    device.urlSession->reply(0, result("Success"));
    settle();
    EXPECT_FALSE(results.at(0).error);
}

TEST_F(Operations, AReleasedHandleEndsTheOperationWhereverItIs) {
    std::vector<IvReply> host;
    config.ivCallback = [&](IvReply reply) { host.push_back(std::move(reply)); };
    const UrlReply stale = result("Failure: IV is expired"), unauthorized = answer(401, {});
    struct Case {
        std::vector<UrlReply> replies;
        bool ivAtFirst, ivLater;
        std::size_t questions;  ///< to the host, that are open then
    };
    for (const Case& each :
         {Case{{}, true, true, 0}, Case{{unauthorized}, true, true, 0}, Case{{stale}, true, true, 1},
          Case{{unauthorized}, true, false, 1}, Case{{}, false, false, 1}}) {
        config.ivIdStr = "iv-0";
        config.ivByteArray = iv;
        if (!each.ivAtFirst) dropIv();
        willAnswer(each.replies);
        Handle underWay = doGetCardStatus(state, keep());
        if (!each.ivLater) dropIv();
        settle();
        const std::size_t started = device.urlSession->startedCount();
        ASSERT_EQ(host.size(), each.questions);
        underWay.reset();
        printed();
        for (const IvReply& late : std::exchange(host, {})) late("late", ivText);
        settle();
        EXPECT_EQ(printed(), "");
        EXPECT_TRUE(results.empty());
        EXPECT_NE(config.ivIdStr, "late");
        EXPECT_EQ(device.urlSession->startedCount(), started);
        EXPECT_TRUE(each.questions || device.urlSession->wasCancelled(started - 1));
    }
}

TEST_F(Operations, AChangeThatWasSentMayFinishAndNothingFollows) {
    const Start changes[] = {rows[0].start, rows[1].start, rows[2].start, rows[3].start, rows[4].start};
    for (const Start& start : changes) {
        for (const UrlReply& late : {result("Failure: IV is expired"), answer(401, {}), result("Success")}) {
            willAnswer({});
            Handle underWay = start(state, keep());
            const std::size_t sent = device.urlSession->startedCount() - 1;
            underWay.reset();
            EXPECT_FALSE(device.urlSession->wasCancelled(sent));
            printed();
            config.lastJsonResponseStr.clear();
            EXPECT_TRUE(device.urlSession->reply(sent, late));
            settle();
            EXPECT_EQ(printed() + config.lastJsonResponseStr, "");
            EXPECT_EQ(device.urlSession->startedCount(), sent + 1);
        }
    }
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(ivsSupplied, 0);
}

TEST_F(Operations, ASubmissionThatThePlatformCancelsStartsTheSmsStepAnew) {
    const UrlReply cancelled{0, "", "suspended", urlRequestCancelled};
    EXPECT_EQ(run(doPciTokenSubmission, {cancelled}).errorMsg, "forceSMSFlowReset");
    EXPECT_TRUE(device.console->has("Forcing SMS flow reset..."));
    EXPECT_EQ(run(pinSet, {cancelled}).errorMsg, "-999 error");
}

TEST_F(Operations, TheCallersTextsAreWipedWhereTheyStood) {
    std::string secret = "1357";
    const char* const storage = secret.data();
    EXPECT_EQ(argumentsFrom({secret})[0]->size(), 4u);
    EXPECT_EQ(std::count(storage, storage + 4, '\0'), 4);
}

/// Lets the clock go on whenever nothing else is left to do.
class EndlessRecovery : public Operations {
  protected:
    EndlessRecovery() {
        device.console->keepLines(false);
        device.urlSession->recordRequests(false);
    }
    void runUntil(const std::function<bool()>& condition) {
        while (!condition()) {
            if (!device.mainQueue->runOne()) device.timers->advance(std::chrono::seconds(1));
        }
    }
};

TEST_F(EndlessRecovery, ThousandsOfRefusedIvsCostNoStackAndNoMemory) {
    constexpr int runs = 5'000;
    device.urlSession->answerWith(
        [&, replies = std::vector{result("Failure: IV is expired"), result("Success")}](const UrlRequest&) {
            return replies[ivsSupplied == runs];
        });
    const Handle underWay = doPinSet(state, "1357", keep());
    // What the C library's heap holds; sanitizers bring their own, read as 0. Past the first thousand
    // everything that is kept for good has been made.
    runUntil([this] { return ivsSupplied == 1000; });
    const auto before = mallinfo2().uordblks;
    runUntil([this] { return ivsSupplied == runs; });
    EXPECT_LT(mallinfo2().uordblks, before + (1 << 18));
    runUntil([this] { return !results.empty(); });
    EXPECT_FALSE(results.at(0).error);
}

TEST_F(EndlessRecovery, WaitsFromTheFiftiethRepetitionOnAndCanBeEndedThen) {
    const std::pair<const char*, std::function<std::optional<UrlReply>(const UrlRequest&)>> services[] = {
        {"IV refused", [this](const UrlRequest&) { return result("Failure: Invalid offsetId"); }},
        {"401",
         [this](const UrlRequest& request) {
             const bool renews = request.url.ends_with("/token");
             return renews ? ok({{"encryptedAccessToken", "bearer"}}) : answer(401, {});
         }},
        {"IV refused at the renewal",
         [this](const UrlRequest& request) {
             return request.url.ends_with("/token") ? refusal(400, "Failure: IV is expired")
                                                    : answer(401, {});
         }},
    };
    for (const auto& [name, service] : services) {
        SCOPED_TRACE(name);
        device.urlSession->answerWith(service);
        const auto before = device.urlSession->startedCount();
        const auto repeated = [&] {
            const auto calls = static_cast<int>(device.urlSession->startedCount() - before);
            if (std::string(name) == "401") return (calls - 1) / 2;
            return std::string(name) == "IV refused" ? calls - 1 : calls - 2;  // the first of either kind
        };
        Handle underWay = doPinSet(state, "1357", keep());
        settle();
        EXPECT_GE(repeated(), 48);
        EXPECT_LE(repeated(), 49);
        const int atOnce = repeated();
        for (const auto& [wait, more] : {std::pair{19, 0},
                                         {1, 1},
                                         {39, 0},
                                         {1, 1},
                                         {80, 1},
                                         {160, 1},
                                         {320, 1},
                                         {640, 1},
                                         {1280, 1},
                                         {1999, 0},
                                         {1, 1},
                                         {2000, 1}}) {
            const int so_far = repeated();
            device.timers->advance(std::chrono::milliseconds(wait));
            settle();
            EXPECT_EQ(repeated() - so_far, more) << wait;
        }
        EXPECT_EQ(repeated(), atOnce + 9);
        underWay.reset();
        device.timers->advance(std::chrono::seconds(10));
        settle();
        EXPECT_EQ(repeated(), atOnce + 9);
    }
    EXPECT_TRUE(results.empty());
}

}  // namespace
}  // namespace korvane
