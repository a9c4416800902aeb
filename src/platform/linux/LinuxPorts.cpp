// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxPorts.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/LogConsole.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/FprintdContext.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/StdoutConsole.h"

namespace korvane {
namespace {

/// The language of the process's messages ("es_MX.UTF-8" is "es"): POSIX has three variables for it, the
/// first one that is set counts.
std::string localeLanguage() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const locale = std::getenv(name);
        if (locale && *locale) return std::string{locale}.substr(0, std::strcspn(locale, "_.@"));
    }
    return {};
}

}  // namespace

Ports linuxPorts(const LinuxPortsOptions& options) {
    CurlUrlSessionOptions session;
    session.caFile = options.caFile;
    Ports ports;
    ports.mainQueue = std::make_shared<GLibMainQueue>(options.context);
    ports.timers = std::make_shared<GLibTimers>(options.context);
    ports.urlSession = std::make_shared<CurlUrlSession>(session);
    ports.console = logConsole(std::make_shared<StdoutConsole>(), options.logValues);
    // The store is there with biometrics off too: `initialize` deletes what an earlier run kept.
    ports.secureItemStore = std::make_shared<SecretServiceStore>(SecretServiceStoreOptions{options.appId});
    if (options.prompt)
        ports.biometricContext = std::make_shared<FprintdContext>(ports.mainQueue, options.prompt);
    ports.languageCode = localeLanguage();
    return ports;
}

Ports linuxPorts(const std::string& caFile, std::shared_ptr<BiometricPrompt> prompt, GMainContext* context) {
    return linuxPorts(LinuxPortsOptions{.caFile = caFile, .prompt = std::move(prompt), .context = context});
}

}  // namespace korvane
