// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/UrlSession.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "sdk/KorvaneRetStruct.h"

namespace korvane {

class SdkConfig;

/// Why a request has no record to show.
struct RequestError {
    explicit RequestError(int failureCode, std::string reason)
        : code(failureCode), userInfo{{"Error", std::move(reason)}} {}

    std::string domain;  ///< empty for every error of the request core
    int code;            ///< HTTP status; -1 without one that counts; -999 cancelled by the platform
    std::map<std::string, std::string> userInfo;  ///< "Error": the reason, for the log
    /// The service's result word, when the status of the answer was the failure and its body has one.
    std::optional<std::string> encryptedResult;
};

inline constexpr int noAnswerCode = urlRequestFailed;
inline constexpr int cancelledCode = urlRequestCancelled;

/// Why a call of an endpoint failed: its request did, or the bearer token could not be renewed for it.
using CallError = std::variant<RequestError, KorvaneRetStruct>;

/// The service's own word on a failure.
struct ErrorPayload {
    std::string enciphered;
    std::string deciphered;
};

/// The result word of a failed request, deciphered with `iv`, or the one of the failed renewal; none when
/// there is none. Main thread.
std::optional<ErrorPayload> payloadOf(const CallError& error, const std::vector<std::uint8_t>& iv);

/// The record of a failed call: "400 error" and the like by the error's code (a failed renewal brings its own
/// text), the payload's two texts, and the last answer. Main thread.
KorvaneRetStruct handleNon200or401(SdkConfig& config, const CallError& error, const ErrorPayload& payload);

/// Moves the last answer's body, when there is one, from `config` into the record. Main thread.
void takeLastJsonResponse(SdkConfig& config, KorvaneRetStruct& record);

}  // namespace korvane
