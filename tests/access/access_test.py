# SPDX-License-Identifier: Apache-2.0
"""The journeys from the first page to the last by keyboard alone and by accessible actions alone, over the real AT-SPI
bus; and that no digit of a PIN comes over that bus.

usage: access_test.py [CASE …], with KORVANE_BIN naming the folder of the programs, and tests/apps in PYTHONPATH
"""

import os
import re
import subprocess
import sys
import tempfile
import time
import unittest

import dbus
import dbusmock
import driver
import screen_reader

PIN = "9587"  # digits that no text and no progress of these screens has


class Spy:
    """Everything that goes over the AT-SPI bus from now on."""

    def __init__(self):
        address = dbus.SessionBus().get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(dbus_interface="org.a11y.Bus")
        self.told = tempfile.TemporaryFile("w+")  # a pipe would fill up, and the rest go unheard
        self.process = subprocess.Popen(["dbus-monitor", "--address", address], stdout=self.told)
        while os.fstat(self.told.fileno()).st_size == 0:
            time.sleep(0.01)

    def heard(self):
        """The texts in what was said, keys included: a key is told with its text."""
        time.sleep(0.5)  # until it is written
        self.process.terminate()
        self.process.wait()
        self.told.seek(0)
        texts = re.findall(r'^ *(?:variant +)?string "(.*?)"?$', self.told.read(), re.MULTILINE)
        return [text for text in texts if not text.startswith((":", "org.")) and "/org/" not in text]  # addresses


class Access(unittest.TestCase):
    def setUp(self):
        self.box = driver.Sandbox()
        self.addCleanup(self.box.stop)

    def open(self, journey, card):
        told = self.box.told
        self.window = screen_reader.Window("--journey", journey, "--card", card, "--service", self.box.url, "--key",
                                           told["key"], "--iv-url", told["ivUrl"], "--ca", self.box.ca)
        self.addCleanup(self.window.process.kill)
        return self.window

    def page(self, title):
        """A new page: its title has the focus, and all that can be used has a role, a name and a state."""
        self.window.see("heading", title, "focused")
        unfit = self.window.wait(lambda: [[
            f"{node.get_role_name()} '{node.get_name()}'" for node in self.window.nodes()
            if "showing" in self.window.states(node) and node.get_role_name() in ("push button", "check box", "text")
            and (not node.get_name() or min(node.get_size().x, node.get_size().y) < 44)]], "the page")
        self.assertEqual(unfit, [[]], title)

    def succeeds(self):
        self.assertEqual(self.window.process.wait(screen_reader.PATIENCE), 0)

    # Two ways to do the same: keys, and accessible actions.

    def use_by_key(self, name, role="push button"):
        self.window.see(role, name, "enabled")
        for _ in range(12):
            if self.window.wait(lambda: [self.window.find(role, name, "focused")], "the tree")[0]:
                return self.window.key("space")
            self.window.key("Tab")
        self.fail(f"Tab does not reach '{name}'")

    def type_in(self, digits, field):
        self.window.see("text", field + ", 0 of . digits entered")
        self.window.key(*digits)

    def use_by_action(self, name, role="push button"):
        node = self.window.see(role, name, "enabled")
        node.do_action([node.get_action_name(i) for i in range(node.get_n_actions())].index("Press"))

    def dictate(self, digits, field):
        """As voice control does."""
        text = self.window.see("text", field + ", 0 of . digits entered", "enabled").get_editable_text_iface()
        text.insert_text(0, digits, len(digits))

    use, enter = use_by_key, type_in

    def by_actions(self, walk):
        self.use, self.enter = self.use_by_action, self.dictate
        walk()

    def step(self, title, button, *entry):
        self.page(title)
        if entry:
            self.enter(*entry)
        self.use(button)

    def verify_by_sms(self):
        self.step("Let’s make sure it’s you", "Send code")
        self.page("Enter your code")
        self.enter(self.box.code(), "Code from the text message")

    def activate(self):
        card = self.box.card("card-physical-new")
        self.open("activate", "card-physical-new")
        self.verify_by_sms()
        self.step("Your card is here", "Activate card")
        self.step("Last four digits of your card number", "Continue", card["pan"][-4:], "Last four digits of the card number")
        self.step("Security code", "Continue", card["cvv"][:3], "Security code")
        self.step("Choose your PIN", "Continue", PIN, "New PIN")
        self.step("Enter your PIN again", "Set PIN", PIN, "New PIN, again")
        self.step("Your card is ready", "Done")
        self.succeeds()
        stored = self.box.card("card-physical-new")
        self.assertEqual((stored["status"], stored["pin"]), ("A1", PIN))

    def view_card(self):
        self.open("card", "card-physical-active")
        self.verify_by_sms()
        self.use("Freeze my card", "check box")
        self.window.see("push button", "Cancel", "focused")
        self.use("Freeze card")
        self.window.see("check box", "Freeze my card", "checked")
        self.use("Close")
        self.succeeds()
        self.assertEqual(self.box.card("card-physical-active")["status"], "BT")

    def test_activate_by_keyboard(self):
        spy = Spy()  # each page is walked on the way: all that it tells goes over the bus
        self.activate()
        texts = spy.heard()
        cvv = self.box.card("card-physical-new")["cvv"]
        leaks = [text for text in texts if set(PIN) & set(text) or cvv in text or text.isdigit()]  # a key's text
        self.assertEqual(leaks, [])
        self.assertIn("Security code, 0 of 3 digits entered", texts)

    def test_activate_by_actions(self):
        self.by_actions(self.activate)

    def test_view_card_by_keyboard(self):
        self.view_card()

    def test_view_card_by_actions(self):
        self.by_actions(self.view_card)

    # What is told on the way, and what is not.

    def test_no_digit_is_told(self):
        window = self.open("set-pin", "card-physical-active")
        self.verify_by_sms()
        self.page("Choose your PIN")

        self.use_by_key("Use four digits")
        for key in ("Tab", "Escape"):  # keys stay in the sheet
            window.see("push button", "Got it", "focused")
            window.key(key)
        window.see("push button", "Use four digits", "focused")

        spy = Spy()
        window.key("x", "Tab")
        window.key(*PIN[:2], "a", "BackSpace", PIN[1])
        window.see("text", "New PIN, 2 of 4 digits entered")
        subprocess.run(["xclip", "-selection", "clipboard"], input=f"{PIN[:2]}-{PIN[2:]}", text=True, check=True)
        window.key("ctrl+v")
        window.see("text", "New PIN, 4 of 4 digits entered")
        window.key("Return")
        self.page("Enter your PIN again")
        window.key(*PIN[:3], "6")
        self.use_by_key("Set PIN")
        window.wait(lambda: "The PINs don’t match. Enter your new PIN again." in window.announced, "the announcement")
        window.see("text", "New PIN, again, 0 of 4 digits entered", "focused")
        entered = lambda text: text.get_text(0, -1) if text else ""
        names = window.wait(lambda: [part for node in window.nodes() for part in (
            node.get_name(), node.get_description() or "", entered(node.get_text_iface()))], "the texts")
        texts = spy.heard()
        self.assertEqual([text for text in names + texts if set(PIN) & set(text)], [])
        self.assertIn("x", texts, "the spy hears the keys that other items take")

    def test_text_follows_the_desktop(self):
        portal = ("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings")
        self.addCleanup(dbusmock.DBusTestCase.spawn_server(*portal, stdout=subprocess.DEVNULL).kill)
        desktop = dbus.Interface(dbus.SessionBus().get_object(*portal[:2]), dbusmock.MOCK_IFACE)
        setting = ("org.gnome.desktop.interface", "text-scaling-factor")
        desktop.AddMethod(portal[2], "ReadAll", "as", "a{sa{sv}}", f"ret = {{'{setting[0]}': {{'{setting[1]}': 2.0}}}}")
        window = self.open("set-pin", "card-physical-active")
        self.page("Let’s make sure it’s you")
        label = "To keep your card safe.*"
        large = window.see("label", label).get_size().y
        desktop.EmitSignal(portal[2], "SettingChanged", "ssv", [*setting, 1.0])
        window.wait(lambda: window.see("label", label).get_size().y * 2 < large, "text of the normal size")


if __name__ == "__main__":
    screen_reader.start_desktop()
    unittest.main(argv=[sys.argv[0], *(f"Access.test_{case}" for case in sys.argv[1:])], verbosity=2, warnings="ignore")
