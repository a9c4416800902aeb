// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <openssl/ssl.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace korvane::bench {

/// The views live as long as the handler's call.
struct LoopbackRequest {
    std::string_view path;
    std::string_view authorization;  ///< value of the header; empty: none
    std::string_view body;
};

/// A whole HTTP/1.1 answer with that body, as it goes over the wire.
std::string answerBytes(int status, std::string_view body);

/// The least server that a client can measure itself against: HTTP/1.1, connections kept alive, one thread a
/// connection, a free port of 127.0.0.1, answers that are there before the question. Without it the figures
/// would be those of a server. Failing to start ends the process.
class LoopbackServer {
  public:
    /// Gives the answer to a request, as a text that outlives the server. Any thread.
    using Handler = std::function<const std::string&(const LoopbackRequest&)>;

    LoopbackServer(Handler handler, bool tls);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    int port() const { return port_; }
    std::string url() const { return urlAt(port_); }
    /// The same service behind another port, that of a proxy.
    std::string urlAt(int port) const;
    /// PEM file with the authority of the server's certificate; "" without TLS.
    std::string caFile() const { return caFile_; }

  private:
    struct Release {
        void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
        void operator()(SSL* tls) const { SSL_free(tls); }
    };

    void useTls();
    void accept();
    void serve(int socket);
    void answerAll(int socket, SSL* tls);

    const Handler handler_;
    std::unique_ptr<SSL_CTX, Release> context_;
    std::filesystem::path folder_;
    std::string caFile_;
    int listener_ = -1;
    int port_ = 0;

    std::mutex mutex_;  // for the next three
    bool stopping_ = false;
    std::vector<int> open_;
    std::vector<std::thread> threads_;

    std::thread acceptor_;
};

/// Opens a listening socket on a free port of 127.0.0.1; ends the process where it cannot.
int listenOnLoopback(int& port);

}  // namespace korvane::bench
