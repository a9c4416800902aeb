# SPDX-License-Identifier: Apache-2.0
"""Has the virtual devices do what the lines of the standard input say: the name of a method, then its arguments.
Answers each with one line on the standard output."""

import json
import pathlib
import signal
import subprocess
import sys

import dbus.lowlevel

sys.path.append(str(pathlib.Path(__file__).parents[3] / "apps/virtual-reader"))
from virtual_devices import FPRINT, LOGIN, READER, SECRETS, VirtualDevices, wait_until  # noqa: E402

DEVICE = FPRINT + ".Device"
ITEM = "org.freedesktop.Secret.Item"


class Devices(VirtualDevices):
    """Whatever the test has asked for."""

    def _start(self):
        self.start_buses()

    def address(self, bus):
        return self.environment[f"DBUS_{bus}_BUS_ADDRESS"]

    def stop(self, name):
        self.processes[name].send_signal(signal.SIGSTOP)

    def go_on(self, name):
        self.processes[name].send_signal(signal.SIGCONT)

    def slow(self, name):
        """A second for each answer, or nearly."""
        self.stop(name)
        pid = self.processes[name].pid
        self.processes["slow"] = subprocess.Popen(
            ["sh", "-c", f"while sleep 0.95; do kill -CONT {pid}; sleep 0.05; kill -STOP {pid}; done"],
            stderr=subprocess.DEVNULL)

    def kill(self, name):
        self.kill_keyring() if name == "keyring" else self.kill_reader()

    def restart_reader(self):
        self._daemon("fprintd", "/usr/libexec/fprintd", "-t", **self.reader_environment())
        self._wait_for(self.system, FPRINT)

    def kill_bus(self):
        self.processes["session"].kill()

    def kill_reader(self):
        self.processes["fprintd"].kill()
        wait_until(lambda: not self.system.name_has_owner(FPRINT), "the reader does not go")

    # The keyring's items, as another program meets them.

    def _found(self, **attributes):
        collection = self.session.get_object(SECRETS, LOGIN)
        return collection.SearchItems(attributes, dbus_interface="org.freedesktop.Secret.Collection")

    def items(self):
        found = self._found(service="service", account="account")
        return [self.session.get_object(SECRETS, path).GetAll("org.freedesktop.Secret.Item",
                                                              dbus_interface=dbus.PROPERTIES_IFACE) for path in found]

    def count(self, service="service"):
        """How many items of the service there are, whosever they are."""
        return len(self._found(service=service))

    def plant_old_item(self):
        """As the component made it before an item said whose it is."""
        service = self.session.get_object(SECRETS, "/org/freedesktop/secrets")
        _, session = service.OpenSession("plain", "", dbus_interface="org.freedesktop.Secret.Service")
        attributes = dbus.Dictionary({"service": "service", "account": "account"}, signature="ss")
        properties = {f"{ITEM}.Label": "service", f"{ITEM}.Attributes": attributes}
        self.session.get_object(SECRETS, LOGIN).CreateItem(
            properties, (session, b"", b"old", "text/plain"), False, dbus_interface="org.freedesktop.Secret.Collection")

    def unlock(self):
        self.kill_keyring()
        self.start_keyring()

    def watch_prompts(self):
        self.watched = self._path("prompts")
        self.processes["monitor"] = subprocess.Popen(
            ["dbus-monitor", "--address", self.session.address, "type='method_call',member='Prompt'"],
            stdout=self.watched.open("w"))
        wait_until(lambda: self.watched.read_text(), "nothing is heard on the bus")

    def prompts(self):
        """How many the daemon was asked to put up; a call that was made is heard before one that is made now."""
        heard = lambda interface: self.watched.read_text().count(f"interface={interface};")
        before = heard("test.Mark")
        try:
            self.session.get_object(SECRETS, "/none", introspect=False).Prompt("", dbus_interface="test.Mark")
        except dbus.DBusException:
            pass
        wait_until(lambda: heard("test.Mark") > before, "nothing is heard on the bus")
        return heard("org.freedesktop.Secret.Prompt")

    # The reader, as another program meets it.

    def armed(self):
        return self.system.name_has_owner(FPRINT) and super().armed()

    def claim(self):
        """False when another has it."""
        try:
            self._reader().Claim("", dbus_interface=DEVICE)
            return True
        except dbus.DBusException:
            return False

    def release(self):
        self._reader().Release(dbus_interface=DEVICE)

    def forget_fingers(self):
        self.claim()
        self._reader().DeleteEnrolledFingers2(dbus_interface=DEVICE)
        self.release()

    def pretend_match(self):
        forged = dbus.lowlevel.SignalMessage(READER, DEVICE, "VerifyStatus")
        forged.append("verify-match", True)
        self.system.send_message(forged)
        self.system.flush()

    def start_reader_on_demand(self):
        """From now on the bus starts the daemon."""
        variables = " ".join(f"{name}={value}" for name, value in {**self.environment, **self.reader_environment()}.items())
        self._path("services/fprint.service").write_text(
            f"[D-BUS Service]\nName={FPRINT}\nExec=/usr/bin/env {variables} /usr/libexec/fprintd -t\n")
        self.system.get_object("org.freedesktop.DBus", "/").ReloadConfig(dbus_interface="org.freedesktop.DBus")

    def _reader(self):
        return self.system.get_object(FPRINT, READER)


with Devices() as devices:
    for line in sys.stdin:
        name, _, argument = line.strip().partition(" ")
        reply = getattr(devices, name)(*([argument] if argument else []))
        print(reply if isinstance(reply, str) else json.dumps(reply), flush=True)
