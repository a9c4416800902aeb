// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/support/LoopbackServer.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <stdlib.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <fstream>

#include "benchmarks/support/Fatal.h"
#include "sandbox/Certificates.h"

namespace korvane::bench {
namespace {

/// The value of the header in `head`; empty without one.
std::string_view header(std::string_view head, std::string_view name) {
    for (std::size_t at = head.find("\r\n"); at != head.npos; at = head.find("\r\n", at)) {
        at += 2;
        if (head.size() - at <= name.size() || head[at + name.size()] != ':') continue;
        if (strncasecmp(head.data() + at, name.data(), name.size()) != 0) continue;
        std::string_view value = head.substr(at + name.size() + 1);
        value = value.substr(0, value.find("\r\n"));
        value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
        return value;
    }
    return {};
}

std::size_t bodySize(std::string_view head) {
    const std::string_view value = header(head, "Content-Length");
    std::size_t size = 0;
    std::from_chars(value.data(), value.data() + value.size(), size);
    return size;
}

}  // namespace

std::string answerBytes(int status, std::string_view body) {
    return "HTTP/1.1 " + std::to_string(status) + " Some reason\r\nContent-Type: application/json\r\n" +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

int listenOnLoopback(int& port) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    require(::bind(listener, generic, size) == 0 && ::listen(listener, SOMAXCONN) == 0 &&
                ::getsockname(listener, generic, &size) == 0,
            "cannot listen on the loopback interface");
    port = ntohs(address.sin_port);
    return listener;
}

LoopbackServer::LoopbackServer(Handler handler, bool tls) : handler_(std::move(handler)) {
    if (tls) useTls();
    listener_ = listenOnLoopback(port_);
    acceptor_ = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        for (const int socket : open_) ::shutdown(socket, SHUT_RDWR);
    }
    acceptor_.join();
    for (auto& thread : threads_) thread.join();
    ::close(listener_);
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

std::string LoopbackServer::urlAt(int port) const {
    return (context_ ? "https://localhost:" : "http://localhost:") + std::to_string(port);
}

void LoopbackServer::useTls() {
    const auto made = sandbox::makeServerCertificate("");
    require(static_cast<bool>(made), "no server certificate");
    std::string pattern = (std::filesystem::temp_directory_path() / "korvane-bench-XXXXXX").string();
    require(::mkdtemp(pattern.data()) != nullptr, "no temporary directory");
    folder_ = pattern;
    const auto file = [this](const char* name, const std::string& text) {
        std::ofstream(folder_ / name) << text;
        return (folder_ / name).string();
    };
    caFile_ = file("ca.pem", made->caCertificate);
    context_.reset(SSL_CTX_new(TLS_server_method()));
    const std::string certificate = file("certificate.pem", made->certificate);
    const std::string key = file("key.pem", made->privateKey);
    require(SSL_CTX_use_certificate_file(context_.get(), certificate.c_str(), SSL_FILETYPE_PEM) == 1 &&
                SSL_CTX_use_PrivateKey_file(context_.get(), key.c_str(), SSL_FILETYPE_PEM) == 1,
            "no server certificate");
}

void LoopbackServer::accept() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // and with it SIGPIPE of clients that have gone
    for (;;) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(mutex_);
        if (socket < 0) return;
        open_.push_back(socket);
        if (stopping_) ::shutdown(socket, SHUT_RDWR);
        threads_.emplace_back([this, socket] { serve(socket); });
    }
}

void LoopbackServer::serve(int socket) {
    const int on = 1;  // an answer is one small segment: it must not wait for the acknowledgement of another
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    {
        std::unique_ptr<SSL, Release> tls(context_ ? SSL_new(context_.get()) : nullptr);
        if (!tls || (SSL_set_fd(tls.get(), socket) == 1 && SSL_accept(tls.get()) == 1))
            answerAll(socket, tls.get());
    }
    const std::lock_guard lock(mutex_);
    std::erase(open_, socket);
    ::close(socket);
}

void LoopbackServer::answerAll(int socket, SSL* tls) {
    std::string received;
    std::string buffer(16384, '\0');
    for (;;) {
        const std::size_t end = received.find("\r\n\r\n");
        const std::string_view head(received.data(), end == received.npos ? 0 : end + 2);
        const std::size_t size = head.empty() ? 0 : end + 4 + bodySize(head);
        if (head.empty() || received.size() < size) {
            const auto count = tls ? SSL_read(tls, buffer.data(), static_cast<int>(buffer.size()))
                                   : ::recv(socket, buffer.data(), buffer.size(), 0);
            if (count <= 0) return;
            received.append(buffer.data(), static_cast<std::size_t>(count));
            continue;
        }
        const std::size_t path = head.find(' ') + 1;
        const std::string& answer =
            handler_({head.substr(path, head.find(' ', path) - path), header(head, "Authorization"),
                      std::string_view(received).substr(end + 4, size - end - 4)});
        for (std::size_t sent = 0; sent < answer.size();) {
            const auto count =
                tls ? SSL_write(tls, answer.data() + sent, static_cast<int>(answer.size() - sent))
                    : ::send(socket, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) return;
            sent += static_cast<std::size_t>(count);
        }
        received.erase(0, size);
    }
}

}  // namespace korvane::bench
