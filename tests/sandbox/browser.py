# SPDX-License-Identifier: Apache-2.0
"""A headless Chromium, driven over WebDriver's own HTTP (W3C WebDriver, with Chromium's DevTools commands)."""

import base64
import json
import re
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the standard's name for a reference
FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
         "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage"]


class Browser:
    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        port = next(found[1] for line in self.driver.stdout if (found := re.search(r"successfully on port (\d+)", line)))
        self.url = f"http://127.0.0.1:{port}/session"
        wanted = {"acceptInsecureCerts": True, "goog:loggingPrefs": {"browser": "ALL"},
                  "goog:chromeOptions": {"args": [*FLAGS, f"--user-data-dir={self.profile.name}"]}}
        self.url += "/" + self.ask("POST", "", {"capabilities": {"alwaysMatch": wanted}})["sessionId"]

    def ask(self, method, path, body=None):
        request = urllib.request.Request(self.url + path, None if method != "POST" else json.dumps(body or {}).encode(), method=method)
        try:
            with urllib.request.urlopen(request, timeout=60) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(json.load(error)["value"]["message"]) from None

    def open(self, url):
        self.ask("POST", "/url", {"url": url})

    def run(self, script, *arguments):
        return self.ask("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def wait(self, expression, patience=30):
        """Waits until the JavaScript expression is true; its value."""
        end = time.monotonic() + patience
        while not (value := self.run("return " + expression)):
            if time.monotonic() > end:
                raise AssertionError(f"never came true: {expression}")
            time.sleep(0.1)
        return value

    def element(self, selector):
        found = self.ask("POST", "/element", {"using": "css selector", "value": selector})
        return "/element/" + found[ELEMENT]

    def click(self, selector):
        self.ask("POST", self.element(selector) + "/click")

    def write(self, selector, text):
        self.ask("POST", self.element(selector) + "/clear")
        self.ask("POST", self.element(selector) + "/value", {"text": text})

    def looks(self, width, height, scheme="light"):
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.devtools("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def devtools(self, command, **parameters):
        return self.ask("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def picture(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.ask("GET", "/screenshot")))

    def complaints(self):
        """What the browser's console told of errors."""
        log = self.ask("POST", "/se/log", {"type": "browser"})
        return [entry["message"] for entry in log if entry["level"] == "SEVERE"]

    def close(self):
        self.ask("DELETE", "")
        self.driver.terminate()
        self.driver.wait(30)
        self.driver.stdout.close()
        self.profile.cleanup()
