// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "base/Secret.h"
#include "operations/Operations.h"
#include "transport/API.h"

namespace korvane {

/// The caller's values; wiped when the operation ends.
using Arguments = std::vector<Wiped<std::string>>;

/// A value that is enciphered and sent: a field of the process or of the journey, or the n-th argument.
struct SentValue {
    std::variant<const std::string SdkConfig::*, const std::string JourneyState::*, std::size_t> source;
    std::string_view label{};  ///< of its console line, "pin = "
};

/// What goes to an endpoint.
struct Sent {
    std::string ivId;
    std::vector<std::string> values;  ///< enciphered, in the order of the description's values
};

/// None, or the text ("" too) of the failure that a reply, or a part of it, turns out to be.
using StoreReport = std::optional<std::string>;
using Stored = std::function<void(StoreReport report)>;

/// What a successful reply leads to: stores the reply's values, deciphered with `iv`, in the journey's state,
/// and tells it at once or, on the main queue, when the device has kept what it is to keep.
using Store = std::function<void(JourneyState& state, const std::vector<std::uint8_t>& iv, Stored stored)>;

/// An endpoint's reply, whatever its record.
struct Reply {
    std::optional<std::string> encryptedResult;
    Store store;  ///< empty: nothing to store
};
using ReplyHandler = std::function<void(std::optional<Reply> reply, std::optional<CallError> error)>;

/// An operation: what it does differently from the others. The pattern that they share is `runOperation`.
struct OperationDescription {
    std::string_view name;          ///< "doPinSet"
    std::string_view endpoint;      ///< "pinSet", as console lines name it
    std::vector<SentValue> values;  ///< in the order of sending
    Handle (*send)(API& api, const Sent& sent, ReplyHandler handler);

    std::string_view onTrack = "ok we're back on track...";
    bool printsSeparator = false;  ///< a line of "=" behind that
    bool printsValues = false;     ///< each value in clear (deliberate)
    void (*beforeSending)(SdkConfig& config) = nullptr;

    std::string_view errLine{};        ///< in place of "NAME() (middle layer) err != nil"
    std::string_view cancelledLine{};  ///< with the next: a cancelled request is a case of its own
    std::string_view cancelledMsg{};
    std::string_view replyLine{};  ///< printed when there was no error
    std::string_view noReplyMsg{};
    std::string_view noResultMsg{};
    bool storeTextIsFailure = true;  ///< false: what `store` reports is told, but the operation succeeded
    bool judgesResult = true;        ///< false: a reply is stored whatever its result word says
};

/// Runs the operation that `description` describes, for the journey of that state; the description must
/// outlive the run. Main thread.
[[nodiscard]] Handle runOperation(const OperationDescription& description, StatePtr state,
                                  Arguments arguments, OperationCompletion completion);

/// Takes over texts as arguments and wipes the originals.
Arguments argumentsFrom(std::initializer_list<std::reference_wrapper<std::string>> texts);

/// Turns an endpoint's typed completion into the engine's. `store` is a `Store` that still lacks its record,
/// or gives its report back; it runs once, and may use up the record's texts.
template <class Record, auto store>
Completion<Record> replyTo(ReplyHandler handler) {
    return [handler = std::move(handler)](std::optional<Record> record, std::optional<CallError> error) {
        if (!record) return handler(std::nullopt, std::move(error));
        Reply reply{std::move(record->encryptedResult), {}};  // no store reads it
        if constexpr (store != nullptr) {
            reply.store = [record = *std::move(record)](JourneyState& state, const auto& iv,
                                                        Stored stored) mutable {
                if constexpr (std::is_invocable_v<decltype(store), JourneyState&, Record&, decltype(iv)>)
                    stored(store(state, record, iv));
                else
                    store(state, record, iv, std::move(stored));
            };
        }
        handler(std::move(reply), std::nullopt);
    };
}

/// A description's `send`: calls the method of `API` with the IV's id and the `count` values.
template <class Record, auto method, std::size_t count, auto store = nullptr>
Handle sendTo(API& api, const Sent& sent, ReplyHandler handler) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return (api.*method)(sent.ivId, sent.values[i]..., replyTo<Record, store>(std::move(handler)));
    }
    (std::make_index_sequence<count>{});
}

}  // namespace korvane
