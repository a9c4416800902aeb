// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <iostream>
#include <string>

#include "sandbox/CommandLine.h"
#include "sandbox/Json.h"
#include "sandbox/OwnFile.h"

namespace {

constexpr int badArguments = 2;

int fail(const std::string& reason, int status) {
    std::cerr << "korvane-sandbox: " << reason << std::endl;
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace korvane::sandbox;
    Outcome<CommandLine> line =
        readCommandLine({argv + 1, static_cast<std::size_t>(argc > 0 ? argc - 1 : 0)});
    if (!line) return fail(line.reason() + "\nTry 'korvane-sandbox --help'.", badArguments);
    if (line->help) {
        std::cout << helpText();
        return 0;
    }

    // Blocked before the first thread starts, so that every thread inherits it and only sigwait takes them.
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);

    line->service.log = [](const std::string& text) { std::cerr << text + "\n" << std::flush; };
    line->service.logSecrets = line->verbose;
    CardService service(line->service);
    if (const std::string error = service.start(); !error.empty()) return fail(error, 1);

    std::string ca = line->caOut;
    if (ca.empty() && !line->service.tlsDirectory.empty()) ca = line->service.tlsDirectory + "/ca.pem";
    if (!line->caOut.empty()) {
        if (const std::string error = writeOwnFile(line->caOut, service.caPem()); !error.empty())
            return fail(error, 1);
    }
    std::cout << writeJson(JsonObject{{"url", service.url()},
                                      {"ca", ca},
                                      {"key", service.keyBase64()},
                                      {"ivUrl", service.ivUrl()}})
              << std::endl;

    int received = 0;
    sigwait(&ending, &received);
    service.stop();
    return 0;
}
