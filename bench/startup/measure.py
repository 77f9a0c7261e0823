#!/usr/bin/python3
"""How long from exec to the first window: the program against a bare Qt window with the login's controls.

usage: measure.py PROGRAM BARE_WINDOW [PAIRS] [LIMIT]
       measure.py --figures PROGRAM...

Runs them by turns in an X server of their own, PAIRS times (default 15), and compares the medians. Ends with 1 when the
program takes more than LIMIT (default 1.25) times as long. With --figures it prints what scripts/bench --all reads, the
memory a second after the window came among it.
"""
import collections
import os
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir))
from figures import figure  # noqa: E402
from screen import own_screen  # noqa: E402

ROUNDS = 15
SETTLED = 1


def memory(pid):
    """The proportional set size in MB."""
    with open("/proc/%d/smaps_rollup" % pid, encoding="ascii") as file:
        return next(int(line.split()[1]) / 1024 for line in file if line.startswith("Pss:"))


def start(screen, program, look=None):
    """The seconds until a window of the program is mapped; calls look() with its process id then."""
    screen.forget()
    begin = time.monotonic()
    process = subprocess.Popen([program], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        took = screen.wait_for_a_window() - begin
        if look:
            look(process.pid)
        return took
    finally:
        process.terminate()
        process.wait()


def by_turns(programs, rounds, look=None):
    """The seconds of each program's starts."""
    os.environ["QT_QPA_PLATFORM"] = "xcb"
    os.environ.pop("WAYLAND_DISPLAY", None)
    times = collections.defaultdict(list)
    with own_screen() as screen:
        for program in programs:
            start(screen, program)
        for _ in range(rounds):
            for program in programs:
                times[program].append(start(screen, program, look and (lambda pid: look(program, pid))))
    return times


def figures(programs):
    sizes = collections.defaultdict(list)

    def look(program, pid):
        time.sleep(SETTLED)
        sizes[program].append(memory(pid))
    for program, times in by_turns(programs, ROUNDS, look).items():
        name = os.path.basename(program)
        figure("exec to the first window", name, "ms", [1000 * seconds for seconds in times])
        figure("memory at the first window", name, "MB", sizes[program])
    return 0


def compare(program, bare, pairs=ROUNDS, limit=1.25):
    pairs, limit = int(pairs), float(limit)
    times = by_turns([program, bare], pairs)
    ours, theirs = statistics.median(times[program]), statistics.median(times[bare])
    ratio = ours / theirs
    print("exec to first window, median of %d: program %.1f ms, bare window %.1f ms, ratio %.3f (limit %.2f)"
          % (pairs, 1000 * ours, 1000 * theirs, ratio, limit))
    return 1 if ratio > limit else 0


if __name__ == "__main__":
    sys.exit(figures(sys.argv[2:]) if sys.argv[1] == "--figures" else compare(*sys.argv[1:]))
