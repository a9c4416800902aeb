// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/support/CannedService.h"

#include <korvane/Initialize.h>

#include "benchmarks/support/BareCipher.h"
#include "benchmarks/support/Fatal.h"
#include "sandbox/CardImage.h"

namespace korvane::bench {
namespace {

constexpr std::string_view root = "/api/sdk/";

std::string picture() {
    const std::vector<std::uint8_t> png = sandbox::cardImagePng("physical");
    return base64({reinterpret_cast<const char*>(png.data()), png.size()});
}

}  // namespace

CannedService::CannedService(bool tls)
    : server_([this](const LoopbackRequest& request) -> const std::string& { return answer(request); }, tls) {
    const std::pair<std::string, std::string> success{"encryptedResult", "Success"};
    answers("token", {success, {"encryptedAccessToken", bearer}, {"encryptedExpiration", "300"}});
    answers("pciTokenRequest", {success, {"encryptedPciSmsToken", "sms-token"}});
    answers("pciTokenSubmission", {success,
                                   {"encryptedPciToken", "pci-token"},
                                   {"encryptedPciTokenExpiration", "300"},
                                   {"encryptedBiometricsAuthenticationTimer", "300"}});
    answers("getCardStatus", {success, {"encryptedCardStatus", "A1"}, {"encryptedCardType", "physical"}});
    for (const char* const plain : {"pinSet", "cardStatus"}) answers(plain, {success});
    answers("cardImage", {success,
                          {"encryptedCardImage", picture()},
                          {"encryptedCardDisclosures",
                           R"({"CardDisclosures":[{"Language":"English","CardDisclosure":"Terms apply."}]})"},
                          {"encryptedPan", "5555550000079197"},
                          {"encryptedCvv", "864"},
                          {"encryptedExpiryDate", "12/31"},
                          {"encryptedFirstName", "Sam"},
                          {"encryptedLastName", "Okafor"},
                          {"encryptedCardNetwork", "MasterCard"}});
}

void CannedService::answers(const std::string& endpoint, const Fields& fields) {
    std::string body = "{";
    for (const auto& [name, plain] : fields) {
        body += (body.size() > 1 ? ",\"" : "\"") + name + "\":\"" + base64(encipher(plain, iv)) + "\"";
    }
    answers_.emplace(std::string(root) + endpoint, answerBytes(200, body + "}"));
}

const std::string& CannedService::answer(const LoopbackRequest& request) const {
    static const std::string authorization = std::string("Bearer ") + bearer;
    if (!request.path.ends_with("/token") && request.authorization != authorization) return unauthorized_;
    const auto found = answers_.find(request.path);
    return found == answers_.end() ? unknown_ : found->second;
}

void CannedService::initialize(const std::string& url) {
    const auto ivAtOnce = [](const IvReply& reply) { reply("iv-1", base64(iv)); };
    require(korvane::initialize(base64(key), url, ivAtOnce, false, {}, {}), "the component takes no key");
}

}  // namespace korvane::bench
