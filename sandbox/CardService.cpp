// SPDX-License-Identifier: Apache-2.0
#include "sandbox/CardService.h"

#include <algorithm>
#include <exception>
#include <mutex>

#include "base/Base64.h"
#include "sandbox/CardSide.h"
#include "sandbox/HttpServer.h"

namespace korvane::sandbox {
namespace {

Outcome<std::vector<std::uint8_t>> keyFor(const CardServiceOptions& options, Random& random) {
    if (options.keyBase64.empty()) return random.bytes(32);
    auto key = base64Decode(options.keyBase64);
    if (!key) return Failure{"the key is not base64"};
    if (key->size() != 16 && key->size() != 24 && key->size() != 32) {
        return Failure{"the key has " + std::to_string(key->size()) + " bytes, not 16, 24 or 32"};
    }
    return *key;
}

}  // namespace

struct CardService::Impl {
    CardServiceOptions options;
    mutable std::mutex mutex;  ///< guards all below; the callbacks run without it
    std::unique_ptr<State> state;
    std::unique_ptr<HttpServer> server;
    std::string url;
    std::string caPem;
    std::string keyBase64;
    std::function<void(std::string, std::string)> smsCallback;
    std::mutex logMutex;

    void log(const std::string& method, const std::string& path, int status, const std::string& note) {
        if (!options.log) return;
        const Endpoint* const endpoint = endpointAt(path);
        std::string line = endpoint ? std::string(endpoint->name) : method + " " + path;
        line.append(" ").append(std::to_string(status));
        if (!note.empty()) line.append(" ").append(note);
        // Paths and, with secrets, fields come from the client: they must not forge lines.
        std::ranges::replace_if(
            line, [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
        const std::lock_guard lock(logMutex);
        options.log(line);
    }

    HttpAnswer answer(State& shared, const HttpRequest& request) {
        const Endpoint* const endpoint = endpointAt(request.path);
        LoggedAnswer logged =
            endpoint ? answerCardSide(shared, *endpoint, request) : answerHostSide(shared, request);
        log(request.method, request.path, logged.answer.status, logged.note);
        return std::move(logged.answer);
    }

    std::string start() {
        if (server) return "already running";
        auto fresh = std::make_unique<State>(options);
        Outcome<std::vector<std::uint8_t>> key = keyFor(options, fresh->random);
        if (!key) return key.reason();
        fresh->key = std::move(*key);
        fresh->smsCallback = smsCallback;
        ServerCertificate certificate;
        if (options.tls) {
            Outcome<ServerCertificate> made = makeServerCertificate(options.tlsDirectory);
            if (!made) return made.reason();
            certificate = std::move(*made);
        }
        auto fresher = std::make_unique<HttpServer>(
            [this, shared = fresh.get()](const HttpRequest& request) { return answer(*shared, request); },
            [this](const auto&... refusal) { log(refusal...); });
        std::string error = fresher->start(options.port, options.tls ? &certificate : nullptr);
        if (!error.empty()) return error;
        state = std::move(fresh);
        server = std::move(fresher);
        caPem = certificate.caCertificate;
        keyBase64 = base64Encode(state->key);
        url = (options.tls ? "https://localhost:" : "http://localhost:") + std::to_string(server->port());
        return {};
    }
};

CardService::CardService(CardServiceOptions options) : impl_(std::make_unique<Impl>()) {
    impl_->options = std::move(options);
}

CardService::~CardService() {
    stop();
}

std::string CardService::start() {
    const std::lock_guard lock(impl_->mutex);
    try {
        return impl_->start();
    } catch (const std::exception& error) {
        return error.what();
    }
}

void CardService::stop() {
    std::unique_ptr<HttpServer> server;
    std::unique_ptr<State> state;
    {
        const std::lock_guard lock(impl_->mutex);
        server = std::move(impl_->server);
        state = std::move(impl_->state);
    }
    if (!server) return;
    {
        const std::lock_guard lock(state->mutex);
        state->stopping = true;
    }
    state->stop.notify_all();
    server->stop();  // without the mutex: a callback under way may ask for it
}

std::string CardService::url() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->url;
}

std::string CardService::caPem() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->caPem;
}

std::string CardService::keyBase64() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->keyBase64;
}

std::string CardService::ivUrl() const {
    const std::string base = url();
    return base.empty() ? base : base + "/host/iv";
}

std::string CardService::lastSmsCode(const std::string& cardId) const {
    const std::lock_guard lock(impl_->mutex);
    if (!impl_->state) return {};
    const std::lock_guard stateLock(impl_->state->mutex);
    try {
        const std::optional<Sms> sms = impl_->state->database.lastSms(cardId);
        return sms ? sms->code : std::string{};
    } catch (const DatabaseError&) {
        return {};
    }
}

std::vector<CardSummary> CardService::cards() const {
    const std::lock_guard lock(impl_->mutex);
    std::vector<CardSummary> summaries;
    if (!impl_->state) return summaries;
    const std::lock_guard stateLock(impl_->state->mutex);
    try {
        for (const Card& card : impl_->state->database.cards()) {
            summaries.push_back({card.id, card.type, card.status, displayName(card)});
        }
    } catch (const DatabaseError&) {
        summaries.clear();
    }
    return summaries;
}

void CardService::onSms(std::function<void(std::string cardId, std::string code)> callback) {
    const std::lock_guard lock(impl_->mutex);
    impl_->smsCallback = callback;
    if (!impl_->state) return;
    const std::lock_guard stateLock(impl_->state->mutex);
    impl_->state->smsCallback = std::move(callback);
}

}  // namespace korvane::sandbox
