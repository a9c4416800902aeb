# SPDX-License-Identifier: Apache-2.0
"""A desktop of its own (display, session bus, AT-SPI bus) with one window on it, and a person who meets that window
through the accessible tree and the keyboard alone."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

PROGRAMS = pathlib.Path(os.environ.get("KORVANE_BIN", "build/dev/bin"))
PATIENCE = 60  # seconds; sanitizers are slow


def start_desktop():
    """Runs this script again below a private session bus and display, with no window manager."""
    if "ACCESS_DESKTOP" in os.environ:
        return
    folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
    reading, writing = os.pipe()
    display = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
                               pass_fds=[writing], stderr=subprocess.DEVNULL)
    os.close(writing)
    try:
        number = os.fdopen(reading).readline().strip()
        environment = {key: value for key, value in os.environ.items() if not key.startswith(("AT_SPI", "WAYLAND"))}
        environment |= {"DISPLAY": ":" + number, "ACCESS_DESKTOP": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                        "QT_QPA_PLATFORM": "xcb", "QT_QUICK_BACKEND": "software", "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8"}
        for place in ("HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"):
            environment[place] = folder.name  # no keyring and no settings but its own
        command = ["dbus-run-session", "--", sys.executable, *sys.argv]
        sys.exit(subprocess.run(command, env=environment).returncode)
    finally:
        display.terminate()
        display.wait()


def atspi():
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib
    return Atspi, GLib


class Window:
    """The host app's window in the accessible tree."""

    def __init__(self, *arguments):
        self.Atspi, self.GLib = atspi()
        self.Atspi.init()
        self.announced = []  # names of the notifications that came into sight
        self.listener = self.Atspi.EventListener.new(self._hear)
        for kind in ("object:state-changed:focused", "object:state-changed:showing", "object:property-change",
                     "object:text-changed", "object:children-changed"):
            self.listener.register(kind)
        self.process = subprocess.Popen([PROGRAMS / "korvane-demo", *arguments], stdout=subprocess.DEVNULL)
        self.app = None
        self.app = self.wait(self._find_app, "the app in the tree")
        self.wait(self._take_keys, "the keyboard focus")

    def _find_app(self):
        assert self.process.poll() is None, f"the app ended with {self.process.returncode}"
        desktop = self.Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            app = desktop.get_child_at_index(index)
            if app and app.get_process_id() == self.process.pid and app.get_child_count():
                return app

    def _hear(self, event, *_):
        try:
            if event.type == "object:state-changed:showing" and event.source.get_role_name() == "notification":
                self.announced.append(event.source.get_name())
        except self.GLib.Error:
            pass  # gone already

    def _take_keys(self):
        """Gives the window the X server's focus, which no window manager does here."""
        def xdotool(*arguments):
            return subprocess.run(["xdotool", *arguments], capture_output=True, text=True).stdout.strip()
        window = xdotool("search", "--onlyvisible", "--pid", str(self.process.pid))
        xdotool("windowfocus", window)
        return window and xdotool("getwindowfocus") == window

    def stop(self):
        self.process.kill()
        self.process.wait()

    def turn(self, seconds=0.02):
        """Lets events come in."""
        until = time.monotonic() + seconds
        while time.monotonic() < until:
            while self.GLib.MainContext.default().iteration(False):
                pass
            time.sleep(0.005)

    def wait(self, seen, what):
        until = time.monotonic() + PATIENCE
        while time.monotonic() < until:
            try:
                found = seen()
            except self.GLib.Error:
                found = None  # the tree changed while it was read
            if found:
                return found
            self.turn()
        raise AssertionError(f"{what} did not come; the window has\n{self.describe()}")

    # The tree.

    def nodes(self, node=None):
        node = node or self.app
        if not node:
            return
        node.clear_cache()
        yield node
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child:
                yield from self.nodes(child)

    def describe(self):
        try:
            return "\n".join(f"{n.get_role_name()} '{n.get_name()}' {self.states(n)}" for n in self.nodes())
        except self.GLib.Error as error:
            return str(error)

    def states(self, node):
        return {state.value_nick for state in node.get_state_set().get_states()}

    def find(self, role, name, *states):
        try:
            return next((node for node in self.nodes() if re.fullmatch(role, node.get_role_name()) and
                         re.fullmatch(name, node.get_name() or "") and self.states(node) >= {"showing", *states}), None)
        except self.GLib.Error:
            return None  # the tree changed while it was read

    def see(self, role, name, *states):
        return self.wait(lambda: self.find(role, name, *states), f"{role} '{name}' {states}")

    # What a person does.

    def key(self, *names):
        subprocess.run(["xdotool", "key", "--delay", "30", *names], check=True)
        self.turn(0.05)

    def press(self, role, name):
        """Uses a control by its accessible action."""
        node = self.see(role, name, "enabled")
        actions = [node.get_action_name(i) for i in range(node.get_n_actions())]
        node.do_action(actions.index("Press"))
        self.turn(0.05)

    def dictate(self, name, text):
        """Enters text through the accessible interface, as voice control does."""
        self.see("text", name, "enabled").get_editable_text_iface().insert_text(0, text, len(text))
        self.turn(0.05)
