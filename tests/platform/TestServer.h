// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

struct TestRequest {
    std::string method;
    std::string target;
    std::map<std::string, std::string> headers;  ///< names in lower case
    std::string body;
};

/// A connection that a handler misbehaves on. Used on the connection's own thread.
class TestConnection {
  public:
    explicit TestConnection(BIO* bio) : bio_(bio) {}

    /// The next request; none when the other side is gone.
    std::optional<TestRequest> request();
    /// Up to `size` bytes; none when the other side is gone.
    std::string receive(std::size_t size);
    /// Waits until the other side closes, or the server stops.
    void waitForClose();

    /// False when the other side is gone.
    bool send(std::string_view bytes);
    /// A whole answer, with a Content-Length.
    bool answer(int status, std::string_view body, const std::string& headers = "");
    /// Has the connection end with a TCP reset.
    void reset();

  private:
    std::string line();

    BIO* const bio_;
};

struct TestServerOptions {
    bool tls = true;            ///< with a certificate for the loopback names, made for the run
    bool oldTlsOnly = false;    ///< at most TLS 1.1
    std::string protocol = "";  ///< taken when it is offered (ALPN)
};

/// An HTTP/1.1 server on a free port of 127.0.0.1, one thread a connection, whose handler has the raw
/// connection in its hands: it can stall, reset, or send anything.
class TestServer {
  public:
    /// Handles one request; false closes the connection, true keeps it for the next request.
    using Handler = std::function<bool(TestConnection&, const TestRequest&)>;

    explicit TestServer(Handler handler, TestServerOptions options = {});
    ~TestServer();
    TestServer(const TestServer&) = delete;

    std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;
    /// PEM file with the authority of the server's certificate.
    std::string caFile() const { return folder_ / "ca.pem"; }

    std::vector<TestRequest> requests() const;
    int connections() const { return connections_; }
    int closed() const { return closed_; }

  private:
    struct Release {
        void operator()(BIO* bio) const { BIO_free_all(bio); }
        void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    };

    void useTls();
    void accept();
    void serve(BIO* socket, int fd);

    const Handler handler_;
    const TestServerOptions options_;
    const TemporaryFolder folder_;
    const std::unique_ptr<BIO, Release> listener_;
    std::unique_ptr<SSL_CTX, Release> context_;
    std::string port_;
    std::atomic<int> connections_ = 0;
    std::atomic<int> closed_ = 0;

    mutable std::mutex mutex_;  // for the next four
    bool stopping_ = false;
    std::vector<int> open_;
    std::vector<std::thread> threads_;
    std::vector<TestRequest> requests_;

    std::thread acceptor_;  // last: it uses all of the above
};

}  // namespace korvane::testing
