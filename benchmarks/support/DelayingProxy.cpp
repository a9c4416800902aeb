// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/support/DelayingProxy.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <vector>

#include "benchmarks/support/Fatal.h"
#include "benchmarks/support/LoopbackServer.h"

namespace korvane::bench {
namespace {

int connectTo(int port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    require(::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0,
            "the proxy's target does not answer");
    return socket;
}

}  // namespace

DelayingProxy::DelayingProxy(int targetPort, std::chrono::nanoseconds roundTrip)
    : targetPort_(targetPort), roundTrip_(roundTrip), listener_(listenOnLoopback(port_)) {
    require(::pipe(stop_) == 0, "no pipe");
    thread_ = std::thread([this] { run(); });
}

DelayingProxy::~DelayingProxy() {
    ::close(stop_[1]);
    thread_.join();
    for (const Direction& direction : directions_) ::close(direction.from);  // each socket is one's `from`
    ::close(stop_[0]);
    ::close(listener_);
}

void DelayingProxy::run() {
    for (;;) {
        std::vector<pollfd> sockets{{stop_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        auto next = Clock::now() + std::chrono::seconds(10);
        for (const Direction& direction : directions_) {
            sockets.push_back({direction.ended ? -1 : direction.from, POLLIN, 0});
            if (!direction.chunks.empty()) next = std::min(next, direction.chunks.front().due);
        }
        const auto wait = std::max(next - Clock::now(), Clock::duration::zero());
        const timespec timeout{std::chrono::duration_cast<std::chrono::seconds>(wait).count(),
                               (wait % std::chrono::seconds(1)).count()};
        ::ppoll(sockets.data(), sockets.size(), &timeout, nullptr);
        if (sockets[0].revents) return;
        auto socket = sockets.begin() + 2;
        for (Direction& direction : directions_) {
            if ((socket++)->revents) receive(direction);
            sendDue(direction, Clock::now());
        }
        if (sockets[1].revents) accept();
    }
}

void DelayingProxy::accept() {
    const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) return;
    const int server = connectTo(targetPort_);
    const int on = 1;
    for (const int socket : {client, server}) ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const auto halfWay = roundTrip_ / 2;
    directions_.push_back({client, server, halfWay, Clock::now() + roundTrip_ + halfWay});
    directions_.push_back({server, client, halfWay});
}

void DelayingProxy::receive(Direction& direction) {
    std::array<char, 65536> buffer;
    const auto count = ::recv(direction.from, buffer.data(), buffer.size(), MSG_DONTWAIT);
    direction.ended = count <= 0;
    direction.chunks.push_back({std::max(Clock::now() + direction.delay, direction.earliest),
                                {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))}});
}

void DelayingProxy::sendDue(Direction& direction, Clock::time_point now) {
    for (; !direction.chunks.empty() && direction.chunks.front().due <= now; direction.chunks.pop_front()) {
        const std::string& bytes = direction.chunks.front().bytes;
        if (bytes.empty()) ::shutdown(direction.to, SHUT_WR);
        for (std::size_t sent = 0; sent < bytes.size();) {
            const auto count = ::send(direction.to, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) break;
            sent += static_cast<std::size_t>(count);
        }
    }
}

}  // namespace korvane::bench
