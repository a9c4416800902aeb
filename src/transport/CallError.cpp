// SPDX-License-Identifier: Apache-2.0
#include "transport/CallError.h"

#include <utility>

#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/FieldCipher.h"

namespace korvane {

std::optional<ErrorPayload> payloadOf(const CallError& error, const std::vector<std::uint8_t>& iv) {
    if (const auto* renewal = std::get_if<KorvaneRetStruct>(&error)) {
        if (renewal->errorMsgEnc.empty()) return std::nullopt;
        return ErrorPayload{renewal->errorMsgEnc, renewal->errorMsgDec};
    }
    const auto& word = std::get<RequestError>(error).encryptedResult;
    if (!word) return std::nullopt;
    return ErrorPayload{*word, decryptField(iv, *word)};
}

KorvaneRetStruct handleNon200or401(SdkConfig& config, const CallError& error, const ErrorPayload& payload) {
    KorvaneRetStruct record;
    if (const auto* request = std::get_if<RequestError>(&error)) {
        log("handleNon200or401...\n");
        record.errorMsg = std::to_string(request->code) + " error";
    } else {
        record = std::get<KorvaneRetStruct>(error);
    }
    log(payload.enciphered);
    log({"decResultStr: ", payload.deciphered});
    record.error = true;
    record.errorMsgEnc = payload.enciphered;
    record.errorMsgDec = payload.deciphered;
    takeLastJsonResponse(config, record);
    return record;
}

void takeLastJsonResponse(SdkConfig& config, KorvaneRetStruct& record) {
    std::string& last = config.lastJsonResponseStr;
    if (!last.empty()) record.jsonResponseStr = std::exchange(last, {});
}

}  // namespace korvane
