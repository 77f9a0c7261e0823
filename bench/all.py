#!/usr/bin/python3
"""Everything that scripts/bench --all measures, as a table with its targets.

usage: all.py BUILD_FOLDER
"""
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from screen import own_screen

BENCH = os.path.dirname(os.path.abspath(__file__))
PROJECT = os.path.dirname(BENCH)
WINDOW_CASES = {"AlertShown": 1, "TabDrawn": 1, "IdleWithoutPort": 1, "Memory": 3, "MemoryOfABareWindow": 3,
                "LongUpload": 1}
PROGRAMS = ("cutecom", "gtkterm")
# libserialport looks each port up here, where no pty is.
TTYS = "/sys/class/tty"


class Target:
    """What a row must show: its median, alone or over the median of another one, at most or at least so much."""

    def __init__(self, row, who, unit="", over=None, most=None, least=None, of=statistics.median):
        self.row, self.who, self.unit, self.over, self.most, self.least = row, who, unit, over, most, least
        self._of = of

    def judge(self, figures):
        value = self._of(figures[self.row, self.who].values)
        if self.over:
            row, who = self.over if isinstance(self.over, tuple) else (self.row, self.over)
            value /= statistics.median(figures[row, who].values)
        kept = value <= self.most if self.most is not None else value >= self.least
        limit = "≤ %g" % self.most if self.most is not None else "≥ %g" % self.least
        return value, limit, kept


PACED, UNPACED = "paced exchange, ", "unpaced exchange, "
START, SIGN_IN, ALL_TABS = "exec to the first window", "memory at the sign-in", "memory with all tabs visited"
UPLOAD, IDLE = "an upload of 2000 lines", "idle without a port, wake-ups in 30 s"
CLONE = "a fresh clone to the demo's first window"
TARGETS = [
    Target(PACED + "CPU", "vorrano", over="Qt", most=1.0),
    # Of the 20.8 ms that the exchange takes on the line.
    Target("last byte to the callback", "vorrano", "µs", most=104),
    Target("last byte to the alert on the screen", "vorrano", "ms", most=20),
    Target(UNPACED + "time", "vorrano", over="Qt", most=2),
    Target(UNPACED + "CPU", "vorrano", over="Qt", most=2),
    Target("1 MiB at full speed", "vorrano", over="bare POSIX", least=0.8),
    Target(START, "vorrano-setup", over="bench_bare_window", most=1.05),
    Target(START, "vorrano-setup", over="cutecom", most=0.4),
    Target(START, "vorrano-setup", over="gtkterm", most=0.33),
    Target("choosing a tab, click to drawn", "vorrano", "ms", most=16),
    Target(SIGN_IN, "vorrano", over="bare Qt window", most=1.0),
    Target(ALL_TABS, "vorrano", over=(SIGN_IN, "bare Qt window"), most=1.25),
    Target(IDLE, "vorrano", most=0),
    Target("idle, CPU", "vorrano", over="bare poll", most=1.1),
    Target("idle, wake-ups", "vorrano", "per s", most=110),
    Target("64 ports, longest exchange of all", "vorrano", over=("64 ports, exchange", "vorrano"), most=2, of=max),
    Target(UPLOAD, "vorrano", over="its floor", most=1.005),
    Target(CLONE, "vorrano", "s", most=150),
]


class Figure:
    def __init__(self, unit, values=()):
        self.unit, self.values = unit, list(values)


class Figures(dict):
    def take(self, *command, **options):
        """Adds the figures that a measuring command prints."""
        print("measuring: %s" % " ".join(map(os.path.basename, command)), file=sys.stderr, flush=True)
        said = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout
        for line in said.splitlines():
            if line.startswith('{"row"'):
                found = json.loads(line)
                key = found["row"], found["who"]
                self.setdefault(key, Figure(found["unit"])).values.extend(found["values"])


def with_ptys_as_ports(command):
    """The command, in a mount namespace where each pty has an entry among the ttys."""
    script = ("mount -t tmpfs none {0} && mkdir {0}/pts && for i in $(seq 0 255); do ln -s /nowhere {0}/pts/$i; done"
              " && exec \"$@\"").format(TTYS)
    as_root = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
    return ["unshare", *as_root, "--mount", "sh", "-ec", script, "sh", *command]


def measure_clone(figures):
    """From nothing but the packages: git clone, then scripts/demo, until its first window is there."""
    folder = tempfile.mkdtemp(prefix="vorrano-clone-")
    try:
        with own_screen() as screen:
            begun = time.monotonic()
            subprocess.run(["git", "clone", "-q", PROJECT, folder + "/clone"], check=True)
            demo = subprocess.Popen([folder + "/clone/scripts/demo"], stdout=subprocess.DEVNULL,
                                    env=dict(os.environ, CCACHE_DISABLE="1", QT_QPA_PLATFORM="xcb"),
                                    start_new_session=True)
            try:
                took = screen.wait_for_a_window(600) - begun
            finally:
                os.killpg(demo.pid, 15)
                demo.wait()
        figures[CLONE, "vorrano"] = Figure("s", [took])
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def measure(build):
    figures = Figures()
    figures.take(*with_ptys_as_ports([build + "/bench/bench_libraries", BENCH + "/serial/pyserial_port.py"]))
    figures.take(sys.executable, BENCH + "/startup/measure.py", "--figures", build + "/vorrano-setup",
                 build + "/bench/startup/bench_bare_window", *map(shutil.which, PROGRAMS))
    path = os.pathsep.join([BENCH, BENCH + "/window"])
    for case, times in WINDOW_CASES.items():
        for _ in range(times):
            figures.take(sys.executable, PROJECT + "/tests/e2e/run.py", build, "full", case,
                         env=dict(os.environ, PYTHONPATH=path))
    measure_clone(figures)
    return figures


def row(*cells):
    print("| %s |" % " | ".join(cells))


def print_tables(figures):
    row("what", "measured", "target", "")
    row("---", "---", "---", "---")
    missed = 0
    for target in TARGETS:
        value, limit, kept = target.judge(figures)
        over = target.over[1] if isinstance(target.over, tuple) else target.over
        missed += not kept
        row(target.row, "%.4g %s" % (value, "× " + over if over else target.unit), limit, "" if kept else "**missed**")
    print()
    row("figure", "of", "median", "lowest to highest", "values")
    row("---", "---", "---:", "---:", "---:")
    for (name, who), figure in figures.items():
        values = figure.values
        row(name, who, "%.4g %s" % (statistics.median(values), figure.unit),
            "%.4g to %.4g" % (min(values), max(values)), str(len(values)))
    return missed


def main():
    missed = print_tables(measure(os.path.abspath(sys.argv[1])))
    if missed:
        print("\n%d of %d targets were missed." % (missed, len(TARGETS)), file=sys.stderr)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
