// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "sandbox/Connection.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

using sandbox::Connection;

struct TestServerOptions {
    bool tls = true;          ///< with a certificate for the loopback names, made for the run
    bool oldTlsOnly = false;  ///< at most TLS 1.1
    std::function<void(Connection&)> raw = nullptr;  ///< has all of a connection; "h2" is taken (ALPN)
};

/// An HTTP/1.1 server on a free port of 127.0.0.1, one thread a connection, whose handler has the raw
/// connection in its hands: it can stall, reset, or send anything.
class TestServer : private httplib::Server {
  public:
    /// The response goes nowhere when the handler shut the connection down or dropped it.
    using Handler = std::function<void(Connection&, const httplib::Request&, httplib::Response&)>;

    explicit TestServer(Handler handler, TestServerOptions options = {});
    ~TestServer() override;

    std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;
    /// PEM file with the authority of the server's certificate.
    std::string caFile() const { return folder_ / "ca.pem"; }

    std::vector<httplib::Request> requests() const;
    int connections() const { return connections_; }
    int closed() const { return closed_; }

    /// False when the other side is gone.
    static bool send(Connection& connection, const std::string& bytes) {
        return connection.httplib::Stream::write(bytes) > 0;
    }
    /// What comes up to these bytes and with them, or until the other side is gone.
    static std::string receiveUntil(Connection& connection, const std::string& end);
    /// Waits until the other side closes, or the server stops.
    static void waitForClose(Connection& connection);

  private:
    void useTls();
    bool process_and_close_socket(socket_t socket) override;

    const TestServerOptions options_;
    const TemporaryFolder folder_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> tls_{nullptr, SSL_CTX_free};
    int port_ = 0;
    std::atomic<int> connections_ = 0;
    std::atomic<int> closed_ = 0;

    mutable std::mutex mutex_;  // for the next three
    bool stopping_ = false;
    std::set<Connection*> open_;
    std::vector<httplib::Request> requests_;

    std::thread acceptor_;  // last: it uses all of the above
};

}  // namespace korvane::testing
