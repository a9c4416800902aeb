// SPDX-License-Identifier: Apache-2.0
// A journey without a window: each line of standard input is the id of a control to use, or digits to type.
#include <glib-unix.h>
#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>
#include <korvane/linux/LinuxPorts.h>

#include <iostream>

#include "IvAnswer.h"

int main(int argc, char** argv) {
    if (argc != 5) return std::cerr << "usage: cpp-host SERVICE KEY IV-URL CA-FILE\n", 2;

    korvane::installPorts(korvane::linuxPorts(argv[4]));
    std::vector<std::unique_ptr<korvane::UrlTask>> questions;  // letting go of one would cancel it
    const auto ivCallback = [&questions, ivUrl = argv[3]](korvane::IvReply reply) {
        const korvane::UrlRequest request{"POST", ivUrl, {{"Content-Type", "application/json"}}, "{}"};
        questions.push_back(korvane::ports().urlSession->start(request, [reply](korvane::UrlReply answer) {
            const auto iv = answer.status == 200 ? readIvAnswer(answer.body) : std::nullopt;
            iv ? reply(iv->id, iv->bytes) : reply({}, {});
        }));
    };
    if (!korvane::initialize(argv[2], argv[1], ivCallback, false, {}, {}))
        return std::cerr << "a bad key\n", 2;

    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    const auto closed = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI, [loop](const korvane::NotificationUserInfo& info) {
            std::cout << "closed: " << info.at("result") << std::endl;
            g_main_loop_quit(loop);
        });
    {
        korvane::Journey journey(korvane::JourneyKind::setPIN, "card-physical-active");
        journey.onChange([&journey] {
            const korvane::ScreenSnapshot screen = journey.screen();
            if (!screen.spinner) std::cout << "screen: " << screen.view << std::endl;
        });
        journey.appear();
        const auto read = [](int, GIOCondition, void* journey) -> gboolean {
            std::string line;
            if (!std::getline(std::cin, line)) return G_SOURCE_REMOVE;
            auto* const shown = static_cast<korvane::Journey*>(journey);
            if (shown->replaceText(line) != korvane::Journey::Outcome::done) shown->perform(line);
            return G_SOURCE_CONTINUE;
        };
        const guint input = g_unix_fd_add(0, G_IO_IN, read, &journey);
        g_main_loop_run(loop);
        g_source_remove(input);
    }
    korvane::uninstallPorts();
    g_main_loop_unref(loop);
}
