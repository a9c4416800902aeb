// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/support/Daemons.h"

#include <gio/gio.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace korvane::testing {
namespace {

constexpr const char* fprint = "net.reactivated.Fprint";
constexpr const char* secrets = "org.freedesktop.secrets";
constexpr const char* polkit = "org.freedesktop.PolicyKit1";

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (auto& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

void retry(const std::string& what, const std::function<bool()>& attempt) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!attempt()) {
        if (std::chrono::steady_clock::now() > until) fail(what);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "korvane-XXXXXX";
    if (!mkdtemp(name.data())) fail("no temporary folder");
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Process::Process(std::vector<std::string> arguments, std::vector<std::string> environment,
                 const std::string& input) {
    for (char** variable = environ; *variable; ++variable) environment.emplace_back(*variable);
    const auto argv = pointers(arguments), envp = pointers(environment);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) fail("no pipe");
    const int in = open(input.empty() ? "/dev/null" : input.c_str(), O_RDONLY | O_CLOEXEC);
    const int quiet = open("/dev/null", O_WRONLY | O_CLOEXEC);
    pid_ = fork();
    if (pid_ == 0) {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(in, 0);
        dup2(ends[1], 1);
        if (!getenv("KORVANE_TEST_DAEMON_LOG")) dup2(quiet, 2);
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    setpgid(pid_, pid_);
    for (const int end : {in, quiet, ends[1]}) close(end);
    output_ = ends[0];
}

void Process::signal(int number) {
    ::kill(-pid_, number);
}

void Process::kill() {
    if (pid_ < 0) return;
    signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
    close(output_);
    pid_ = -1;
}

std::string Process::firstLine() const {
    std::string line;
    for (char byte = 0; read(output_, &byte, 1) == 1 && byte != '\n';) line.push_back(byte);
    return line;
}

PrivateBus::PrivateBus() {
    std::filesystem::create_directory(folder_ / "services");
    std::ofstream(folder_ / "bus.conf")
        << "<busconfig><type>system</type><listen>unix:path=" << folder_ / "bus"
        << "</listen>"
        << "<servicedir>" << folder_ / "services"
        << "</servicedir><auth>EXTERNAL</auth><policy context='default'><allow send_destination='*' "
           "eavesdrop='true'/>"
        << "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>";
    process_ = std::make_unique<Process>(
        std::vector<std::string>{"dbus-daemon", "--config-file=" + folder_ / "bus.conf", "--nofork",
                                 "--nopidfile", "--print-address=1"},
        std::vector<std::string>{});
    address_ = process_->firstLine();
    connection_ = g_dbus_connection_new_for_address_sync(
        address_.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    if (!connection_) fail("no bus at '" + address_ + "'");
}

PrivateBus::~PrivateBus() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
}

void PrivateBus::waitForName(const std::string& name, bool owned) {
    retry(name + " does not come", [&] {
        GVariant* reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                               "NameHasOwner", g_variant_new("(s)", name.c_str()));
        gboolean now = FALSE;
        g_variant_get(reply, "(b)", &now);
        g_variant_unref(reply);
        return (now != FALSE) == owned;
    });
}

GVariant* PrivateBus::call(const std::string& name, const std::string& path, const std::string& interface,
                           const std::string& method, GVariant* arguments) {
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(connection_, name.c_str(), path.c_str(), interface.c_str(),
                                                  method.c_str(), arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                                  10'000, nullptr, &error);
    if (!reply) {
        const std::string message = error->message;
        g_error_free(error);
        fail(method + ": " + message);
    }
    return reply;
}

Keyring::Keyring(bool started) {
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
    if (started) start();
}

void Keyring::start(bool withLogin) {
    const auto& folder = bus.folder();
    std::ofstream(folder / "password") << "password";
    std::vector<std::string> arguments = {"gnome-keyring-daemon", "--foreground", "--components=secrets",
                                          "--control-directory=" + folder / "control"};
    if (withLogin) arguments.emplace_back("--unlock");
    process_ = std::make_unique<Process>(
        arguments,
        std::vector<std::string>{"HOME=" + folder / "home", "XDG_RUNTIME_DIR=" + folder / "run",
                                 "XDG_DATA_HOME=" + folder / "data"},
        folder / "password");
    bus.waitForName(secrets);
}

void Keyring::kill() {
    process_.reset();
    bus.waitForName(secrets, false);
}

void Keyring::lock() {
    const char* const paths[] = {loginPath.c_str()};
    g_variant_unref(bus.call(secrets, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service", "Lock",
                             g_variant_new("(@ao)", g_variant_new_objv(paths, 1))));
}

VirtualReader::VirtualReader() {
    const std::vector<std::string> environment = {"DBUS_SYSTEM_BUS_ADDRESS=" + bus.address()};
    authority_ = std::make_unique<Process>(
        std::vector<std::string>{"/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "polkitd"},
        environment);
    bus.waitForName(polkit);
    g_variant_unref(bus.call(polkit, "/org/freedesktop/PolicyKit1/Authority", "org.freedesktop.DBus.Mock",
                             "AllowUnknown", g_variant_new("(b)", TRUE)));
    start();
}

void VirtualReader::start() {
    std::filesystem::create_directories(bus.folder() / "state");
    process_ = std::make_unique<Process>(command(), std::vector<std::string>{});
    bus.waitForName(fprint);
}

void VirtualReader::startOnDemand() {
    std::ofstream file(bus.folder() / "services/net.reactivated.Fprint.service");
    file << "[D-BUS Service]\nName=" << fprint << "\nUser=root\nExec=";
    for (const auto& word : command()) file << word << ' ';
    file << '\n' << std::flush;
    g_variant_unref(bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                             "ReloadConfig", nullptr));
}

std::vector<std::string> VirtualReader::command() const {
    return {"/usr/bin/env",
            "DBUS_SYSTEM_BUS_ADDRESS=" + bus.address(),
            "FP_VIRTUAL_DEVICE=" + bus.folder() / "reader",
            "STATE_DIRECTORY=" + bus.folder() / "state",
            "/usr/libexec/fprintd",
            "-t"};
}

void VirtualReader::kill() {
    process_.reset();
    bus.waitForName(fprint, false);
}

GVariant* VirtualReader::device(const std::string& method, GVariant* arguments) {
    return bus.call(fprint, path, interface, method, arguments);
}

void VirtualReader::enrol() {
    int stages = 0;
    const auto count = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                          gpointer counter) { ++*static_cast<int*>(counter); };
    const unsigned status =
        g_dbus_connection_signal_subscribe(bus.connection(), fprint, interface, "EnrollStatus", nullptr,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, count, &stages, nullptr);
    g_variant_unref(device("Claim", g_variant_new("(s)", "")));
    g_variant_unref(device("EnrollStart", g_variant_new("(s)", "right-index-finger")));
    for (int stage = 1; stage <= 5; ++stage) {
        send("SCAN right");
        while (stages < stage) g_main_context_iteration(nullptr, TRUE);
    }
    g_dbus_connection_signal_unsubscribe(bus.connection(), status);
    g_variant_unref(device("EnrollStop", nullptr));
    g_variant_unref(device("Release", nullptr));
}

void VirtualReader::send(const std::string& line) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (bus.folder() / "reader").copy(address.sun_path, sizeof address.sun_path - 1);
    retry("the reader is not open", [&] {
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const bool connected =
            connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        if (connected) (void)!write(socket, line.data(), line.size());
        close(socket);
        return connected;
    });
}

bool VirtualReader::armed() {
    GVariant* reply = bus.call(fprint, path, "org.freedesktop.DBus.Properties", "Get",
                               g_variant_new("(ss)", interface, "finger-needed"));
    GVariant* value = nullptr;
    g_variant_get(reply, "(v)", &value);
    const bool needed = g_variant_get_boolean(value);
    g_variant_unref(value);
    g_variant_unref(reply);
    return needed;
}

}  // namespace korvane::testing
