// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>
#include <korvane/platform/Ports.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include <glib-unix.h>
#include <glib.h>
#include <unistd.h>

#include "ConsolePrompt.h"
#include "Events.h"
#include "JourneyArguments.h"
#include "JourneyConsole.h"
#include "common/HostIv.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/FprintdContext.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/StdoutConsole.h"

namespace korvane {
namespace {

constexpr int badArguments = 2;

void writeLine(const std::string& line) {
    std::fputs((line + '\n').c_str(), stdout);
    std::fflush(stdout);
}

/// What is copied becomes an event, and so does its being cleared, as an empty text.
class EventPasteboard final : public Pasteboard {
  public:
    bool setString(const std::string& text) override {
        held_ = text;
        writeLine(pasteboardEvent(held_));
        return true;
    }
    void clearIfHolds(const std::string& text) override {
        if (held_ == text) setString({});
    }

  private:
    std::string held_;
};

/// The language of the process's messages ("es_MX.UTF-8" is "es"): POSIX has three variables for it, the
/// first one that is set counts.
std::string languageCode() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const locale = std::getenv(name);
        if (locale && *locale) return std::string{locale}.substr(0, std::strcspn(locale, "_.@"));
    }
    return {};
}

/// Reads lines of standard input without ever waiting for one.
class CommandReader {
  public:
    explicit CommandReader(JourneyConsole& console) : console_(console) {
        source_ = g_unix_fd_add(
            STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR),
            [](gint, GIOCondition, gpointer self) { return static_cast<CommandReader*>(self)->read(); },
            this);
    }
    ~CommandReader() {
        if (source_ != 0) g_source_remove(source_);
    }
    CommandReader(const CommandReader&) = delete;
    CommandReader& operator=(const CommandReader&) = delete;

  private:
    gboolean read() {
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            source_ = 0;
            if (!pending_.empty()) console_.command(std::exchange(pending_, {}));
            console_.endOfInput();
            return G_SOURCE_REMOVE;
        }
        pending_.append(bytes, static_cast<std::size_t>(count));
        for (std::size_t end; (end = pending_.find('\n')) != std::string::npos;) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            console_.command(std::move(line));
        }
        return G_SOURCE_CONTINUE;
    }

    JourneyConsole& console_;
    std::string pending_;
    guint source_ = 0;
};

int run(const JourneyArguments& arguments) {
    CurlUrlSessionOptions urlSessionOptions;
    urlSessionOptions.caFile = arguments.caFile;
    Ports device{.mainQueue = std::make_shared<GLibMainQueue>(),
                 .timers = std::make_shared<GLibTimers>(),
                 .urlSession = std::make_shared<CurlUrlSession>(urlSessionOptions),
                 .console = std::make_shared<StdoutConsole>(stderr),
                 .pasteboard = std::make_shared<EventPasteboard>(),
                 .languageCode = languageCode()};
    const auto prompt = std::make_shared<ConsolePrompt>(writeLine);
    // With biometrics off the store is there all the same: `initialize` deletes what an earlier run kept.
    device.secureItemStore = std::make_shared<SecretServiceStore>();
    if (arguments.biometrics) {
        device.biometricContext = std::make_shared<FprintdContext>(device.mainQueue, prompt);
    }
    if (!installPorts(std::move(device))) return badArguments;
    if (!initialize(arguments.key, arguments.service, hostIvCallback(arguments.ivUrl), arguments.biometrics,
                    KorvaneColors{}, KorvaneCornerRadii{})) {
        std::fputs("korvane-journey: --key is not base64\n", stderr);
        return badArguments;
    }

    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop{g_main_loop_new(nullptr, FALSE),
                                                                        &g_main_loop_unref};
    int status = 0;
    JourneyConsole console(
        arguments.journey, arguments.card, writeLine, [&] { return prompt->cancel(); },
        [&](int exitStatus) {
            status = exitStatus;
            g_main_loop_quit(loop.get());
        });
    console.start();
    const CommandReader reader(console);
    g_main_loop_run(loop.get());
    return status;
}

}  // namespace
}  // namespace korvane

int main(int argc, char** argv) {
    if (argc == 2 && (std::string_view{argv[1]} == "--help" || std::string_view{argv[1]} == "-h")) {
        std::fputs(korvane::usage, stdout);
        return 0;
    }
    const auto arguments = korvane::parseArguments(argc, argv);
    if (const auto* const wrong = std::get_if<std::string>(&arguments)) {
        std::fprintf(stderr, "korvane-journey: %s\n\n%s", wrong->c_str(), korvane::usage);
        return korvane::badArguments;
    }
    const int status = korvane::run(std::get<korvane::JourneyArguments>(arguments));
    korvane::uninstallPorts();
    return status;
}
