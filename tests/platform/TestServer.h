// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

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
    TestConnection(int fd, SSL* ssl) : fd_(fd), ssl_(ssl) {}

    /// False when the other side is gone.
    bool send(std::string_view bytes);
    /// A whole answer, with a Content-Length.
    bool answer(int status, std::string_view body, std::string_view headers = "");
    /// Has the connection end with a TCP reset.
    void reset();
    /// TLS's close_notify, unless it was reset.
    void sayFarewell();
    /// Waits until the other side closes, or the server stops.
    void waitForClose();
    /// Up to `size` bytes; none when the other side is gone.
    std::string receive(std::size_t size);

  private:
    int fd_;
    SSL* ssl_;
};

struct TestServerOptions {
    bool tls = true;
    /// Subject alternative names of the certificate, which is made for the run.
    std::string names = "IP:127.0.0.1";
    /// At most TLS 1.1.
    bool oldTlsOnly = false;
    /// Taken when it is offered (ALPN).
    std::string protocol = "http/1.1";
    /// Serves whole connections, in place of the handler.
    std::function<void(TestConnection&)> raw = {};
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
    TestServer& operator=(const TestServer&) = delete;

    std::string url(const std::string& path) const;
    /// PEM file with the server's certificate, which is its own authority.
    const std::string& caFile() const { return caFile_; }

    std::vector<TestRequest> requests() const;
    int connections() const { return connections_; }
    int closed() const { return closed_; }

    /// Of the last TLS greeting: the protocols offered (ALPN), comma-separated, and the oldest version
    /// offered.
    std::string offeredProtocols() const;
    int oldestOfferedTls() const { return oldestOfferedTls_; }

  private:
    void makeContext();
    void accept();
    void serve(int fd);
    static int chooseProtocol(SSL*, const unsigned char** out, unsigned char* outSize,
                              const unsigned char* in, unsigned int inSize, void* server);
    static int greet(SSL* ssl, int* alert, void* server);

    const Handler handler_;
    const TestServerOptions options_;
    std::shared_ptr<SSL_CTX> context_;
    std::string caFile_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<int> connections_ = 0;
    std::atomic<int> closed_ = 0;
    std::atomic<int> oldestOfferedTls_ = 0;

    mutable std::mutex mutex_;  // for the next five
    bool stopping_ = false;
    std::vector<int> open_;
    std::vector<std::thread> threads_;
    std::vector<TestRequest> requests_;
    std::string offeredProtocols_;

    std::thread acceptor_;  // last: it uses all of the above
};

}  // namespace korvane::testing
