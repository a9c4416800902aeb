// SPDX-License-Identifier: Apache-2.0
#include <korvane/korvane.h>

#include <glib-unix.h>
#include <glib.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "Events.h"
#include "IvFromUrl.h"
#include "JourneyArguments.h"
#include "JourneyConsole.h"

namespace korvane {
namespace {

constexpr int badArguments = 2;

void writeLine(const std::string& line) {
    std::fputs((line + '\n').c_str(), stdout);
    std::fflush(stdout);
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

/// The console as the device: what a person would see becomes an event, the log goes to standard error.
korvane_host consoleHost(const JourneyArguments& arguments) {
    korvane_host host{};
    host.size = sizeof host;
    host.loop = KORVANE_LOOP_GLIB;
    host.ca_file = arguments.caFile.empty() ? nullptr : arguments.caFile.c_str();
    host.log_values = arguments.maskSecrets ? KORVANE_LOG_MASKED : KORVANE_LOG_CLEAR;
    host.log_line = [](void*, const char* line) { std::fputs((std::string{line} + '\n').c_str(), stderr); };
    host.copied = [](void*, const char* text) { writeLine(event("pasteboard", "text", text)); };
    if (!arguments.biometrics) return host;
    host.prompt = [](void*, const char* reason) {
        writeLine(reason ? event("prompt", "reason", reason) : event("prompt", "shown", "false"));
        if (reason) korvane_prompt_visible(1);  // an event that is out counts as seen
    };
    host.prompt_message = [](void*, const char* id) { writeLine(event("prompt", "message", id)); };
    return host;
}

int fail(korvane_status status) {
    std::fprintf(stderr, "korvane-journey: %s\n", korvane_status_text(status));
    return badArguments;
}

int run(const JourneyArguments& arguments) {
    const korvane_host host = consoleHost(arguments);
    if (const korvane_status status = korvane_set_up(&host); status != KORVANE_OK) return fail(status);
    IvFromUrl ivs(arguments.ivUrl, arguments.caFile);
    korvane_config config{};
    config.size = sizeof config;
    config.key = arguments.key.c_str();
    config.api_url = arguments.service.c_str();
    config.iv_callback = &IvFromUrl::supply;
    config.iv_context = &ivs;
    config.use_biometrics = arguments.biometrics;
    if (const korvane_status status = korvane_initialize(&config); status != KORVANE_OK) return fail(status);

    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop{g_main_loop_new(nullptr, FALSE),
                                                                        &g_main_loop_unref};
    int status = 0;
    JourneyConsole console(writeLine, [&](int exitStatus) {
        status = exitStatus;
        g_main_loop_quit(loop.get());
    });
    console.start(arguments.journey, arguments.card);
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
    korvane_tear_down();
    return status;
}
