// SPDX-License-Identifier: Apache-2.0
#include "sandbox/HttpServer.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <algorithm>
#include <mutex>
#include <set>
#include <thread>

#include "sandbox/Connection.h"
#include "sandbox/Json.h"

namespace korvane::sandbox {
namespace {

constexpr std::size_t threads = 32;
constexpr std::size_t longestBody = 1024 * 1024;
constexpr std::chrono::seconds idleTime{60};

struct ContextDeleter {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};
using Context = std::unique_ptr<SSL_CTX, ContextDeleter>;

Context contextOf(const ServerCertificate& texts) {
    Context context{SSL_CTX_new(TLS_server_method())};
    const auto bio = [](const std::string& text) {
        return std::unique_ptr<BIO, decltype(&BIO_free)>{
            BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free};
    };
    const std::unique_ptr<X509, decltype(&X509_free)> certificate{
        PEM_read_bio_X509(bio(texts.certificate).get(), nullptr, nullptr, nullptr), X509_free};
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{
        PEM_read_bio_PrivateKey(bio(texts.privateKey).get(), nullptr, nullptr, nullptr), EVP_PKEY_free};
    const bool good = context && certificate && key &&
                      SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) == 1 &&
                      SSL_CTX_use_certificate(context.get(), certificate.get()) == 1 &&
                      SSL_CTX_use_PrivateKey(context.get(), key.get()) == 1;
    return good ? std::move(context) : nullptr;
}

std::string errorBody(const std::string& reason) {
    return writeJson(JsonObject{{"error", reason}});
}

std::string reasonFor(int status) {
    switch (status) {
        case 404:
            return "no such path or method";
        case 413:
            return "the body is longer than 1 MiB";
        default:
            return "malformed HTTP request";
    }
}

/// Sends what the delivery lets through. The connection is over then: what the
/// library writes goes nowhere.
void deliver(Connection& connection, const HttpAnswer& answer) {
    using Kind = Delivery::Kind;
    const auto& [kind, bytes, interval] = answer.delivery;
    if (kind == Kind::hang) connection.waitForHangUp(std::nullopt);
    if (kind == Kind::hang || kind == Kind::none) return connection.drop();

    const auto send = [&connection](std::string_view text) { connection.write(text.data(), text.size()); };
    const std::string_view body = answer.body;
    const auto size = std::min(static_cast<std::size_t>(bytes), body.size());
    send("HTTP/1.1 " + std::to_string(answer.status) + " \r\nContent-Type: " + answer.type +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n");
    send(body.substr(0, size));
    if (kind == Kind::drip) {
        for (std::size_t sent = size; sent < body.size() && !connection.waitForHangUp(interval);
             sent += size) {
            send(body.substr(sent, size));
        }
    }
    if (kind != Kind::reset) return connection.finish();
    connection.waitForHangUp(std::chrono::milliseconds(20));  // a reset may overtake what was sent
    connection.drop();
}

/// The connection that this thread serves: a handler's answer has no other way
/// to it through the library.
thread_local Connection* current = nullptr;

}  // namespace

class HttpServer::Impl : public httplib::Server {
  public:
    Impl(HttpServer::Handler handler, Refused refused)
        : handler_(std::move(handler)), refused_(std::move(refused)) {
        new_task_queue = [] { return new httplib::ThreadPool(threads); };
        set_payload_max_length(longestBody);
        // Only for what the library tells clients: Connection does the waiting.
        set_keep_alive_timeout(idleTime.count());
        set_keep_alive_max_count(1'000'000);
        // The library's default is SO_REUSEPORT, with which two services share a port and split its requests.
        set_socket_options([](socket_t socket) {
            const int on = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        });
        const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
            answer(request, response);
        };
        Get(".*", handle).Post(".*", handle).Delete(".*", handle);
        set_exception_handler(
            [this](const httplib::Request& request, httplib::Response& response, std::exception_ptr thrown) {
                std::string reason = "unknown error";
                try {
                    std::rethrow_exception(thrown);
                } catch (const std::exception& error) {
                    reason = error.what();
                } catch (...) {
                }
                response.status = 500;
                response.set_content(errorBody(reason), "application/json");
                refused_(request.method, request.path, response.status, reason);
            });
        set_error_handler([this](const httplib::Request& request, httplib::Response& response) {
            if (response.has_header("Content-Type")) return;  // the handler's own
            const std::string reason = reasonFor(response.status);
            if (response.status == 413) response.status = 400;
            response.set_content(errorBody(reason), "application/json");
            refused_(request.method, request.path, response.status, reason);
        });
    }

    std::string start(const std::string& address, int port, const ServerCertificate* certificate,
                      int& boundPort) {
        if (certificate) {
            tls_ = contextOf(*certificate);
            if (!tls_) return "the server certificate is of no use";
        }
        boundPort = port == 0 ? bind_to_any_port(address) : bind_to_port(address, port) ? port : -1;
        if (boundPort < 0) {
            return "cannot listen on " + address + " port " + std::to_string(port) +
                   ": it is in use, not allowed, or not of this machine";
        }
        // The library lets five clients wait; a burst of new connections is more.
        ::listen(svr_sock_, SOMAXCONN);
        accepting_ = std::thread([this] { listen_after_bind(); });
        // `stop` is lost on a server that does not run yet.
        while (!is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return {};
    }

    void end() {
        if (!accepting_.joinable()) return;
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
            for (Connection* connection : connections_) connection->shutDown();
        }
        stop();
        accepting_.join();
    }

  private:
    void answer(const httplib::Request& request, httplib::Response& response) {
        const HttpAnswer answer = handler_({request.method,
                                            request.path,
                                            {request.params.begin(), request.params.end()},
                                            request.get_header_value("Content-Type"),
                                            request.get_header_value("Accept"),
                                            request.get_header_value("Authorization"),
                                            request.get_header_value("Host"),
                                            request.get_header_value("Origin"),
                                            request.get_header_value("Korvane-Token"),
                                            request.body});
        if (answer.delivery.kind != Delivery::Kind::whole) deliver(*current, answer);
        response.status = answer.status;
        for (const auto& [name, value] : answer.headers) response.set_header(name, value);
        response.set_header("Cache-Control", "no-store");
        // RFC 9110, 15.5.2: a 401 names the scheme that is asked for.
        if (answer.status == 401) response.set_header("WWW-Authenticate", "Bearer");
        response.set_content(answer.body, answer.type);
    }

    bool process_and_close_socket(socket_t socket) override {
        Connection connection(socket, tls_.get());
        {
            const std::lock_guard lock(mutex_);
            if (stopping_) return false;
            connections_.insert(&connection);
        }
        current = &connection;
        // RFC 9112, 6.3: without either header there is no body. The library would read until the end of the
        // connection.
        const auto complete = [](httplib::Request& request) {
            if (request.has_header("Content-Length") || request.has_header("Transfer-Encoding")) return;
            request.set_header("Content-Length", "0");
        };
        bool going = connection.open();
        while (going && connection.waitForRequest(idleTime)) {
            bool closed = false;
            going = process_request(connection, false, closed, complete) && !closed && !connection.isOver();
        }
        current = nullptr;
        const std::lock_guard lock(mutex_);
        connections_.erase(&connection);
        return true;
    }

    HttpServer::Handler handler_;
    Refused refused_;
    Context tls_;
    std::thread accepting_;
    std::mutex mutex_;
    bool stopping_ = false;
    std::set<Connection*> connections_;
};

HttpServer::HttpServer(Handler handler, Refused refused)
    : impl_(std::make_unique<Impl>(std::move(handler), std::move(refused))) {}

HttpServer::~HttpServer() {
    stop();
}

std::string HttpServer::start(const std::string& address, int port, const ServerCertificate* certificate) {
    return impl_->start(address, port, certificate, port_);
}

void HttpServer::stop() {
    impl_->end();
}

}  // namespace korvane::sandbox
