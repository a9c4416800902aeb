// SPDX-License-Identifier: Apache-2.0
#include "sandbox/CommandLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <limits>

#include "sandbox/FaultRule.h"
#include "sandbox/MagicCards.h"

namespace korvane::sandbox {
namespace {

struct Option {
    std::string_view name;
    bool takesValue;
    /// Stores the value; answers what is wrong with it, or "".
    std::string (*store)(CommandLine&, std::string_view value);
};

template <class Number>
std::string whole(std::string_view value, Number least, Number most, Number& result) {
    Number number{};
    const auto [end, failure] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (failure != std::errc{} || end != value.data() + value.size() || number < least || number > most) {
        return "takes a whole number from " + std::to_string(least) + " to " + std::to_string(most);
    }
    result = number;
    return {};
}

std::string text(std::string_view value, std::string& result) {
    if (value.empty()) return "takes a value that is not empty";
    result = value;
    return {};
}

std::string seconds(std::string_view value, std::chrono::seconds& result) {
    constexpr std::int64_t longest = 365 * 24 * 60 * 60;
    std::int64_t number = 0;
    std::string error = whole<std::int64_t>(value, 1, longest, number);
    if (error.empty()) result = std::chrono::seconds(number);
    return error;
}

std::string seed(std::string_view value, std::optional<std::uint64_t>& result) {
    std::uint64_t number = 0;
    std::string error = whole<std::uint64_t>(value, 0, std::numeric_limits<std::uint64_t>::max(), number);
    if (error.empty()) result = number;
    return error;
}

using Line = CommandLine&;
using Value = std::string_view;

std::string file(std::string_view path, std::string& result) {
    std::ifstream stream{std::string(path), std::ios::binary};
    result.assign(std::istreambuf_iterator<char>(stream), {});
    return stream ? "" : "cannot read " + std::string(path);
}

std::string faults(std::string_view path, std::string& result) {
    if (std::string error = file(path, result); !error.empty()) return error;
    const auto rules = readFaultRules(result);
    return rules ? "" : std::string(path) + ": " + rules.reason();
}

constexpr std::array<Option, 17> options{{
    {"--listen", true, [](Line line, Value value) { return text(value, line.service.address); }},
    {"--port", true, [](Line line, Value value) { return whole(value, 0, 65535, line.service.port); }},
    {"--http", false, [](Line line, Value) { return line.service.tls = false, std::string{}; }},
    {"--tls-dir", true, [](Line line, Value value) { return text(value, line.service.tlsDirectory); }},
    {"--ca-out", true, [](Line line, Value value) { return text(value, line.caOut); }},
    {"--db", true, [](Line line, Value value) { return text(value, line.service.databaseFile); }},
    {"--key", true, [](Line line, Value value) { return text(value, line.service.keyBase64); }},
    {"--seed", true, [](Line line, Value value) { return seed(value, line.service.seed); }},
    {"--fault", true, [](Line line, Value value) { return faults(value, line.service.faultRules); }},
    {"--picture", true, [](Line line, Value value) { return file(value, line.service.picture); }},
    {"--iv-seconds", true, [](Line line, Value value) { return seconds(value, line.service.ivLife); }},
    {"--pci-token-seconds", true,
     [](Line line, Value value) { return seconds(value, line.service.pciTokenLife); }},
    {"--sms-token-seconds", true,
     [](Line line, Value value) { return seconds(value, line.service.smsTokenLife); }},
    {"--bearer-seconds", true,
     [](Line line, Value value) { return seconds(value, line.service.bearerTokenLife); }},
    {"--verbose", false, [](Line line, Value) { return line.verbose = true, std::string{}; }},
    {"--help", false, [](Line line, Value) { return line.help = true, std::string{}; }},
    {"-h", false, [](Line line, Value) { return line.help = true, std::string{}; }},
}};

}  // namespace

Outcome<CommandLine> readCommandLine(std::span<char*> arguments) {
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string name = arguments[i];
        const auto option = std::ranges::find(options, name, &Option::name);
        if (option == options.end()) return Failure{"unknown option " + name};
        std::string_view value;
        if (option->takesValue) {
            if (++i == arguments.size()) return Failure{name + " needs a value"};
            value = arguments[i];
        }
        if (std::string error = option->store(line, value); !error.empty())
            return Failure{name + " " + error};
    }
    if (!line.service.tls && (!line.caOut.empty() || !line.service.tlsDirectory.empty())) {
        return Failure{"--http has no certificate: leave out --tls-dir and --ca-out"};
    }
    if (!line.service.tls && !CardService::isLoopback(line.service.address)) {
        return Failure{"--http is for the loopback interface alone: leave out --listen " +
                       line.service.address};
    }
    return line;
}

std::string helpText() {
    std::string help = R"(Usage: korvane-sandbox [OPTION]...

The card service for development. It writes one line on standard output,
  {"url":"https://localhost:PORT","ca":"FILE","key":"BASE64","ivUrl":"https://localhost:PORT/host/iv"}
and serves until SIGINT or SIGTERM. Open the URL in a browser to see cards, requests and the last SMS code.
One line for each request goes to standard error.

Connection
  --listen ADDRESS       an address or name of this machine, for which the certificate is too; 0.0.0.0 and :: are
                         all of them. Without it, the loopback interface. Whoever reaches it can see every card
  --port N               port to listen on; 0, the default, takes a free one
  --http                 plain HTTP instead of HTTPS, on the loopback interface alone
  --tls-dir DIR          keep the CA in DIR (ca.pem, ca-key.pem), so that clients go on trusting it;
                         without it, each start makes a new CA
  --ca-out FILE          write the CA's certificate (PEM) to FILE

State
  --db FILE              keep cards, IVs, tokens and the key in the SQLite database FILE; without it, in memory
  --key BASE64           pre-shared key of 16, 24 or 32 bytes; without it, that of FILE or a new one of 32 bytes
  --fault FILE           fault rules from the start: a JSON object or a list of them, see below
  --picture FILE         every card's picture, in the place of one that is drawn for its type
  --seed N               make key, IVs, tokens and SMS codes repeatable. For tests alone: they are no secret then

Lifetimes in seconds
  --iv-seconds N         of an IV (600)
  --pci-token-seconds N  of a PCI token (300)
  --sms-token-seconds N  of an SMS code (300)
  --bearer-seconds N     of a bearer token (300)

Other
  --verbose              show deciphered fields, PINs among them, and SMS codes in the log
  -h, --help             show this text

Host side, plain JSON
  POST /host/iv          a new IV                 GET    /host/cards        all cards, with status and PIN
  POST /host/sms         the last SMS code        GET    /host/cards/ID     one card with all details
  POST /host/faults      add fault rules          GET    /host/magic        the cards that force a failure
  GET  /host/faults      those in force           GET    /host/faults/keys  what a rule may say
  DELETE /host/faults    forget them              POST   /host/reset        everything as at the start
  GET  /host/journal     counts, and the last 1000 requests deciphered; ?endpoint=NAME&card=ID&since=N&last=N

Keys of a fault rule. The first rule that fits a request acts. It may say one thing to answer or to do, one way
of sending it, and a delay.
)";
    const auto row = [&help](std::string_view name, std::string_view takes, std::string_view meaning) {
        const auto pad = [](std::string_view text, std::size_t width) {
            return std::string(text) + std::string(width > text.size() ? width - text.size() : 1, ' ');
        };
        help.append("  ").append(pad(name, 27)).append(takes.empty() ? "" : pad(takes, 21)).append(meaning) +=
            '\n';
    };
    for (const FaultKey& key : faultKeys()) row(key.name, key.takes, key.meaning);
    help += "\nCards that force a failure without any rule\n";
    for (const MagicCard& card : magicCards()) row(card.id, "", card.does);
    return help;
}

}  // namespace korvane::sandbox
