// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "base/Handle.h"
#include "platform/Log.h"
#include "transport/CallError.h"
#include "transport/Json.h"

namespace korvane {

class SdkConfig;

/// Gets the decoded record or the error, one of the two. Runs on the main queue, at most once, never from
/// inside the call that it was handed to.
template <class Record>
using Completion = std::function<void(std::optional<Record> response, std::optional<CallError> error)>;

/// Runs on the main queue in place of the completion when the service answers 401; gets that answer as an
/// error.
using ReAuthClosure = std::function<void(RequestError unauthorized)>;

struct RequestParts {
    std::string url;
    std::string method;  ///< "POST"
    TextMap body;        ///< sent as a JSON object; "UUID" and "brandId" are added here
    std::optional<std::string> authorization;
    /// The service carries something out: when the handle is released, the request on the wire still runs to
    /// its end, and its answer is dropped.
    bool changes = false;
};

/// The body of a 200 answer, where the shared state keeps it: to be read before anything else is done.
using RawCompletion = std::function<void(std::variant<std::string_view, RequestError>)>;

/// The part of `doRequest` that does not depend on the record.
Handle sendRequest(SdkConfig& config, RequestParts parts, ReAuthClosure reAuthClosure,
                   RawCompletion completion);

/// Sends one request and turns the answer into a record. Errors: -1 for a body that cannot be written, for no
/// whole answer and for a 200 answer that does not decode; the HTTP status, with the answer's body, for any
/// other status but 401; -999 when the platform cancelled it. Whatever body comes is kept in
/// `SdkConfig.lastJsonResponseStr`. Main thread.
template <class Record>
Handle doRequest(SdkConfig& config, RequestParts parts, ReAuthClosure reAuthClosure,
                 Completion<Record> completion) {
    return sendRequest(
        config, std::move(parts), std::move(reAuthClosure),
        [completion = std::move(completion)](std::variant<std::string_view, RequestError> outcome) {
            if (auto* error = std::get_if<RequestError>(&outcome))
                return completion(std::nullopt, std::move(*error));
            auto decoded = decodeRecord<Record>(std::get<std::string_view>(outcome));
            if (auto* error = std::get_if<JsonError>(&decoded)) {
                log({". JSON decode error: ", error->text});
                return completion(std::nullopt, RequestError{noAnswerCode, std::move(error->text)});
            }
            completion(std::get<Record>(std::move(decoded)), std::nullopt);
        });
}

}  // namespace korvane
