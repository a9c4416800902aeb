# SPDX-License-Identifier: Apache-2.0
"""Has the virtual devices do what the lines of the standard input say: the name of a method, then its arguments.
Answers each with one line on the standard output."""

import json
import pathlib
import signal
import sys

import dbus.lowlevel

sys.path.append(str(pathlib.Path(__file__).parents[3] / "apps/virtual-reader"))
from virtual_devices import FPRINT, LOGIN, READER, SECRETS, VirtualDevices, wait_until  # noqa: E402

DEVICE = FPRINT + ".Device"


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

    def kill_bus(self):
        self.processes["session"].kill()

    def kill_reader(self):
        self.processes["fprintd"].kill()
        wait_until(lambda: not self.system.name_has_owner(FPRINT), "the reader does not go")

    # The keyring's items, as another program meets them.

    def items(self):
        collection = self.session.get_object(SECRETS, LOGIN)
        found = collection.SearchItems({"service": "service", "account": "account"},
                                       dbus_interface="org.freedesktop.Secret.Collection")
        return [self.session.get_object(SECRETS, path).GetAll("org.freedesktop.Secret.Item",
                                                              dbus_interface=dbus.PROPERTIES_IFACE) for path in found]

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
