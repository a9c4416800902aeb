// SPDX-License-Identifier: Apache-2.0
// Loaded before an app by LD_PRELOAD: tells on standard error when the first frame of its first window was
// there, and the memory that the process had then, and ends it. The app itself is as it is shipped.
//
// KORVANE_BENCH_START is when the process was started, in nanoseconds of CLOCK_MONOTONIC.
#include <time.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QQuickWindow>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// Of /proc/self/smaps_rollup, in KiB.
long memory(const char* name) {
    long size = 0;
    char line[256];
    if (std::FILE* const file = std::fopen("/proc/self/smaps_rollup", "r")) {
        while (std::fgets(line, sizeof line, file)) {
            if (std::strncmp(line, name, std::strlen(name)) == 0) size = std::atol(line + std::strlen(name));
        }
        std::fclose(file);
    }
    return size;
}

void report() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const char* const start = std::getenv("KORVANE_BENCH_START");
    const long long elapsed = now.tv_sec * 1'000'000'000LL + now.tv_nsec - (start ? std::atoll(start) : 0LL);
    std::fprintf(stderr, "first-frame {\"ms\":%.3f,\"pss_kib\":%ld,\"rss_kib\":%ld}\n",
                 static_cast<double>(elapsed) / 1e6, memory("Pss:"), memory("Rss:"));
    ::_exit(0);
}

class Watcher final : public QObject {
  public:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::Show || window_) return false;
        window_ = qobject_cast<QQuickWindow*>(object);
        if (window_) connect(window_, &QQuickWindow::frameSwapped, this, report, Qt::DirectConnection);
        return false;
    }

  private:
    QQuickWindow* window_ = nullptr;
};

void watch() {
    static Watcher* const watcher = new Watcher;
    QCoreApplication::instance()->installEventFilter(watcher);
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)
