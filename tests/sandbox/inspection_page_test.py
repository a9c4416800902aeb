# SPDX-License-Identifier: Apache-2.0
"""The page of the card service in a real browser, while a real journey runs."""

import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.wait import WebDriverWait

from driver import PATIENCE, Journey, Sandbox

CARD = "document.querySelector('[data-card=card-physical-active]').textContent"
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage"]


class InspectionPage(unittest.TestCase):
    def run_script(self, expression):
        return self.browser.execute_script("return " + expression)

    def wait(self, expression):
        return WebDriverWait(self.browser, PATIENCE).until(lambda _: self.run_script(expression), expression)

    def click(self, selector):
        self.browser.find_element(By.CSS_SELECTOR, selector).click()

    def journey(self, **keywords):
        journey = Journey(self.sandbox, **keywords)
        self.addCleanup(journey.end)
        return journey

    def test_tells_what_goes_on_and_makes_faults_and_runs_nothing_from_outside(self):
        self.sandbox = Sandbox()
        self.addCleanup(self.sandbox.stop)
        options = webdriver.ChromeOptions()
        options.accept_insecure_certs = True
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        for flag in FLAGS:
            options.add_argument(flag)
        self.browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)  # with a profile of its own
        self.addCleanup(self.browser.quit)
        self.browser.get(self.sandbox.url)
        self.wait("document.querySelector('#live').textContent === 'live'")

        self.assertIn("PIN 4827", self.run_script(CARD))
        journey = self.journey()
        journey.at("SMSExplainView", "sdk.sms.explain.button")
        journey.shows("EnterSMSCodeView")
        code = self.wait("document.querySelector('#code').textContent.match(/^[0-9]{6}$/)?.[0]")
        self.assertEqual(code, self.sandbox.code())
        journey.type(code)  # as a person would: read off the page
        journey.enter_and_confirm("1357")
        journey.shows("SuccessPinSetView")
        self.wait("document.querySelector('[data-endpoint=pinSet] .badge.good')?.textContent === '200'")
        self.wait(CARD + ".includes('PIN 1357')")
        self.click("[data-endpoint=pinSet] summary")
        self.wait("document.querySelector('[data-endpoint=pinSet]').innerText.includes('1357')")
        for width, scheme, white in ((1280, "light", True), (360, "light", True), (360, "dark", False)):
            command = self.browser.execute_cdp_cmd
            command("Emulation.setDeviceMetricsOverride", {"width": width, "height": 740, "deviceScaleFactor": 1, "mobile": False})
            command("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
            self.assertLessEqual(self.run_script("document.documentElement.scrollWidth"), width)
            self.assertEqual(self.run_script("getComputedStyle(document.body).backgroundColor > 'rgb(2'"), white)
        self.click("#filter option[value=getCardStatus]")
        self.wait("[...document.querySelectorAll('.entry')].every(entry => entry.dataset.endpoint === 'getCardStatus')")
        self.click("#reset")
        self.browser.switch_to.alert.accept()
        self.wait("!document.querySelector('.entry') && document.querySelector('#code').textContent === 'none yet'")
        self.assertEqual([entry for entry in self.browser.get_log("browser") if entry["level"] == "SEVERE"], [])

        self.click("#endpoint option[value=getCardStatus]")
        self.click("#fault option[value='Connection reset']")
        self.click("#add button")
        self.wait("document.querySelector('#rules').textContent.includes('1 left')")
        self.journey(card="<img id=evil src=https://192.0.2.1/x onerror=document.title='evil'>").shows("UhOhTryAgainView")
        self.wait("document.querySelector('.entry .badge.bad')?.textContent === 'fault'")
        self.wait("document.querySelector('.entry .card')?.textContent.includes('<img')")
        rule = self.browser.find_element(By.CSS_SELECTOR, "#rule")
        rule.clear()
        rule.send_keys('{"endpoint":"pinSet"}')
        self.click("#add button")
        self.wait("document.querySelector('#refused').textContent === 'rule 1: the rule has no effect'")
        self.click("#clear")
        self.wait("!document.querySelector('#rules .row')")
        self.browser.execute_script("const s = document.createElement('script'); s.text = 'document.title = 1'; document.body.append(s)")
        self.assertEqual(self.run_script("[document.querySelectorAll('#evil').length, document.title]"), [0, "Card service"])
        self.assertEqual(self.run_script("performance.getEntriesByType('resource').filter(e => !e.name.startsWith(origin))"), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
