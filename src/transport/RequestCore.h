// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Handle.h"
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

/// Takes the record's texts out of the body of a 200 answer; on a thread of its own when that is long.
using BodyReader = std::function<std::optional<JsonError>(std::string_view body)>;

/// The part of `doRequest` that does not depend on the record. The completion gets none when the body was
/// read.
Handle sendRequest(SdkConfig& config, RequestParts parts, ReAuthClosure reAuthClosure, BodyReader reader,
                   std::function<void(std::optional<RequestError>)> completion);

/// Sends one request and turns the answer into a record. Errors: -1 for a body that cannot be written, for no
/// whole answer and for a 200 answer that does not decode; the HTTP status, with the service's result word,
/// for any other status but 401; -999 when the platform cancelled it. Whatever body comes is kept in
/// `SdkConfig.lastJsonResponseStr`. Main thread; a body of more than 1 MiB is read on another one.
template <class Record>
Handle doRequest(SdkConfig& config, RequestParts parts, ReAuthClosure reAuthClosure,
                 Completion<Record> completion) {
    const auto record = std::make_shared<Record>();
    return sendRequest(
        config, std::move(parts), std::move(reAuthClosure),
        [record](std::string_view body) { return decodeTexts(body, slotsOf(*record)); },
        [record, completion = std::move(completion)](std::optional<RequestError> error) {
            if (error) return completion(std::nullopt, *std::move(error));
            completion(std::move(*record), std::nullopt);
        });
}

}  // namespace korvane
