// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>
#include <korvane/Journey.h>
#include <korvane/Prepare.h>

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Just logged in: no IV, no token. The host answers for an IV when the test wants it to.
class Prepare : public ServiceFixture {
  protected:
    Prepare() {
        dropIv();
        config.currentBearerToken.clear();
        config.ivCallback = [this](IvReply reply) { host.push_back(std::move(reply)); };
        device.urlSession->answerWith([](const UrlRequest&) { return std::nullopt; });
    }
    void supplyIv() {
        host.back()("iv-1", ivText);
        settle();
    }
    /// Answers the request that was sent last.
    void reply(const UrlReply& answer) {
        device.urlSession->reply(device.urlSession->startedCount() - 1, answer);
        settle();
    }
    void pass(double seconds) {
        device.timers->advance(std::chrono::duration<double>(seconds));
        settle();
    }
    UrlReply token() const { return ok({{"encryptedAccessToken", "bearer-1"}}); }
    /// The endpoints called so far, and the authorization of each.
    std::vector<std::string> calls() const {
        std::vector<std::string> all;
        for (const UrlRequest& request : device.urlSession->requests()) {
            const bool isToken = request.headers.size() == 2;
            all.push_back(request.url.substr(request.url.rfind('/') + 1) +
                          (isToken ? "" : " " + request.headers[0].second));
        }
        return all;
    }

    std::vector<IvReply> host;
};

TEST_F(Prepare, LeavesTheFirstCallOfAJourneyOneRoundTrip) {
    prepare();
    prepare();
    EXPECT_EQ(host.size(), 1u);
    supplyIv();
    prepare();
    reply(token());
    prepare();
    Journey journey(JourneyKind::setPIN, "card-1");
    journey.appear();
    settle();
    EXPECT_THAT(calls(), ElementsAre("token", "getCardStatus Bearer bearer-1"));
    EXPECT_EQ(host.size(), 1u);
}

TEST_F(Prepare, AJourneyWaitsForWhatIsUnderWay) {
    Journey early(JourneyKind::setPIN, "card-1");
    prepare();
    early.appear();
    auto gone = std::make_unique<Journey>(JourneyKind::setPIN, "card-2");
    gone->appear();
    settle();
    supplyIv();
    Journey late(JourneyKind::setPIN, "card-3");
    late.appear();
    settle();
    EXPECT_TRUE(early.screen().spinner && late.screen().spinner);
    EXPECT_THAT(calls(), ElementsAre("token"));
    gone.reset();
    reply(token());
    EXPECT_THAT(calls(),
                ElementsAre("token", "getCardStatus Bearer bearer-1", "getCardStatus Bearer bearer-1"));
    EXPECT_EQ(host.size(), 1u);
}

TEST_F(Prepare, AfterAFailureAJourneyDoesWhatItDoesWithoutIt) {
    for (const UrlReply& failure : {refusal(500, "Failure: x"), UrlReply{0, "", "no route"}, answer(401, {}),
                                    UrlReply{200, "<html>", ""}, ok({{"encryptedAccessToken", "a\n"}})}) {
        const std::size_t before = calls().size();
        prepare();
        if (config.ivIdStr.empty()) supplyIv();
        Journey journey(JourneyKind::setPIN, "card-1");
        journey.appear();
        reply(failure);
        EXPECT_EQ(calls().size(), before + 2);
        EXPECT_EQ(calls().back(), "getCardStatus Bearer ");
        EXPECT_TRUE(journey.screen().spinner);
    }
    dropIv();
    for (const bool answers : {true, false}) {  // the host has no IV; or drops the question
        host.clear();
        prepare();
        Journey journey(JourneyKind::setPIN, "card-1");
        journey.appear();
        answers ? host.back()(std::nullopt, std::nullopt) : host.clear();
        settle();
        EXPECT_EQ(host.size(), answers ? 2u : 1u) << "the journey asks again";
    }
}

TEST_F(Prepare, HoldsUpNobodyForMoreThanThirtySeconds) {
    prepare();
    Journey journey(JourneyKind::setPIN, "card-1");
    journey.appear();
    pass(29.9);
    EXPECT_EQ(host.size(), 1u);
    pass(0.2);
    EXPECT_EQ(host.size(), 2u);
    const IvReply late = host[0];
    late("iv-late", ivText);
    settle();
    EXPECT_EQ(config.ivIdStr, "") << "nothing waits for this answer any more";
    supplyIv();
    EXPECT_THAT(calls(), ElementsAre("getCardStatus Bearer "));
}

TEST_F(Prepare, EndsWithTheSession) {
    const auto inHostsHands = [this](const std::function<void()>& end) {
        prepare();
        supplyIv();
        end();
        settle();
        const bool wasHeard = device.urlSession->reply(device.urlSession->startedCount() - 1, token());
        settle();
        EXPECT_FALSE(wasHeard);
        EXPECT_EQ(config.currentBearerToken + config.ivIdStr, "");
    };
    inHostsHands(logOut);
    inHostsHands([this] { initialize(keyText, "https://other.example", config.ivCallback, false, {}, {}); });

    const std::size_t before = calls().size();
    prepare();
    Journey first(JourneyKind::setPIN, "card-1");
    first.appear();
    std::unique_ptr<Journey> next;  // made by the host when it hears of the first one's end
    const auto observation =
        NotificationCenter::defaultCenter().observe(NotificationCloseUI, [&](const NotificationUserInfo&) {
            if (next) return;
            next = std::make_unique<Journey>(JourneyKind::setPIN, "card-2");
            next->appear();
        });
    logOut();
    settle();
    supplyIv();
    EXPECT_EQ(calls().size(), before + 1) << "it waits for nothing that was dropped";
}

TEST_F(Prepare, DoesNothingBeforeInitializeOrWithATokenAndMayBeCalledInTheHostsCallback) {
    config.isSdkInited = false;
    prepare();
    config.isSdkInited = true;
    config.currentBearerToken = "bearer-0";
    prepare();
    EXPECT_THAT(host, IsEmpty());
    config.currentBearerToken.clear();
    int asked = 0;
    config.ivCallback = [&](const IvReply& reply) {
        ++asked;
        prepare();
        if (asked == 1) return logOut();
        reply("iv-1", ivText);
    };
    prepare();
    settle();
    EXPECT_FALSE(config.preparation);
    prepare();
    settle();
    EXPECT_EQ(asked, 2);
    EXPECT_THAT(calls(), ElementsAre("token"));
}

}  // namespace
}  // namespace korvane
