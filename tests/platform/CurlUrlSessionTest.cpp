// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <korvane/contracts/UrlSessionContract.h>
#include <netdb.h>

#include <cstdlib>
#include <future>

#include "platform/linux/CurlUrlSession.h"
#include "tests/platform/TestServer.h"

using namespace std::chrono_literals;

/// Stands before the C library's. A look-up of "hanging.test" hangs, as it does where the name server is out
/// of reach.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* node, const char* service,
                                                                  const addrinfo* hints, addrinfo** result) {
    if (node && node == std::string_view("hanging.test")) std::this_thread::sleep_for(3s);
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(node, service, hints, result);
}

namespace korvane::testing {
namespace {

using Speaks = TestServer::Speaks;

/// Sends the request and waits for its reply.
UrlReply fetch(UrlSession& session, UrlRequest request) {
    std::promise<UrlReply> promise;
    // Released before the promise goes, and so after the reply has ended.
    const auto task = session.start(std::move(request),
                                    [&promise](UrlReply reply) { promise.set_value(std::move(reply)); });
    return promise.get_future().get();
}

UrlReply post(UrlSession& session, std::string url) {
    return fetch(session, {"POST", std::move(url), {}, "{}"});
}

/// The reply has no answer of the service's, and a text that tells why.
void expectFailure(const UrlReply& reply, const std::string& text) {
    EXPECT_EQ(std::to_string(reply.status) + reply.body, "0");
    EXPECT_NE(reply.failure.find(text), std::string::npos) << reply.failure;
}

struct CurlDriver {
    TestServer server{TestServer::answerAll, Speaks::http};
    std::shared_ptr<CurlUrlSession> session = std::make_shared<CurlUrlSession>();

    std::string url(const std::string& path) const { return server.url(path); }
    static void runUntil(const auto& condition) {
        using Clock = std::chrono::steady_clock;
        for (const auto end = Clock::now() + 20s; !condition(); std::this_thread::sleep_for(500us))
            ASSERT_LT(Clock::now(), end);
    }
    void settle() { std::this_thread::sleep_for(50ms); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Curl, UrlSessionContract, CurlDriver);

TEST(CurlUrlSession, KeepsItsConnectionBetweenRequestsAndClosesItWhenIdle) {
    TestServer server;
    CurlUrlSession session({.caFile = server.caFile(), .connectionIdle = 400ms});
    for (int i = 0; i < 10; ++i) EXPECT_EQ(post(session, server.url("/answer")).status, 202);
    EXPECT_EQ(server.connections(), 1);
    CurlDriver::runUntil([&] { return server.closed() == 1; });
    EXPECT_EQ(post(session, server.url("/answer")).status, 202);
    EXPECT_EQ(server.connections(), 2);
    expectFailure(post(session, server.url("/failure")), "reset");
    EXPECT_EQ(server.requests().size(), 12u) << "what is lost on a kept connection is sent again";
}

/// HTTP/2 (RFC 9113) in three frames: answers the first request of a connection with 200, and then falls
/// silent, as a connection does whose way was lost while the device slept.
void serveOneStream(TestServer&, Connection& connection) {
    TestServer::receiveUntil(connection, "{}");
    constexpr char frames[] =
        "\0\0\0\4\0\0\0\0\0"       // SETTINGS
        "\0\0\0\4\1\0\0\0\0"       // and their acknowledgement
        "\0\0\1\1\5\0\0\0\1\x88";  // HEADERS that end stream 1: ":status: 200" (RFC 7541)
    TestServer::send(connection, {frames, sizeof frames - 1});
    TestServer::waitForClose(connection);
}

TEST(CurlUrlSession, SpeaksHttp2AndLeavesAConnectionThatFellSilent) {
    TestServer server(serveOneStream, Speaks::http2);
    CurlUrlSession session({.caFile = server.caFile(), .timeout = 300ms});
    EXPECT_EQ(post(session, server.url("/")).status, 200);
    EXPECT_EQ(post(session, server.url("/")).status, 0);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(post(session, server.url("/")).status, 200) << "a dead connection is used again";
}

/// Sends the bytes of an answer one by one, one every 50 ms; stops at '|'.
void drip(TestServer& server, Connection& connection) {
    const std::string path = server.receive(connection);
    TestServer::send(connection, "HTTP/1.1 200 OK\r\nContent-Length: 16\r\n\r\n");
    for (const char byte : std::string(path.starts_with("POST /stop") ? "drop by|" : "drop by drop by ")) {
        std::this_thread::sleep_for(50ms);
        if (byte == '|') break;
        TestServer::send(connection, {byte});
    }
    TestServer::waitForClose(connection);
}

TEST(CurlUrlSession, TimeLimitsFitSlowLines) {
    TestServer slow(drip, Speaks::http),
        silent([](TestServer&, Connection&connection) { TestServer::waitForClose(connection); },
               Speaks::http);
    CurlUrlSession session({.timeout = 400ms}), hurried({.longestTransfer = 400ms}),
        connecting({.timeout = 300ms, .connectTimeout = 900ms});
    const auto took = [](auto work) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        return std::chrono::steady_clock::now() - begin;
    };
    EXPECT_GT(took([&] { EXPECT_EQ(post(session, slow.url("/")).body, "drop by drop by "); }), 700ms)
        << "a transfer that makes progress goes on";
    expectFailure(post(session, slow.url("/stop")), "no data for 400 ms");
    EXPECT_LT(took([&] { expectFailure(post(hurried, slow.url("/")), ""); }), 700ms);
    const std::string tls = "https" + silent.url("/").substr(4);
    const auto shaken = took([&] { expectFailure(post(connecting, tls), ""); });
    EXPECT_TRUE(shaken > 800ms && shaken < 5s) << "connecting has a limit of its own";
}

TEST(CurlUrlSession, NothingThatHangsHoldsUpReleaseOrOtherRequestsOrTheEnd) {
    CurlDriver driver;
    const auto start = [&driver](const std::string& url) {
        return driver.session->start({"POST", url, {}, ""}, [](UrlReply) { ADD_FAILURE(); });
    };
    auto stalled = start(driver.url("/stall"));
    driver.runUntil([&] { return driver.server.requests().size() == 1; });
    std::this_thread::sleep_for(400ms);  // until libcurl has no timer of its own that would wake it
    stalled.reset();
    driver.runUntil([&] { return driver.server.closed() == 1; });

    const auto begin = std::chrono::steady_clock::now();
    auto lookedUp = start("https://hanging.test/"), other = start("https://hanging.test/");
    std::this_thread::sleep_for(50ms);  // into the look-up
    lookedUp.reset();
    EXPECT_EQ(post(*driver.session, driver.url("/answer")).status, 202);
    driver.session.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
}

TEST(CurlUrlSession, SendsTheRequestAsGivenAndNothingMore) {
    CurlDriver driver;
    CurlUrlSession& session = *driver.session;
    const std::string body("{\0}", 3), large(2 << 20, 'x');  // where libcurl would ask for leave first
    fetch(session, {"PUT", driver.url("/a?b=c"), {{"Authorization", "Bearer t"}, {"X-None", ""}}, body});
    fetch(session,
          {"GET", driver.url("/"), {{"Authorization", "Bearer "}, {"X-A", " \t a b\t"}, {"X-B", " "}}, ""});
    fetch(session, {"POST", driver.url("/"), {}, large});  // with no cookie
    const std::string all = " HTTP/1.1\r\nHost: " + driver.url("").substr(7) + "\r\nAccept: */*\r\n";
    EXPECT_EQ(driver.server.requests(),
              (std::vector{"PUT /a?b=c" + all +
                               "Authorization: Bearer t\r\nX-None:\r\nContent-Length: 3\r\n\r\n" + body,
                           "GET /" + all + "Authorization: Bearer\r\nX-A: a b\r\nX-B:\r\n\r\n",
                           "POST /" + all + "Content-Length: 2097152\r\n\r\n" + large}));
}

TEST(CurlSecurity, RefusesTlsBefore12WhateverTheSystemAllows) {
    // The system's configuration could allow old versions; it is read once, before the first use of TLS.
    const TemporaryFolder folder;
    const std::string lax =
        folder.file("openssl.cnf",
                    "openssl_conf = init\n[init]\nssl_conf = ssl\n[ssl]\nsystem_default = lax\n"
                    "[lax]\nMinProtocol = TLSv1\nCipherString = ALL@SECLEVEL=0\n");
    setenv("OPENSSL_CONF", lax.c_str(), 1);
    TestServer server(TestServer::answerAll, Speaks::old);
    CurlUrlSession session({.caFile = server.caFile()}), unreadable({.caFile = "/nowhere/ca.pem"});
    expectFailure(post(session, server.url("/")), "version");
    expectFailure(post(unreadable, server.url("/")), "/nowhere/ca.pem");
    EXPECT_TRUE(server.requests().empty());
}

TEST(CurlSecurity, TheEnvironmentNeitherRedirectsNorRecordsTheTraffic) {
    const TemporaryFolder folder;
    const std::string keys = folder.file("tls-keys", "");
    setenv("SSLKEYLOGFILE", keys.c_str(), 1);
    for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "ALL_PROXY"}) {
        setenv(name, "http://127.0.0.1:1", 1);
    }
    TestServer server;
    CurlUrlSession session({.caFile = server.caFile()});
    EXPECT_EQ(post(session, server.url("/")).status, 202);
    EXPECT_EQ(std::filesystem::file_size(keys), 0u);
}

TEST(CurlSecurity, AGivenProxySeesATunnelAndNoToken) {
    TestServer proxy(
        [](auto& self, auto& client) {
            self.receive(client);
            TestServer::send(client, "HTTP/1.1 502 Bad\r\nContent-Length: 0\r\n\r\n");
        },
        Speaks::http);
    CurlUrlSession session({.proxy = proxy.url("")});
    const UrlReply reply =
        fetch(session, {"POST", "https://bank.test/", {{"Authorization", "Bearer token"}}, "pin"});
    EXPECT_FALSE(reply.answered()) << "a proxy's refusal is not the service's answer";
    ASSERT_EQ(proxy.requests().size(), 1u);
    EXPECT_TRUE(proxy.requests()[0].starts_with("CONNECT bank.test:443"));
    EXPECT_EQ(proxy.requests()[0].find("token"), std::string::npos);
}

TEST(CurlSecurity, GoesOverTlsOrToThisMachineAndTellsWhyElse) {
    TestServer server(TestServer::answerAll, Speaks::http);
    CurlUrlSession session, proxied({.proxy = server.url("")});
    for (const char* host : {"127.0.0.1", "LOCALHOST", "127.0.0.2"}) {
        const UrlReply reply = post(session, server.url("/", host));
        EXPECT_EQ(reply.failure.find("plain HTTP"), std::string::npos) << host << ": " << reply.failure;
    }
    EXPECT_EQ(server.requests().size(), 2u);
    for (const char* url : {"HTTP://bank.test/", "http://127.0.0.1.bank.test/", "http://localhost@bank.test/",
                            "http://[2001:db8::1]/", "http://0.0.0.0/"}) {
        expectFailure(post(session, url), "plain HTTP is for a service on this machine alone");
    }
    expectFailure(post(proxied, server.url("/")), "plain HTTP");
    for (const char* url : {"file:///etc/hostname", "ftp://127.0.0.1/"})
        expectFailure(post(session, url), "rotocol");
    expectFailure(post(session, "https://host.invalid/"), "resolve host");
    EXPECT_EQ(server.requests().size(), 2u);
}

TEST(CurlSecurity, ALineBreakCannotMakeAHeaderOfAValue) {
    TestServer server(TestServer::answerAll, Speaks::http);
    CurlUrlSession session;
    const std::string url = server.url("/");
    for (const UrlRequest& request : {
             UrlRequest{"POST", url, {{"Authorization", "Bearer a\r\nX-Evil: 1"}}, ""},
             UrlRequest{"POST", url, {{"Authorization", std::string("a\0b", 3)}}, ""},
             UrlRequest{"POST", url, {{"X\n", "1"}}, ""},
             UrlRequest{"POST", url, {{"", "1"}}, ""},
             UrlRequest{"POST /evil HTTP/1.1\r\nX: ", url, {}, ""},
             UrlRequest{"POST", url + "\r\nX: 1", {}, ""},
         }) {
        expectFailure(fetch(session, request), "control character");
    }
    EXPECT_EQ(server.connections(), 0);
}

}  // namespace
}  // namespace korvane::testing
