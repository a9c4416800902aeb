# SPDX-License-Identifier: Apache-2.0
"""Runs korvane-sandbox and korvane-journey as processes and drives them as a person would."""

import http.server
import json
import os
import pathlib
import queue
import subprocess
import tempfile
import threading

PROGRAMS = pathlib.Path(os.environ.get("KORVANE_BIN", "build/dev/bin"))
PATIENCE = 60  # seconds; sanitizers are slow


class Sandbox:
    """The card service over HTTPS; its host side is asked by curl, which trusts its CA alone."""

    def __init__(self, *options):
        self.folder = tempfile.TemporaryDirectory()
        self.ca = os.path.join(self.folder.name, "ca.pem")
        self.process = subprocess.Popen([PROGRAMS / "korvane-sandbox", "--ca-out", self.ca, *options],
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.told = json.loads(self.process.stdout.readline())
        self.url = self.told["url"]

    def ask(self, method, path, body=None):
        command = ["curl", "-sS", "--fail-with-body", "--cacert", self.ca, "-X", method, self.url + path, "-H", "Content-Type: application/json"]
        if body is not None:
            command += ["-d", json.dumps(body)]
        return json.loads(subprocess.run(command, capture_output=True, text=True, check=True).stdout or "null")

    def fault(self, **rule):
        self.ask("POST", "/host/faults", rule)

    def code(self, card=None):
        return self.ask("POST", "/host/sms", {"cardId": card} if card else {})["code"]

    def card(self, card):
        return self.ask("GET", "/host/cards/" + card)

    def requests(self):
        return self.ask("GET", "/host/journal?last=0")["counts"]

    def stop(self):
        self.process.terminate()
        self.process.wait(PATIENCE)
        self.process.stdout.close()
        self.folder.cleanup()


class IvServer:
    """A host's own server that gives this answer for an IV, over HTTP of this machine."""

    def __init__(self, answer):
        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                self.rfile.read(int(self.headers["Content-Length"]))
                self.send_response(200)
                self.end_headers()
                try:
                    self.wfile.write(answer)
                except OSError:
                    pass  # the host had enough

            def log_message(self, *_):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self.server.server_port}/iv"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def stop(self):
        self.server.shutdown()
        self.server.server_close()


# What no host may take for an IV, and none may die of.
HOSTILE_IV_ANSWERS = {
    "nothing": b"", "no members": b"{}", "a list": b"[]", "a number": b"7", "no JSON": b"<html>",
    "no texts": b'{"ivId":1,"iv":["AAAA"]}', "null": b'{"ivId":null,"iv":null}', "one text": b'{"ivId":"iv-1"}',
    "a NUL": rb'{"ivId":"a\u0000b","iv":"AAAAAAAAAAAAAAAAAAAAAA=="}',
    "deep lists": b"[" * 1_000_000, "deep objects": b'{"ivId":' * 1_000_000,
    "a long text": b'{"ivId":"' + b"i" * 16_000_000 + b'","iv":"AAAAAAAAAAAAAAAAAAAAAA=="}',
    "a long body": b'{"ivId":"iv-1","iv":"AAAAAAAAAAAAAAAAAAAAAA=="}' + b" " * 16_000_000,
}


class Journey:
    """One journey on the console."""

    def __init__(self, sandbox, kind="set-pin", card="card-physical-active", options=(), environment=None, iv_url=None,
                 folder=None):
        self.process = subprocess.Popen(
            [PROGRAMS / "korvane-journey", kind, "--card", card, "--service", sandbox.url, "--key",
             sandbox.told["key"], "--iv-url", iv_url or sandbox.told["ivUrl"], "--ca", sandbox.ca, *options],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            env={**os.environ, **(environment or {})}, cwd=folder)
        self.events = queue.Queue()
        self.seen = []
        self.log = []
        threading.Thread(target=self._read, daemon=True).start()
        threading.Thread(target=lambda: self.log.extend(self.process.stderr), daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.events.put(json.loads(line))
        self.events.put(None)

    def next(self, wanted):
        """The next event that is wanted; what comes before it is kept in `seen`."""
        while True:
            event = self.events.get(timeout=PATIENCE)
            if event is None:
                raise AssertionError(f"the journey ended; it showed {[e.get('view') for e in self.seen]}")
            self.seen.append(event)
            if wanted(event):
                return event

    def command(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def shows(self, view):
        """Waits until the view is shown, at rest. An error says that it did not come."""
        self.command(f"wait {view} {PATIENCE}")
        self.command("state")
        event = self.next(lambda e: e["event"] == "error" or (e.get("view") == view and not e["state"].get("showSpinner")))
        if event["event"] == "error":
            raise AssertionError(event["message"])
        return event

    def tap(self, *controls):
        for control in controls:
            self.command("tap " + control)

    def type(self, digits):
        self.command("type " + digits)

    def at(self, view, control, digits=""):
        """On this view: types the digits, and taps the control."""
        self.shows(view)
        if digits:
            self.type(digits)
        self.tap(control)

    def reaches(self, **state):
        """Waits for a screen whose state has these values."""
        return self.next(lambda e: e["event"] == "screen" and state.items() <= e["state"].items())

    def toast(self):
        return self.next(lambda e: e["event"] == "toast")["id"]

    def copied(self, control):
        self.tap(control)
        return self.next(lambda e: e["event"] == "pasteboard")["text"]

    def prove_possession(self, card):
        self.at("EnterCardLastFourView", "sdk.activatecard.lastfourdigits.button", card["pan"][-4:])
        self.at("EnterCardCVVView", "sdk.activatecard.cvv.button", card["cvv"][:3])

    def closes(self):
        result = self.next(lambda e: e["event"] == "close")["result"]
        return result, self.ends()

    def ends(self):
        self.process.stdin.close()
        status = self.process.wait(PATIENCE)
        self.process.stdout.close()
        return status

    def end(self):
        self.process.kill()
        self.process.wait()
        for pipe in (self.process.stdin, self.process.stdout, self.process.stderr):
            pipe.close()

    def verify_by_sms(self, sandbox, card=None):
        self.at("SMSExplainView", "sdk.sms.explain.button")
        self.shows("EnterSMSCodeView")
        self.type(sandbox.code(card))

    def enter_and_confirm(self, pin):
        self.at("EnterCardPINView", "sdk.setpin.button", pin)
        self.at("ConfirmCardPINView", "sdk.confirmpin.button", pin)
