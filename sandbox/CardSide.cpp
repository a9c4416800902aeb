// SPDX-License-Identifier: Apache-2.0
#include "sandbox/CardSide.h"

#include "sandbox/Endpoints.h"
#include "sandbox/Json.h"

namespace korvane::sandbox {
namespace {

using Effect = FaultRule::Effect;

std::string bearerTokenOf(const HttpRequest& request) {
    constexpr std::string_view scheme = "Bearer ";
    return request.authorization.starts_with(scheme) ? request.authorization.substr(scheme.size())
                                                     : std::string{};
}

/// One request, with the state's mutex held.
class Exchange {
  public:
    Exchange(State& state, const Endpoint& endpoint, const HttpRequest& request)
        : state_(state), endpoint_(endpoint), request_(request) {
        entry_.number = state.journal.open(endpoint.name);
        entry_.endpoint = endpoint.name;
        read();
    }

    /// Chooses the fault. It may match on the card, so the request was read as
    /// far as it can be.
    FaultRule& chooseFault() {
        if (auto rule = state_.faults.take(endpoint_, entry_.card)) {
            fault_ = std::move(*rule);
            entry_.fault = fault_.source;
        }
        return fault_;
    }

    /// After a delay: time has passed, and tokens and IVs with it.
    void read() {
        if (!body_) return;
        iv_ = state_.database.iv(body_->find("offsetId")->second);
        if (!iv_) return;
        plain_ = decipherFields(*body_, state_.key, iv_->bytes);
        if (!plain_) return;
        entry_.request.assign(plain_->begin(), plain_->end());
        entry_.card = plain_->find("encryptedCardId")->second;
    }

    void answer() {
        using Kind = Delivery::Kind;
        if (fault_.delivery.kind == Kind::none || fault_.delivery.kind == Kind::hang) {
            answer_.status = 0;
            entry_.note = fault_.delivery.kind == Kind::none ? "connection reset" : "no answer";
        } else if (fault_.effect == Effect::status || fault_.effect == Effect::body) {
            answer_ = {fault_.status, fault_.effect == Effect::body ? fault_.text : "{}"};
            entry_.note = fault_.effect == Effect::body ? "raw body" : "status alone";
        } else {
            follow();
        }
        answer_.delivery = fault_.delivery;
        close();
    }

    void stop() {
        answer_ = {0, {}, {Delivery::Kind::none}};
        entry_.note = "stopping";
        close();
    }

    LoggedAnswer logged() {
        std::string note = entry_.note;
        if (!entry_.fault.empty()) note += " by the rule " + writeJson(entry_.fault);
        if (state_.options.logSecrets) {
            if (sms_) note += "; SMS for " + sms_->cardId + ": " + sms_->code;
            for (const auto& [key, value] : entry_.request) note += " " + key + "=\"" + value + "\"";
        }
        return {std::move(answer_), std::move(note)};
    }

    const std::optional<Sms>& sms() const { return sms_; }

  private:
    void follow() {
        if (!body_) return refuse(400, body_.reason());
        const std::string& ivId = body_->find("offsetId")->second;
        if (fault_.effect == Effect::expireIv) state_.database.expireIv(ivId, now());
        if (fault_.effect == Effect::unknownIv) state_.database.forgetIv(ivId);
        const bool ivFault = fault_.effect == Effect::expireIv || fault_.effect == Effect::unknownIv;
        if (fault_.effect == Effect::result) return seal({fault_.status, fault_.text, {}, {}});
        if (ivFault) return refuseIv();

        if (endpoint_.needsBearerToken && !bearerTokenIsGood()) {
            refuse(401, "bearer token missing, unknown or expired");
            answer_.body = "{}";
            return;
        }
        if (!iv_ || iv_->expires <= now()) return refuseIv();
        if (!plain_) return refuse(400, plain_.reason());
        if (fault_.effect == Effect::expirePciToken) {
            expire(TokenKind::pci, plain_->find("encryptedPciToken")->second);
        }
        seal(runEndpoint(state_, endpoint_, *plain_, *iv_));
    }

    void refuse(int status, const std::string& reason) {
        answer_ = {status, writeJson(JsonObject{{"error", reason}})};
        entry_.note = reason;
    }

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

    void refuseIv() {
        // A client asking for its bearer token reads the result word of a failed
        // request alone: only from a status other than 200 does it learn there that
        // it needs a new IV.
        const int status = endpoint_.needsBearerToken ? 200 : 400;
        const bool expired = iv_ && fault_.effect != Effect::unknownIv;
        seal({status, expired ? "Failure: IV is expired" : "Failure: Invalid offsetId", {}, {}});
    }

    /// Enciphers under the request's IV, expired or not. The bytes of an unknown
    /// IV are unknown as well: then the newest one handed out stands in, which is
    /// the likeliest that the client can read.
    void seal(Reply reply) {
        const std::optional<Iv> iv = iv_ ? iv_ : state_.database.newestIv();
        if (!iv) return refuse(400, "no IV was handed out yet, so the answer cannot be enciphered");
        entry_.answer = {{"encryptedResult", reply.result}};
        entry_.answer.insert(entry_.answer.end(), reply.fields.begin(), reply.fields.end());
        if (fault_.effect == Effect::without) {
            std::erase_if(entry_.answer, [this](const auto& field) { return field.first == fault_.text; });
        }
        entry_.note = reply.result;
        if (reply.sms) entry_.sms = reply.sms->code;
        sms_ = std::move(reply.sms);
        answer_ = {reply.status, encipherFields(entry_.answer, state_.key, iv->bytes)};
    }

    void close() {
        entry_.status = answer_.status;
        state_.journal.close(entry_);
    }

    State& state_;
    const Endpoint& endpoint_;
    const HttpRequest& request_;
    const Outcome<Fields> body_ = readWireBody(endpoint_, request_);
    std::optional<Iv> iv_;
    Outcome<Fields> plain_{Failure{}};
    FaultRule fault_;
    HttpAnswer answer_;
    JournalEntry entry_;
    std::optional<Sms> sms_;
};

}  // namespace

LoggedAnswer answerCardSide(State& state, const Endpoint& endpoint, const HttpRequest& request) {
    if (request.method != "POST") {
        const std::string reason = "the path takes POST alone";
        return {{405, writeJson(JsonObject{{"error", reason}})}, reason};
    }
    std::unique_lock lock(state.mutex);
    Exchange exchange(state, endpoint, request);
    const FaultRule& fault = exchange.chooseFault();
    if (fault.delay.count() > 0) {
        if (state.stop.wait_for(lock, fault.delay, [&state] { return state.stopping; })) {
            exchange.stop();
            return exchange.logged();
        }
        exchange.read();
    }
    exchange.answer();
    LoggedAnswer answer = exchange.logged();
    if (const std::optional<Sms>& sms = exchange.sms()) {
        const auto callback = state.smsCallback;
        lock.unlock();  // the callback may ask the service for the code
        if (callback) callback(sms->cardId, sms->code);
    }
    return answer;
}

}  // namespace korvane::sandbox
