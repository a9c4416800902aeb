// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/GLibPtr.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::testing {

/// A program that is quiet; killed when this goes, or the test dies.
class Process {
  public:
    /// `environment` comes on top of the test's own; the file `input` is its standard input.
    explicit Process(const std::vector<std::string>& arguments,
                     const std::map<std::string, std::string>& environment = {},
                     const std::string& input = "/dev/null");
    ~Process();

    void signal(int number) { g_subprocess_send_signal(process_.get(), number); }

  private:
    GLibPtr<GSubprocess> process_;
};

/// A bus of the test's own, on which everybody may do everything, and which is this process's session bus.
class PrivateBus {
  public:
    PrivateBus();

    std::string address() const { return "unix:path=" + folder_ / "bus"; }
    GDBusConnection* connection() { return connection_.get(); }
    const TemporaryFolder& folder() const { return folder_; }

    bool hasOwner(const char* name);
    void waitForName(const char* name, bool owned = true);
    /// A call that must not fail; the reply is a tuple.
    GLibPtr<GVariant> call(const char* name, const char* path, const char* interface, const char* method,
                           GVariant* arguments);
    void kill() { process_.reset(); }

  private:
    TemporaryFolder folder_;
    std::unique_ptr<Process> process_;
    GLibPtr<GDBusConnection> connection_;
};

/// The keyring daemon, its login collection open, on a private bus.
class Keyring {
  public:
    explicit Keyring(bool started = true);

    void start(bool withLogin = true);
    void kill();
    void signal(int number) { process_->signal(number); }
    void lock();

    PrivateBus bus;
    const char* const loginPath = "/org/freedesktop/secrets/collection/login";

  private:
    std::unique_ptr<Process> process_;
};

/// The fingerprint daemon with a virtual reader on a private bus, and an authority that permits everything.
class VirtualReader {
  public:
    static constexpr const char* path = "/net/reactivated/Fprint/Device/0";
    static constexpr const char* interface = "net.reactivated.Fprint.Device";

    VirtualReader();

    void start();
    void startOnDemand();  ///< from now on the bus does
    void kill();
    void signal(int number) { process_->signal(number); }
    /// Enrols the finger "right".
    void enrol();
    void forgetFingers();
    /// One line to the virtual reader, such as "SCAN right"; waits until the reader is open.
    void send(const std::string& line);
    bool armed();  ///< waits for a finger
    /// A call of the reader's that must not fail, and one that may.
    GLibPtr<GVariant> device(const char* method, const char* argument = nullptr);
    bool allows(const char* method, const char* argument = nullptr);

    PrivateBus bus;

  private:
    std::vector<std::string> command() const;

    std::unique_ptr<Process> authority_;
    std::unique_ptr<Process> process_;
};

}  // namespace korvane::testing
