#!/usr/bin/python3
"""The simulator as a process: its cable, its control socket, its service.

usage: simulator_itself.py BUILD_FOLDER
"""
import fcntl
import http.client
import os
import select
import socket
import ssl
import subprocess
import sys
import tempfile
import termios
import unittest
import urllib.error
import urllib.request

sys.dont_write_bytecode = True
from harness.simulator import Control, Simulator  # noqa: E402
from harness.waiting import DEADLINE, wait_for  # noqa: E402

BUILD = ""
ROOT = "/VorranoAPI/RestServiceImpl.svc/"


class SimulatorItself(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.simulator = Simulator(os.path.join(BUILD, "vorrano-simulator"), self.folder.name)
        self.line = os.open(self.simulator.node, os.O_RDWR | os.O_NOCTTY)

    def tearDown(self):
        os.close(self.line)
        # Its end comes while it is being listened to.
        self.assertEqual(self.simulator.stop(), 0)
        self.folder.cleanup()

    def serve_securely(self):
        files = [os.path.join(self.folder.name, name) for name in ("key", "certificate")]
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
                        "-addext", "subjectAltName=DNS:localhost", "-keyout", files[0], "-out", files[1]], check=True,
                       capture_output=True)
        self.simulator.do("serveSecurely", key=files[0], certificate=files[1], port=0)

    def read(self, wanted):
        """As many bytes as are wanted, in however many reads they come; fewer when no more come, or at a hang-up."""
        gathered = b""
        while len(gathered) < len(wanted) and self.waits_to_be_read():
            more = os.read(self.line, 4096)
            if not more:
                break
            gathered += more
        return gathered

    def waits_to_be_read(self):
        return bool(select.select([self.line], [], [], DEADLINE)[0])

    def sent(self):
        """The pieces that it has sent."""
        return [event["bytes"] for event in self.simulator.events if event.get("event") == "sent"]

    def unread(self):
        """How many bytes wait to be read."""
        return int.from_bytes(fcntl.ioctl(self.line, termios.FIONREAD, bytes(4)), sys.byteorder)

    def assert_reads(self, wanted):
        self.assertEqual(self.read(wanted), wanted)

    def fetch(self, path):
        port = self.simulator.state["service"]["port"]
        return urllib.request.urlopen("http://127.0.0.1:%d%s%s" % (port, ROOT, path), timeout=DEADLINE).read()

    def test_answers_on_its_pseudo_terminal(self):
        os.write(self.line, b"3")

        self.assert_reads(b"00:1E:5C:0A:1B:2C\n\r")

    def test_stores_what_it_is_told(self):
        os.write(self.line, b"8My$Home$Net\0")

        self.assert_reads(b"OK\n\r")
        self.assertEqual(self.simulator.device["ssid"], "My$Home$Net")
        self.assertEqual(self.simulator.received, b"8My$Home$Net\0")

    def test_says_what_it_is_told_to_say(self):
        self.simulator.do("say", bytes="\u00ffab\n\r")

        self.assert_reads(b"\xffab\n\r")

    def test_sends_no_piece_before_the_last_was_read(self):
        self.simulator.fault("split")

        os.write(self.line, b"c")

        self.assertTrue(self.waits_to_be_read())
        # It has done all that it does at once when it answers.
        self.assertTrue(self.simulator.state["line"]["plugged"])
        self.assertLessEqual(self.unread(), 1)

    def test_sends_every_piece_of_a_reply_that_is_split(self):
        self.simulator.fault("split")

        os.write(self.line, b"c")

        self.assert_reads(b"Not$set\n\n\r")
        wait_for("the event of each piece", lambda: self.sent() == list("Not$set\n\n\r"))

    def test_loses_what_nobody_reads(self):
        os.write(self.line, b"1")
        wait_for("the second half", lambda: "V1.4\n\r" in self.sent())

        self.assert_reads(b"V1.4\n\r")

    def test_tells_the_rate_that_was_set(self):
        settings = termios.tcgetattr(self.line)
        settings[4] = settings[5] = termios.B9600
        termios.tcsetattr(self.line, termios.TCSANOW, settings)

        self.assertEqual(self.simulator.state["line"]["baud"], 9600)

    def test_hangs_up_when_the_cable_is_pulled(self):
        self.simulator.do("unplug")

        self.assertEqual(os.read(self.line, 4096), b"")
        self.assertFalse(self.simulator.state["line"]["plugged"])
        wait_for("the event", lambda: [e for e in self.simulator.events if e.get("event") == "unplugged"])

    def test_answers_again_when_the_cable_is_back(self):
        self.simulator.do("unplug")
        os.close(self.line)
        self.line = os.open(self.simulator.do("plug")["node"], os.O_RDWR | os.O_NOCTTY)

        os.write(self.line, b"h")

        self.assert_reads(b"0\n\r")

    def test_hangs_up_in_the_middle_of_a_reply(self):
        self.simulator.fault("hangUp", command="3", count=5)

        os.write(self.line, b"3")

        wait_for("the cable to be out", lambda: not self.simulator.state["line"]["plugged"])

    def test_forgets_what_it_had_still_to_say_when_the_cable_is_pulled(self):
        self.simulator.fault("split", command="3")
        os.write(self.line, b"3")
        wait_for("the first piece", self.sent)

        self.simulator.do("unplug")
        os.close(self.line)
        self.line = os.open(self.simulator.do("plug")["node"], os.O_RDWR | os.O_NOCTTY)
        self.simulator.do("clearFaults")

        os.write(self.line, b"h")
        self.assert_reads(b"0\n\r")

    def test_goes_on_when_a_listener_leaves_in_the_middle_of_an_upload(self):
        leaver = Control(self.simulator.path)
        leaver.do("subscribe")
        os.write(self.line, b"7b")
        self.assert_reads(b">")
        os.write(self.line, b"u")
        self.assert_reads(b"U")
        leaver.close()

        os.write(self.line, b":" * 2000)

        wait_for("the image", lambda: self.simulator.do("image")["complete"])
        self.assertEqual(self.simulator.state["imageSize"], 2000)

    def test_goes_on_when_a_caller_hangs_up_before_the_answer(self):
        self.simulator.do("serviceFault", kind="slow", delay=200, times=2)
        port = self.simulator.state["service"]["port"]
        for _ in range(2):
            with socket.create_connection(("127.0.0.1", port)) as caller:
                caller.sendall(b"GET %sgetAccounts/1 HTTP/1.1\r\n\r\n" % ROOT.encode())
                wait_for("the request", lambda: self.simulator.requests)
        wait_for("both requests", lambda: len(self.simulator.requests) == 2)

        self.assertEqual(self.fetch("getAccounts/1"), b'{"data":[]}')

    def test_ends_while_an_answer_is_awaited(self):
        for kind in ("noAnswer", "slow", "endless"):
            self.simulator.do("serviceFault", kind=kind, delay=5000, times=1)
        callers = [socket.create_connection(("127.0.0.1", self.simulator.state["service"]["port"])) for _ in range(3)]
        for caller in callers:
            self.addCleanup(caller.close)
            caller.sendall(b"GET %sgetAccounts/1 HTTP/1.1\r\n\r\n" % ROOT.encode())

        wait_for("the requests", lambda: len(self.simulator.requests) == 3)

    def test_enters_its_bootloader_and_takes_an_image(self):
        os.write(self.line, b"7b")
        self.assert_reads(b">")
        os.write(self.line, b"u")
        self.assert_reads(b"U")
        os.write(self.line, b":00000001FF\r")

        image = wait_for("the image", lambda: (lambda i: i["complete"] and i)(self.simulator.do("image")))
        self.assertEqual(image["bytes"], ":00000001FF\r")
        self.assertEqual(len(image["times"]), 12)
        self.assertEqual(self.simulator.device["firmwareVersion"], "9.60")

    def test_refuses_what_it_does_not_know(self):
        with self.assertRaises(RuntimeError):
            self.simulator.do("dance")
        with self.assertRaises(RuntimeError):
            self.simulator.fault("headache")

    def test_serves_and_records_requests_byte_for_byte(self):
        self.assertEqual(self.fetch("validateLogin//%20x"), b'{"data":[{"Id":"0"}]}')

        self.assertEqual(self.simulator.requests, [ROOT + "validateLogin//%20x"])

    def test_serves_accounts_that_were_added(self):
        self.simulator.do("addAccount", values={"AccountLogin": "ada", "Password": "secret1"})

        self.assertEqual(self.fetch("validateLogin/ada/secret1"), b'{"data":[{"Id":"1234"}]}')

    def test_cuts_a_body(self):
        self.simulator.do("serviceFault", kind="cut", count=3)

        with self.assertRaises(http.client.IncompleteRead) as caught:
            self.fetch("GetLatestFirmware/9")
        self.assertEqual(caught.exception.partial, b'{"G')

    def test_answers_what_it_is_told_once(self):
        self.simulator.do("serviceFault", kind="answer", status=500, body="<html>", method="getAccounts", times=1)

        with self.assertRaises(urllib.error.HTTPError) as caught:
            self.fetch("getAccounts/1")
        self.assertEqual((caught.exception.code, caught.exception.read()), (500, b"<html>"))
        self.assertEqual(self.fetch("getAccounts/1"), b'{"data":[]}')

    def test_sends_around_in_circles(self):
        self.simulator.do("serviceFault", kind="redirect")

        with self.assertRaises(urllib.error.HTTPError):
            self.fetch("getAccounts/1")

    def test_sends_without_end(self):
        self.simulator.do("serviceFault", kind="endless")
        port = self.simulator.state["service"]["port"]

        with urllib.request.urlopen("http://127.0.0.1:%d%s" % (port, ROOT), timeout=DEADLINE) as response:
            self.assertEqual(len(response.read(1 << 21)), 1 << 21)

    def test_sends_without_end_over_tls_no_faster_than_it_is_read(self):
        self.serve_securely()
        self.simulator.do("serviceFault", kind="endless", times=1)
        port = self.simulator.state["service"]["securePort"]
        context = ssl.create_default_context(cafile=os.path.join(self.folder.name, "certificate"))
        with socket.create_connection(("127.0.0.1", port), timeout=DEADLINE) as plain, \
                context.wrap_socket(plain, server_hostname="localhost") as caller:
            caller.sendall(b"GET %s HTTP/1.1\r\n\r\n" % ROOT.encode())
            self.assertEqual(caller.recv(4), b"HTTP")

            # Nobody reads on, and others are served.
            self.assertEqual(self.fetch("getAccounts/1"), b'{"data":[]}')

            with caller.makefile("rb") as answer:
                self.assertEqual(len(answer.read(1 << 21)), 1 << 21)

    def test_refuses_connections(self):
        port = self.simulator.state["service"]["port"]
        self.simulator.do("refuseConnections")

        with self.assertRaises(urllib.error.URLError):
            urllib.request.urlopen("http://127.0.0.1:%d/" % port, timeout=DEADLINE)
        self.simulator.do("acceptConnections", port=port)
        self.assertEqual(self.fetch("getAccounts/1"), b'{"data":[]}')


if __name__ == "__main__":
    BUILD = sys.argv.pop(1)
    unittest.main()
