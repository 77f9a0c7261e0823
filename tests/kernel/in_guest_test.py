#!/usr/bin/python3
"""What in-guest does about a guest that stands still. The guest is a group of processes here, which can be stopped.

usage: in_guest_test.py CASE
"""
import os
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [os.path.join(HERE, "..", "e2e")]

from harness.waiting import wait_for                                  # noqa: E402

# SIGTERM to the rig ends its guest, as it does with a real rig.
RIG = """#!/bin/sh
echo begun >>"$NOTES"
echo "a trace of the kernel's" >"$RIG_OUT/console.log"
setsid "$@" &
trap 'kill -KILL -$!; echo ended >>"$NOTES"; exit 143' TERM
wait $!
"""
STOPS_ONCE = 'test -e "$NOTES.stopped" || { touch "$NOTES.stopped"; kill -STOP 0; }; exit 3'
STOPS_ALWAYS = "kill -STOP 0"
# Longer than a guest may be still here, and than it may take to its first sign of life.
IS_BUSY = "sleep 20; exit 3"
IS_KILLED = "kill -KILL $$"


class InGuest:
    def __init__(self, folder, script):
        rig, self._notes = os.path.join(folder, "rig"), os.path.join(folder, "notes")
        with open(rig, "w", encoding="ascii") as file:
            os.fchmod(file.fileno(), 0o755)
            file.write(RIG)
        self.process = subprocess.Popen(
            [os.path.join(HERE, "in-guest"), "--still", "5", "--guests", "2", rig, "--", "/bin/sh", "-c", script],
            env={**os.environ, "NOTES": self._notes, "RIG_OUT": ""}, stderr=subprocess.PIPE, text=True)

    def notes(self):
        try:
            with open(self._notes, encoding="ascii") as file:
                return file.read().split()
        except FileNotFoundError:
            return []


def run(script):
    """Gives the status, what the rig noted, and what in-guest said."""
    with tempfile.TemporaryDirectory() as folder:
        in_guest = InGuest(folder, script)
        said = in_guest.process.communicate()[1]
        return in_guest.process.returncode, in_guest.notes(), said


def StartsAnotherGuestWhenOneStandsStill():
    ended = run(STOPS_ONCE)
    said = "a trace of the kernel's\nin-guest: guest 1 of 2 stood still\n"
    assert ended == (3, ["begun", "ended", "begun"], said), ended


def GivesUpAfterTheLastGuest():
    status, notes, said = run(STOPS_ALWAYS)
    assert (status, notes) == (124, ["begun", "ended", "begun", "ended"]), (status, notes, said)


def LeavesAGuestAloneThatIsAlive():
    ended = run(IS_BUSY)
    assert ended == (3, ["begun"], ""), ended


def GivesTheStatusOfAProgramThatWasKilled():
    ended = run(IS_KILLED)
    assert ended == (128 + 9, ["begun"], ""), ended


def EndsItsGuestWhenItIsTerminated():
    with tempfile.TemporaryDirectory() as folder:
        in_guest = InGuest(folder, 'touch "$NOTES.runs"; exec sleep 600')
        wait_for("the program", lambda: os.path.exists(os.path.join(folder, "notes.runs")))

        in_guest.process.terminate()

        said = in_guest.process.communicate()[1]
        assert in_guest.process.returncode == 143, (in_guest.process.returncode, said)
        assert in_guest.notes() == ["begun", "ended"], (in_guest.notes(), said)


if __name__ == "__main__":
    globals()[sys.argv[1]]()
