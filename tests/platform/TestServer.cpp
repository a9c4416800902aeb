// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/TestServer.h"

#include <signal.h>
#include <sys/socket.h>

#include <algorithm>
#include <sstream>

#include "base/Text.h"
#include "sandbox/Certificates.h"

namespace korvane::testing {

std::string TestConnection::receive(std::size_t size) {
    std::string bytes(size, '\0');
    bytes.resize(static_cast<std::size_t>(std::max(0, BIO_read(bio_, bytes.data(), static_cast<int>(size)))));
    return bytes;
}

std::string TestConnection::line() {
    char text[8192];
    const int size = BIO_gets(bio_, text, sizeof text);
    return size < 2 ? "" : std::string(text, static_cast<std::size_t>(size) - 2);
}

std::optional<TestRequest> TestConnection::request() {
    TestRequest request;
    std::istringstream(line()) >> request.method >> request.target;
    for (std::string text = line(); !text.empty(); text = line()) {
        const std::size_t colon = text.find(':');
        request.headers[lowercased(text.substr(0, colon))] = text.substr(std::min(colon + 2, text.size()));
    }
    const auto length = request.headers.find("content-length");
    const std::size_t size = length == request.headers.end() ? 0 : std::stoul(length->second);
    for (std::string part = "-"; request.body.size() < size && !part.empty(); request.body += part) {
        part = receive(size - request.body.size());
    }
    return request.target.empty() || request.body.size() < size ? std::nullopt : std::optional{request};
}

void TestConnection::waitForClose() {
    while (!receive(1).empty()) continue;
}

bool TestConnection::send(std::string_view bytes) {
    return BIO_write(bio_, bytes.data(), static_cast<int>(bytes.size())) > 0 && BIO_flush(bio_) == 1;
}

bool TestConnection::answer(int status, std::string_view body, const std::string& headers) {
    return send("HTTP/1.1 " + std::to_string(status) + " Some reason\r\n" + headers +
                "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body));
}

void TestConnection::reset() {
    const linger none{1, 0};
    setsockopt(static_cast<int>(BIO_get_fd(bio_, nullptr)), SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

TestServer::TestServer(Handler handler, TestServerOptions options)
    : handler_(std::move(handler)), options_(std::move(options)), listener_(BIO_new_accept("127.0.0.1:0")) {
    if (options_.tls) useTls();
    if (BIO_do_accept(listener_.get()) != 1) throw std::runtime_error("cannot listen");
    port_ = BIO_get_accept_port(listener_.get());
    acceptor_ = std::thread([this] { accept(); });
}

TestServer::~TestServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        shutdown(static_cast<int>(BIO_get_fd(listener_.get(), nullptr)), SHUT_RDWR);
        for (const int fd : open_) shutdown(fd, SHUT_RDWR);
    }
    acceptor_.join();
    for (auto& thread : threads_) thread.join();
}

std::string TestServer::url(const std::string& path, const std::string& host) const {
    return (context_ ? "https://" : "http://") + host + ":" + port_ + path;
}

std::vector<TestRequest> TestServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

void TestServer::useTls() {
    const auto made = sandbox::makeServerCertificate("");
    if (!made) throw std::runtime_error(made.reason());
    folder_.file("ca.pem", made->caCertificate);
    const std::string certificate = folder_.file("certificate.pem", made->certificate);
    const std::string key = folder_.file("key.pem", made->privateKey);
    context_.reset(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate_file(context_.get(), certificate.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_use_PrivateKey_file(context_.get(), key.c_str(), SSL_FILETYPE_PEM);
    const auto choose = [](SSL*, const unsigned char** out, unsigned char* outSize, const unsigned char* in,
                           unsigned int inSize, void* wanted) {
        const auto& name = *static_cast<const std::string*>(wanted);
        for (unsigned int i = 0; i < inSize; i += *outSize + 1u) {
            *out = in + i + 1;
            *outSize = in[i];
            if (std::string_view(reinterpret_cast<const char*>(*out), *outSize) == name)
                return SSL_TLSEXT_ERR_OK;
        }
        return SSL_TLSEXT_ERR_NOACK;
    };
    SSL_CTX_set_alpn_select_cb(context_.get(), choose, const_cast<std::string*>(&options_.protocol));
    if (!options_.oldTlsOnly) return;
    SSL_CTX_set_security_level(context_.get(), 0);
    SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context_.get(), TLS1_1_VERSION);
}

void TestServer::accept() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // SIGPIPE, in our threads alone: others must not need it
    while (BIO_do_accept(listener_.get()) == 1) {
        BIO* socket = BIO_pop(listener_.get());
        const int fd = static_cast<int>(BIO_get_fd(socket, nullptr));
        BIO_set_tcp_ndelay(fd, 1);
        const std::lock_guard lock(mutex_);
        ++connections_;
        open_.push_back(fd);
        if (stopping_) shutdown(fd, SHUT_RDWR);
        threads_.emplace_back([this, socket, fd] { serve(socket, fd); });
    }
}

void TestServer::serve(BIO* socket, int fd) {
    if (context_) socket = BIO_push(BIO_new_ssl(context_.get(), 0), socket);
    std::unique_ptr<BIO, Release> bio(BIO_push(BIO_new(BIO_f_buffer()), socket));
    TestConnection connection(bio.get());
    for (auto request = connection.request(); request; request = connection.request()) {
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(*request);
        }
        if (!handler_(connection, *request)) break;
    }
    const std::lock_guard lock(mutex_);
    std::erase(open_, fd);
    bio.reset();
    ++closed_;
}

}  // namespace korvane::testing
