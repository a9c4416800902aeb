// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace korvane::sandbox {

/// What goes wrong on the way back from a service. Bytes are counted as they travel: over TLS, those of the
/// handshake and of enciphered records.
struct WireFault {
    enum class Kind {
        none,    ///< all bytes go through
        refuse,  ///< connections are refused, those that are open are closed
        reset,   ///< the connection is reset after `bytes` bytes
        close,   ///< it is closed in good order there
        stall,   ///< nothing more comes from there on, and the connection stays open
        drip,    ///< `bytes` bytes at a time, with a `pause` before each
        reply,   ///< `text` comes in the place of what the service sends, then the connection is closed
    };
    Kind kind = Kind::none;
    std::size_t bytes = 0;
    std::chrono::milliseconds pause{0};
    std::string text{};
    /// This many connections are let through first; then this many meet the fault, 0: all.
    std::size_t skip = 0;
    std::size_t times = 0;
};

/// Stands between clients and a TCP service, forwards bytes, and makes a fault. What the bytes say it does
/// not know, so it needs neither key nor certificate; a client that checks the service's certificate must
/// reach it under a name that is in there. Any thread may call any method; nothing throws.
class Wire {
  public:
    /// @param log  one line for each connection that ended; called on the wire's threads, on several at once
    explicit Wire(std::function<void(const std::string& line)> log = nullptr);
    /// Closes all connections.
    ~Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    /// Listens on an address of this machine, port 0 takes a free one, and forwards to `host` and `port`,
    /// which are looked up for each connection. Answers the reason of a failure, or "". Once only.
    [[nodiscard]] std::string start(const std::string& host, int port,
                                    const std::string& listenAddress = "127.0.0.1", int listenPort = 0);

    /// In force when it returns, for open connections too: their bytes and numbers are counted from here.
    void set(WireFault fault);

    int port() const;               ///< that is listened on
    std::size_t made() const;       ///< faults made since `set`, refusals left out
    std::size_t forwarded() const;  ///< bytes that clients were sent since `set`
    std::size_t accepted() const;   ///< connections since the start

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace korvane::sandbox
