"""The program's serial port without the program: a process that is told what to do, and tells what it hears."""
import subprocess
import threading

from adapter import SLOW
from harness.waiting import wait_for


class Probe:
    """port_probe/PortProbe.h has its verbs, and the lines that it says."""

    def __init__(self, executable, **rights):
        """`rights` are those of subprocess.Popen: user, group, extra_groups."""
        self._process = subprocess.Popen([executable], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                         bufsize=1, **rights)
        self.heard = []
        threading.Thread(target=self._listen, daemon=True).start()

    def _listen(self):
        for line in self._process.stdout:
            self.heard.append(line.rstrip("\n"))

    def do(self, *words):
        self._process.stdin.write(" ".join(map(str, words)) + "\n")

    def hears(self, line, times=1):
        wait_for("%r (%d)" % (line, times),
                 lambda: self.heard.count(line) >= times or self._check_that_it_runs(), SLOW)

    def asks(self, *words, answer):
        """Tells it something that is answered."""
        answers = self.heard.count(answer)
        self.do(*words)
        self.hears(answer, answers + 1)

    @property
    def received(self):
        return b"".join(bytes.fromhex(line.split()[1]) for line in list(self.heard) if line.startswith("data "))

    def errors(self):
        return [int(line.split()[1]) for line in list(self.heard) if line.startswith("error ")]

    def _check_that_it_runs(self):
        if self._process.poll() is not None:
            raise AssertionError("the probe ended with %d" % self._process.returncode)

    def end(self):
        """Gives its exit status."""
        self._process.stdin.close()
        try:
            return self._process.wait(SLOW)
        except subprocess.TimeoutExpired:
            self._process.kill()
            raise AssertionError("the probe did not end") from None
