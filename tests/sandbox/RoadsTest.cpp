// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <ctime>

#include "base/Base64.h"
#include "sandbox/Json.h"
#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using testing::HasSubstr;

class Roads : public testing::Test {
  protected:
    TestClient& client() { return *bench_.client; }

    std::string activate(const std::string& kind, const std::string& cardId, Texts fields) {
        fields["encryptedCardId"] = cardId;
        fields["encryptedPciToken"] = client().pciToken(cardId);
        return client().call("/api/sdk/" + kind + "CardActivationAndPinSet", fields).result();
    }

    std::string setStatus(const std::string& cardId, const std::string& status, const std::string& token) {
        return client()
            .call("/api/sdk/cardStatus",
                  {{"encryptedCardId", cardId}, {"encryptedStatus", status}, {"encryptedPciToken", token}})
            .result();
    }

  private:
    Bench bench_;
};

TEST_F(Roads, FromTheBearerTokenOverTheSmsCodeToThePin) {
    const std::string id = "card-physical-active";
    client().signIn();
    const auto request = client().call("/api/sdk/pciTokenRequest", {{"encryptedCardId", id}});
    const std::string code = client().lastCode(id);
    ASSERT_THAT(code, testing::MatchesRegex("[0-9]{6}"));
    const auto submission = client().call(
        "/api/sdk/pciTokenSubmission", {{"encryptedCardId", id},
                                        {"encryptedPciSmsToken", request.fields.at("encryptedPciSmsToken")},
                                        {"encryptedTwoFactorCode", code},
                                        {"encryptedUseBiometrics", "true"}});
    ASSERT_EQ(submission.result(), "Success");
    EXPECT_EQ(submission.fields.at("encryptedBiometricsAuthenticationTimer"), "300");

    std::tm parts{};
    const std::string& expiration = submission.fields.at("encryptedPciTokenExpiration");
    ASSERT_NE(::strptime(expiration.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts), nullptr) << expiration;
    EXPECT_NEAR(static_cast<double>(::timegm(&parts) - ::time(nullptr)), 300, 5);

    const auto set = client().pinSet(id, "1357", submission.fields.at("encryptedPciToken"));
    EXPECT_EQ(set.result(), "Success");
    EXPECT_EQ(client().card(id).at("pin"), "1357");
    const auto status = client().call(
        "/api/sdk/getCardStatus",
        {{"encryptedCardId", id}, {"encryptedPciToken", submission.fields.at("encryptedPciToken")}});
    EXPECT_EQ(status.fields.at("encryptedCardStatus"), "A1");
    EXPECT_EQ(status.fields.at("encryptedCardType"), "physical");
}

TEST_F(Roads, PhysicalActivationProvesPossessionOfTheCard) {
    const std::string id = "card-physical-new";
    EXPECT_EQ(client().pinSet(id, "1357", client().pciToken(id)).result(), "Failure: Card not active");
    Texts card = client().card(id);
    const std::string lastFour = card.at("pan").substr(12);
    const std::string wrongCvv = card.at("cvv") == "111" ? "222" : "111";
    const auto with = [](const std::string& digits, const std::string& cvv, const std::string& pin) {
        return Texts{{"encryptedLastFourOfPan", digits}, {"encryptedCVV", cvv}, {"encryptedPIN", pin}};
    };
    EXPECT_EQ(activate("physical", id, with(lastFour, wrongCvv, "1357")), "Failure: Invalid Card Details");
    EXPECT_EQ(activate("physical", id, with("0000", card.at("cvv"), "1357")),
              "Failure: Invalid Card Details");
    EXPECT_EQ(activate("physical", id, with(lastFour, card.at("cvv"), "13a7")), "Failure: Invalid PIN");
    EXPECT_EQ(activate("virtual", id, {{"encryptedPIN", "1357"}}), "Failure: Invalid Card Type");
    EXPECT_EQ(client().card(id), card) << "a refusal must change nothing";

    EXPECT_EQ(activate("physical", id, with(lastFour, card.at("cvv"), "1357")), "Success");
    card["status"] = "A1";
    card["pin"] = "1357";
    EXPECT_EQ(client().card(id), card);
    EXPECT_EQ(activate("physical", id, with(lastFour, card.at("cvv"), "2468")),
              "Failure: Card already active");
}

TEST_F(Roads, EachNewCardCanBeActivatedByTheEndpointOfItsType) {
    for (const std::string type : {"virtual", "wearable"}) {
        const std::string id = "card-" + type + "-new";
        const Texts physical{{"encryptedLastFourOfPan", client().card(id).at("pan").substr(12)},
                             {"encryptedCVV", client().card(id).at("cvv")},
                             {"encryptedPIN", "2468"}};
        EXPECT_EQ(activate("physical", id, physical), "Failure: Invalid Card Type");
        EXPECT_EQ(activate(type == "virtual" ? "wearable" : "virtual", id, {{"encryptedPIN", "2468"}}),
                  "Failure: Invalid Card Type");
        EXPECT_EQ(activate(type, id, {{"encryptedPIN", "2468"}}), "Success");
        EXPECT_EQ(client().card(id).at("status"), "A1");
        EXPECT_EQ(client().card(id).at("pin"), "2468");
    }
    const Texts wallet = client().card("card-paywallet-new");
    EXPECT_EQ(activate("physical", "card-paywallet-new",
                       {{"encryptedLastFourOfPan", wallet.at("pan").substr(wallet.at("pan").size() - 4)},
                        {"encryptedCVV", wallet.at("cvv")},
                        {"encryptedPIN", "2468"}}),
              "Success");
}

TEST_F(Roads, LiftingAFreezeGoesBackToWhereTheCardWas) {
    for (const auto& [id, before, other] :
         {std::tuple{"card-virtual-active", "A1", "P2"}, std::tuple{"card-virtual-new", "P2", "A1"}}) {
        const std::string token = client().pciToken(id);
        EXPECT_EQ(setStatus(id, other, token), "Failure: Invalid Status");
        EXPECT_EQ(setStatus(id, "BT", token), "Success");
        EXPECT_EQ(setStatus(id, "BT", token), "Success") << "a repeated request is no fault";
        EXPECT_EQ(setStatus(id, other, token), "Failure: Invalid Status");
        EXPECT_EQ(client().card(id).at("status"), "BT");
        EXPECT_EQ(setStatus(id, before, token), "Success");
        EXPECT_EQ(client().card(id).at("status"), before);
        EXPECT_EQ(setStatus(id, "ZZ", token), "Failure: Invalid Status");
    }
}

TEST_F(Roads, CardDetailsHoldEveryFieldAndAPicture) {
    const std::string id = "card-physical-frozen";
    const auto answer = client().call(
        "/api/sdk/cardImage", {{"encryptedCardId", id}, {"encryptedPciToken", client().pciToken(id)}});
    const Texts card = client().card(id);
    ASSERT_EQ(answer.result(), "Success");
    for (const auto& [wire, name] : {std::pair{"encryptedPan", "pan"},
                                     {"encryptedCvv", "cvv"},
                                     {"encryptedExpiryDate", "expiry"},
                                     {"encryptedFirstName", "firstName"},
                                     {"encryptedMiddleName", "middleName"},
                                     {"encryptedLastName", "lastName"},
                                     {"encryptedCardNetwork", "network"}}) {
        EXPECT_EQ(answer.fields.at(wire), card.at(name));
    }
    EXPECT_EQ(card.at("firstName"), "Inés");
    const std::string& disclosures = answer.fields.at("encryptedCardDisclosures");
    EXPECT_THAT(disclosures,
                testing::StartsWith(R"({"CardDisclosures":[{"Language":"English","CardDisclosure":)"));
    EXPECT_THAT(disclosures, HasSubstr(R"("Language":"Spanish")"));

    const auto png = base64Decode(answer.fields.at("encryptedCardImage")).value();
    ASSERT_EQ(std::string(png.begin(), png.begin() + 8), "\x89PNG\r\n\x1a\n");
}

}  // namespace
}  // namespace korvane::sandbox
