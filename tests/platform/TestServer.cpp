// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/TestServer.h"

#include <signal.h>

#include <stdexcept>

#include "sandbox/Certificates.h"

namespace korvane::testing {
namespace {

thread_local Connection* current = nullptr;  // the one that this thread serves

}  // namespace

TestServer::TestServer(Handler handler, TestServerOptions options) : options_(std::move(options)) {
    signal(SIGPIPE, SIG_DFL);  // which the library has the process ignore: others must not need it
    if (options_.tls) useTls();
    new_task_queue = [] { return new httplib::ThreadPool(32); };
    set_keep_alive_max_count(1'000'000);
    const auto serve = [this, handler](const httplib::Request& request, httplib::Response& response) {
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(request);
        }
        handler(*current, request, response);
    };
    Get(".*", serve).Post(".*", serve).Put(".*", serve);
    set_pre_routing_handler([serve](const httplib::Request& request, httplib::Response& response) {
        if (request.method != "CONNECT") return HandlerResponse::Unhandled;
        serve(request, response);
        return HandlerResponse::Handled;
    });
    port_ = bind_to_any_port("127.0.0.1");
    acceptor_ = std::thread([this] { listen_after_bind(); });
    while (!is_running()) std::this_thread::yield();  // a stop before that would be lost
}

TestServer::~TestServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        for (Connection* const connection : open_) connection->shutDown();
    }
    stop();
    acceptor_.join();
}

std::string TestServer::url(const std::string& path, const std::string& host) const {
    return (tls_ ? "https://" : "http://") + host + ":" + std::to_string(port_) + path;
}

std::vector<httplib::Request> TestServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string TestServer::receiveUntil(Connection& connection, const std::string& end) {
    std::string text;
    for (char byte = 0; !text.ends_with(end) && connection.read(&byte, 1) == 1;) text += byte;
    return text;
}

void TestServer::waitForClose(Connection& connection) {
    for (char byte = 0; connection.read(&byte, 1) == 1;) continue;
}

void TestServer::useTls() {
    const auto made = sandbox::makeServerCertificate("");
    if (!made) throw std::runtime_error(made.reason());
    folder_.file("ca.pem", made->caCertificate);
    const std::string certificate = folder_.file("certificate.pem", made->certificate);
    const std::string key = folder_.file("key.pem", made->privateKey);
    tls_.reset(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate_file(tls_.get(), certificate.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_use_PrivateKey_file(tls_.get(), key.c_str(), SSL_FILETYPE_PEM);
    const auto takeHttp2 = [](SSL*, const unsigned char** name, unsigned char* size, const unsigned char*,
                              unsigned int, void*) {
        *name = reinterpret_cast<const unsigned char*>("h2");
        *size = 2;
        return SSL_TLSEXT_ERR_OK;
    };
    if (options_.raw) SSL_CTX_set_alpn_select_cb(tls_.get(), takeHttp2, nullptr);
    if (!options_.oldTlsOnly) return;
    SSL_CTX_set_security_level(tls_.get(), 0);
    SSL_CTX_set_min_proto_version(tls_.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(tls_.get(), TLS1_1_VERSION);
}

bool TestServer::process_and_close_socket(socket_t socket) {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // SIGPIPE, in our threads alone
    Connection connection(socket, tls_.get());
    current = &connection;
    {
        const std::lock_guard lock(mutex_);
        ++connections_;
        if (stopping_) return false;
        open_.insert(&connection);
    }
    bool going = connection.open(), closed = false;
    if (going && options_.raw) options_.raw(connection);
    going = going && !options_.raw;
    while (going && connection.waitForRequest(std::chrono::seconds(60)))
        going = process_request(connection, false, closed, nullptr) && !closed && !connection.isOver();
    const std::lock_guard lock(mutex_);
    open_.erase(&connection);
    ++closed_;
    return true;
}

}  // namespace korvane::testing
