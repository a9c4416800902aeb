// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/TestServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/tcp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "base/Text.h"

namespace korvane::testing {
namespace {

/// A self-signed certificate for `names`, and its key.
std::pair<std::shared_ptr<X509>, std::shared_ptr<EVP_PKEY>> makeCertificate(const std::string& names) {
    const std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::shared_ptr<X509> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("test server"), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, names.c_str());
    X509_add_ext(certificate.get(), extension, -1);
    X509_EXTENSION_free(extension);
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    return {certificate, key};
}

std::string lineOf(std::string& text) {
    const std::size_t end = text.find("\r\n");
    std::string line = text.substr(0, end);
    text.erase(0, end + 2);
    return line;
}

/// One request; false when the connection ends first.
bool readRequest(TestConnection& connection, TestRequest& request) {
    std::string head;
    while (!head.ends_with("\r\n\r\n")) {
        const std::string byte = connection.receive(1);
        if (byte.empty()) return false;
        head += byte;
    }
    const std::string first = lineOf(head);
    const std::size_t blank = first.find(' ');
    request.method = first.substr(0, blank);
    request.target = first.substr(blank + 1, first.rfind(' ') - blank - 1);
    for (std::string line = lineOf(head); !line.empty(); line = lineOf(head)) {
        const std::size_t colon = line.find(':');
        const std::size_t value = line.find_first_not_of(' ', colon + 1);
        request.headers[lowercased(line.substr(0, colon))] =
            value == std::string::npos ? "" : line.substr(value);
    }
    const auto length = request.headers.find("content-length");
    const std::size_t size = length == request.headers.end() ? 0 : std::stoul(length->second);
    while (request.body.size() < size) {
        const std::string part = connection.receive(size - request.body.size());
        if (part.empty()) return false;
        request.body += part;
    }
    return true;
}

}  // namespace

bool TestConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const int part = static_cast<int>(std::min<std::size_t>(bytes.size(), 1 << 20));
        const ssize_t size = ssl_ ? SSL_write(ssl_, bytes.data(), part)
                                  : ::send(fd_, bytes.data(), static_cast<std::size_t>(part), MSG_NOSIGNAL);
        if (size <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(size));
    }
    return true;
}

bool TestConnection::answer(int status, std::string_view body, std::string_view headers) {
    return send("HTTP/1.1 " + std::to_string(status) + " Some reason\r\n" + std::string(headers) +
                "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body));
}

void TestConnection::reset() {
    const linger none{1, 0};
    setsockopt(fd_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    ssl_ = nullptr;  // no farewell
}

void TestConnection::sayFarewell() {
    if (ssl_) SSL_shutdown(ssl_);
}

void TestConnection::waitForClose() {
    char byte = 0;
    while (recv(fd_, &byte, 1, 0) > 0) continue;
}

std::string TestConnection::receive(std::size_t size) {
    std::string bytes(size, '\0');
    const ssize_t got =
        ssl_ ? SSL_read(ssl_, bytes.data(), static_cast<int>(size)) : recv(fd_, bytes.data(), size, 0);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

TestServer::TestServer(Handler handler, TestServerOptions options)
    : handler_(std::move(handler)), options_(std::move(options)) {
    if (options_.tls) makeContext();
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, generic, size) != 0 || listen(listener_, 64) != 0) std::abort();
    getsockname(listener_, generic, &size);
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

TestServer::~TestServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        shutdown(listener_, SHUT_RDWR);
        for (const int fd : open_) shutdown(fd, SHUT_RDWR);
    }
    acceptor_.join();
    for (auto& thread : threads_) thread.join();
    close(listener_);
    if (!caFile_.empty()) unlink(caFile_.c_str());
}

std::string TestServer::url(const std::string& path) const {
    return (context_ ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port_) + path;
}

std::vector<TestRequest> TestServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string TestServer::offeredProtocols() const {
    const std::lock_guard lock(mutex_);
    return offeredProtocols_;
}

void TestServer::makeContext() {
    context_.reset(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    const auto [certificate, key] = makeCertificate(options_.names);
    SSL_CTX_use_certificate(context_.get(), certificate.get());
    SSL_CTX_use_PrivateKey(context_.get(), key.get());
    SSL_CTX_set_alpn_select_cb(context_.get(), chooseProtocol, this);
    SSL_CTX_set_client_hello_cb(context_.get(), greet, this);
    if (options_.oldTlsOnly) {
        SSL_CTX_set_security_level(context_.get(), 0);
        SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION);
        SSL_CTX_set_max_proto_version(context_.get(), TLS1_1_VERSION);
    }
    std::string path = ::testing::TempDir() + "korvane-ca-XXXXXX";
    std::FILE* file = fdopen(mkstemp(path.data()), "w");
    PEM_write_X509(file, certificate.get());
    std::fclose(file);
    caFile_ = path;
}

int TestServer::chooseProtocol(SSL*, const unsigned char** out, unsigned char* outSize,
                               const unsigned char* in, unsigned int inSize, void* server) {
    auto& self = *static_cast<TestServer*>(server);
    std::string protocols;
    int result = SSL_TLSEXT_ERR_NOACK;
    for (unsigned int i = 0; i < inSize; i += in[i] + 1u) {
        const std::string name(reinterpret_cast<const char*>(in + i + 1), in[i]);
        protocols += (protocols.empty() ? "" : ",") + name;
        if (name != self.options_.protocol) continue;
        *out = in + i + 1;
        *outSize = in[i];
        result = SSL_TLSEXT_ERR_OK;
    }
    const std::lock_guard lock(self.mutex_);
    self.offeredProtocols_ = protocols;
    return result;
}

int TestServer::greet(SSL* ssl, int*, void* server) {
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    int oldest = TLS1_2_VERSION;  // what a greeting without the list of versions stands for
    if (SSL_client_hello_get0_ext(ssl, TLSEXT_TYPE_supported_versions, &data, &size)) {
        for (std::size_t i = 1; i + 1 < size; i += 2) oldest = std::min(oldest, data[i] << 8 | data[i + 1]);
    }
    static_cast<TestServer*>(server)->oldestOfferedTls_ = oldest;
    return SSL_CLIENT_HELLO_SUCCESS;
}

void TestServer::accept() {
    for (;;) {
        const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(mutex_);
        if (stopping_ || fd < 0) {
            if (fd >= 0) close(fd);
            return;
        }
        ++connections_;
        open_.push_back(fd);
        threads_.emplace_back([this, fd] { serve(fd); });
    }
}

void TestServer::serve(int fd) {
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);  // in this thread alone: the code under test must not need it

    const int noDelay = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
    const std::shared_ptr<SSL> ssl(context_ ? SSL_new(context_.get()) : nullptr, SSL_free);
    if (ssl) SSL_set_fd(ssl.get(), fd);
    if (!ssl || SSL_accept(ssl.get()) == 1) {
        TestConnection connection(fd, ssl.get());
        if (options_.raw) options_.raw(connection);
        for (bool goOn = !options_.raw; goOn;) {
            TestRequest request;
            if (!readRequest(connection, request)) break;
            {
                const std::lock_guard lock(mutex_);
                requests_.push_back(request);
            }
            goOn = handler_(connection, request);
        }
        connection.sayFarewell();
    }
    const std::lock_guard lock(mutex_);
    std::erase(open_, fd);
    close(fd);
    ++closed_;
}

}  // namespace korvane::testing
