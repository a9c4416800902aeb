# SPDX-License-Identifier: Apache-2.0
"""The journeys from the first page to the last by keyboard alone and by accessible actions alone, over the real AT-SPI
bus; and that no digit of a PIN comes over that bus.

usage: access_test.py [CASE …], with KORVANE_BIN naming the folder of the programs
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path += [str(HERE), str(HERE.parent / "apps")]
import screen_reader  # noqa: E402

PIN = "9587"  # digits that no text and no progress of these screens has


class Spy:
    """Everything that goes over the AT-SPI bus from now on."""

    def __init__(self, atspi_bus):
        self.told = tempfile.TemporaryFile("w+")  # a pipe would fill up, and the rest go unheard
        self.process = subprocess.Popen(["dbus-monitor", "--address", atspi_bus], stdout=self.told)
        while os.fstat(self.told.fileno()).st_size == 0:
            time.sleep(0.01)

    def heard(self):
        """The texts in what was said, keys included: a key is told with its text."""
        time.sleep(0.5)  # until it is written
        self.process.terminate()
        self.process.wait()
        self.told.seek(0)
        lines = [line.strip() for line in self.told]
        texts = [line.split('"', 1)[1].rstrip('"') for line in lines if line.startswith(("string ", "variant       string"))]
        return [text for text in texts if not text.startswith((":", "org.")) and "/org/" not in text]  # addresses


def leaks(digits, texts):
    return [text for text in texts if any(digit in text for digit in digits)]


class Access(unittest.TestCase):
    def setUp(self):
        import driver
        self.box = driver.Sandbox()
        self.addCleanup(self.box.stop)

    def open(self, journey, card):
        told = self.box.told
        self.window = screen_reader.Window("--journey", journey, "--card", card, "--service", self.box.url, "--key",
                                           told["key"], "--iv-url", told["ivUrl"], "--ca", self.box.ca)
        self.addCleanup(self.window.stop)
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
            if self.window.find(role, name, "focused"):
                return self.window.key("space")
            self.window.key("Tab")
        self.fail(f"Tab does not reach '{name}'\n{self.window.describe()}")

    def type_in(self, digits, field):
        self.window.see("text", field + ", 0 of . digits entered")
        self.window.key(*digits)

    def use_by_action(self, name, role="push button"):
        self.window.press(role, name)

    def dictate(self, digits, field):
        self.window.dictate(field + ", 0 of . digits entered", digits)

    def verify_by_sms(self, use, enter):
        self.page("Let’s make sure it’s you")
        use("Send code")
        self.page("Enter your code")
        enter(self.box.code(), "Code from the text message")

    def choose_pin(self, use, enter):
        self.page("Choose your PIN")
        enter(PIN, "New PIN")
        use("Continue")
        self.page("Enter your PIN again")
        enter(PIN, "New PIN, again")
        use("Set PIN")

    def activate(self, use, enter):
        card = self.box.card("card-physical-new")
        self.open("activate", "card-physical-new")
        self.verify_by_sms(use, enter)
        self.page("Your card is here")
        use("Activate card")
        self.page("Last four digits of your card number")
        enter(card["pan"][-4:], "Last four digits of the card number")
        use("Continue")
        self.page("Security code")
        enter(card["cvv"][:3], "Security code")
        use("Continue")
        self.choose_pin(use, enter)
        self.page("Your card is ready")
        use("Done")
        self.succeeds()
        stored = self.box.card("card-physical-new")
        self.assertEqual((stored["status"], stored["pin"]), ("A1", PIN))

    def view_card(self, use, enter):
        self.open("card", "card-physical-active")
        self.verify_by_sms(use, enter)
        use("Freeze my card", "check box")
        self.window.see("push button", "Cancel", "focused")
        use("Freeze card")
        self.window.see("check box", "Freeze my card", "checked")
        use("Close")
        self.succeeds()
        self.assertEqual(self.box.card("card-physical-active")["status"], "BT")

    def test_activate_by_keyboard(self):
        spy = self.spy()  # each page is walked on the way: all that it tells goes over the bus
        self.activate(self.use_by_key, self.type_in)
        texts = spy.heard()
        cvv = self.box.card("card-physical-new")["cvv"]
        self.assertEqual(leaks(PIN, texts) + [text for text in texts if cvv in text or text.isdigit()], [])  # a key's text
        self.assertIn("Security code, 0 of 3 digits entered", texts)

    def test_activate_by_actions(self):
        self.activate(self.use_by_action, self.dictate)

    def test_view_card_by_keyboard(self):
        self.view_card(self.use_by_key, self.type_in)

    def test_view_card_by_actions(self):
        self.view_card(self.use_by_action, self.dictate)

    # What is told on the way, and what is not.

    def spy(self):
        address = subprocess.run(["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
                                  "--method", "org.a11y.Bus.GetAddress"], capture_output=True, text=True, check=True)
        return Spy(address.stdout.split("'")[1])

    def test_no_digit_is_told(self):
        window = self.open("set-pin", "card-physical-active")
        self.verify_by_sms(self.use_by_key, self.type_in)
        self.page("Choose your PIN")

        self.use_by_key("Use four digits")
        for key in ("Tab", "Escape"):  # keys stay in the sheet
            window.see("push button", "Got it", "focused")
            window.key(key)
        window.see("push button", "Use four digits", "focused")

        spy = self.spy()
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
        self.assertEqual(leaks(PIN, names + texts), [])
        self.assertIn("x", texts, "the spy hears the keys that other items take")

    def test_text_follows_the_desktop(self):
        portal = ("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings")
        mock = subprocess.Popen([sys.executable, "-m", "dbusmock", *portal], stdout=subprocess.DEVNULL)
        self.addCleanup(mock.kill)
        subprocess.run(["gdbus", "wait", "--session", portal[0]], check=True)

        def tell(method, *arguments):
            subprocess.run(["gdbus", "call", "--session", "--dest", portal[0], "--object-path", portal[1], "--method",
                            "org.freedesktop.DBus.Mock." + method, portal[2], *arguments], check=True, capture_output=True)

        tell("AddMethod", "ReadAll", "as", "a{sa{sv}}", "ret = {'org.gnome.desktop.interface': {'text-scaling-factor': 2.0}}")
        window = self.open("set-pin", "card-physical-active")
        self.page("Let’s make sure it’s you")
        label = "To keep your card safe.*"
        large = window.see("label", label).get_size().y
        tell("EmitSignal", "SettingChanged", "ssv", "[<'org.gnome.desktop.interface'>, <'text-scaling-factor'>, <1.0>]")
        window.wait(lambda: window.see("label", label).get_size().y * 2 < large, "text of the normal size")


if __name__ == "__main__":
    screen_reader.start_desktop()
    os.environ.setdefault("KORVANE_BIN", "build/dev/bin")
    unittest.main(argv=[sys.argv[0], *(f"Access.test_{case}" for case in sys.argv[1:])], verbosity=2, warnings="ignore")
