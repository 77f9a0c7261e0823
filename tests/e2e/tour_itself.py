#!/usr/bin/python3
"""The tour as a program: what it leaves behind, and what it makes of a step that goes wrong.

usage: tour_itself.py BUILD_FOLDER
"""
import os
import re
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
from harness.simulator import Control  # noqa: E402
from harness.waiting import wait_for  # noqa: E402

BUILD = ""
TOUR = Path(__file__).resolve().parents[2] / "simulator" / "tour" / "tour.py"
WITHIN = 1000
NOBODY = '{"data":[{"Id":"0"}]}'


class TheTourItself(unittest.TestCase):
    def setUp(self):
        self._folder = tempfile.TemporaryDirectory(prefix="e2e-")
        self.pictures = Path(self._folder.name, "pictures")
        # Its simulator's control socket is made in here.
        environment = dict(os.environ, TMPDIR=self._folder.name)
        self.tour = subprocess.Popen(
            ["dbus-run-session", "--", sys.executable, str(TOUR), BUILD, str(self.pictures)], env=environment,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, start_new_session=True)

    def tearDown(self):
        if self.tour.poll() is None:
            os.killpg(self.tour.pid, signal.SIGKILL)
        self.tour.communicate()
        self._folder.cleanup()

    def simulator(self):
        def control():
            self.assertIsNone(self.tour.poll(), "the tour has ended")
            for path in Path(self._folder.name).glob("vorrano-demo-*/control"):
                try:
                    return Control(str(path))
                except OSError:
                    continue
            return None
        return wait_for("the simulator", control)

    def test_ends_with_a_page_of_captioned_pictures(self):
        said, _ = self.tour.communicate(timeout=WITHIN)

        self.assertEqual(self.tour.returncode, 0, said)
        page = (self.pictures / "index.html").read_text(encoding="utf-8")
        shown = re.findall('<img src="(.*?)"', page)
        self.assertEqual(shown, sorted(path.name for path in self.pictures.glob("*.png")))
        self.assertGreaterEqual(len(shown), 20)
        self.assertEqual(len(re.findall("<figcaption><b>[0-9]+</b> [A-Z]", page)), len(shown))
        self.assertNotIn("seven green bottles", said)

    def test_fails_when_a_step_does_not_end_as_expected(self):
        simulator = self.simulator()
        simulator.do("serviceFault", kind="answer", method="validateLogin", body=NOBODY)
        simulator.close()

        said, _ = self.tour.communicate(timeout=WITHIN)

        self.assertNotEqual(self.tour.returncode, 0, said)
        self.assertIn("sign in went wrong", said)
        self.assertFalse((self.pictures / "index.html").exists())


if __name__ == "__main__":
    BUILD = os.path.abspath(sys.argv.pop(1))
    unittest.main()
