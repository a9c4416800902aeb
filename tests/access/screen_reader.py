# SPDX-License-Identifier: Apache-2.0
"""A desktop of its own (display, session bus, AT-SPI bus) with one window on it, and a person who meets that window
through the accessible tree and the keyboard alone."""

import contextlib
import os
import re
import subprocess
import sys
import tempfile
import time

import gi

gi.require_version("Atspi", "2.0")
from driver import PATIENCE, PROGRAMS  # noqa: E402
from gi.repository import Atspi, GLib  # noqa: E402


def start_desktop():
    """Runs this script again below a private session bus and display, with no window manager."""
    if "ACCESS_DESKTOP" in os.environ:
        return
    # No keyring and no settings but its own.
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        environment = {key: value for key, value in os.environ.items() if not key.startswith(("AT_SPI", "WAYLAND"))}
        environment |= {"ACCESS_DESKTOP": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_QPA_PLATFORM": "xcb",
                        "QT_QUICK_BACKEND": "software", "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8"}
        for place in ("HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"):
            environment[place] = folder
        display = [f"--server-num={100 + os.getpid() % 30000}", "--server-args=-screen 0 1280x1024x24"]
        command = ["xvfb-run", *display, "dbus-run-session", "--", sys.executable, *sys.argv]
        sys.exit(subprocess.run(command, env=environment).returncode)


def children(node):
    return filter(None, map(node.get_child_at_index, range(node.get_child_count())))


class Window:
    """The host app's window in the accessible tree."""

    def __init__(self, *arguments):
        Atspi.init()
        self.announced = []  # names of the notifications that came into sight
        self.listener = Atspi.EventListener.new(self._hear)
        self.listener.register("object:state-changed:showing")
        self.process = subprocess.Popen([PROGRAMS / "korvane-demo", *arguments], stdout=subprocess.DEVNULL)
        self.app = Atspi.get_desktop(0)
        self.app = self.wait(self._find_app, "the app in the tree")
        self.wait(self._take_keys, "the keyboard focus")

    def _find_app(self):
        assert self.process.poll() is None, f"the app ended with {self.process.returncode}"
        for app in children(Atspi.get_desktop(0)):
            if app.get_process_id() == self.process.pid and app.get_child_count():
                return app

    def _hear(self, event, *_):
        with contextlib.suppress(GLib.Error):  # it may be gone already
            if event.source.get_role_name() == "notification":
                self.announced.append(event.source.get_name())

    def _take_keys(self):
        """Gives the window the X server's focus, which no window manager does here."""
        def xdotool(*arguments):
            return subprocess.run(["xdotool", *arguments], capture_output=True, text=True).stdout.strip()
        window = xdotool("search", "--onlyvisible", "--pid", str(self.process.pid))
        xdotool("windowfocus", window)
        return window and xdotool("getwindowfocus") == window

    def turn(self, seconds=0.02):
        """Lets events come in."""
        until = time.monotonic() + seconds
        while time.monotonic() < until:
            while GLib.MainContext.default().iteration(False):
                pass
            time.sleep(0.005)

    def wait(self, seen, what):
        until = time.monotonic() + PATIENCE
        while time.monotonic() < until:
            with contextlib.suppress(GLib.Error):  # the tree changes while it is read
                if found := seen():
                    return found
            self.turn()
        tree = "\n".join(f"{n.get_role_name()} '{n.get_name()}' {self.states(n)}" for n in self.nodes())
        raise AssertionError(f"{what} did not come; the window has\n{tree}")

    # The tree.

    def nodes(self, node=None):
        node = node or self.app
        node.clear_cache()
        yield node
        for child in children(node):
            yield from self.nodes(child)

    def states(self, node):
        return {state.value_nick for state in node.get_state_set().get_states()}

    def find(self, role, name, *states):
        return next((node for node in self.nodes() if re.fullmatch(role, node.get_role_name()) and
                     re.fullmatch(name, node.get_name() or "") and self.states(node) >= {"showing", *states}), None)

    def see(self, role, name, *states):
        return self.wait(lambda: self.find(role, name, *states), f"{role} '{name}' {states}")

    def key(self, *names):
        subprocess.run(["xdotool", "key", "--delay", "30", *names], check=True)
        self.turn(0.05)
