// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <string_view>

#include "sandbox/Outcome.h"
#include "sandbox/Wire.h"

namespace korvane::sandbox {
namespace {

constexpr const char* usage = R"(Usage: korvane-wire --to HOST:PORT [OPTION]... [FAULT]

Stands between an app and a service, forwards bytes, and makes one fault. It writes one line on standard output,
  {"port":PORT,"to":"HOST:PORT"}
and runs until SIGINT or SIGTERM. Have the app call PORT in the place of the service's, under the same host name when
it is over TLS: what the bytes say is not looked at, so the certificate is the service's own.
One line for each connection goes to standard error.

  --to HOST:PORT         the service
  --port N               port to listen on; 0, the default, takes a free one
  --listen ADDRESS       address of this machine to listen on (127.0.0.1)
  --skip N               let N connections through first (0)
  --times N              only N connections meet the fault, 0 is all (0)
  -h, --help             show this text

Faults. They are made on the service's bytes, which are counted from the start of a connection; over TLS they are
enciphered, and the handshake counts.
  refuse                 connections are refused
  reset N                the connection is reset after N bytes; with 0 the service has had the request all the same
  close N                it is closed after N bytes
  stall N                nothing comes after N bytes, and the connection stays open
  drip N MS              N bytes come at a time, MS milliseconds apart
  reply FILE             the file's bytes come in the place of the answer, and then the end (plain HTTP alone)
)";

template <class Number>
bool read(std::string_view text, Number most, Number& number) {
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc{} && end == text.data() + text.size() && number >= 0 && number <= most;
}

struct Arguments {
    std::string host, address = "127.0.0.1";
    int servicePort = 0, port = 0;
    WireFault fault;
    bool help = false;
};

bool readService(std::string_view text, Arguments& into) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    into.host = text.substr(0, colon);
    if (into.host.front() == '[' && into.host.back() == ']') into.host = into.host.substr(1, colon - 2);
    return read(text.substr(colon + 1), 65535, into.servicePort) && into.servicePort > 0;
}

Outcome<WireFault> readWireFault(std::span<char* const> words) {
    using Kind = WireFault::Kind;
    struct Row {
        std::string_view name;
        Kind kind;
        std::size_t words;
    };
    static constexpr std::array<Row, 6> rows{{{"refuse", Kind::refuse, 1},
                                              {"reset", Kind::reset, 2},
                                              {"close", Kind::close, 2},
                                              {"stall", Kind::stall, 2},
                                              {"drip", Kind::drip, 3},
                                              {"reply", Kind::reply, 2}}};
    WireFault fault;
    if (words.empty()) return fault;
    const auto row = std::ranges::find(rows, std::string_view(words[0]), &Row::name);
    if (row == rows.end()) return Failure{"no such fault: " + std::string(words[0])};
    if (words.size() != row->words) {
        return Failure{std::string(row->name) + " takes " + std::to_string(row->words - 1) +
                       (row->words == 2 ? " value" : " values")};
    }
    fault.kind = row->kind;
    if (row->kind == Kind::reply) {
        std::ifstream file(words[1], std::ios::binary);
        fault.text.assign(std::istreambuf_iterator<char>(file), {});
        if (!file) return Failure{"cannot read " + std::string(words[1])};
        return fault;
    }
    int pause = 0;
    if (row->words > 1 && !read(words[1], std::size_t{1} << 40, fault.bytes)) {
        return Failure{std::string(row->name) + " takes a number of bytes"};
    }
    if (row->kind == Kind::drip && (fault.bytes == 0 || !read(words[2], 3'600'000, pause))) {
        return Failure{"drip takes at least 1 byte, and at most 3600000 milliseconds"};
    }
    fault.pause = std::chrono::milliseconds(pause);
    return fault;
}

Outcome<Arguments> readArguments(std::span<char* const> words) {
    Arguments arguments;
    std::size_t skip = 0, times = 0, next = 0;
    for (; next < words.size() && std::string_view(words[next]).starts_with('-'); next += 2) {
        const std::string name = words[next];
        arguments.help = name == "-h" || name == "--help";
        if (arguments.help) return arguments;
        constexpr std::array known{"--to", "--port", "--listen", "--skip", "--times"};
        if (std::ranges::find(known, name) == known.end()) return Failure{"unknown option " + name};
        if (next + 1 == words.size()) return Failure{name + " needs a value"};
        const std::string value = words[next + 1];
        if (name == "--listen") arguments.address = value;
        if (name == "--to" && !readService(value, arguments)) return Failure{"--to takes HOST:PORT"};
        if ((name == "--port" && !read(value, 65535, arguments.port)) ||
            (name == "--skip" && !read(value, std::size_t{1'000'000}, skip)) ||
            (name == "--times" && !read(value, std::size_t{1'000'000}, times))) {
            return Failure{name + " takes a whole number up to " + (name == "--port" ? "65535" : "1000000")};
        }
    }
    if (arguments.host.empty()) return Failure{"--to is missing"};
    const Outcome<WireFault> fault = readWireFault(words.subspan(next));
    if (!fault) return Failure{fault.reason()};
    arguments.fault = *fault;
    arguments.fault.skip = skip;
    arguments.fault.times = times;
    return arguments;
}

int fail(const std::string& reason, int status) {
    std::cerr << "korvane-wire: " << reason << std::endl;
    return status;
}

int run(const Arguments& arguments) {
    // Blocked before the first thread starts, so that every thread inherits it and only sigwait takes them.
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);

    Wire wire([](const std::string& line) { std::cerr << line + "\n" << std::flush; });
    wire.set(arguments.fault);
    const std::string failure =
        wire.start(arguments.host, arguments.servicePort, arguments.address, arguments.port);
    if (!failure.empty()) return fail(failure, 1);
    std::cout << "{\"port\":" << wire.port() << ",\"to\":\"" << arguments.host << ':' << arguments.servicePort
              << "\"}" << std::endl;
    int received = 0;
    sigwait(&ending, &received);
    return 0;
}

}  // namespace
}  // namespace korvane::sandbox

int main(int argc, char** argv) {
    using namespace korvane::sandbox;
    const auto arguments = readArguments({argv + 1, static_cast<std::size_t>(argc > 0 ? argc - 1 : 0)});
    if (!arguments) return fail(arguments.reason() + "\nTry 'korvane-wire --help'.", 2);
    if (!arguments->help) return run(*arguments);
    std::cout << usage;
    return 0;
}
