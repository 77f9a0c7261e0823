#!/usr/bin/python3
"""Runs in the guest: the serial layer on its own, over an adapter that the kernel's own driver drives.

usage: port_guest.py BUILD_FOLDER [CASE...]     (with usb_adapter.py's folder on PATH)
"""
import os
import shutil
import sys
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

import port_end_cases                                                 # noqa: E402
import port_line_cases                                                # noqa: E402
import port_sharing_cases                                             # noqa: E402
from port_world import World                                          # noqa: E402

CASES = port_line_cases.CASES + port_sharing_cases.CASES + port_end_cases.CASES


def passes(case, build):
    world = World(build)
    try:
        try:
            case(world)
        finally:
            world.close()
    except BaseException:
        traceback.print_exc()
        print("FAIL  %s" % case.__name__, flush=True)
        print("heard: %r\narrived: %r" % (world.probe.heard, world.adapter.events), file=sys.stderr)
        return False
    print("ok    " + case.__name__, flush=True)
    return True


def main():
    build, wanted = os.path.abspath(sys.argv[1]), sys.argv[2:]
    return 0 if all([passes(case, build) for case in CASES if not wanted or case.__name__ in wanted]) else 1


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
