// SPDX-License-Identifier: Apache-2.0
#include "flows/SMSCodeRequest.h"

#include <utility>

#include "flows/FailureRoute.h"
#include "sdk/SdkConfig.h"
#include "transport/AesCbc.h"
#include "transport/IvAcquisition.h"

namespace korvane {
namespace {

bool mayBeStaleIv(const KorvaneRetStruct& result) {
    // A host's IV of another size enciphers nothing and deciphers no refusal of it either.
    const auto& iv = SdkConfig::sharedInstance().ivByteArray;
    if (!iv.empty() && iv.size() != AesCbc::blockSize) return true;
    const FailureRoute::Road road = routeOf(result).road;
    return result.error && (result.errorMsg.empty() || road == FailureRoute::Road::ivExpired ||
                            road == FailureRoute::Road::ivInvalid);
}

}  // namespace

void requestSMSCode(OperationCompletion completion) {
    doPciTokenRequest([completion = std::move(completion)](const KorvaneRetStruct& first) {
        if (!mayBeStaleIv(first)) {
            completion(first);
            return;
        }
        requestIv([completion, first](const auto&, const auto& ivId, const auto& ivBytes) {
            if (ivId && ivBytes) {
                doPciTokenRequest(completion);
            } else {
                completion(first);
            }
        });
    });
}

}  // namespace korvane
