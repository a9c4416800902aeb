// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <ctime>

#include "base/Base64.h"
#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

class Roads : public ::testing::Test {
  protected:
    std::string activate(const std::string& kind, const std::string& cardId, Texts fields) {
        fields["CardId"] = cardId;
        fields["PciToken"] = client.pciToken(cardId);
        return client.call(kind + "CardActivationAndPinSet", fields).result();
    }
    /// What proves possession of the card.
    Texts proof(const std::string& cardId) {
        const Texts card = client.card(cardId);
        return {{"LastFourOfPan", card.at("pan").substr(card.at("pan").size() - 4)},
                {"CVV", card.at("cvv")},
                {"PIN", "1357"}};
    }

    Bench bench;
    TestClient& client = bench.client;
};

TEST_F(Roads, ThePciTokenTellsItsTimeAndThatOfTheFingerCheck) {
    const std::string id = "card-physical-active", token = client.smsToken(id);
    const Texts fields = client.submit(id, token, client.lastCode(id)).fields;
    EXPECT_EQ(fields.at("BiometricsAuthenticationTimer"), "300");
    std::tm parts{};
    ASSERT_NE(::strptime(fields.at("PciTokenExpiration").c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts), nullptr);
    EXPECT_NEAR(static_cast<double>(::timegm(&parts) - ::time(nullptr)), 300, 5);
}

TEST_F(Roads, PhysicalActivationProvesPossessionOfTheCard) {
    const std::string id = "card-physical-new";
    const Texts right = proof(id), before = client.card(id);
    const auto with = [&right](const std::string& name, const std::string& value) {
        Texts fields = right;
        fields[name] = value;
        return fields;
    };
    EXPECT_EQ(client.pinSet(id, "1357", client.pciToken(id)).result(), "Failure: Card not active");
    EXPECT_EQ(activate("physical", id, with("CVV", right.at("CVV") == "111" ? "222" : "111")),
              "Failure: Invalid Card Details");
    EXPECT_EQ(activate("physical", id, with("LastFourOfPan", "0000")), "Failure: Invalid Card Details");
    EXPECT_EQ(activate("physical", id, with("PIN", "13a7")), "Failure: Invalid PIN");
    EXPECT_EQ(client.card(id), before) << "a refusal must change nothing";
    EXPECT_EQ(activate("physical", id, right), "Success");
    EXPECT_EQ(activate("physical", id, right), "Failure: Card already active");
}

TEST_F(Roads, ACardIsActivatedByTheEndpointOfItsTypeAlone) {
    const auto fields = [this](const std::string& endpoint, const std::string& id) {
        return endpoint == "physical" ? proof(id) : Texts{{"PIN", "1357"}};
    };
    for (const std::string type : {"physical", "virtual", "wearable", "paywallet"}) {
        const std::string id = "card-" + type + "-new", own = type == "paywallet" ? "physical" : type;
        for (const std::string endpoint : {"physical", "virtual", "wearable"}) {
            if (endpoint == own) continue;
            EXPECT_EQ(activate(endpoint, id, fields(endpoint, id)), "Failure: Invalid Card Type");
        }
        EXPECT_EQ(activate(own, id, fields(own, id)), "Success");
        EXPECT_EQ(client.card(id).at("status") + client.card(id).at("pin"), "A11357");
    }
}

TEST_F(Roads, LiftingAFreezeGoesBackToWhereTheCardWas) {
    for (const auto& [id, before, other] :
         {std::tuple{"card-virtual-active", "A1", "P2"}, std::tuple{"card-virtual-new", "P2", "A1"}}) {
        const std::string token = client.pciToken(id);
        std::string now = before;
        for (const auto& [status, result] : {std::pair{other, "Failure: Invalid Status"},
                                             {"BT", "Success"},
                                             {"BT", "Success"},  // a repeated request is no fault
                                             {other, "Failure: Invalid Status"},
                                             {before, "Success"},
                                             {"ZZ", "Failure: Invalid Status"}}) {
            const Texts fields{{"CardId", id}, {"Status", status}, {"PciToken", token}};
            EXPECT_EQ(client.call("cardStatus", fields).result(), result) << status;
            now = std::string(result) == "Success" ? status : now;
            EXPECT_EQ(client.card(id).at("status"), now);
        }
    }
}

TEST_F(Roads, CardDetailsHoldEveryFieldAndAPicture) {
    const std::string id = "card-physical-frozen";
    const Texts answer = client.call("cardImage", {{"CardId", id}, {"PciToken", client.pciToken(id)}}).fields;
    const Texts card = client.card(id);
    for (const auto& [wire, name] : {std::pair{"Pan", "pan"},
                                     {"Cvv", "cvv"},
                                     {"ExpiryDate", "expiry"},
                                     {"FirstName", "firstName"},
                                     {"MiddleName", "middleName"},
                                     {"LastName", "lastName"},
                                     {"CardNetwork", "network"}}) {
        EXPECT_EQ(answer.at(wire), card.at(name));
    }
    EXPECT_EQ(card.at("firstName"), "Inés");
    EXPECT_THAT(answer.at("CardDisclosures"),
                ::testing::StartsWith(R"({"CardDisclosures":[{"Language":"English","CardDisclosure":)"));
    EXPECT_THAT(answer.at("CardDisclosures"), ::testing::HasSubstr(R"("Language":"Spanish")"));
    const auto png = base64Decode(answer.at("CardImage")).value();
    EXPECT_EQ(std::string(png.begin(), png.begin() + 8), "\x89PNG\r\n\x1a\n");
}

}  // namespace
}  // namespace korvane::sandbox
