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
        journey = Journey(self.sandbox)
        self.addCleanup(journey.end)
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
        self.click("#reset")
        self.browser.switch_to.alert.accept()
        self.wait("!document.querySelector('.entry') && document.querySelector('#code').textContent === 'none yet'")
        self.assertEqual([entry for entry in self.browser.get_log("browser") if entry["level"] == "SEVERE"], [])

        self.click("#endpoint option[value=getCardStatus]")
        self.click("#fault option[value='Connection reset']")
        self.click("#add button")
        self.wait("document.querySelector('#rules').textContent.includes('1 left')")
        evil = Journey(self.sandbox, card="<img id=evil src=https://192.0.2.1/x onerror=document.title='evil'>")
        self.addCleanup(evil.end)
        evil.shows("UhOhTryAgainView")
        self.wait("document.querySelector('.entry .badge.bad')?.textContent === 'fault'")
        self.wait("document.querySelector('.entry .card')?.textContent.includes('<img')")
        self.browser.execute_script("const s = document.createElement('script'); s.text = 'document.title = 1'; document.body.append(s)")
        self.assertEqual(self.run_script("[document.querySelectorAll('#evil').length, document.title]"), [0, "Card service"])
        self.assertEqual(self.run_script("performance.getEntriesByType('resource').filter(e => !e.name.startsWith(origin))"), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
