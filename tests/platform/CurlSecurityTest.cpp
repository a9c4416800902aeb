// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <iterator>

#include "platform/linux/CurlTransfer.h"
#include "tests/platform/CurlTestSupport.h"
#include "tests/platform/TestServer.h"

namespace korvane::testing {
namespace {

void greetBack(Connection&, const httplib::Request&, httplib::Response& response) {
    response.body = "hello";
}

CurlUrlSessionOptions trusting(const TestServer& server) {
    return {.caFile = server.caFile()};
}

TEST(CurlSecurity, RefusesTlsBefore12WhateverTheSystemAllows) {
    // The system's configuration could allow old versions; it is read once, before the first use of TLS.
    const TemporaryFolder folder;
    const std::string lax =
        folder.file("openssl.cnf",
                    "openssl_conf = init\n[init]\nssl_conf = ssl\n[ssl]\nsystem_default = lax\n"
                    "[lax]\nMinProtocol = TLSv1\nCipherString = ALL@SECLEVEL=0\n");
    setenv("OPENSSL_CONF", lax.c_str(), 1);
    TestServer server(greetBack, {.oldTlsOnly = true});
    CurlUrlSession session(trusting(server)), unreadable({.caFile = "/nowhere/ca.pem"});
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
    TestServer server(greetBack);
    CurlUrlSession session(trusting(server));
    EXPECT_EQ(post(session, server.url("/")).status, 200);
    EXPECT_EQ(std::filesystem::file_size(keys), 0u);
}

TEST(CurlSecurity, AGivenProxySeesATunnelAndNoToken) {
    TestServer proxy([](auto&, auto&, auto& response) { response.status = 502; }, {.tls = false});
    CurlUrlSession session({.proxy = proxy.url("")});
    const UrlReply reply =
        fetch(session, {"POST", "https://bank.test/", {{"Authorization", "Bearer token"}}, "pin"});
    EXPECT_FALSE(reply.answered()) << "a proxy's refusal is not the service's answer";
    ASSERT_EQ(proxy.requests().size(), 1u);
    EXPECT_EQ(proxy.requests()[0].method, "CONNECT");
    EXPECT_FALSE(proxy.requests()[0].has_header("Authorization"));
}

TEST(CurlSecurity, PlainHttpGoesToThisMachineAlone) {
    TestServer server(greetBack, {.tls = false});
    CurlUrlSession session, proxied({.proxy = server.url("")});
    for (const char* host : {"127.0.0.1", "LOCALHOST", "127.0.0.2"}) {
        const UrlReply reply = post(session, server.url("/", host));
        EXPECT_EQ(reply.failure.find("plain HTTP"), std::string::npos) << host << ": " << reply.failure;
    }
    EXPECT_EQ(server.requests().size(), 2u);
    for (const char* url : {"http://192.0.2.1/", "HTTP://bank.test/", "http://127.0.0.1.bank.test/",
                            "http://localhost@bank.test/", "http://[2001:db8::1]/", "http://0.0.0.0/"}) {
        expectFailure(post(session, url), "plain HTTP is for a service on this machine alone");
    }
    expectFailure(post(proxied, server.url("/")), "plain HTTP");
    EXPECT_EQ(server.requests().size(), 2u);
}

TEST(CurlSecurity, ALineBreakCannotMakeAHeaderOfAValue) {
    TestServer server(greetBack, {.tls = false});
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

TEST(CurlSecurity, TakesAnAnswerOf32MiBAndRefusesALongerOneWhileItComes) {
    std::atomic<std::size_t> sent = 0;
    const std::string longest(CurlTransfer::longestBody, 'x');
    TestServer server(
        [&](Connection& connection, const auto& request, auto& response) {
            if (request.path == "/longest") return response.set_content(longest, "text/plain");
            TestServer::send(connection, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
            const std::string chunk = "100000\r\n" + std::string(1 << 20, 'x') + "\r\n";
            for (int i = 0; i < 1000 && TestServer::send(connection, chunk); ++i) sent += 1 << 20;
        },
        {.tls = false});
    CurlUrlSession session;
    EXPECT_EQ(post(session, server.url("/longest")).body.size(), longest.size());
    expectFailure(post(session, server.url("/endless")), "longer than 32 MiB");
    EXPECT_LT(sent, std::size_t{64} << 20) << "more was received than the limit and what the sockets hold";
}

}  // namespace
}  // namespace korvane::testing
