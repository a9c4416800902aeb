// SPDX-License-Identifier: Apache-2.0
#include "sandbox/CardSide.h"

#include "sandbox/Endpoints.h"
#include "sandbox/Json.h"

namespace korvane::sandbox {
namespace {

using Effect = FaultRule::Effect;

LoggedAnswer malformed(const std::string& reason) {
    return {{400, writeJson(JsonObject{{"error", reason}})}, reason};
}

LoggedAnswer unauthorized() {
    return {{401, "{}"}, "bearer token missing, unknown or expired"};
}

std::string bearerTokenOf(const HttpRequest& request) {
    constexpr std::string_view scheme = "Bearer ";
    return request.authorization.starts_with(scheme) ? request.authorization.substr(scheme.size())
                                                     : std::string{};
}

/// One request, with the state's mutex held.
class Exchange {
  public:
    Exchange(State& state, const Endpoint& endpoint, const HttpRequest& request, const FaultRule& fault)
        : state_(state), endpoint_(endpoint), request_(request), fault_(fault) {}

    LoggedAnswer answer() {
        const Outcome<Fields> body = readWireBody(endpoint_, request_);
        if (!body) return malformed(body.reason());
        const std::string& ivId = body->find("offsetId")->second;
        if (fault_.effect == Effect::expireIv) state_.database.expireIv(ivId, now());
        const std::optional<Iv> iv = state_.database.iv(ivId);
        if (fault_.effect == Effect::result) return seal({fault_.status, fault_.text, {}, {}}, iv);
        if (fault_.effect == Effect::expireIv) return refuseIv(iv);

        if (endpoint_.needsBearerToken && !bearerTokenIsGood()) return unauthorized();
        if (!iv || iv->expires <= now()) return refuseIv(iv);
        const Outcome<Fields> plain = decipherFields(*body, state_.key, iv->bytes);
        if (!plain) return malformed(plain.reason());
        noteSecrets(*plain);
        if (fault_.effect == Effect::expirePciToken) {
            expire(TokenKind::pci, plain->find("encryptedPciToken")->second);
        }
        return seal(runEndpoint(state_, endpoint_, *plain, *iv), iv);
    }

    const std::optional<Sms>& sms() const { return sms_; }

  private:
    bool bearerTokenIsGood() {
        const std::string text = bearerTokenOf(request_);
        if (fault_.effect == Effect::expireBearer) expire(TokenKind::bearer, text);
        const std::optional<Token> token = state_.database.token(TokenKind::bearer, text);
        return token && token->expires > now() && fault_.effect != Effect::expireBearer;
    }

    void expire(TokenKind kind, const std::string& text) {
        std::optional<Token> token = state_.database.token(kind, text);
        if (!token) return;
        token->expires = now();
        state_.database.putToken(*token);
    }

    LoggedAnswer refuseIv(const std::optional<Iv>& iv) {
        // A client asking for its bearer token reads the result word of a failed request alone: only from a
        // status other than 200 does it learn there that it needs a new IV.
        const int status = endpoint_.needsBearerToken ? 200 : 400;
        return seal({status, iv ? "Failure: IV is expired" : "Failure: Invalid offsetId", {}, {}}, iv);
    }

    /// Enciphers under the request's IV, expired or not. The bytes of an unknown IV are unknown as well: then
    /// the newest one handed out stands in, which is the likeliest that the client can read.
    LoggedAnswer seal(const Reply& reply, std::optional<Iv> iv) {
        if (!iv) iv = state_.database.newestIv();
        if (!iv) return malformed("no IV was handed out yet, so the answer cannot be enciphered");
        std::vector<std::pair<std::string, std::string>> fields{{"encryptedResult", reply.result}};
        fields.insert(fields.end(), reply.fields.begin(), reply.fields.end());
        sms_ = reply.sms;
        return {{reply.status, encipherFields(fields, state_.key, iv->bytes)}, note_ + reply.result};
    }

    void noteSecrets(const Fields& plain) {
        if (!state_.options.logSecrets) return;
        for (const auto& [key, value] : plain) note_ += key + "=\"" + value + "\" ";
    }

    State& state_;
    const Endpoint& endpoint_;
    const HttpRequest& request_;
    const FaultRule& fault_;
    std::optional<Sms> sms_;
    std::string note_;
};

}  // namespace

LoggedAnswer answerCardSide(State& state, const Endpoint& endpoint, const HttpRequest& request) {
    if (request.method != "POST") {
        const std::string reason = "the path takes POST alone";
        return {{405, writeJson(JsonObject{{"error", reason}})}, reason};
    }
    std::unique_lock lock(state.mutex);
    ++state.requests[std::string(endpoint.name)];
    const FaultRule fault = state.faults.take(endpoint).value_or(FaultRule{});
    if (fault.delay.count() > 0 &&
        state.stop.wait_for(lock, fault.delay, [&state] { return state.stopping; })) {
        return {{0, {}, true}, "stopping"};
    }
    switch (fault.effect) {
        case Effect::reset:
            return {{0, {}, true}, "fault: connection reset"};
        case Effect::body:
            return {{fault.status, fault.text}, "fault: raw body"};
        case Effect::status:
            return {{fault.status, "{}"}, "fault: status"};
        default:
            break;
    }
    Exchange exchange(state, endpoint, request, fault);
    LoggedAnswer answer = exchange.answer();
    if (const std::optional<Sms>& sms = exchange.sms()) {
        if (state.options.logSecrets) answer.note += "; SMS for " + sms->cardId + ": " + sms->code;
        const auto callback = state.smsCallback;
        lock.unlock();  // the callback may ask the service for the code
        if (callback) callback(sms->cardId, sms->code);
    }
    return answer;
}

}  // namespace korvane::sandbox
