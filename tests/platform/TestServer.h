// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "sandbox/Certificates.h"
#include "sandbox/Connection.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

using sandbox::Connection;

/// A server on a free port of 127.0.0.1. What a connection gets is the test's affair, on a thread of its own:
/// it can answer, stall, reset, or send anything.
class TestServer : private httplib::Server {
  public:
    using Serve = std::function<void(TestServer&, Connection&)>;
    /// Over TLS with a certificate for the loopback names, made for the run; `old` ends at TLS 1.1.
    enum class Speaks { http, https, http2, old };

    explicit TestServer(Serve serve = answerAll, Speaks speaks = Speaks::https) : serve_(std::move(serve)) {
        if (speaks != Speaks::http) useTls(speaks);
        new_task_queue = [] { return new httplib::ThreadPool(32); };
        port_ = bind_to_any_port("127.0.0.1");
        ::listen(svr_sock_, SOMAXCONN);  // the library lets five wait
        acceptor_ = std::thread([this] { listen_after_bind(); });
        while (!is_running()) std::this_thread::yield();  // `stop` would be lost
    }
    ~TestServer() override {
        change([this] {
            for (Connection* const connection : open_) connection->shutDown();
        });
        stop();
        acceptor_.join();
    }

    /// HTTP/1.1: "hello" and the body; "/failure" resets the connection, "/stall" leaves it open.
    static void answerAll(TestServer& server, Connection& connection) {
        for (std::string request; !(request = server.receive(connection)).empty();) {
            const std::string path = request.substr(request.find(' ') + 1);
            if (path.starts_with("/failure")) return connection.drop();
            if (path.starts_with("/stall")) return waitForClose(connection);
            const std::string body = "hello " + request.substr(request.find("\r\n\r\n") + 4);
            send(connection, "HTTP/1.1 202 Yes\r\nSet-Cookie: id=1\r\nContent-Length: " +
                                 std::to_string(body.size()) + "\r\n\r\n" + body);
        }
    }

    std::string url(const std::string& path, const std::string& host = "127.0.0.1") const {
        return (tls_ ? "https://" : "http://") + host + ":" + std::to_string(port_) + path;
    }
    /// PEM file with the authority of the server's certificate.
    std::string caFile() const { return folder_ / "ca.pem"; }

    /// Those that were received here, byte by byte.
    std::vector<std::string> requests() const {
        const std::lock_guard lock(mutex_);
        return requests_;
    }
    int connections() const { return connections_; }
    int closed() const { return closed_; }

    /// The next request; empty when the other side is gone.
    std::string receive(Connection& connection) {
        std::string request = receiveUntil(connection, "\r\n\r\n");
        const std::size_t length = request.find("Content-Length: ");
        for (auto left = length == request.npos ? 0 : std::stoul(request.substr(length + 16)); left > 0;
             --left)
            request += receiveUntil(connection, "");
        const std::lock_guard lock(mutex_);
        return request.empty() ? "" : requests_.emplace_back(std::move(request));
    }
    static void send(Connection& connection, const std::string& bytes) {
        connection.httplib::Stream::write(bytes);
    }
    /// One byte or more, up to these and with them, or until the other side is gone.
    static std::string receiveUntil(Connection& connection, const std::string& end) {
        std::string text;
        for (char byte = 0; connection.read(&byte, 1) == 1;)
            if ((text += byte).ends_with(end)) break;
        return text;
    }
    static void waitForClose(Connection& connection) {
        for (char byte = 0; connection.read(&byte, 1) == 1;) continue;
    }

  private:
    bool process_and_close_socket(socket_t socket) override {
        ++connections_;
        {
            Connection connection(socket, tls_.get());
            change([&] { open_.insert(&connection); });
            if (connection.open()) serve_(*this, connection);
            change([&] { open_.erase(&connection); });
        }
        return ++closed_;
    }
    void change(const auto& what) {
        const std::lock_guard lock(mutex_);
        what();
    }
    void useTls(Speaks speaks) {
        const auto made = sandbox::makeServerCertificate("");
        folder_.file("ca.pem", made->caCertificate);
        const std::string file = folder_.file("server.pem", made->certificate + made->privateKey);
        tls_.reset(SSL_CTX_new(TLS_server_method()));
        SSL_CTX_use_certificate_file(tls_.get(), file.c_str(), SSL_FILETYPE_PEM);
        SSL_CTX_use_PrivateKey_file(tls_.get(), file.c_str(), SSL_FILETYPE_PEM);
        const auto takeHttp2 = [](SSL*, const unsigned char** name, unsigned char* size, auto...) {
            *name = reinterpret_cast<const unsigned char*>("h2");
            *size = 2;
            return SSL_TLSEXT_ERR_OK;
        };
        if (speaks == Speaks::http2) SSL_CTX_set_alpn_select_cb(tls_.get(), takeHttp2, nullptr);
        if (speaks != Speaks::old) return;
        SSL_CTX_set_security_level(tls_.get(), 0);
        SSL_CTX_set_max_proto_version(tls_.get(), TLS1_1_VERSION);
    }

    const Serve serve_;
    const TemporaryFolder folder_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_{nullptr, SSL_CTX_free};
    int port_ = 0;
    std::atomic<int> connections_ = 0, closed_ = 0;
    mutable std::mutex mutex_;  // for the next two
    std::set<Connection*> open_;
    std::vector<std::string> requests_;
    std::thread acceptor_;
};

}  // namespace korvane::testing
