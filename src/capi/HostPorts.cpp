// SPDX-License-Identifier: Apache-2.0
#include "capi/HostPorts.h"

#include <utility>

#include "base/Secret.h"
#include "capi/HostCallback.h"
#include "platform/LogConsole.h"
#include "platform/linux/LinuxPorts.h"

namespace korvane {
namespace {

class HostConsole final : public Console {
  public:
    explicit HostConsole(const korvane_host& host) : host_(host) {}
    void line(std::string_view text) override {
        const Wiped<std::string> terminated{std::string(text)};  // some lines print secrets (deliberate)
        const HostCallback inside;
        host_.log_line(host_.context, terminated->c_str());
    }

  private:
    korvane_host host_;
};

class HostTexts final : public StringTable {
  public:
    explicit HostTexts(const korvane_host& host) : host_(host) {}
    std::string text(std::string_view key) const override {
        const HostCallback inside;
        const char* const found = host_.text(host_.context, std::string{key}.c_str());
        return found ? std::string{found} : std::string{key};
    }

  private:
    korvane_host host_;
};

class HostPasteboard final : public Pasteboard {
  public:
    explicit HostPasteboard(const korvane_host& host) : host_(host) {}
    bool setString(const std::string& text) override {
        held_ = Wiped<std::string>{text};
        const HostCallback inside;
        host_.copied(host_.context, text.c_str());
        return true;
    }
    void clearIfHolds(const std::string& text) override {
        if (*held_ == text) setString({});
    }

  private:
    korvane_host host_;
    Wiped<std::string> held_;
};

LogValues logValues(const korvane_host& host) {
    if (host.mask_secrets || host.log_values == KORVANE_LOG_MASKED) return LogValues::masked;
    return host.log_values == KORVANE_LOG_CLEAR ? LogValues::clear : LogValues::byBuild;
}

}  // namespace

class HostPrompt::Shown {
  public:
    Shown(const korvane_host& host, Callbacks callbacks) : host_(host), callbacks_(std::move(callbacks)) {}
    ~Shown() { show(nullptr); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    void show(const char* reason) const {
        const HostCallback inside;
        host_.prompt(host_.context, reason);
    }
    void tell(std::string_view messageId) const {
        if (!host_.prompt_message) return;
        const HostCallback inside;
        host_.prompt_message(host_.context, std::string{messageId}.c_str());
    }
    void setVisible(bool visible) const { callbacks_.visibilityChanged(visible); }
    void cancel() {
        if (const auto cancelled = std::exchange(callbacks_.cancelled, nullptr)) cancelled();
    }

  private:
    korvane_host host_;
    Callbacks callbacks_;
};

std::unique_ptr<BiometricPrompt::Handle> HostPrompt::show(const std::string& reason, Callbacks callbacks) {
    class ShownHandle final : public Handle {
      public:
        explicit ShownHandle(std::shared_ptr<Shown> shown) : shown_(std::move(shown)) {}
        void tell(std::string_view messageId) override { shown_->tell(messageId); }

      private:
        std::shared_ptr<Shown> shown_;
    };

    auto shown = std::make_shared<Shown>(host_, std::move(callbacks));
    shown_ = shown;
    shown->show(reason.c_str());
    return std::make_unique<ShownHandle>(std::move(shown));
}

// The host may answer from inside its callback, and a check's callbacks never run from inside `show`.

bool HostPrompt::setVisible(bool visible) {
    ports().mainQueue->post([weak = shown_, visible] {
        if (const auto shown = weak.lock()) shown->setVisible(visible);
    });
    return !shown_.expired();
}

bool HostPrompt::cancel() {
    ports().mainQueue->post([weak = shown_] {
        if (const auto shown = weak.lock()) shown->cancel();
    });
    return !shown_.expired();
}

HostPorts::HostPorts(const korvane_host& host, GMainContext* context) {
    if (host.prompt) prompt = std::make_shared<HostPrompt>(host);
    ports = linuxPorts({.caFile = host.ca_file ? host.ca_file : "",
                        .logValues = LogValues::clear,
                        .prompt = prompt,
                        .appId = host.app_id ? host.app_id : "",
                        .context = context});
    if (host.log_line) ports.console = std::make_shared<HostConsole>(host);
    ports.console = logConsole(ports.console, logValues(host));
    if (host.text) ports.stringTable = std::make_shared<HostTexts>(host);
    if (host.copied) ports.pasteboard = std::make_shared<HostPasteboard>(host);
    if (host.language) ports.languageCode = host.language;
}

}  // namespace korvane
