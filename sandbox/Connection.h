// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <httplib.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>

namespace korvane::sandbox {

/// An accepted connection, in clear or over TLS. Owns the socket. One thread; `shutDown` may come from any.
///
/// The HTTP library has streams of its own. This one can do what those cannot: be woken while it waits for
/// the next request, and be reset in the middle of an answer.
class Connection : public httplib::Stream {
  public:
    Connection(int socket, SSL_CTX* tls);
    ~Connection() override;

    /// The TLS handshake; true at once in clear.
    bool open();

    /// True when the client sent something within `time`; false when it did not, or hung up.
    bool waitForRequest(std::chrono::milliseconds time);

    /// Waits until the client closes the connection or `shutDown` is called, for
    /// ever without a time. False when the time went by. Bytes that the client
    /// sends count as its end: it has its answer to wait for.
    bool waitForHangUp(std::optional<std::chrono::milliseconds> time);

    /// From now on nothing is sent: the client sees the connection reset, or
    /// closed in good order.
    void drop() { end_ = End::reset; }
    void finish() { end_ = End::closed; }
    bool isOver() const { return end_ != End::none; }

    /// Ends what waits on the connection; any thread, while the connection lives.
    void shutDown();

    bool is_readable() const override { return true; }
    bool is_writable() const override { return !isOver(); }
    ssize_t read(char* data, std::size_t size) override;
    ssize_t write(const char* data, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_; }

  private:
    struct TlsDeleter {
        void operator()(SSL* tls) const { SSL_free(tls); }
    };

    ssize_t receive(char* data, std::size_t size);

    int socket_;
    std::unique_ptr<SSL, TlsDeleter> tls_;
    bool tlsFailed_ = false;
    enum class End { none, closed, reset } end_ = End::none;
    std::array<char, 16384> buffer_;  // the library reads headers byte by byte
    std::size_t readFrom_ = 0;
    std::size_t readTo_ = 0;
};

}  // namespace korvane::sandbox
