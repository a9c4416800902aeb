# SPDX-License-Identifier: Apache-2.0
"""A host that is not C++: Python drives a journey through the shared library, and misuses it."""

import ctypes as c
import json
import os
import threading
import time
import unittest
from concurrent.futures import ThreadPoolExecutor

from driver import PATIENCE, PROGRAMS, Sandbox

os.environ.pop("LD_PRELOAD", None)  # of a checker's run: it is for this process alone
LIBRARY = c.CDLL(str(PROGRAMS.parent / "lib/libkorvane.so"))
OK, BAD_ARGUMENT, NOT_SET_UP, WRONG_THREAD, BAD_KEY, NO_SUCH_CONTROL, NOT_ENABLED, NOT_DIGITS, NO_PROMPT = range(9)
LINE = c.CFUNCTYPE(None, c.c_void_p, c.c_char_p)
QUESTION = c.CFUNCTYPE(None, c.c_void_p, c.c_void_p)
MANUAL = 1


class Host(c.Structure):
    _fields_ = [("size", c.c_size_t), ("loop", c.c_int), ("ca_file", c.c_char_p), ("language", c.c_char_p),
                ("mask_secrets", c.c_int), ("context", c.c_void_p), ("log_line", LINE), ("text", c.c_void_p),
                ("copied", LINE), ("prompt", LINE), ("prompt_message", LINE)]


class Config(c.Structure):
    _fields_ = [("size", c.c_size_t), ("key", c.c_char_p), ("api_url", c.c_char_p), ("iv_callback", QUESTION),
                ("iv_context", c.c_void_p), ("use_biometrics", c.c_int), ("wearable_name", c.c_char_p)]


class CInterface(unittest.TestCase):
    def setUp(self):
        self.sandbox = Sandbox()
        self.addCleanup(self.sandbox.stop)
        self.log, self.results = [], []
        self.journey = c.c_void_p()
        self.log_line = LINE(lambda _, line: self.log.append(line))
        self.closed = LINE(lambda _, result: self.results.append(result))
        self.supply = QUESTION(lambda _, request: threading.Thread(target=self.answer, args=(request,)).start())

    def answer(self, request):
        """On a thread of the host's own."""
        iv = self.sandbox.ask("POST", "/host/iv", {})
        LIBRARY.korvane_iv_supply(c.c_void_p(request), iv["ivId"].encode(), iv["iv"].encode())

    def set_up(self):
        host = Host(size=c.sizeof(Host), loop=MANUAL, ca_file=self.sandbox.ca.encode(), log_line=self.log_line)
        self.assertEqual(LIBRARY.korvane_set_up(c.byref(host)), OK)
        self.addCleanup(LIBRARY.korvane_tear_down)
        self.addCleanup(LIBRARY.korvane_journey_destroy, self.journey)

    def initialize(self, key=None):
        config = Config(size=c.sizeof(Config), key=(key or self.sandbox.told["key"]).encode(),
                        api_url=self.sandbox.url.encode(), iv_callback=self.supply)
        return LIBRARY.korvane_initialize(c.byref(config))

    def screen(self):
        text = c.c_void_p()
        self.assertEqual(LIBRARY.korvane_journey_screen(self.journey, c.byref(text)), OK)
        screen = json.loads(c.string_at(text))
        LIBRARY.korvane_free(text)
        return screen

    def shows(self, view):
        end = time.monotonic() + PATIENCE
        while (screen := self.screen())["view"] != view or screen["spinner"]:
            self.assertLess(time.monotonic(), end, screen)
            self.assertEqual(LIBRARY.korvane_loop_step(100), OK)
        return screen

    def perform(self, control, status=OK):
        self.assertEqual(LIBRARY.korvane_journey_perform(self.journey, control.encode()), status)

    def type(self, digits, status=OK):
        self.assertEqual(LIBRARY.korvane_journey_replace(self.journey, digits.encode()), status)

    def test_a_journey_from_a_language_that_calls_c(self):
        self.set_up()
        self.assertEqual(self.initialize(key="not base64"), BAD_KEY)
        self.assertEqual(self.initialize(), OK)
        self.assertEqual(LIBRARY.korvane_journey_create(0, b"card-physical-active", c.byref(self.journey)), OK)
        LIBRARY.korvane_on_close(self.closed, None)
        LIBRARY.korvane_journey_appear(self.journey)
        self.shows("SMSExplainView")
        self.perform("sdk.sms.explain.button")
        self.shows("EnterSMSCodeView")
        self.type(self.sandbox.code())
        self.shows("EnterCardPINView")
        self.perform("nothing", NO_SUCH_CONTROL)
        self.perform("sdk.setpin.button", NOT_ENABLED)
        self.type("12a4", NOT_DIGITS)
        self.type("1357")
        self.assertEqual(self.screen()["passcode"]["filled"], 4)
        self.assertNotIn("1357", json.dumps(self.screen()))
        self.perform("sdk.setpin.button")
        self.shows("ConfirmCardPINView")
        self.type("1357")
        self.perform("sdk.confirmpin.button")
        self.assertEqual(self.shows("SuccessPinSetView")["title"], "sdk.success.setpin.header")
        self.perform("sdk.success.setpin.button")
        self.assertEqual(self.results, [b"SUCCESS"])
        self.assertEqual(self.sandbox.card("card-physical-active")["pin"], "1357")
        self.assertIn(b"SDK initialize success", self.log)

    def test_each_journey_reports_its_own_end(self):
        self.set_up()
        self.assertEqual(self.initialize(), OK)
        heard = []
        callback = c.CFUNCTYPE(None, c.c_void_p, c.c_char_p)(lambda name, result: heard.append((name, result)))
        journeys = [c.c_void_p(), c.c_void_p()]
        for number, journey in enumerate(journeys, 1):
            self.assertEqual(LIBRARY.korvane_journey_create(1, b"card-physical-active", c.byref(journey)), OK)
            self.addCleanup(LIBRARY.korvane_journey_destroy, journey)
            self.assertEqual(LIBRARY.korvane_journey_on_close(journey, callback, number), OK)
            LIBRARY.korvane_journey_appear(journey)
            self.journey = journey
            self.shows("SMSExplainView")
        self.assertEqual(LIBRARY.korvane_journey_on_close(None, callback, 0), BAD_ARGUMENT)
        self.perform("sdk.sms.explain.button")
        self.shows("EnterSMSCodeView")
        self.type(self.sandbox.code())
        self.shows("CardAlreadyActivatedView")
        self.perform("sdk.cardactivated.button.one")
        self.assertEqual(heard, [(2, b"CANCELED")])

    def test_misuse_is_answered(self):
        self.assertEqual((LIBRARY.korvane_loop_step(0), self.initialize()), (NOT_SET_UP, NOT_SET_UP))
        self.assertEqual(LIBRARY.korvane_set_up(None), BAD_ARGUMENT)
        self.set_up()
        self.assertEqual(LIBRARY.korvane_initialize(None), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.korvane_journey_create(7, b"card", c.byref(self.journey)), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.korvane_journey_perform(None, b"back"), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.korvane_prompt_cancel(), NO_PROMPT)
        with ThreadPoolExecutor() as elsewhere:
            self.assertEqual(elsewhere.submit(self.initialize).result(), WRONG_THREAD)

    def test_versions_are_exported(self):
        self.assertEqual(c.c_double.in_dll(LIBRARY, "KorvaneiOSSDKVersionNumber").value, 1.0)
        text = b"@(#)PROGRAM:KorvaneiOSSDK  PROJECT:KorvaneiOSSDK-1\n\0"
        self.assertEqual(bytes((c.c_char * len(text)).in_dll(LIBRARY, "KorvaneiOSSDKVersionString")), text)


if __name__ == "__main__":
    unittest.main(verbosity=2)
