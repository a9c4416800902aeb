// SPDX-License-Identifier: Apache-2.0
#include "sandbox/CardService.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <exception>
#include <mutex>

#include "base/Base64.h"
#include "sandbox/Caller.h"
#include "sandbox/CardSide.h"
#include "sandbox/HttpServer.h"
#include "sandbox/Json.h"
#include "sandbox/MagicCards.h"

namespace korvane::sandbox {
namespace {

/// A database file keeps its key: clients that were given it go on after a
/// restart.
Outcome<std::vector<std::uint8_t>> keyFor(const CardServiceOptions& options, State& state) {
    const std::string kept = state.database.key();
    const std::string text = !options.keyBase64.empty() ? options.keyBase64
                             : !kept.empty()            ? kept
                                                        : base64Encode(state.random.bytes(32));
    auto key = base64Decode(text);
    if (!key) return Failure{"the key is not base64"};
    if (key->size() != 16 && key->size() != 24 && key->size() != 32) {
        return Failure{"the key has " + std::to_string(key->size()) + " bytes, not 16, 24 or 32"};
    }
    if (kept.empty()) state.database.putKey(text);
    if (!kept.empty() && kept != text) {
        return Failure{"the key is not the one of " + options.databaseFile +
                       ": leave it out, or use another file"};
    }
    return *key;
}

/// The host in the URL, for which the certificate is.
std::string hostFor(const std::string& address) {
    if (address == "127.0.0.1" || address == "::1") return "localhost";
    if (address != "0.0.0.0" && address != "::") return address;
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "localhost";
}

bool looksAlone(const HttpRequest& request, const HttpAnswer& answer) {
    return request.method == "GET" && answer.status == 200;
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
        const std::string refusal = refusalOf(request, hostFor(shared.options.address), shared.pageToken);
        LoggedAnswer logged = !refusal.empty()
                                  ? LoggedAnswer{{403, writeJson(JsonObject{{"error", refusal}})}, refusal}
                              : endpoint ? answerCardSide(shared, *endpoint, request)
                                         : answerHostSide(shared, request);
        // A page that asks every second would bury the rest.
        if (!looksAlone(request, logged.answer)) {
            log(request.method, request.path, logged.answer.status, logged.note);
        }
        return std::move(logged.answer);
    }

    std::string start() {
        if (server) return "already running";
        if (!options.tls && !isLoopback(options.address)) {
            return "plain HTTP is for the loopback interface alone, not for " + options.address;
        }
        auto rules = readFaultRules(options.faultRules.empty() ? "[]" : options.faultRules);
        if (!rules) return rules.reason();
        auto fresh = std::make_unique<State>(options, std::move(*rules));
        Outcome<std::vector<std::uint8_t>> key = keyFor(options, *fresh);
        if (!key) return key.reason();
        fresh->key = std::move(*key);
        fresh->smsCallback = smsCallback;
        const std::string host = hostFor(options.address);
        ServerCertificate certificate;
        if (options.tls) {
            Outcome<ServerCertificate> made =
                makeServerCertificate(options.tlsDirectory, host == "localhost" ? "" : host);
            if (!made) return made.reason();
            certificate = std::move(*made);
        }
        auto fresher = std::make_unique<HttpServer>(
            [this, shared = fresh.get()](const HttpRequest& request) { return answer(*shared, request); },
            [this](const auto&... refusal) { log(refusal...); });
        std::string error =
            fresher->start(options.address, options.port, options.tls ? &certificate : nullptr);
        if (!error.empty()) return error;
        state = std::move(fresh);
        server = std::move(fresher);
        caPem = certificate.caCertificate;
        keyBase64 = base64Encode(state->key);
        const bool numeric = host.find(':') != std::string::npos;  // RFC 3986, 3.2.2: IPv6 in brackets
        url = (options.tls ? "https://" : "http://") + (numeric ? "[" + host + "]" : host) + ":" +
              std::to_string(server->port());
        return {};
    }
};

bool CardService::isLoopback(const std::string& address) {
    std::array<unsigned char, 4> bytes{};
    return address == "localhost" || address == "::1" ||
           (::inet_pton(AF_INET, address.c_str(), bytes.data()) == 1 && bytes[0] == 127);
}

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
            if (!isMagic(card.id)) summaries.push_back({card.id, card.type, card.status, displayName(card)});
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
