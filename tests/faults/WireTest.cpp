// SPDX-License-Identifier: Apache-2.0
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <cstdlib>

#include "sandbox/HttpServer.h"
#include "sdk/SdkConfig.h"
#include "tests/faults/RealStack.h"
#include "tests/platform/TestServer.h"
#include "transport/FieldCipher.h"

namespace korvane::testing {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

const std::string tryAgain = "UhOhTryAgainView", message = "UhOhTryAgainWithErrorMsgView",
                  success = "SuccessPinSetView";

/// The reply to each kind of request ends at each byte, reset or closed: the TLS handshake, head and body of
/// the answer, and of the answer that comes next. The journey after it finds everything in order.
void endEverywhere(bool tls) {
    struct Row {
        const char* endpoint;
        std::string view, next;
        std::size_t steps, stepsInFull;
    };
    const Row rows[] = {
        {"getBearerToken", tryAgain, tryAgain, 41, 1}, {"getCardStatus", tryAgain, tryAgain, 41, 1},
        {"pciTokenRequest", message, tryAgain, 41, 1}, {"pciTokenSubmission", message, tryAgain, 41, 1},
        {"pinSet", tryAgain, tryAgain, 41, 1},         {"cardImage", tryAgain, tryAgain, 9973, 499}};
    RealStack stack(tls);
    const bool full = std::getenv("KORVANE_FULL");
    std::size_t made = 0;
    for (const Row& row : rows) {
        const std::size_t step = full ? row.stepsInFull : row.steps;
        stack.reach(row.endpoint);
        stack.wire.set({});
        stack.send(row.endpoint);
        EXPECT_FALSE(stack.shown().starts_with("UhOh"));
        const std::size_t whole = stack.wire.forwarded();
        for (std::size_t at = 0; at <= whole; at += step) {
            for (const auto kind : {Kind::reset, Kind::close}) {
                SCOPED_TRACE(row.endpoint + (" " + std::to_string(at)) +
                             (kind == Kind::reset ? " reset" : " close"));
                stack.reach(row.endpoint);
                stack.wire.set({.kind = kind, .bytes = at});
                stack.send(row.endpoint);
                const std::string view = stack.shown();
                if (!view.starts_with("UhOh")) {
                    // The end came behind an answer. Signatures are not always of one length.
                    EXPECT_GE(stack.wire.forwarded() + 16, whole);
                    continue;
                }
                ++made;
                EXPECT_THAT(view, AnyOf(row.view, row.next));
                // Half a head counts as a whole answer for libcurl, one with an empty body.
                EXPECT_THAT(stack.printed(),
                            AnyOf(HasSubstr("no response: "), HasSubstr("JSON decode error: ")));
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

std::string answer(const std::string& body, const std::string& head = "") {
    return "HTTP/1.1 200 OK\r\n" + (head.empty() ? "Content-Length: " + std::to_string(body.size()) : head) +
           "\r\n\r\n" + body;
}

TEST(Faults, EachFaultOfTheWireAndOfTheAnswerLeadsToAPageAndIsTold) {
    RealStack stack(false, 500ms);
    sandbox::Wire other;
    ASSERT_EQ(other.start("127.0.0.1", stack.wire.port()), "");
    const std::string word = encryptField(SdkConfig::sharedInstance().ivByteArray, "Success");
    const std::string field = R"("encryptedResult":")", done = "{" + field + word + "\"}";
    const std::string deep(10'000, '['), chunked = "Transfer-Encoding: chunked";
    const auto reply = [](std::string text) {
        return WireFault{.kind = Kind::reply, .text = std::move(text)};
    };
    struct Row {
        std::string name;
        WireFault fault;
        std::string view, told;
    };
    std::vector<Row> rows = {
        {"refused", {.kind = Kind::refuse}, tryAgain, "no response: Failed to connect"},
        {"stalled", {.kind = Kind::stall}, tryAgain, "no response: Operation timed out"},
        {"stalled midway", {.kind = Kind::stall, .bytes = 120}, tryAgain, "no response: Operation timed out"},
        {"dripped", {.kind = Kind::drip, .bytes = 5, .pause = 3ms}, success, "200\n"},
        {"dripped too slowly", {.kind = Kind::drip, .bytes = 1, .pause = 20ms}, tryAgain, "timed out"},
        {"well", reply(answer(done)), success, "200\n"},
        {"length too short", reply(answer(done, "Content-Length: 9")), tryAgain,
         "JSON decode error: Missing a closing"},
        {"length too long", reply(answer(done, "Content-Length: 99")), tryAgain, "bytes remaining to read"},
        {"two lengths", reply(answer(done, "Content-Length: 9\r\nContent-Length: 99")), tryAgain,
         "no response: "},
        {"length below 0", reply(answer(done, "Content-Length: -1")), tryAgain,
         "no response: Invalid Content-Length"},
        {"no length", reply(answer(done, "Server: x")), success, "200\n"},
        {"a chunk's size is none", reply(answer("XY\r\n" + done, chunked)), tryAgain,
         "no response: Illegal or missing hexadecimal"},
        {"a chunk is short", reply(answer("99\r\n" + done, chunked)), tryAgain,
         "no response: transfer closed"},
        {"a chunk is long", reply(answer("5\r\n" + done + "\r\n0\r\n\r\n", chunked)), tryAgain,
         "no response: Malformed encoding"},
        {"no last chunk", reply(answer("5\r\n{\"a\":\r\n", chunked)), tryAgain,
         "no response: transfer closed"},
        {"no HTTP", reply("SSH-2.0-OpenSSH_9.2\r\n"), tryAgain, "no response: Received HTTP/0.9"},
        {"a head of 400 KiB", reply("HTTP/1.1 200 OK\r\nX: " + std::string(400 << 10, 'x')), tryAgain,
         "no response: "},
        {"interim answers alone", reply("HTTP/1.1 103 Early Hints\r\n\r\n"), tryAgain,
         "no response: Empty reply"},
        {"33 MiB announced", reply(answer("", "Content-Length: 34603008")), tryAgain, "longer than 32 MiB"},
        {"33 MiB", reply(answer(std::string(33 << 20, ' '), "Server: x")), tryAgain, "longer than 32 MiB"},
        {"4 MiB of blanks", reply(answer(std::string(4 << 20, ' ') + done)), success, "200\n"},
        {"deep JSON", reply(answer("{\"encryptedResult\":" + deep)), tryAgain,
         "JSON decode error: Invalid value. (at byte 10019)"},
        {"deep JSON beside the answer",
         reply(answer("{\"a\":" + deep + std::string(10'000, ']') + "," + done.substr(1))), success, "200\n"},
        {"equal keys", reply(answer("{" + field + "x\"," + done.substr(1))), success, "200\n"},
        {"equal keys, the good one first", reply(answer("{" + field + word + "\"," + field + "x\"}")),
         tryAgain, "errmsg = \n"},
        {"NUL", reply(answer(std::string("\0", 1) + done)), tryAgain, "JSON decode error: a NUL"},
        {"NUL in a text", reply(answer("{" + field + word + std::string("\0\"}", 3))), tryAgain,
         "JSON decode error: a NUL"},
        {"escaped NUL", reply(answer("{" + field + word + "\\u0000\"}")), tryAgain, "errmsg = \n"},
        {"no UTF-8", reply(answer("{\"a\":\"\xC3(\"," + done.substr(1))), tryAgain,
         "not UTF-8\n. JSON decode error"},
        {"a byte order mark", reply(answer("\xEF\xBB\xBF" + done)), tryAgain,
         "JSON decode error: Invalid value"},
        {"half a pair of surrogates", reply(answer("{\"a\":\"\\ud800\"," + done.substr(1))), tryAgain,
         "JSON decode error: The surrogate"},
        {"nothing", reply(answer("")), tryAgain, "JSON decode error: The document is empty"},
        {"not JSON's object", reply(answer("null")), tryAgain, "JSON decode error: not a JSON object"},
    };
    for (const char* status :
         {"301 Moved", "302 Found", "307 Temporary Redirect", "308 Permanent Redirect"}) {
        rows.push_back({status,
                        reply("HTTP/1.1 " + std::string(status) + "\r\nLocation: http://127.0.0.1:" +
                              std::to_string(other.port()) + "/\r\nContent-Length: 0\r\n\r\n"),
                        tryAgain, std::string(status).substr(0, 3)});
    }
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        stack.reach("pinSet");
        stack.wire.set(row.fault);
        stack.send("pinSet");
        EXPECT_EQ(stack.shown(), row.view);
        EXPECT_THAT(stack.printed(), HasSubstr(row.told));
    }
    EXPECT_EQ(other.accepted(), 0u) << "a redirect was followed";
}

/// A certificate for `name` that no authority made.
sandbox::ServerCertificate selfSigned(const char* name, long secondsLeft) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> made(X509_new(), &X509_free);
    X509* const it = made.get();
    X509_set_version(it, 2);
    X509_gmtime_adj(X509_getm_notBefore(it), -3600);
    X509_gmtime_adj(X509_getm_notAfter(it), secondsLeft);
    X509_set_pubkey(it, key.get());
    X509_NAME_add_entry_by_txt(X509_get_issuer_name(it), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("nobody"), -1, -1, 0);
    X509_set_subject_name(it, X509_get_issuer_name(it));
    X509_EXTENSION* const names =
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, (std::string("DNS:") + name).c_str());
    X509_add_ext(it, names, -1);
    X509_EXTENSION_free(names);
    X509_sign(it, key.get(), EVP_sha256());
    const auto pem = [](auto write) {
        const std::unique_ptr<BIO, decltype(&BIO_free)> into(BIO_new(BIO_s_mem()), &BIO_free);
        write(into.get());
        char* bytes = nullptr;
        const long size = BIO_get_mem_data(into.get(), &bytes);
        return std::string(bytes, static_cast<std::size_t>(size));
    };
    const std::string certificate = pem([&](BIO* into) { PEM_write_bio_X509(into, it); });
    return {certificate, certificate, pem([&](BIO* into) {
                PEM_write_bio_PrivateKey(into, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
            })};
}

TEST(Faults, AServiceThatIsNotWhoItShouldBeGetsNothing) {
    RealStack stack(true);
    const TemporaryFolder folder;
    int asked = 0;
    struct Row {
        const char* name;
        long secondsLeft;
        bool trusted;
        const char* told;
    };
    for (const Row& row : {Row{"localhost", -60, true, "certificate has expired"},
                           Row{"bank.test", 3600, true, "no alternative certificate subject name matches"},
                           Row{"localhost", 3600, false, "certificate"}, Row{"localhost", 3600, true, ""}}) {
        SCOPED_TRACE(row.told);
        const auto certificate = selfSigned(row.name, row.secondsLeft);
        sandbox::HttpServer server(
            [&](const auto&) {
                return ++asked, sandbox::HttpAnswer{500, ""};
            },
            [](const auto&...) {});
        ASSERT_EQ(server.start("127.0.0.1", 0, &certificate), "");
        stack.call("https://localhost:" + std::to_string(server.port()),
                   row.trusted ? folder.file("ca.pem", certificate.caCertificate) : stack.caFile());
        stack.send("getBearerToken");
        EXPECT_EQ(stack.shown(), tryAgain);
        EXPECT_THAT(stack.printed(), HasSubstr(row.told));
        EXPECT_EQ(asked, *row.told ? 0 : 1);  // the last one is in order, so that the others mean something
    }
}

std::string bytes(std::initializer_list<int> values) {
    return {values.begin(), values.end()};
}

TEST(Faults, Http2ThatEndsTheStreamOrTheConnectionLeadsToAPageAndNothingIsSentAgain) {
    RealStack stack(true, 2s);
    // Frames of RFC 9113, 6: SETTINGS and their acknowledgement, and the fault.
    const std::string settings = bytes({0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 4, 1, 0, 0, 0, 0});
    const std::string ok = bytes({0, 0, 1, 1, 4, 0, 0, 0, 1, 0x88});  // HEADERS of stream 1: ":status: 200"
    struct Row {
        const char* name;
        std::string frames;
        const char* told;
    };
    for (const Row& row : {
             Row{"GOAWAY, nothing done", bytes({0, 0, 8, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
                 "Error in the HTTP2 framing layer"},
             Row{"GOAWAY, an error", bytes({0, 0, 8, 7, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 11}),
                 "Operation timed out"},
             Row{"GOAWAY midway", ok + bytes({0, 0, 8, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}),
                 "Error in the HTTP2 framing layer"},
             Row{"RST_STREAM, an error", bytes({0, 0, 4, 3, 0, 0, 0, 0, 1, 0, 0, 0, 2}), "INTERNAL_ERROR"},
             Row{"RST_STREAM, refused", bytes({0, 0, 4, 3, 0, 0, 0, 0, 1, 0, 0, 0, 7}), "aborted"},
             Row{"RST_STREAM midway", ok + bytes({0, 0, 4, 3, 0, 0, 0, 0, 1, 0, 0, 0, 2}), "INTERNAL_ERROR"},
             Row{"a frame too large", bytes({255, 255, 255, 0, 0, 0, 0, 0, 1}), "Empty reply"},
             Row{"half a frame", bytes({0, 0, 4, 3, 0}), "not closed cleanly"},
         }) {
        SCOPED_TRACE(row.name);
        std::atomic<int> requests = 0;
        TestServer server(nullptr, {.raw = [&](sandbox::Connection& connection) {
                              if (TestServer::receiveUntil(connection, "\"}").ends_with("\"}")) ++requests;
                              TestServer::send(connection, settings + row.frames);
                              if (row.frames.size() > 5) TestServer::waitForClose(connection);
                          }});
        stack.call(server.url("", "localhost"), server.caFile());
        stack.send("getBearerToken");
        EXPECT_EQ(stack.shown(), tryAgain);
        EXPECT_THAT(stack.printed(), HasSubstr(row.told));
        EXPECT_EQ(requests, 1) << "it may have been carried out";
    }
}

}  // namespace
}  // namespace korvane::testing
