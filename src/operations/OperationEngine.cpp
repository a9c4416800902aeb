// SPDX-License-Identifier: Apache-2.0
#include "operations/OperationEngine.h"

#include "base/Text.h"
#include "platform/Log.h"
#include "transport/Backoff.h"
#include "transport/FieldCipher.h"
#include "transport/IvAcquisition.h"
#include "transport/Preparation.h"

namespace korvane {
namespace {

/// One operation from its start to its completion, all its re-runs included. Every re-run starts from the
/// main queue and leaves nothing behind, so that it can go on without end. The handle owns it; what it waits
/// for holds it weakly.
class Run final : public std::enable_shared_from_this<Run> {
  public:
    Run(const OperationDescription& description, StatePtr state, Arguments arguments,
        OperationCompletion completion)
        : does_(description),
          state_(std::move(state)),
          arguments_(std::move(arguments)),
          completion_(std::move(completion)) {}

    void start() {
        if (const auto& preparation = state_->sdk.preparation) {
            underWay_ = preparation->wait([weak = weak_from_this()] {
                if (const auto self = weak.lock()) self->start();
            });
            return;
        }
        log({"inside (middlelayer) ", inClear(does_.name), "( ... )"});
        if (ivAtHand(state_->sdk)) {
            send();
            return;
        }
        log("need to get new iv...");
        underWay_ =
            obtainIv(state_->sdk, IvReason::noneHeld,
                     [weak = weak_from_this()](std::optional<KorvaneRetStruct> failure) {
                         const auto self = weak.lock();
                         if (!self) return;
                         if (failure) return self->finish(*std::move(failure));
                         log({"got iv.. now recalling the method... ", inClear(self->does_.name), "..."});
                         self->startAgain();
                     });
    }

  private:
    void startAgain() {
        backoff_.repeat(underWay_, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->start();
        });
    }

    void send() {
        const SdkConfig& config = state_->sdk;
        iv_ = config.ivByteArray;
        log("have iv (now?)... use it:");
        log(inClear(does_.onTrack));
        if (does_.printsSeparator) log("==================");
        if (does_.printsValues) {
            log({"offsetId = ", config.ivIdStr});
            for (const SentValue& value : does_.values) log({inClear(value.label), plain(value)});
        }
        if (does_.beforeSending) does_.beforeSending(state_->sdk);

        Sent sent{config.ivIdStr, {}};
        for (const SentValue& value : does_.values) sent.values.push_back(encryptField(iv_, plain(value)));
        log({"Calling api.", inClear(does_.endpoint), "..."});
        API api(state_->sdk, state_->cardId);
        underWay_ = does_.send(
            api, sent, [weak = weak_from_this()](std::optional<Reply> reply, std::optional<CallError> error) {
                const auto self = weak.lock();
                if (!self) return;
                if (error) return self->failed(*error);
                self->answered(std::move(reply));
            });
    }

    const std::string& plain(const SentValue& value) const {
        if (const auto* field = std::get_if<const std::string SdkConfig::*>(&value.source))
            return state_->sdk.**field;
        if (const auto* field = std::get_if<const std::string JourneyState::*>(&value.source))
            return (*state_).**field;
        return *arguments_.at(std::get<std::size_t>(value.source));
    }

    void failed(const CallError& error) {
        if (does_.errLine.empty()) {
            log({inClear(does_.name), "() (middle layer) err != nil"});
        } else {
            log(inClear(does_.errLine));
        }
        const auto* request = std::get_if<RequestError>(&error);
        if (request && request->code == cancelledCode && !does_.cancelledMsg.empty()) {
            log(inClear(does_.cancelledLine));
            return finish(failure(does_.cancelledMsg));
        }
        const auto payload = payloadOf(error, iv_);
        if (payload) {
            log("err response HAS Data");
            log("here it is:");
            log(payload->enciphered);
            log({"theEncErrResult: ", payload->enciphered});
            log({"decResultStr ", payload->deciphered});
        } else {
            log("err has response with no data (no biggie)");
        }
        // Not looked at for IV words (deliberate): only a result that came with status 200 leads to a new IV.
        finish(handleNon200or401(state_->sdk, error, payload.value_or(ErrorPayload{})));
    }

    void answered(std::optional<Reply> reply) {
        if (!does_.replyLine.empty()) log(inClear(does_.replyLine));
        if (!reply) {
            log({"api.", inClear(does_.endpoint), " - resp is nil"});
            return close(failure(does_.noReplyMsg));
        }
        if (!does_.judgesResult) return store(*reply);
        if (!reply->encryptedResult) return close(failure(does_.noResultMsg));

        std::string& word = *reply->encryptedResult;
        log({"theEncResult: ", word});
        decryptFieldInPlace(iv_, word);
        log({"decResult: ", word});
        if (equalIgnoringCase(word, "Success")) return store(*reply);
        if (isExpiredIvWord(word)) return refreshIv("Failure: IV is expired");
        if (isInvalidIvWord(word)) return refreshIv("Failure: Invalid offsetId");
        close(failure(word));
    }

    void store(const Reply& reply) {
        if (!reply.store) return close({});
        reply.store(*state_, iv_, [weak = weak_from_this()](const StoreReport& report) {
            const auto self = weak.lock();
            if (!self) return;
            KorvaneRetStruct record = report ? failure(*report) : KorvaneRetStruct{};
            record.error = report && self->does_.storeTextIsFailure;
            self->close(std::move(record));
        });
    }

    void refreshIv(std::string_view reason) {
        log({"Got error = ", inClear(reason), ".. calling api.refreshIV..."});
        underWay_ = obtainIv(state_->sdk, IvReason::refused, [weak = weak_from_this()](const auto&) {
            const auto self = weak.lock();
            if (!self) return;
            // Whatever the outcome (deliberate): without an IV the next run asks again and fails there.
            log({"refreshed the IV... now recalling ", inClear(self->does_.name)});
            self->startAgain();
        });
    }

    static KorvaneRetStruct failure(std::string_view text) {
        KorvaneRetStruct record;
        record.error = true;
        record.errorMsg = text;
        return record;
    }

    void close(KorvaneRetStruct record) {
        takeLastJsonResponse(state_->sdk, record);
        log({"KorvaneRetStruct(error: ", inClear(record.error ? "true" : "false"), ", errorMsg: \"",
             record.errorMsg, "\", errorMsgEnc: \"", record.errorMsgEnc, "\", errorMsgDec: \"",
             record.errorMsgDec, "\", jsonResponseStr: \"", record.jsonResponseStr, "\")"});
        finish(std::move(record));
    }

    void finish(KorvaneRetStruct record) {
        takeLastJsonResponse(state_->sdk, record);
        arguments_.clear();
        if (const auto completion = std::exchange(completion_, nullptr)) completion(std::move(record));
    }

    const OperationDescription& does_;
    const StatePtr state_;
    Arguments arguments_;
    OperationCompletion completion_;
    std::vector<std::uint8_t> iv_;  // of the call under way: its reply is deciphered with the same
    Backoff backoff_;
    Handle underWay_;  // the call, the question for an IV, or a wait
};

}  // namespace

Handle runOperation(const OperationDescription& description, StatePtr state, Arguments arguments,
                    OperationCompletion completion) {
    auto run =
        std::make_shared<Run>(description, std::move(state), std::move(arguments), std::move(completion));
    run->start();
    return run;
}

Arguments argumentsFrom(std::initializer_list<std::reference_wrapper<std::string>> texts) {
    Arguments arguments;
    arguments.reserve(texts.size());
    for (std::string& text : texts) {
        arguments.emplace_back(text);
        wipe(text);
    }
    return arguments;
}

}  // namespace korvane
