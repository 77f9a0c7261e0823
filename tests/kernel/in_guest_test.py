#!/usr/bin/python3
"""What in-guest does about a guest that stands still. The guest is a group of processes here, which can be stopped.

usage: in_guest_test.py CASE
"""
import os
import subprocess
import sys
import tempfile

IN_GUEST = os.path.join(os.path.dirname(os.path.abspath(__file__)), "in-guest")

# What is sent to the rig ends its guest, as that of a real one does.
RIG = """#!/bin/sh
echo guest >>"$NOTES"
setsid "$@" &
trap 'kill -KILL -$!; exit 143' TERM
wait $!
"""
STOPS_ONCE = 'test -e "$NOTES.stopped" || { touch "$NOTES.stopped"; kill -STOP 0; }; exit 3'
STOPS_ALWAYS = "kill -STOP 0"
# Twice as long as the sign of life may take.
IS_BUSY = "sleep 11; exit 3"


def run(script):
    """Gives the status, the number of guests, and what in-guest said."""
    with tempfile.TemporaryDirectory() as folder:
        rig, notes = os.path.join(folder, "rig"), os.path.join(folder, "notes")
        with open(rig, "w", encoding="ascii") as file:
            os.fchmod(file.fileno(), 0o755)
            file.write(RIG)
        ended = subprocess.run([IN_GUEST, "--still", "5", "--guests", "2", rig, "--", "/bin/sh", "-c", script],
                               env={**os.environ, "NOTES": notes, "RIG_OUT": ""}, stderr=subprocess.PIPE, text=True,
                               check=False)
        with open(notes, encoding="ascii") as file:
            return ended.returncode, len(file.readlines()), ended.stderr


def StartsAnotherGuestWhenOneStandsStill():
    status, guests, said = run(STOPS_ONCE)
    assert (status, guests) == (3, 2), (status, guests, said)
    assert "guest 1 of 2 stood still" in said, said


def GivesUpAfterTheLastGuest():
    status, guests, said = run(STOPS_ALWAYS)
    assert (status, guests) == (124, 2), (status, guests, said)


def LeavesAGuestAloneThatIsAlive():
    status, guests, said = run(IS_BUSY)
    assert (status, guests, said) == (3, 1, ""), (status, guests, said)


if __name__ == "__main__":
    globals()[sys.argv[1]]()
