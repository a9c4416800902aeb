// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

#include "platform/linux/GLibPtr.h"

namespace korvane::testing {

/// The keyring and the fingerprint daemon, on buses of the test's own: devices.py has them and does what it
/// is asked. All goes when this goes, or the test dies.
class Devices {
  public:
    Devices() { g_setenv("DBUS_SESSION_BUS_ADDRESS", ask("address SESSION").c_str(), TRUE); }
    Devices(const Devices&) = delete;
    ~Devices() {
        g_output_stream_close(g_subprocess_get_stdin_pipe(script_.get()), nullptr, nullptr);
        g_subprocess_wait(script_.get(), nullptr, nullptr);
    }

    /// A method of the script's `Devices`, and its argument; what it answers. One that fails ends the test.
    std::string ask(const std::string& request) {
        g_output_stream_write_all(g_subprocess_get_stdin_pipe(script_.get()), (request + '\n').data(),
                                  request.size() + 1, nullptr, nullptr, nullptr);
        const GLibPtr<char> answer(g_data_input_stream_read_line(answers_.get(), nullptr, nullptr, nullptr));
        if (!answer) throw std::runtime_error("failed: " + request);
        return answer.get();
    }
    bool is(const std::string& request) { return ask(request) == "true"; }

  private:
    static constexpr auto pipes =
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE);

    const GLibPtr<GSubprocess> script_{g_subprocess_new(
        pipes, nullptr, "/usr/bin/python3", KORVANE_ROOT "/tests/platform/support/devices.py", nullptr)};
    const GLibPtr<GDataInputStream> answers_{
        g_data_input_stream_new(g_subprocess_get_stdout_pipe(script_.get()))};
};

}  // namespace korvane::testing
