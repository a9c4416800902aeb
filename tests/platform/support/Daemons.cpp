// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/support/Daemons.h"

#include <gio/gunixsocketaddress.h>
#include <signal.h>
#include <sys/prctl.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

namespace korvane::testing {
namespace {

constexpr const char* fprint = "net.reactivated.Fprint";
constexpr const char* secrets = "org.freedesktop.secrets";
constexpr const char* polkit = "org.freedesktop.PolicyKit1";

void retry(const std::string& what, const std::function<bool()>& attempt) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!attempt()) {
        if (std::chrono::steady_clock::now() > until) throw std::runtime_error(what);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace

Process::Process(const std::vector<std::string>& arguments,
                 const std::map<std::string, std::string>& environment, const std::string& input) {
    const bool shown = g_getenv("KORVANE_TEST_DAEMON_LOG");
    const GLibPtr<GSubprocessLauncher> launcher(
        g_subprocess_launcher_new(shown ? G_SUBPROCESS_FLAGS_NONE
                                        : static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                                        G_SUBPROCESS_FLAGS_STDERR_SILENCE)));
    g_subprocess_launcher_set_stdin_file_path(launcher.get(), input.c_str());
    for (const auto& [name, value] : environment)
        g_subprocess_launcher_setenv(launcher.get(), name.c_str(), value.c_str(), TRUE);
    const auto dieWithTheTest = [](gpointer) { prctl(PR_SET_PDEATHSIG, SIGKILL); };
    g_subprocess_launcher_set_child_setup(launcher.get(), dieWithTheTest, nullptr, nullptr);
    std::vector<const char*> words;
    for (const auto& argument : arguments) words.push_back(argument.c_str());
    words.push_back(nullptr);
    process_.reset(g_subprocess_launcher_spawnv(launcher.get(), words.data(), nullptr));
    if (!process_) throw std::runtime_error("cannot start " + arguments[0]);
}

Process::~Process() {
    g_subprocess_force_exit(process_.get());
    g_subprocess_wait(process_.get(), nullptr, nullptr);
}

PrivateBus::PrivateBus() {
    std::filesystem::create_directory(folder_ / "services");
    const std::string configuration =
        folder_.file("bus.conf", "<busconfig><type>session</type><listen>" + address() +
                                     "</listen><servicedir>" + folder_ / "services" +
                                     "</servicedir><auth>EXTERNAL</auth><policy context='default'>"
                                     "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
                                     "<allow own='*'/></policy></busconfig>");
    process_ = std::make_unique<Process>(
        std::vector<std::string>{"dbus-daemon", "--nofork", "--config-file=" + configuration});
    g_setenv("DBUS_SESSION_BUS_ADDRESS", address().c_str(), TRUE);
    constexpr auto asClient = static_cast<GDBusConnectionFlags>(
        G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    retry("no bus", [&] {
        connection_.reset(
            g_dbus_connection_new_for_address_sync(address().c_str(), asClient, nullptr, nullptr, nullptr));
        return connection_ != nullptr;
    });
}

bool PrivateBus::hasOwner(const char* name) {
    const auto reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                            "NameHasOwner", g_variant_new("(s)", name));
    gboolean owned = FALSE;
    g_variant_get(reply.get(), "(b)", &owned);
    return owned;
}

void PrivateBus::waitForName(const char* name, bool owned) {
    retry(name + std::string(owned ? " does not come" : " does not go"),
          [&] { return hasOwner(name) == owned; });
}

GLibPtr<GVariant> PrivateBus::call(const char* name, const char* path, const char* interface,
                                   const char* method, GVariant* arguments) {
    GLibError error;
    GLibPtr<GVariant> reply(g_dbus_connection_call_sync(connection(), name, path, interface, method,
                                                        arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, 10'000,
                                                        nullptr, error.out()));
    if (!reply) throw std::runtime_error(method + std::string(": ") + error.get()->message);
    return reply;
}

Keyring::Keyring(bool started) {
    if (started) start();
}

void Keyring::start(bool withLogin) {
    const auto& folder = bus.folder();
    std::vector<std::string> arguments = {"gnome-keyring-daemon", "--foreground", "--components=secrets",
                                          "--control-directory=" + folder / "control"};
    if (withLogin) arguments.emplace_back("--unlock");
    process_ =
        std::make_unique<Process>(arguments,
                                  std::map<std::string, std::string>{{"HOME", folder / "home"},
                                                                     {"XDG_RUNTIME_DIR", folder / "run"},
                                                                     {"XDG_DATA_HOME", folder / "data"}},
                                  folder.file("password", "password"));
    bus.waitForName(secrets);
}

void Keyring::kill() {
    process_.reset();
    bus.waitForName(secrets, false);
}

void Keyring::lock() {
    bus.call(secrets, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service", "Lock",
             g_variant_new("(@ao)", g_variant_new_objv(&loginPath, 1)));
}

VirtualReader::VirtualReader() {
    authority_ = std::make_unique<Process>(
        std::vector<std::string>{"/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "polkitd"},
        std::map<std::string, std::string>{{"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}});
    bus.waitForName(polkit);
    bus.call(polkit, "/org/freedesktop/PolicyKit1/Authority", "org.freedesktop.DBus.Mock", "AllowUnknown",
             g_variant_new("(b)", TRUE));
    start();
}

void VirtualReader::start() {
    std::filesystem::create_directories(bus.folder() / "state");
    process_ = std::make_unique<Process>(command());
    bus.waitForName(fprint);
}

void VirtualReader::startOnDemand() {
    std::string service = std::string("[D-BUS Service]\nName=") + fprint + "\nExec=";
    for (const auto& word : command()) service += word + ' ';
    bus.folder().file("services/fprint.service", service + '\n');
    bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig",
             nullptr);
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

GLibPtr<GVariant> VirtualReader::device(const char* method, const char* argument) {
    return bus.call(fprint, path, interface, method, argument ? g_variant_new("(s)", argument) : nullptr);
}

void VirtualReader::enrol() {
    int stages = 0;
    const auto count = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                          gpointer counter) { ++*static_cast<int*>(counter); };
    const unsigned status =
        g_dbus_connection_signal_subscribe(bus.connection(), fprint, interface, "EnrollStatus", nullptr,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, count, &stages, nullptr);
    device("Claim", "");
    device("EnrollStart", "right-index-finger");
    for (int stage = 1; stage <= 5; ++stage) {
        send("SCAN right");
        while (stages < stage) g_main_context_iteration(nullptr, TRUE);
    }
    g_dbus_connection_signal_unsubscribe(bus.connection(), status);
    device("EnrollStop");
    device("Release");
}

void VirtualReader::forgetFingers() {
    device("Claim", "");
    device("DeleteEnrolledFingers2");
    device("Release");
}

void VirtualReader::send(const std::string& line) {
    const GLibPtr<GSocketClient> client(g_socket_client_new());
    const GLibPtr<GSocketAddress> reader(g_unix_socket_address_new((bus.folder() / "reader").c_str()));
    retry("the reader is not open", [&] {
        const GLibPtr<GSocketConnection> connection(
            g_socket_client_connect(client.get(), G_SOCKET_CONNECTABLE(reader.get()), nullptr, nullptr));
        if (!connection) return false;
        GOutputStream* out = g_io_stream_get_output_stream(G_IO_STREAM(connection.get()));
        return g_output_stream_write_all(out, line.data(), line.size(), nullptr, nullptr, nullptr) != FALSE;
    });
}

bool VirtualReader::allows(const char* method, const char* argument) {
    try {
        device(method, argument);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

bool VirtualReader::armed() {
    if (!bus.hasOwner(fprint)) return false;
    const auto reply = bus.call(fprint, path, "org.freedesktop.DBus.Properties", "Get",
                                g_variant_new("(ss)", interface, "finger-needed"));
    const GLibPtr<GVariant> boxed(g_variant_get_child_value(reply.get(), 0));
    return g_variant_get_boolean(GLibPtr<GVariant>(g_variant_get_variant(boxed.get())).get());
}

}  // namespace korvane::testing
