// SPDX-License-Identifier: Apache-2.0
// korvane-bench-operation ROUNDS CALLS: a PIN set over loopback, in clear and over TLS, with two services, by
// the component and by those it is compared with. Call by call in turns, so that whatever else the machine
// does hits all alike. Prints one JSON object a round and client, with percentiles in microseconds.
#include <curl/curl.h>
#include <korvane/platform/Ports.h>

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/network/Clients.h"
#include "benchmarks/network/Services.h"
#include "benchmarks/support/Samples.h"
#include "platform/linux/CurlUrlSession.h"
#include "sdk/SdkConfig.h"

namespace korvane::bench {
namespace {

constexpr int warmUp = 50;

struct Contender {
    const char* name;
    std::unique_ptr<Client> client;
    std::vector<double> times{};  // in microseconds
};

/// In another order each time: who comes after whom decides what is left in the caches.
void callAll(std::array<Contender, 4>& contenders) {
    static std::minstd_rand random;
    std::array<std::size_t, 4> order{0, 1, 2, 3};
    std::ranges::shuffle(order, random);
    for (const std::size_t next : order) {
        auto& [name, client, times] = contenders[next];
        client->prepare();
        const auto start = std::chrono::steady_clock::now();
        client->setPin();
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        times.push_back(time.count());
    }
}

/// The session of the component, with a note of its last request.
class NotingSession final : public UrlSession {
  public:
    explicit NotingSession(const std::string& caFile) : session_({.caFile = caFile}) {}

    std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) override {
        if (notes) last = request;
        return session_.start(std::move(request), std::move(reply));
    }

    bool notes = true;
    UrlRequest last;

  private:
    CurlUrlSession session_;
};

void measure(const std::string& name, Service& service, int rounds, int calls) {
    const auto session = std::make_shared<NotingSession>(service.caFile());
    auto own = onGLib(session);
    own->prepare();
    SdkConfig& config = SdkConfig::sharedInstance();
    config.ivIdStr.clear();
    service.enter(*own);
    for (int i = 0; i < 2; ++i) own->setPin();  // the first one gets the bearer token
    session->notes = false;
    const Call call{session->last,        service.caFile(),
                    config.ivIdStr,       {config.ivByteArray.begin(), config.ivByteArray.end()},
                    own->state()->cardId, config.currentPciToken};
    std::array<Contender, 4> contenders{{
        {"ours", std::move(own)},
        {"ours_qt", onQt(session)},
        {"bare", bareCurl(call)},
        {"qt", qtNetwork(call)},
    }};
    for (int i = 0; i < warmUp; ++i) callAll(contenders);
    for (int round = 0; round < rounds; ++round) {
        for (Contender& each : contenders) each.times.clear();
        for (int i = 0; i < calls; ++i) callAll(contenders);
        for (const Contender& each : contenders)
            printSample(name + "/" + each.name, round,
                        {{"p50", percentile(each.times, 0.5)}, {"p99", percentile(each.times, 0.99)}});
    }
    uninstallPorts();
}

}  // namespace
}  // namespace korvane::bench

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (argc != 3) return std::fputs("korvane-bench-operation ROUNDS CALLS\n", stderr), 2;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const int rounds = std::atoi(argv[1]);
    const int calls = std::atoi(argv[2]);
    for (const bool tls : {false, true}) {
        const std::string scheme = tls ? "_https" : "_http";
        korvane::bench::measure("operation" + scheme, *korvane::bench::developmentService(tls), rounds,
                                calls);
        korvane::bench::measure("operation_ready" + scheme, *korvane::bench::readyService(tls), rounds,
                                calls);
    }
}
