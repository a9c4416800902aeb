// SPDX-License-Identifier: Apache-2.0
#include <openssl/ssl.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "platform/linux/CurlTransfer.h"
#include "tests/platform/CurlTestSupport.h"

namespace korvane::testing {
namespace {

bool greetBack(TestConnection& connection, const TestRequest&) {
    return connection.answer(200, "hello");
}

CurlUrlSessionOptions trusting(const TestServer& server) {
    return {.caFile = server.caFile()};
}

void expectFailure(const UrlReply& reply, const std::string& text) {
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.body, "");
    EXPECT_NE(reply.failure.find(text), std::string::npos) << reply.failure;
}

TEST(CurlSecurity, ARedirectIsAnAnswerAndTheTokenStaysWhereItWasSent) {
    TestServer other(greetBack, {.tls = false});
    TestServer server([&other](TestConnection& connection, const TestRequest&) {
        return connection.answer(307, "", "Location: " + other.url("/") + "\r\n");
    });
    CurlUrlSession session(trusting(server));
    const UrlReply reply =
        fetch(session, {"POST", server.url("/"), {{"Authorization", "Bearer token"}}, "{}"});
    EXPECT_EQ(reply.status, 307);
    EXPECT_EQ(server.requests().at(0).headers.at("authorization"), "Bearer token");
    EXPECT_EQ(other.connections(), 0);
}

TEST(CurlSecurity, TrustsTheGivenAuthorityAndNotAnUnknownOne) {
    TestServer server(greetBack);
    CurlUrlSession trustful(trusting(server));
    EXPECT_EQ(post(trustful, server.url("/")).body, "hello");
    CurlUrlSession strict;
    expectFailure(post(strict, server.url("/")), "self-signed certificate");
    CurlUrlSession broken({.caFile = "/nowhere/ca.pem"});
    expectFailure(post(broken, server.url("/")), "/nowhere/ca.pem");
    EXPECT_EQ(server.requests().size(), 1u);
}

TEST(CurlSecurity, RefusesACertificateForAnotherHost) {
    TestServer server(greetBack, {.names = "DNS:other.test,IP:127.0.0.2"});
    CurlUrlSession session(trusting(server));
    expectFailure(post(session, server.url("/")), "no alternative certificate subject name matches");
    EXPECT_TRUE(server.requests().empty());
}

TEST(CurlSecurity, OffersHttp2AndNothingOlderThanTls12WhateverTheSystemAllows) {
    // The system's configuration could allow old versions; it is read once, before the first use of TLS.
    const std::string path = ::testing::TempDir() + "korvane-lax-openssl.cnf";
    std::ofstream(path) << "openssl_conf = init\n[init]\nssl_conf = ssl\n[ssl]\nsystem_default = lax\n"
                           "[lax]\nMinProtocol = TLSv1\nCipherString = ALL@SECLEVEL=0\n";
    setenv("OPENSSL_CONF", path.c_str(), 1);
    TestServer server(greetBack);
    CurlUrlSession session(trusting(server));
    EXPECT_EQ(post(session, server.url("/")).status, 200);
    EXPECT_EQ(server.offeredProtocols(), "h2,http/1.1");
    EXPECT_EQ(server.oldestOfferedTls(), TLS1_2_VERSION);

    TestServer old(greetBack, {.oldTlsOnly = true});
    CurlUrlSession other(trusting(old));
    expectFailure(post(other, old.url("/")), "version");
    EXPECT_TRUE(old.requests().empty());
    std::remove(path.c_str());
}

TEST(CurlSecurity, TheEnvironmentNeitherRedirectsNorRecordsTheTraffic) {
    const std::string keys = ::testing::TempDir() + "korvane-tls-keys";
    std::remove(keys.c_str());
    setenv("SSLKEYLOGFILE", keys.c_str(), 1);
    for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "ALL_PROXY"}) {
        setenv(name, "http://127.0.0.1:1", 1);
    }
    TestServer server(greetBack);
    CurlUrlSession session(trusting(server));
    EXPECT_EQ(post(session, server.url("/")).status, 200);
    std::ifstream file(keys);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "");
    std::remove(keys.c_str());
}

TEST(CurlSecurity, AGivenProxySeesATunnelAndNoToken) {
    TestServer proxy(
        [](TestConnection& connection, const TestRequest&) { return connection.answer(502, ""); },
        {.tls = false});
    CurlUrlSession session({.proxy = proxy.url("")});
    const UrlReply reply =
        fetch(session, {"POST", "https://bank.test/", {{"Authorization", "Bearer token"}}, "pin"});
    EXPECT_FALSE(reply.answered()) << "a proxy's refusal is not the service's answer";
    const auto requests = proxy.requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].method, "CONNECT");
    EXPECT_FALSE(requests[0].headers.contains("authorization"));
}

TEST(CurlSecurity, ALineBreakCannotMakeAHeaderOfAValue) {
    TestServer server(greetBack, {.tls = false});
    CurlUrlSession session;
    const auto refused = [&](const char* name, const std::string& value) {
        expectFailure(fetch(session, {"POST", server.url("/"), {{name, value}}, ""}), "control character");
    };
    refused("Authorization", "Bearer a\r\nX-Evil: 1");
    refused("Authorization", std::string("a\0b", 3));
    refused("X\n", "1");
    refused("", "1");
    expectFailure(fetch(session, {"POST /evil HTTP/1.1\r\nX: ", server.url("/"), {}, ""}),
                  "control character");
    expectFailure(fetch(session, {"POST", server.url("/\r\nX: 1"), {}, ""}), "control character");
    EXPECT_EQ(server.connections(), 0);
}

TEST(CurlSecurity, TakesAnAnswerOf32MiBAndRefusesALongerOneWhileItComes) {
    std::atomic<std::size_t> sent = 0;
    const std::string longest(CurlTransfer::longestBody, 'x');
    TestServer server(
        [&](TestConnection& connection, const TestRequest& request) {
            if (request.target == "/longest") return connection.answer(200, longest);
            if (request.target == "/announced") {
                connection.send("HTTP/1.1 200 OK\r\nContent-Length: 34603008\r\n\r\n");
                connection.waitForClose();  // refused on the announcement alone
                return false;
            }
            connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
            const std::string chunk = "100000\r\n" + std::string(1 << 20, 'x') + "\r\n";
            for (int i = 0; i < 1000 && connection.send(chunk); ++i) sent += 1 << 20;
            return false;
        },
        {.tls = false});
    CurlUrlSession session;
    EXPECT_EQ(post(session, server.url("/longest")).body.size(), longest.size());
    expectFailure(post(session, server.url("/announced")), "longer than 32 MiB");
    expectFailure(post(session, server.url("/endless")), "longer than 32 MiB");
    EXPECT_LT(sent, std::size_t{64} << 20) << "more was received than the limit and what the sockets hold";
}

}  // namespace
}  // namespace korvane::testing
