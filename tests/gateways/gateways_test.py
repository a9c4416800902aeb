# SPDX-License-Identifier: Apache-2.0
"""Journeys through real gateways, also through one that restarts, closes connections soon or answers with a page of its
own. Each ends on a named page, and no request that changes something is sent twice."""

import json
import os
import random
import socket
import struct
import subprocess
import tempfile
import threading
import time
import types
import unittest
import zlib

import gateways
from driver import PROGRAMS, Journey, Sandbox


def picture(path, width=1200, height=1120):
    """A PNG file of 4 MB, since noise cannot be compressed."""
    noise = random.Random(7)
    rows = b"".join(b"\0" + noise.randbytes(3 * width) for _ in range(height))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        for kind, data in ((b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)), (b"IDAT", zlib.compress(rows, 1)), (b"IEND", b"")):
            file.write(struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)))
    return os.path.getsize(path)


class Service(Sandbox):
    """The card service over HTTP, for a gateway in front."""

    def __init__(self, ca, *options):
        self.ca = ca
        self.folder = types.SimpleNamespace(cleanup=lambda: None)
        self.process = subprocess.Popen([PROGRAMS / "korvane-sandbox", "--http", *options], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.told = json.loads(self.process.stdout.readline())
        self.url = self.told["url"]
        self.port = int(self.url.rsplit(":", 1)[1])


class Silent:
    """Takes requests and never answers; counts them."""

    def __init__(self):
        self.requests, self.held = 0, []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            try:
                connection = self.listener.accept()[0]
            except OSError:
                return
            self.held.append(connection)
            self.requests += connection.recv(65536).startswith(b"POST ")

    def stop(self):
        self.listener.close()
        for connection in self.held:
            connection.close()


class Journeys:
    """What every gateway has to carry; `kind` is the gateway."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        os.chmod(cls.folder, 0o755)
        gateways.make_certificate(cls.folder)
        cls.ca, path = os.path.join(cls.folder, "ca.pem"), os.path.join(cls.folder, "card.png")
        cls.picture_size = picture(path)
        cls.service = Service(cls.ca, "--picture", path)

    @classmethod
    def tearDownClass(cls):
        cls.service.stop()
        subprocess.run(["rm", "-r", cls.folder], check=True)

    def setUp(self):
        self.service.ask("POST", "/host/reset")

    def gateway(self, **options):
        front = self.kind(self.folder, self.service.port, **options)
        self.addCleanup(front.stop)
        return front

    def start(self, front, kind="set-pin", card="card-physical-active"):
        reached = types.SimpleNamespace(url=front.url, told=self.service.told, ca=self.ca)
        journey = Journey(reached, kind, card, ("--log", "masked"))
        self.addCleanup(journey.end)
        journey.verify_by_sms(self.service)
        return journey

    def confirms(self, journey, view):
        """The PIN is confirmed, and this comes of it."""
        journey.enter_and_confirm("2580")
        journey.shows(view)

    def test_carries_all_journeys_and_a_picture_of_4_megabytes(self):
        front = self.gateway()
        self.confirms(self.start(front), "SuccessPinSetView")
        activation = self.start(front, "activate", "card-physical-new")
        activation.at("ActivateCardAndSetPIN_NoNav", "sdk.cardarrived.start")
        activation.prove_possession(self.service.card("card-physical-new"))
        self.confirms(activation, "SuccessCardActivatedAndPinSetView")
        viewer = self.start(front, "card", "card-virtual-active").shows("CardImage_NoNav")
        self.assertGreater(self.picture_size, 4_000_000)
        self.assertTrue(viewer["state"]["isCardImageLoaded"])
        counts = self.service.requests()
        self.assertEqual((counts["pinSet"], counts["physicalCardActivationAndPinSet"]), (1, 1))

    def test_is_restarted_between_two_calls(self):
        front = self.gateway()
        journey = self.start(front)
        journey.at("EnterCardPINView", "sdk.setpin.button", "2580")
        journey.shows("ConfirmCardPINView")
        front.restart()
        journey.at("ConfirmCardPINView", "sdk.confirmpin.button", "2580")
        # What meets the end of its connection may have been carried out: then it is not sent again.
        view = journey.next(lambda e: e.get("view") in ("SuccessPinSetView", "UhOhTryAgainView"))["view"]
        self.assertEqual(self.service.requests()["pinSet"], 1 if view == "SuccessPinSetView" else 0)

    def test_closes_connections_sooner_than_the_component(self):
        journey = self.start(self.gateway(idle=1))
        journey.shows("EnterCardPINView")
        time.sleep(2.5)
        self.confirms(journey, "SuccessPinSetView")
        self.assertEqual(self.service.requests()["pinSet"], 1)

    def test_takes_two_requests_a_connection(self):
        if not self.kind.limits_requests:
            self.skipTest("this gateway has no such limit")
        self.confirms(self.start(self.gateway(requests=2)), "SuccessPinSetView")
        self.assertEqual(self.service.requests()["pinSet"], 1)

    def test_answers_with_a_page_of_its_own(self):
        silent, refusing = Silent(), socket.socket()
        self.addCleanup(silent.stop)
        self.addCleanup(refusing.close)
        refusing.bind(("127.0.0.1", 0))  # nobody else gets the port, and nothing listens there
        for pin, statuses in ((refusing.getsockname()[1], {"502\n", "503\n"}), (silent.port, {"502\n", "504\n"})):
            with self.subTest(statuses):
                front = self.gateway(pin=pin)
                journey = self.start(front)
                self.confirms(journey, "UhOhTryAgainView")
                front.stop()
                # nghttpx may reset the stream behind a page that it sends before it has read the request: then the page is
                # lost on the way now and then, and the person sees the same.
                lost = {"no response: •••\n"} if self.kind is gateways.Nghttpx else set()
                end = time.monotonic() + 10  # the log comes by a pipe of its own
                while not (statuses | lost) & set(journey.log):
                    self.assertLess(time.monotonic(), end, journey.log[-16:])
                    time.sleep(0.01)
        self.assertEqual(silent.requests, 1)
        self.assertEqual(self.service.requests()["pinSet"], 0)


for each in (gateways.Nginx, gateways.Nghttpx, gateways.Caddy, gateways.Apache):
    globals()[each.__name__] = type(each.__name__, (Journeys, unittest.TestCase), {"kind": each})


if __name__ == "__main__":
    unittest.main()
