// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "sandbox/Certificates.h"
#include "sandbox/Delivery.h"

namespace korvane::sandbox {

struct HttpRequest {
    std::string method;
    std::string path;                          ///< without the query
    std::map<std::string, std::string> query;  ///< the first value of each name
    std::string contentType;
    std::string accept;
    std::string authorization;
    std::string host;    ///< that it is for, with its port; "" when it names none
    std::string origin;  ///< of the page that sent it; "" when no browser did
    std::string token;   ///< that the inspection page sends
    std::string body;
};

struct HttpAnswer {
    int status = 200;
    std::string body;
    Delivery delivery{};
    std::string type = "application/json";
    std::map<std::string, std::string> headers{};  ///< beside those that every answer has
};

/// HTTP/1.1, in clear or over TLS 1.2 and later. Each connection has a thread
/// of the server's pool, which is kept alive between requests. Makes the
/// process ignore SIGPIPE.
class HttpServer {
  public:
    /// Called on a thread of the pool, on several at once. An exception becomes status 500 with its text.
    using Handler = std::function<HttpAnswer(const HttpRequest&)>;

    /// Told of a request that the handler did not answer: too long, malformed, of another method than GET,
    /// POST and DELETE, or ended by an exception. On the same threads.
    using Refused = std::function<void(const std::string& method, const std::string& path, int status,
                                       const std::string& reason)>;

    HttpServer(Handler handler, Refused refused);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Binds to an address of this machine, or its name, and serves; port 0 takes
    /// a free one. Without a certificate the server speaks plain HTTP. Answers
    /// the reason of a failure, or "". Once only.
    std::string start(const std::string& address, int port, const ServerCertificate* certificate);

    int port() const { return port_; }

    /// Closes every connection, waits for the handlers that run, and ends the threads. No handler starts
    /// after it.
    void stop();

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
    int port_ = 0;
};

}  // namespace korvane::sandbox
