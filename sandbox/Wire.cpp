// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Wire.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <list>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace korvane::sandbox {
namespace {

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

Addresses lookUp(const std::string& host, int port, std::string& reason) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int failure = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (failure != 0) reason = host + ": " + gai_strerror(failure);
    return {failure == 0 ? found : nullptr, &freeaddrinfo};
}

int connectTo(const std::string& host, int port, std::string& reason) {
    const Addresses addresses = lookUp(host, port, reason);
    for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
        const int socket = ::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const timeval patience{10, 0};
        ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);  // holds for connect, too
        if (::connect(socket, address->ai_addr, address->ai_addrlen) == 0) return socket;
        reason = host + ":" + std::to_string(port) + ": " + std::strerror(errno);
        ::close(socket);
    }
    return -1;
}

/// Bytes go on as they come: waiting to fill a segment would cost a round of delayed acknowledgement.
void sendAtOnce(int socket) {
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// One client's connection and that to the service; the thread of its own works on it.
struct Link {
    int client = -1;
    int service = -1;
    std::size_t number = 0;   // since the start
    unsigned seen = 0;        // the fault that `turn` and `counted` are of
    std::size_t turn = 0;     // among the connections that met it
    std::size_t counted = 0;  // bytes of the service since then
    std::size_t sent = 0, received = 0;
    std::string end = "closed";
    bool over = false;
    std::thread thread{};
};

}  // namespace

class Wire::Impl {
  public:
    explicit Impl(std::function<void(const std::string&)> log) : log_(std::move(log)) {}
    ~Impl();

    std::string start(const std::string& host, int port, const std::string& address, int listenPort);
    void set(WireFault fault);

    mutable std::mutex mutex;  // for all that follows but the acceptor
    std::size_t made = 0, forwarded = 0, accepted = 0;
    int boundPort = 0;

  private:
    using Kind = WireFault::Kind;

    std::string listenAgain(bool listening);
    void acceptClients(bool listening);
    void serve(Link& link);
    bool answer(Link& link, std::string_view bytes);
    bool pass(Link& link, std::string_view bytes);
    bool cut(Link& link, std::string_view bytes, const WireFault& fault);
    bool drip(Link& link, std::string_view bytes, const WireFault& fault);
    std::shared_ptr<const WireFault> faultFor(Link& link);
    void count(bool fault, std::size_t bytes);
    void endLinks();

    const std::function<void(const std::string&)> log_;
    std::string host_, address_;
    int port_ = 0;
    const int wakeUp_ = eventfd(0, EFD_CLOEXEC);
    int listener_ = -1;
    std::shared_ptr<const WireFault> fault_ = std::make_shared<WireFault>();
    unsigned generation_ = 0, applied_ = 0;
    std::condition_variable appliedNow_;
    std::size_t turns_ = 0;
    bool stopping_ = false;
    std::list<Link> links_;
    std::thread acceptor_;
};

Wire::Impl::~Impl() {
    {
        const std::lock_guard lock(mutex);
        stopping_ = true;
        endLinks();
    }
    eventfd_write(wakeUp_, 1);
    if (acceptor_.joinable()) acceptor_.join();
    for (Link& link : links_) link.thread.join();
    ::close(listener_);
    ::close(wakeUp_);
}

std::string Wire::Impl::start(const std::string& host, int port, const std::string& address, int listenPort) {
    host_ = host;
    port_ = port;
    address_ = address;
    boundPort = listenPort;
    if (std::string reason; !lookUp(host, port, reason)) return reason;
    if (std::string reason = listenAgain(fault_->kind != Kind::refuse); !reason.empty()) return reason;
    acceptor_ = std::thread(&Impl::acceptClients, this, fault_->kind != Kind::refuse);
    return {};
}

/// Takes the port, and the connections to it or not: a port that is bound alone refuses them, and stays ours.
std::string Wire::Impl::listenAgain(bool listening) {
    std::string reason;
    const Addresses address = lookUp(address_, boundPort, reason);
    if (!address) return reason;
    ::close(std::exchange(listener_, -1));
    listener_ = ::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(listener_, address->ai_addr, address->ai_addrlen) != 0 ||
        (listening && ::listen(listener_, SOMAXCONN) != 0)) {
        return "cannot listen on " + address_ + ":" + std::to_string(boundPort) + ": " + std::strerror(errno);
    }
    std::array<char, 16> service{};
    sockaddr_storage bound{};
    socklen_t size = sizeof bound;
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&bound), &size);
    ::getnameinfo(reinterpret_cast<sockaddr*>(&bound), size, nullptr, 0, service.data(), service.size(),
                  NI_NUMERICSERV);
    boundPort = std::atoi(service.data());
    return {};
}

void Wire::Impl::set(WireFault fault) {
    std::unique_lock lock(mutex);
    if (fault.kind == Kind::refuse) endLinks();
    fault_ = std::make_shared<WireFault>(std::move(fault));
    const unsigned wanted = ++generation_;
    turns_ = made = forwarded = 0;
    if (!acceptor_.joinable()) return;
    eventfd_write(wakeUp_, 1);
    appliedNow_.wait(lock, [&] { return applied_ == wanted; });
}

void Wire::Impl::endLinks() {
    for (const Link& link : links_) {
        if (link.over) continue;
        ::shutdown(link.client, SHUT_RDWR);
        ::shutdown(link.service, SHUT_RDWR);
    }
}

void Wire::Impl::acceptClients(bool listening) {
    while (true) {
        std::array<pollfd, 2> ready{{{wakeUp_, POLLIN, 0}, {listening ? listener_ : -1, POLLIN, 0}}};
        ::poll(ready.data(), ready.size(), -1);
        const std::lock_guard lock(mutex);
        if (ready[0].revents != 0) {
            eventfd_t ignored = 0;
            eventfd_read(wakeUp_, &ignored);
            if (stopping_) return;
            const bool wanted = fault_->kind != Kind::refuse;
            if (wanted != std::exchange(listening, wanted)) listenAgain(wanted);
            applied_ = generation_;
            appliedNow_.notify_all();
        } else if (const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); client >= 0) {
            links_.remove_if([](Link& link) {
                if (link.over) link.thread.join();
                return link.over;
            });
            Link& link = links_.emplace_back();
            link.client = client;
            link.number = ++accepted;
            link.thread = std::thread([this, &link] { serve(link); });
        }
    }
}

void Wire::Impl::serve(Link& link) {
    std::string reason;
    const int service = connectTo(host_, port_, reason);
    {
        const std::lock_guard lock(mutex);
        link.service = service;
        if (stopping_) ::shutdown(link.client, SHUT_RDWR);
    }
    sendAtOnce(link.client);
    sendAtOnce(service);
    if (service < 0) link.end = "no service: " + reason;
    std::array<char, 65536> buffer;
    for (bool going = service >= 0; going;) {
        std::array<pollfd, 2> ready{{{link.client, POLLIN, 0}, {service, POLLIN, 0}}};
        ::poll(ready.data(), ready.size(), -1);
        for (const pollfd& end : ready) {
            if (!going || end.revents == 0) continue;
            const ssize_t size = ::recv(end.fd, buffer.data(), buffer.size(), 0);
            const std::string_view bytes(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
            if (size < 0 && end.fd == service) link.end = "reset";  // what the service did, the client sees
            if (end.fd == link.client) link.sent += bytes.size();
            going = size > 0 && (end.fd == service ? answer(link, bytes) : sendAll(service, bytes));
        }
    }
    const linger now{1, 0};
    if (link.end != "closed") ::setsockopt(link.client, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    if (log_) {
        log_(std::to_string(link.number) + ": " + std::to_string(link.sent) + " bytes to the service, " +
             std::to_string(link.received) + " back, " + link.end);
    }
    const std::lock_guard lock(mutex);
    ::close(link.client);
    ::close(link.service);
    link.over = true;
}

/// The fault that the connection meets now; its bytes are counted anew when that is another one than before.
std::shared_ptr<const WireFault> Wire::Impl::faultFor(Link& link) {
    const std::lock_guard lock(mutex);
    if (std::exchange(link.seen, generation_) != generation_ || link.turn == 0) {
        link.turn = ++turns_;
        link.counted = 0;
    }
    const std::size_t turn = link.turn;
    const bool meets = turn > fault_->skip && (fault_->times == 0 || turn <= fault_->skip + fault_->times);
    return meets ? fault_ : std::make_shared<const WireFault>();
}

void Wire::Impl::count(bool fault, std::size_t bytes) {
    const std::lock_guard lock(mutex);
    made += fault ? 1 : 0;
    forwarded += bytes;
}

bool Wire::Impl::pass(Link& link, std::string_view bytes) {
    count(false, bytes.size());
    link.counted += bytes.size();
    link.received += bytes.size();
    return sendAll(link.client, bytes);
}

/// What came from the service; false when the connection is over.
bool Wire::Impl::answer(Link& link, std::string_view bytes) {
    const auto fault = faultFor(link);
    switch (fault->kind) {
        case Kind::none:
        case Kind::refuse:
            return pass(link, bytes);
        case Kind::drip:
            return drip(link, bytes, *fault);
        case Kind::reply:
            count(true, 0);
            pass(link, fault->text);
            return false;
        default:
            return cut(link, bytes, *fault);
    }
}

bool Wire::Impl::cut(Link& link, std::string_view bytes, const WireFault& fault) {
    const std::size_t left = fault.bytes - std::min(fault.bytes, link.counted);
    if (bytes.size() < left) return pass(link, bytes);
    count(true, 0);
    pass(link, bytes.substr(0, left));
    if (fault.kind == Kind::reset) link.end = "reset";
    if (fault.kind != Kind::stall) return false;
    std::array<char, 4096> unheard;
    while (::recv(link.client, unheard.data(), unheard.size(), 0) > 0) continue;
    return false;
}

bool Wire::Impl::drip(Link& link, std::string_view bytes, const WireFault& fault) {
    count(true, 0);
    while (!bytes.empty()) {
        pollfd client{link.client, POLLRDHUP, 0};
        if (::poll(&client, 1, static_cast<int>(fault.pause.count())) != 0) return false;
        if (!pass(link, bytes.substr(0, fault.bytes))) return false;
        bytes.remove_prefix(std::min(bytes.size(), fault.bytes));
    }
    return true;
}

Wire::Wire(std::function<void(const std::string&)> log) : impl_(std::make_unique<Impl>(std::move(log))) {}

Wire::~Wire() = default;

std::string Wire::start(const std::string& host, int port, const std::string& listenAddress, int listenPort) {
    return impl_->start(host, port, listenAddress, listenPort);
}

void Wire::set(WireFault fault) {
    impl_->set(std::move(fault));
}

int Wire::port() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->boundPort;
}

std::size_t Wire::made() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->made;
}

std::size_t Wire::forwarded() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->forwarded;
}

std::size_t Wire::accepted() const {
    const std::lock_guard lock(impl_->mutex);
    return impl_->accepted;
}

}  // namespace korvane::sandbox
