# SPDX-License-Identifier: Apache-2.0
"""The page of the card service in a real browser, while a real journey runs. With a folder as its argument it leaves
pictures there."""

import subprocess
import sys
import unittest

from browser import Browser
from driver import Journey, Sandbox

PICTURES = sys.argv.pop(1) if len(sys.argv) > 1 else None
CARD = "card-physical-active"


class InspectionPage(unittest.TestCase):
    def setUp(self):
        self.sandbox = Sandbox()
        self.addCleanup(self.sandbox.stop)
        self.browser = Browser()
        self.addCleanup(self.browser.close)
        self.browser.looks(1280, 900)
        self.browser.open(self.sandbox.url)
        self.browser.wait("document.querySelector('#live').textContent === 'live'")

    def picture(self, name):
        if PICTURES:
            self.browser.picture(f"{PICTURES}/{name}.png")

    def journey(self, **keywords):
        journey = Journey(self.sandbox, **keywords)
        self.addCleanup(journey.end)
        return journey

    def test_a_journey_arrives_while_the_page_is_open(self):
        page = self.browser
        self.assertIn("PIN 4827", page.run(f"return document.querySelector('[data-card={CARD}]').textContent"))
        journey = self.journey()
        journey.at("SMSExplainView", "sdk.sms.explain.button")
        journey.shows("EnterSMSCodeView")
        code = page.wait("/^[0-9]{6}$/.test(document.querySelector('#code').textContent) && document.querySelector('#code').textContent")
        self.assertEqual(code, self.sandbox.code())
        journey.type(code)  # as a person would: read off the page
        journey.enter_and_confirm("1357")
        journey.shows("SuccessPinSetView")
        page.wait("document.querySelector('[data-endpoint=pinSet] .badge.good')?.textContent === '200'")
        page.wait(f"document.querySelector('[data-card={CARD}]').textContent.includes('PIN 1357')")
        page.click("[data-endpoint=pinSet] summary")
        page.wait("document.querySelector('[data-endpoint=pinSet]').innerText.includes('1357')")
        self.picture("journey")
        page.click("#filter option[value=getCardStatus]")
        page.wait("[...document.querySelectorAll('.entry')].every(entry => entry.dataset.endpoint === 'getCardStatus')")
        page.click("#reset")
        page.ask("POST", "/alert/accept")
        page.wait("document.querySelectorAll('.entry').length === 0 && document.querySelector('#code').textContent === 'none yet'")
        page.wait(f"document.querySelector('[data-card={CARD}]').textContent.includes('PIN 4827')")
        self.assertEqual(page.complaints(), [])

    def test_rules_are_added_refused_and_cleared(self):
        page = self.browser
        page.click("#endpoint option[value=getCardStatus]")
        page.click("#fault option[value='Connection reset']")
        page.write("#times", "2")
        page.click("#add button")
        page.wait("document.querySelector('#rules').textContent.includes('2 left')")
        self.assertEqual(self.sandbox.ask("GET", "/host/faults"), [{"endpoint": "getCardStatus", "reset": True, "count": 2, "left": 2}])
        self.journey().shows("UhOhTryAgainView")
        page.wait("document.querySelector('#rules').textContent.includes('1 left')")
        page.wait("document.querySelector('.entry .badge.bad')?.textContent === 'fault'")
        page.write("#rule", '{"endpoint":"pinSet"}')
        page.click("#add button")
        page.wait("document.querySelector('#refused').textContent === 'rule 1: the rule has no effect'")
        self.picture("rules")
        page.click("#clear")
        page.wait("document.querySelectorAll('#rules .row').length === 0")
        self.assertEqual(self.sandbox.ask("GET", "/host/faults"), [])

    def test_nothing_from_outside_runs_or_is_fetched(self):
        page = self.browser
        evil = "<img id=evil src=https://192.0.2.1/x onerror=document.title='evil'>"
        self.journey(card=evil).shows("SMSExplainView")
        page.wait("document.querySelector('.entry .card')?.textContent.includes('<img')")
        self.assertEqual(page.run("return [document.querySelectorAll('#evil').length, document.title]"), [0, "Card service"])
        page.run("const s = document.createElement('script'); s.textContent = 'document.title = 1'; document.body.append(s)")
        self.assertEqual(page.run("return document.title"), "Card service")
        outside = page.run("return performance.getEntries().map(e => e.name).filter(n => /^https?:/.test(n) && !n.startsWith(location.origin))")
        self.assertEqual(outside, [])
        headers = subprocess.run(["curl", "-sS", "-o", "/dev/null", "-D", "-", "--cacert", self.sandbox.ca, self.sandbox.url],
                                 capture_output=True, text=True, check=True).stdout.lower()
        self.assertRegex(headers, "content-security-policy: default-src 'none'; connect-src 'self'; script-src 'nonce-")

    def test_fits_a_phone_and_a_dark_desktop(self):
        page = self.browser
        self.journey(card="fault-pin-refused").verify_by_sms(self.sandbox)
        page.wait("document.querySelectorAll('.entry').length > 3")
        light = page.run("return getComputedStyle(document.body).backgroundColor")
        for width, height, scheme in ((360, 740, "light"), (360, 740, "dark"), (1280, 900, "dark")):
            page.looks(width, height, scheme)
            self.assertLessEqual(page.run("return document.documentElement.scrollWidth"), width)
            self.assertEqual(page.run("return getComputedStyle(document.body).backgroundColor") == light, scheme == "light")
            self.picture(f"{scheme}-{width}")


if __name__ == "__main__":
    unittest.main(verbosity=2)
