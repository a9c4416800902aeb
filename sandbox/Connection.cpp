// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Connection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>

namespace korvane::sandbox {
namespace {

constexpr timeval ioTimeout{10, 0};

template <class Value>
void setOption(int socket, int level, int option, const Value& value) {
    ::setsockopt(socket, level, option, &value, sizeof value);
}

}  // namespace

Connection::Connection(int socket, SSL_CTX* tls) : socket_(socket), tls_(tls ? SSL_new(tls) : nullptr) {
    tlsFailed_ = tls && !tls_;
    // Answers are small: waiting to fill a segment would cost each of them a round of delayed
    // acknowledgement.
    setOption(socket_, IPPROTO_TCP, TCP_NODELAY, int{1});
    setOption(socket_, SOL_SOCKET, SO_RCVTIMEO, ioTimeout);
    setOption(socket_, SOL_SOCKET, SO_SNDTIMEO, ioTimeout);
}

Connection::~Connection() {
    if (end_ == End::reset) {
        setOption(socket_, SOL_SOCKET, SO_LINGER, linger{1, 0});
    } else if (tls_ && !tlsFailed_) {
        SSL_shutdown(tls_.get());
    }
    ::close(socket_);
    ERR_clear_error();
}

bool Connection::open() {
    if (tlsFailed_) return false;
    if (!tls_) return true;
    tlsFailed_ = SSL_set_fd(tls_.get(), socket_) != 1 || SSL_accept(tls_.get()) != 1;
    return !tlsFailed_;
}

bool Connection::waitForRequest(std::chrono::milliseconds time) {
    if (readFrom_ < readTo_ || (tls_ && SSL_pending(tls_.get()) > 0)) return true;
    pollfd waiting{socket_, POLLIN, 0};
    return ::poll(&waiting, 1, static_cast<int>(time.count())) == 1;
}

bool Connection::waitForHangUp(std::optional<std::chrono::milliseconds> time) {
    pollfd waiting{socket_, POLLIN | POLLRDHUP, 0};
    return ::poll(&waiting, 1, time ? static_cast<int>(time->count()) : -1) != 0;
}

void Connection::shutDown() {
    ::shutdown(socket_, SHUT_RDWR);
}

ssize_t Connection::receive(char* data, std::size_t size) {
    if (!tls_) return ::recv(socket_, data, size, 0);
    const int count = SSL_read(tls_.get(), data, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
    // After a fatal error the library forbids a close notification.
    if (count <= 0) tlsFailed_ = SSL_get_error(tls_.get(), count) != SSL_ERROR_ZERO_RETURN;
    return count;
}

ssize_t Connection::read(char* data, std::size_t size) {
    if (readFrom_ == readTo_) {
        const ssize_t count = receive(buffer_.data(), buffer_.size());
        if (count <= 0) return count;
        readFrom_ = 0;
        readTo_ = static_cast<std::size_t>(count);
    }
    const std::size_t count = std::min(size, readTo_ - readFrom_);
    std::memcpy(data, buffer_.data() + readFrom_, count);
    readFrom_ += count;
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* data, std::size_t size) {
    if (isOver()) return -1;
    if (!tls_) return ::send(socket_, data, size, MSG_NOSIGNAL);
    if (size == 0) return 0;  // SSL_write takes no empty text
    const int count = SSL_write(tls_.get(), data, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
    if (count <= 0) tlsFailed_ = true;
    return count;
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = "127.0.0.1";  // nobody asks
    port = 0;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    get_remote_ip_and_port(ip, port);
}

}  // namespace korvane::sandbox
