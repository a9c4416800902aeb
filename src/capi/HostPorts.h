// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/korvane.h>
#include <korvane/platform/BiometricPrompt.h>
#include <korvane/platform/Ports.h>

#include <memory>

typedef struct _GMainContext GMainContext;

namespace korvane {

/// The prompt of a host that draws it by itself. Main thread.
class HostPrompt final : public BiometricPrompt {
  public:
    explicit HostPrompt(const korvane_host& host) : host_(host) {}

    std::unique_ptr<Handle> show(const std::string& reason, Callbacks callbacks) override;

    /// False when no prompt is shown.
    bool setVisible(bool visible);
    bool cancel();

  private:
    class Shown;

    korvane_host host_;
    std::weak_ptr<Shown> shown_;
};

/// The device of a host that speaks C.
struct HostPorts {
    /// @param context  of the main loop; none: the default one
    HostPorts(const korvane_host& host, GMainContext* context);

    std::shared_ptr<HostPrompt> prompt;
    Ports ports;
};

}  // namespace korvane
