// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>

#include "platform/linux/CurlTransfer.h"
#include "tests/platform/CurlTestSupport.h"
#include "tests/platform/TestServer.h"

namespace korvane::testing {
namespace {

using Speaks = TestServer::Speaks;

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

TEST(CurlSecurity, PlainHttpGoesToThisMachineAlone) {
    TestServer server(TestServer::answerAll, Speaks::http);
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

TEST(CurlSecurity, TakesAnAnswerOf32MiBAndRefusesALongerOneWhileItComes) {
    std::atomic<int> sent = 0;  // pieces
    TestServer server(
        [&](auto& self, auto& client) {
            const int all = self.receive(client).starts_with("POST /longest") ? 32 : 1000;
            const std::string piece(CurlTransfer::longestBody / 32, 'x');
            TestServer::send(client, "HTTP/1.1 200 OK\r\n\r\n");
            for (int i = 0; i < all && TestServer::send(client, piece); ++i) ++sent;
        },
        Speaks::http);
    CurlUrlSession session;
    EXPECT_EQ(post(session, server.url("/longest")).body.size(), CurlTransfer::longestBody);
    expectFailure(post(session, server.url("/endless")), "longer than 32 MiB");
    EXPECT_LT(sent, 3 * 32) << "more was received than the limit and what the sockets hold";
}

}  // namespace
}  // namespace korvane::testing
