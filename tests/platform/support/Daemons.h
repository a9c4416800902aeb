// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;

namespace korvane::testing {

/// A folder that goes with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    std::string operator/(const std::string& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

/// A program in a process group of its own; the group is killed when this goes, or the test dies.
class Process {
  public:
    /// `environment` has "NAME=value" on top of the test's own; the file `input` is its standard input.
    Process(std::vector<std::string> arguments, std::vector<std::string> environment,
            const std::string& input = "");
    ~Process() { kill(); }
    Process(const Process&) = delete;

    void signal(int number);
    /// Kills the group and waits for its end.
    void kill();
    std::string firstLine() const;  ///< of its standard output; waits for it

  private:
    pid_t pid_ = -1;
    int output_ = -1;
};

/// A bus of the test's own, on which everybody may do everything.
class PrivateBus {
  public:
    PrivateBus();
    ~PrivateBus();

    const std::string& address() const { return address_; }
    void waitForName(const std::string& name, bool owned = true);
    /// A call that must not fail. The reply is a tuple; the caller unreferences it.
    GVariant* call(const std::string& name, const std::string& path, const std::string& interface,
                   const std::string& method, GVariant* arguments);
    GDBusConnection* connection() { return connection_; }
    const TemporaryFolder& folder() const { return folder_; }
    void kill() { process_.reset(); }

  private:
    TemporaryFolder folder_;
    std::unique_ptr<Process> process_;
    std::string address_;
    GDBusConnection* connection_ = nullptr;
};

/// The keyring daemon, its login collection open, on a private bus that is this process's session bus.
class Keyring {
  public:
    explicit Keyring(bool started = true);

    void start(bool withLogin = true);
    void kill();
    void signal(int number) { process_->signal(number); }
    void lock();

    PrivateBus bus;
    std::string loginPath = "/org/freedesktop/secrets/collection/login";

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
    /// One line to the virtual reader, such as "SCAN right"; waits until the reader is open.
    void send(const std::string& line);
    bool armed();  ///< waits for a finger
    GVariant* device(const std::string& method, GVariant* arguments);

    PrivateBus bus;

  private:
    std::vector<std::string> command() const;

    std::unique_ptr<Process> authority_;
    std::unique_ptr<Process> process_;
};

}  // namespace korvane::testing
