# SPDX-License-Identifier: Apache-2.0
"""A keyring and a finger reader without hardware: the real daemons, each on a private bus, in a temporary folder."""

import ctypes
import os
import pathlib
import signal
import socket
import subprocess
import tempfile
import time

import dbus

SECRETS = "org.freedesktop.secrets"
LOGIN = "/org/freedesktop/secrets/collection/login"
POLKIT = "org.freedesktop.PolicyKit1"
FPRINT = "net.reactivated.Fprint"
READER = "/net/reactivated/Fprint/Device/0"
PATIENCE = 20  # seconds
DIES_WITH_PARENT = lambda: ctypes.CDLL(None).prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not (value := condition()):
        if time.monotonic() > end:
            raise RuntimeError(what)
        time.sleep(0.01)
    return value


class VirtualDevices:
    """An unlocked login keyring, and a reader on which the finger "right" is enrolled. `environment` leads a program to
    them. Use it with `with`: everything is gone afterwards."""

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="korvane-")
        self.processes = {}
        try:
            self._start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes.values()):
            process.kill()
            process.wait()
        self.folder.cleanup()

    def _start(self):
        self.start_buses()
        self.start_keyring()
        self.start_reader()
        self.enrol()

    def start_buses(self):
        self._path("services").mkdir()  # what the buses start by themselves
        self.session = self._bus("session")
        self.system = self._bus("system")
        self.environment = {"DBUS_SESSION_BUS_ADDRESS": self.session.address, "DBUS_SYSTEM_BUS_ADDRESS": self.system.address}

    def start_keyring(self, *options):
        self._path("password").write_text("password")
        with self._path("password").open() as password:
            self._daemon("keyring", "gnome-keyring-daemon", "--foreground", "--components=secrets", *(options or ["--unlock"]),
                         f"--control-directory={self._path('control')}", stdin=password, HOME=self._path("home"),
                         XDG_RUNTIME_DIR=self._path("run"), XDG_DATA_HOME=self._path("data"))
        self._wait_for(self.session, SECRETS)

    def start_reader(self):
        self._daemon("polkit", "/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "polkitd")
        self._wait_for(self.system, POLKIT)
        authority = self.system.get_object(POLKIT, "/org/freedesktop/PolicyKit1/Authority")
        authority.AllowUnknown(True, dbus_interface="org.freedesktop.DBus.Mock")
        self._path("state").mkdir()
        self._daemon("fprintd", "/usr/libexec/fprintd", "-t", **self.reader_environment())
        self._wait_for(self.system, FPRINT)

    def reader_environment(self):
        return {"FP_VIRTUAL_DEVICE": self._path("reader"), "STATE_DIRECTORY": self._path("state")}

    def kill_keyring(self):
        self.processes["keyring"].kill()
        self.processes.pop("keyring").wait()
        wait_until(lambda: not self.session.name_has_owner(SECRETS), "the keyring does not go")

    def lock(self):
        service = self.session.get_object(SECRETS, "/org/freedesktop/secrets")
        service.Lock([dbus.ObjectPath(LOGIN)], dbus_interface="org.freedesktop.Secret.Service")

    def armed(self):
        reader = self.system.get_object(FPRINT, READER)
        return bool(reader.Get(f"{FPRINT}.Device", "finger-needed", dbus_interface="org.freedesktop.DBus.Properties"))

    def touch(self, finger="right"):
        """Waits until the reader is armed, and puts the finger on it."""
        wait_until(self.armed, "the reader is not armed")
        self.send(f"SCAN {finger}")

    def send(self, line):
        """A line to the virtual reader."""
        with socket.socket(socket.AF_UNIX) as reader:
            reader.connect(str(self._path("reader")))
            reader.sendall(line.encode())

    def enrol(self):
        with subprocess.Popen(["fprintd-enroll"], env={**os.environ, **self.environment}, text=True,
                              stdout=subprocess.PIPE) as program:
            self.touch()
            for line in program.stdout:
                if "enroll-stage-passed" in line:
                    self.touch()
        if program.returncode != 0:
            raise RuntimeError("no finger is enrolled")

    def _bus(self, name):
        """A bus on which everybody may do everything."""
        address = f"unix:path={self._path(name)}"
        self._path(name + ".conf").write_text(
            f"<busconfig><type>{name}</type><listen>{address}</listen>"
            f"<servicedir>{self._path('services')}</servicedir><auth>EXTERNAL</auth><policy context='default'>"
            "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/><allow own='*'/></policy></busconfig>")
        self._daemon(name, "dbus-daemon", f"--config-file={self._path(name + '.conf')}", "--nofork", "--nopidfile")
        bus = wait_until(lambda: self._connect(address), f"no {name} bus")
        bus.set_exit_on_disconnect(False)
        bus.address = address
        return bus

    def _connect(self, address):
        try:
            return dbus.bus.BusConnection(address)
        except dbus.DBusException:
            return None  # it does not listen yet

    def _daemon(self, name, *command, stdin=subprocess.DEVNULL, **environment):
        environment = {**os.environ, **getattr(self, "environment", {}), **{key: str(value) for key, value in environment.items()}}
        self.processes[name] = subprocess.Popen(command, env=environment, stdin=stdin, stdout=subprocess.DEVNULL,
                                                stderr=subprocess.DEVNULL, preexec_fn=DIES_WITH_PARENT)

    def _wait_for(self, bus, name):
        wait_until(lambda: bus.name_has_owner(name), f"{name} does not come")

    def _path(self, name):
        return pathlib.Path(self.folder.name) / name
