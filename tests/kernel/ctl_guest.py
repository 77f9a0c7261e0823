#!/usr/bin/python3
"""Runs in the guest: vorranoctl with two adapters that the kernel's own driver drives.

usage: ctl_guest.py BUILD_FOLDER     (with usb_adapter.py's folder on PATH)
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

from adapter import SLOW                                              # noqa: E402
from cable import Cable                                               # noqa: E402
from harness.simulator import Simulator                               # noqa: E402
from harness.waiting import wait_for                                  # noqa: E402

DEADLINE = 180
MAC = "00:1E:5C:0A:1B:2C"
IMAGE = ":0300300002337A1E\r\n" * 40 + ":00000001FF\r\n"


class World:
    def __init__(self, build):
        self.build, self.folder = build, tempfile.mkdtemp(prefix="vorrano-kernel-")
        self.vorranos, self.cables, self.nodes = [], [], []
        for serial in ("A1B2", "C3D4"):
            folder = os.path.join(self.folder, serial)
            os.mkdir(folder)
            self.vorranos.append(Simulator(os.path.join(build, "vorrano-simulator"), folder, plugged=False))
            self.cables.append(Cable(self.vorranos[-1], serial))
            self.nodes.append(self.cables[-1].plug())

    def start(self, *arguments):
        return subprocess.Popen([os.path.join(self.build, "vorranoctl"), *arguments], stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def run(self, *arguments):
        tool = self.start(*arguments)
        output, error = tool.communicate(timeout=DEADLINE)
        return tool.returncode, output, error


def ListsBothAdapters(world):
    status, output, error = world.run("list", "--json")

    listed = [json.loads(line) for line in output.splitlines()]
    vorranos = sorted((port["port"], port["serial"], port["allowed"]) for port in listed if port["vorrano"])
    assert (status, error) == (0, ""), (status, error)
    assert vorranos == [("/dev/cu.usbserial-A1B2", "A1B2", True), ("/dev/cu.usbserial-C3D4", "C3D4", True)], listed
    assert sorted(port["node"] for port in listed if port["vorrano"]) == sorted(world.nodes), listed


def NamesTheProgramThatHasAPort(world):
    holder = subprocess.Popen(["sleep", "600"], stdin=open(world.nodes[0], "rb+", buffering=0))
    try:
        output = world.run("list", "--json")[1]
    finally:
        holder.kill()
        holder.wait()

    users = {port["node"]: port["usedBy"] for line in output.splitlines() for port in [json.loads(line)]}
    assert users[world.nodes[0]] == "sleep" and users[world.nodes[1]] is None, users


def AsksBoth(world):
    status, output, error = world.run("get", "mac", "--all")

    assert (status, error) == (0, ""), (status, error)
    assert sorted(output.splitlines()) == ["/dev/cu.usbserial-A1B2: " + MAC, "/dev/cu.usbserial-C3D4: " + MAC], output


def UpdatesOneWhileTheOtherIsAsked(world):
    image = os.path.join(world.folder, "vorrano.hex")
    with open(image, "w", encoding="ascii", newline="") as file:
        file.write(IMAGE)
    update = world.start("update", image, "--port", world.nodes[0])
    wait_for("the upload", lambda: world.vorranos[0].state["mode"] == "image", SLOW)

    asked = world.run("get", "firmware", "--port", world.nodes[1])

    output, error = update.communicate(timeout=DEADLINE)
    assert asked == (0, "9.50\n", ""), asked
    assert (update.returncode, output) == (0, "Finished Updating Firmware\n"), error
    wait_for("the image", lambda: world.vorranos[0].do("image")["bytes"] == IMAGE.replace("\n", ""), SLOW)


def SaysThatTheCableWasPulled(world):
    world.vorranos[1].fault("silence")
    world.vorranos[1].forget()
    tool = world.start("get", "mac", "--port", world.nodes[1])
    wait_for("the question", lambda: world.vorranos[1].received == b"3", SLOW)

    world.cables[1].pull()

    output, error = tool.communicate(timeout=DEADLINE)
    assert (tool.returncode, output) == (1, ""), error
    # In a slow guest the time-out may come first.
    reasons = ("The cable was pulled.", "The device did not answer. Please try again")
    assert error in ["vorranoctl: /dev/cu.usbserial-C3D4: %s\n" % reason for reason in reasons], error


CASES = (ListsBothAdapters, NamesTheProgramThatHasAPort, AsksBoth, UpdatesOneWhileTheOtherIsAsked,
         SaysThatTheCableWasPulled)


def main():
    try:
        world = World(os.path.abspath(sys.argv[1]))
        for case in CASES:
            case(world)
            print("ok    " + case.__name__, flush=True)
    except BaseException:
        traceback.print_exc()
        return 1
    return 0


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
