"""What a window manager is told of the program's windows."""
import re
import subprocess

from harness.firmware import PC_CONNECTED, answer, expect_proceed_question
from harness.screens import open_utilities
from harness.waiting import wait_for

# The Motif hints' numbers.
HAS_FUNCTIONS = 0x1
ALL, MINIMISE, MAXIMISE = 0x1, 0x8, 0x10


def ASheetIsADialogOverItsWindow(world):
    window = number_of(world, world.program.button("Create Account"))
    world.program.press("Create Account")

    expect_dialog(number_of(world, world.program.button("Accept")), window)


def AnAlertIsADialogOverItsWindow(world):
    window = number_of(world, world.program.button("Sign In"))
    world.program.press("Sign In")

    expect_dialog(number_of(world, world.program.alert().node), window)


def AQuestionAndTheOpenPanelAreDialogsOverTheirWindow(world):
    open_utilities(world.program)
    window = number_of(world, world.program.button("Update Firmware"))
    world.program.press("Update Firmware")
    expect_dialog(number_of(world, world.program.alert().node), window)
    answer(world.program, PC_CONNECTED, "No")
    expect_proceed_question(world.program, "Yes")

    expect_dialog(number_of(world, world.program.find("text", "File name")), window)


def number_of(world, node):
    """The X window that a control is in."""
    window = node.window
    return wait_for("the window", lambda: world.display.window_at(window.pid, window.extents))


def expect_dialog(number, over):
    said = subprocess.run(["xprop", "-id", number], check=True, capture_output=True, text=True).stdout
    assert re.search(r"_NET_WM_WINDOW_TYPE\(ATOM\) = _NET_WM_WINDOW_TYPE_DIALOG", said), said
    assert re.search(r"_NET_WM_STATE\(ATOM\) = .*_NET_WM_STATE_MODAL", said), said
    assert re.search(r"WM_TRANSIENT_FOR\(WINDOW\): window id # 0x%x\n" % int(over), said), said
    flags, functions = (int(value, 16) for value in re.search(r"_MOTIF_WM_HINTS.* = (\w+), (\w+)", said).groups())
    assert flags & HAS_FUNCTIONS and not functions & (ALL | MINIMISE | MAXIMISE), said
