// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <netdb.h>

#include <cstdlib>
#include <cstring>

#include "tests/platform/CurlTestSupport.h"
#include "tests/platform/UrlSessionContract.h"

using namespace std::chrono_literals;

/// Stands before the C library's: a name look-up that hangs, as it does where the name server is out of
/// reach.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* node, const char* service,
                                                                  const addrinfo* hints, addrinfo** result) {
    if (node && std::strcmp(node, "hanging.test") == 0) std::this_thread::sleep_for(3s);
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(node, service, hints, result);
}

namespace korvane::testing {
namespace {

bool serveContract(TestConnection& connection, const TestRequest& request) {
    if (request.target == "/answer") return connection.answer(202, "hello " + request.body);
    if (request.target == "/failure") connection.reset();
    if (request.target == "/stall") connection.waitForClose();
    return false;
}

struct CurlDriver {
    TestServer server{serveContract, {.tls = false}};
    std::shared_ptr<CurlUrlSession> session = std::make_shared<CurlUrlSession>();

    std::string url(const std::string& path) const { return server.url(path); }
    template <class Condition>
    void runUntil(Condition condition) {
        EXPECT_TRUE(waitUntil(condition));
    }
    void settle() { std::this_thread::sleep_for(50ms); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Curl, UrlSessionContract, CurlDriver);

TEST(CurlUrlSession, AReleaseWaitsForAReplyThatIsRunning) {
    CurlDriver driver;
    std::atomic<bool> started = false;
    bool finished = false;  // not atomic: the release is what orders it
    auto task = driver.session->start({"POST", driver.url("/answer"), {}, ""}, [&](UrlReply) {
        started = true;
        std::this_thread::sleep_for(50ms);
        finished = true;
    });
    ASSERT_TRUE(waitUntil([&] { return started.load(); }));
    task.reset();
    EXPECT_TRUE(finished);
}

TEST(CurlUrlSession, AReplyThatDestroysTheSessionIsTheLast) {
    CurlDriver driver;
    std::mutex mutex;  // holds the thread up in the first reply, so that the others are waiting together
    std::atomic<int> replies = 0;
    std::vector<std::unique_ptr<UrlTask>> tasks;
    {
        const std::lock_guard lock(mutex);
        tasks.push_back(driver.session->start({"POST", driver.url("/answer"), {}, ""},
                                              [&](UrlReply) { const std::lock_guard inReply(mutex); }));
        std::this_thread::sleep_for(50ms);
        for (int i = 0; i < 3; ++i) {
            tasks.push_back(driver.session->start({"POST", "not\na URL", {}, ""}, [&](UrlReply) {
                driver.session.reset();
                ++replies;
            }));
        }
    }
    EXPECT_TRUE(waitUntil([&] { return replies > 0; }));
    driver.settle();
    EXPECT_EQ(replies, 1);
}

TEST(CurlUrlSession, KeepsItsConnectionBetweenRequestsAndClosesItWhenIdle) {
    TestServer server(serveContract);
    CurlUrlSession session({.caFile = server.caFile(), .connectionIdle = 400ms});
    for (int i = 0; i < 10; ++i) EXPECT_EQ(post(session, server.url("/answer")).status, 202);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_TRUE(waitUntil([&] { return server.closed() == 1; }));
    EXPECT_EQ(post(session, server.url("/answer")).status, 202);
    EXPECT_EQ(server.connections(), 2);
}

TEST(CurlUrlSession, GivesUpInTimeAndSendsNothingAgain) {
    CurlDriver driver;
    driver.session = std::make_shared<CurlUrlSession>(CurlUrlSessionOptions{.timeout = 200ms});
    EXPECT_EQ(post(*driver.session, driver.url("/answer")).status, 202);
    const auto begin = std::chrono::steady_clock::now();
    const UrlReply reply = post(*driver.session, driver.url("/stall"));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 200ms);
    EXPECT_EQ(reply.status, 0);
    EXPECT_NE(reply.failure.find("timed out"), std::string::npos) << reply.failure;
    EXPECT_EQ(driver.server.requests().size(), 2u);
}

TEST(CurlUrlSession, DroppedRequestOnAKeptConnectionIsNotSentAgain) {
    CurlDriver driver;
    EXPECT_EQ(post(*driver.session, driver.url("/answer")).status, 202);
    EXPECT_EQ(post(*driver.session, driver.url("/failure")).status, 0);
    EXPECT_EQ(driver.server.requests().size(), 2u);
}

/// HTTP/2 (RFC 9113) in few words: answers the first request of a connection with 200, and then falls silent,
/// as a connection does whose way was lost while the device slept.
void serveOneStream(TestConnection& connection) {
    constexpr char headers = 1, settings = 4, ack = 1, endStream = 1, endHeaders = 4;
    const auto frame = [](char type, char flags, std::string_view stream, std::string_view payload) {
        std::string bytes{0, 0, static_cast<char>(payload.size()), type, flags};
        return bytes.append(stream).append(payload);
    };
    const std::string whole(4, '\0');
    const auto receive = [&connection](std::size_t size) {
        std::string bytes;
        for (std::string part = "-"; bytes.size() < size && !part.empty(); bytes += part) {
            part = connection.receive(size - bytes.size());
        }
        return bytes;
    };
    receive(std::strlen("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"));
    connection.send(frame(settings, 0, whole, ""));
    bool answered = false;
    for (std::string head = receive(9); head.size() == 9; head = receive(9)) {
        const auto size = static_cast<unsigned char>(head[1]) << 8 | static_cast<unsigned char>(head[2]);
        receive(static_cast<std::size_t>(size));
        if (head[3] == settings && !(head[4] & ack)) connection.send(frame(settings, ack, whole, ""));
        if (head[3] > headers || !(head[4] & endStream) || answered) continue;
        connection.send(
            frame(headers, endStream | endHeaders, head.substr(5), "\x88"));  // ":status: 200" (RFC 7541)
        answered = true;
    }
}

TEST(CurlUrlSession, SpeaksHttp2AndLeavesAConnectionThatFellSilent) {
    TestServer server({}, {.protocol = "h2", .raw = serveOneStream});
    CurlUrlSession session({.caFile = server.caFile(), .timeout = 300ms});
    EXPECT_EQ(post(session, server.url("/")).status, 200);
    EXPECT_EQ(post(session, server.url("/")).status, 0);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(post(session, server.url("/")).status, 200) << "a dead connection is used again";
    EXPECT_EQ(server.connections(), 2);
}

TEST(CurlUrlSession, AReleaseEndsAStalledTransferAtOnce) {
    CurlDriver driver;
    auto task =
        driver.session->start({"POST", driver.url("/stall"), {}, ""}, [](UrlReply) { ADD_FAILURE(); });
    ASSERT_TRUE(waitUntil([&] { return driver.server.requests().size() == 1; }));
    std::this_thread::sleep_for(400ms);  // until libcurl has no timer of its own that would wake it
    const auto begin = std::chrono::steady_clock::now();
    task.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
    EXPECT_TRUE(waitUntil([&] { return driver.server.closed() == 1; })) << "the server still serves it";
}

TEST(CurlUrlSession, ANameLookUpThatHangsHoldsUpNeitherReleaseNorOtherRequestsNorTheEnd) {
    CurlDriver driver;
    const auto begin = std::chrono::steady_clock::now();
    const auto start = [&] {
        return driver.session->start({"POST", "http://hanging.test/", {}, ""},
                                     [](UrlReply) { ADD_FAILURE(); });
    };
    auto released = start();
    const auto kept = start();
    std::this_thread::sleep_for(50ms);  // into the look-up
    released.reset();
    EXPECT_EQ(post(*driver.session, driver.url("/answer")).status, 202);
    driver.session.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
}

TEST(CurlUrlSession, SendsTheRequestAsGivenAndNothingMore) {
    TestServer server(
        [](TestConnection& connection, const TestRequest&) {
            return connection.answer(200, std::string("a\0b", 3), "Set-Cookie: id=1\r\n");
        },
        {.tls = false});
    CurlUrlSession session;
    const std::string body("{\0}", 3);
    const UrlReply reply =
        fetch(session, {"PUT", server.url("/a?b=c"), {{"Authorization", "Bearer t"}, {"X-None", ""}}, body});
    EXPECT_EQ(reply.body, std::string("a\0b", 3));
    fetch(session, {"GET", server.url("/"), {}, ""});
    const std::string large(2 << 20, 'x');  // where libcurl would ask for leave first
    fetch(session, {"POST", server.url("/"), {}, large});

    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[0].method, "PUT");
    EXPECT_EQ(requests[0].target, "/a?b=c");
    EXPECT_EQ(requests[0].body, body);
    auto headers = requests[0].headers;
    EXPECT_EQ(headers["authorization"], "Bearer t");
    EXPECT_TRUE(headers.contains("x-none"));
    EXPECT_FALSE(headers.contains("content-type"));
    EXPECT_EQ(requests[1].method, "GET");
    EXPECT_FALSE(requests[1].headers.contains("cookie"));
    EXPECT_FALSE(requests[1].headers.contains("authorization"));
    EXPECT_EQ(requests[2].body, large);
    EXPECT_FALSE(requests[2].headers.contains("expect"));
}

TEST(CurlUrlSession, TellsEachFailureApartInItsText) {
    const auto misbehave = [](TestConnection& connection, const TestRequest& request) {
        if (request.target == "/reset" || request.target == "/short") {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npart of it");
        }
        if (request.target == "/reset") connection.reset();
        if (request.target == "/garbage") connection.send("this is no HTTP\r\n\r\n");
        return false;
    };
    CurlUrlSession session;
    const auto expect = [&session](const std::string& url, const std::string& text) {
        const UrlReply reply = post(session, url);
        EXPECT_EQ(reply.status, 0) << url;
        EXPECT_EQ(reply.body, "") << url;
        EXPECT_NE(reply.failure.find(text), std::string::npos) << url << ": " << reply.failure;
    };
    std::string stopped;
    {
        TestServer server(misbehave, {.tls = false});
        expect(server.url("/reset"), "reset");
        expect(server.url("/short"), "90 bytes remaining");
        expect(server.url("/empty"), "Empty reply");
        expect(server.url("/garbage"), "HTTP/0.9");
        stopped = server.url("/");
    }
    expect(stopped, "Couldn't connect");
    expect("https://host.invalid/", "resolve host");
    expect("", "URL");
    expect("file:///etc/hostname", "rotocol");
    expect("ftp://127.0.0.1/", "rotocol");
}

}  // namespace
}  // namespace korvane::testing
