#!/usr/bin/python3
"""Runs one case: in a network of its own (loopback and a default route), with a session bus of its own.

usage: run.py BUILD_FOLDER FILE CASE
"""
import importlib
import os
import subprocess
import sys

PRELOAD = "libumockdev-preload.so.0"
STAGE = "VORRANO_E2E_STAGE"
NETWORK = (
    "ip link set lo up",
    "ip link add out type veth peer name far",
    "ip address add 192.0.2.2/24 dev out",
    "ip link set far up",
    "ip link set out up",
    "ip route add default via 192.0.2.1",
)


def again(stage, *command):
    os.environ[STAGE] = stage
    os.execvp(command[0], [*command, sys.executable, *sys.argv])


def run(build, file, name):
    sys.dont_write_bytecode = True
    sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
    module = importlib.import_module(file.removesuffix(".py"))
    case = getattr(module, name)
    # A case of the program with windows happens in a World, one of the tool in a ToolWorld.
    kind = getattr(module, "WORLD", None)
    if kind is None:
        from harness.world import World as kind
    world = kind("%s.%s" % (file.removesuffix(".py"), name), os.path.abspath(build), **getattr(case, "options", {}))
    try:
        case(world)
    except BaseException:
        world.report()
        raise
    finally:
        world.close()


def main():
    stage = os.environ.pop(STAGE, None)
    if stage is None:
        mapped = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
        again("network", "unshare", *mapped, "--net", "--mount")
    if stage == "network":
        for command in NETWORK:
            subprocess.run(command.split(), check=True)
        # The sender of a mocked device's events has to see that device.
        again("session", "dbus-run-session", "--", "env", "LD_PRELOAD=" + PRELOAD)
    del os.environ["LD_PRELOAD"]
    run(*sys.argv[1:])


if __name__ == "__main__":
    main()
