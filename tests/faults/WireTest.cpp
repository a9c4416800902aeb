// SPDX-License-Identifier: Apache-2.0
#include <atomic>

#include "sandbox/HttpServer.h"
#include "tests/faults/RealStack.h"
#include "tests/platform/TestServer.h"
#include "transport/FieldCipher.h"

namespace korvane::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using Kind = sandbox::WireFault::Kind;

const std::string tryAgain = "UhOhTryAgainView", message = "UhOhTryAgainWithErrorMsgView",
                  done = "SuccessPinSetView";

/// The reply to each kind of request ends at each byte, reset or closed: in the TLS handshake, the answer's
/// head, its body, and in the answer that comes next. The journey after that finds everything in order.
void endEverywhere(bool tls) {
    struct Row {
        const char* endpoint;
        std::string view;
        std::size_t step = 41, stepInFull = 1;
    };
    RealStack stack(tls);
    std::size_t made = 0;
    for (const Row& row : {Row{"getBearerToken", tryAgain}, Row{"getCardStatus", tryAgain},
                           Row{"pinSet", tryAgain}, Row{"pciTokenRequest", message},
                           Row{"pciTokenSubmission", message}, Row{"cardImage", tryAgain, 9973, 499}}) {
        EXPECT_FALSE(stack.answered(row.endpoint, {}).starts_with("UhOh"));
        const std::size_t whole = stack.wire.forwarded();
        for (std::size_t at = 0; at <= whole; at += std::getenv("KORVANE_FULL") ? row.stepInFull : row.step) {
            for (const auto kind : {Kind::reset, Kind::close}) {
                SCOPED_TRACE(row.endpoint + (" " + std::to_string(at)) +
                             (kind == Kind::reset ? " reset" : " close"));
                const std::string view = stack.answered(row.endpoint, {.kind = kind, .bytes = at});
                if (!view.starts_with("UhOh")) {
                    // The end came behind an answer. Signatures are not always of one length.
                    EXPECT_GE(stack.wire.forwarded() + 16, whole);
                    stack.reconnect();
                    continue;
                }
                ++made;
                EXPECT_THAT(view, AnyOf(row.view, tryAgain));  // the latter for the answer that comes next
                // Half a head counts as a whole answer for libcurl, one with an empty body.
                EXPECT_THAT(stack.printed(),
                            Contains(AnyOf(HasSubstr("no response: "), HasSubstr("JSON decode error: "))));
            }
        }
    }
    std::cout << made << " replies ended early\n";
}

TEST(Faults, AReplyThatEndsAnywhereLeadsToAPage) {
    endEverywhere(false);
}

TEST(Faults, AReplyOverTlsThatEndsAnywhereLeadsToAPage) {
    endEverywhere(true);
}

TEST(Faults, EachFaultOfTheWireAndOfTheAnswerLeadsToAPageAndIsTold) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    RealStack stack(false, 2s);  // an answer without a fault may take longer than 500 ms
#else
    RealStack stack(false, 500ms);
#endif
    sandbox::Wire other;
    ASSERT_EQ(other.start("127.0.0.1", stack.wire.port()), "");
    const auto expect = [&](const std::string& name, sandbox::WireFault fault, const std::string& view,
                            const std::string& told) {
        SCOPED_TRACE(name);
        EXPECT_EQ(stack.answered("pinSet", std::move(fault)), view);
        EXPECT_THAT(stack.printed(), Contains(HasSubstr(told)));
        stack.reconnect();
    };
    expect("refused", {.kind = Kind::refuse}, tryAgain, "no response: Failed to connect");
    expect("stalled", {.kind = Kind::stall}, tryAgain, "no response: timed out: no data");
    expect("stalled midway", {.kind = Kind::stall, .bytes = 120}, tryAgain,
           "no response: timed out: no data");
    expect("dripped for longer than the pause that is allowed",
           {.kind = Kind::drip, .bytes = 1, .pause = 5ms}, done, "200");
    expect("too slow", {.kind = Kind::drip, .bytes = 20, .pause = 3s}, tryAgain,
           "no response: timed out: no data");

    const std::string key = R"({"encryptedResult":")", no = "no response: ", json = "JSON decode error: ";
    const std::string word = encryptField(SdkConfig::sharedInstance().ivByteArray, "Success"),
                      good = key + word + "\"}";
    const std::string ok = "HTTP/1.1 200 OK\r\n", end = "\r\n\r\n",
                      chunked = ok + "Transfer-Encoding: chunked" + end;
    const std::string deep(10'000, '['), moved = "\r\nContent-Length: 0\r\nLocation: http://127.0.0.1:";
    const auto length = [&](auto bytes) { return ok + "Content-Length: " + std::to_string(bytes) + end; };
    struct Row {
        const char* name;
        std::string head, body, told;  // "200": the journey goes on
    };
    for (const Row& row : {
             Row{"length short", length(9), good, json + "Missing a closing quotation mark"},
             Row{"length long", length(99), good, no + "transfer closed with 53 bytes remaining"},
             Row{"length below 0", length(-1), good, no + "Invalid Content-Length"},
             Row{"chunk of no size", chunked, "XY\r\n" + good,
                 no + "Illegal or missing hexadecimal sequence"},
             Row{"chunk short", chunked, "99\r\n" + good, no + "transfer closed"},
             Row{"chunk long", chunked, "5\r\n" + good, no + "Malformed encoding"},
             Row{"no last chunk", chunked, "1\r\n{\r\n", no + "transfer closed"},
             Row{"no HTTP", "SSH-2.0-OpenSSH_9.2\r\n", "", no + "Received HTTP/0.9"},
             Row{"long head", ok + "X: ", std::string(400 << 10, 'x'), no},
             Row{"33 MiB announced", length(33 << 20), "", no + "the answer is longer than 32 MiB"},
             Row{"33 MiB", ok + end, std::string(33 << 20, ' '), no + "the answer is longer than 32 MiB"},
             Row{"4 MiB", ok + end, std::string(4 << 20, ' ') + good, "200"},
             Row{"deep", ok + end, "{\"a\":" + deep, json + "nested more than 64 deep"},
             Row{"deep, closed", ok + end, "{\"a\":" + deep + std::string(10'000, ']') + ',' + good.substr(1),
                 json + "nested more than 64 deep"},
             Row{"byte order mark", length(good.size() + 3), "\xEF\xBB\xBF" + good, "200"},
             Row{"equal keys", ok + end, key + "x\"," + good.substr(1), "200"},
             Row{"equal keys, last bad", ok + end,
                 good.substr(0, good.size() - 1) + ',' + key.substr(1) + "x\"}", "errmsg = "},
             Row{"NUL in a text", ok + end, key + word + '\0' + "\"}", json + "a NUL"},
             Row{"escaped NUL", ok + end, key + word + "\\u0000\"}", "errmsg = "},
             Row{"no UTF-8", ok + end, "{\"\xC3(\":\"\"," + good.substr(1), json + "the text is not UTF-8"},
             Row{"half a pair", ok + end, "{\"a\":\"\\ud800\"," + good.substr(1),
                 json + "The surrogate pair"},
             Row{"redirect 302", "HTTP/1.1 302 Found" + moved, std::to_string(other.port()) + end, "302"},
             Row{"redirect 307", "HTTP/1.1 307 Temporary" + moved, std::to_string(other.port()) + end, "307"},
         }) {
        expect(row.name, {.kind = Kind::reply, .text = row.head + row.body},
               row.told == "200" ? done : tryAgain, row.told);
    }
    EXPECT_EQ(other.accepted(), 0u) << "a redirect was followed";
}

TEST(Faults, AServiceThatIsNotWhoItShouldBeGetsNothing) {
    RealStack stack(true);
    const TemporaryFolder folder;
    const auto made = sandbox::makeServerCertificate(""), other = sandbox::makeServerCertificate("");
    // A certificate whose time is up; only who trusts it by itself looks at that and not at the signature.
    const std::string file = folder.file("server.pem", made->certificate + made->privateKey);
    ASSERT_EQ(
        std::system(("openssl x509 -days -1 -in " + file + " -signkey " + file + " -out " + file).c_str()),
        0);
    std::string old;
    std::getline(std::ifstream(file), old, '\0');
    struct Row {
        const char* host;
        std::string certificate, trusted, told;
    };
    for (const Row& row :
         {Row{"127.0.0.1", old, old, "certificate has expired"},
          Row{"127.0.0.2", made->certificate, made->caCertificate, "no alternative certificate subject"},
          // Signed by itself and by another authority.
          Row{"127.0.0.1", old, made->caCertificate, "unable to get local issuer certificate"},
          Row{"127.0.0.1", made->certificate, other->caCertificate, "unable to get local issuer certificate"},
          Row{"127.0.0.1", made->certificate, made->caCertificate, ""}}) {
        SCOPED_TRACE(row.told);
        int asked = 0;  // only the last one is in order, so that the others mean something
        const sandbox::ServerCertificate shown{"", row.certificate, made->privateKey};
        sandbox::HttpServer server(
            [&](const auto&) {
                return ++asked, sandbox::HttpAnswer{500, ""};
            },
            [](const auto&...) {});
        ASSERT_EQ(server.start(row.host, 0, &shown), "");
        stack.call("https://" + std::string(row.host) + ":" + std::to_string(server.port()),
                   folder.file("ca.pem", row.trusted));
        EXPECT_EQ(stack.answered("getBearerToken"), tryAgain);
        EXPECT_THAT(stack.printed(), Contains(HasSubstr(row.told)));
        EXPECT_EQ(asked, row.told.empty() ? 1 : 0);
    }
}

TEST(Faults, Http2ThatEndsTheStreamOrTheConnectionLeadsToAPageAndNothingIsSentAgain) {
    RealStack stack(true, 2s);
    const auto frame = [](char type, char flags, char stream, const std::string& payload) {  // RFC 9113, 4.1
        return std::string{0, 0, static_cast<char>(payload.size()), type, flags, 0, 0, 0, stream} + payload;
    };
    const auto word = [](char value) { return std::string{0, 0, 0, value}; };
    const std::string settings = frame(4, 0, 0, "") + frame(4, 1, 0, ""), ok = frame(1, 4, 1, "\x88");
    struct Row {
        const char* name;
        std::string frames, told;
    };
    for (const Row& row : {
             Row{"GOAWAY, nothing done", frame(7, 0, 0, word(0) + word(0)),
                 "Error in the HTTP2 framing layer"},
             Row{"GOAWAY, and no answer", frame(7, 0, 0, word(1) + word(11)), "no data for"},
             Row{"GOAWAY midway", ok + frame(7, 0, 0, word(0) + word(2)), "Error in the HTTP2 framing layer"},
             Row{"RST_STREAM", frame(3, 0, 1, word(2)), "INTERNAL_ERROR"},
             Row{"RST_STREAM midway", ok + frame(3, 0, 1, word(2)), "INTERNAL_ERROR"},
             Row{"RST_STREAM, refused", frame(3, 0, 1, word(7)), "no response: "},
             Row{"too large", "\xFF\xFF\xFF" + frame(0, 0, 1, ""), "no response: "},
             Row{"half a frame", frame(3, 0, 1, "").substr(0, 5), "not closed cleanly"},
         }) {
        SCOPED_TRACE(row.name);
        std::atomic<int> requests = 0;
        TestServer server(
            [&](auto&, sandbox::Connection& connection) {
                if (TestServer::receiveUntil(connection, "\"}").ends_with("\"}")) ++requests;
                TestServer::send(connection, settings + row.frames);
                if (row.frames.size() > 5) TestServer::waitForClose(connection);
            },
            TestServer::Speaks::http2);
        stack.call(server.url("", "localhost"), server.caFile());
        EXPECT_EQ(stack.answered("getBearerToken"), tryAgain);
        EXPECT_THAT(stack.printed(), Contains(HasSubstr(row.told)));
        EXPECT_EQ(requests, 1) << "it may have been carried out";
    }
}

}  // namespace
}  // namespace korvane::testing
