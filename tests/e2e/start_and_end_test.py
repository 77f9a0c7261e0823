"""From the first window to the last, and every way to the end."""
import contextlib
import os
import signal
import socket
import subprocess
import termios

from harness.firmware import PC_CONNECTED, answer, begin, expect_proceed_question, image_of, wait_for_upload
from harness.logind import logind
from harness.screens import TABS, create_account, open_utilities, open_wifi_setup
from harness.waiting import DEADLINE, wait_for
from harness.world import situation

FIRST_DISPLAY = 6000  # the port of a display is its number more


@situation(started=False)
def LeavesQtsOwnOptionsToQt(world):
    world.start({"DISPLAY": ":no-display"}, arguments=("-display", world.display.name, "-reverse"))

    # From right to left: a field is to the left of its label.
    field = world.program.field("Password")
    label = world.program.find("label", "Password")
    assert field.extents[0] < label.extents[0], (field.extents, label.extents)


@contextlib.contextmanager
def display_that_does_not_answer():
    """Its name, and a socket that takes connections."""
    with socket.create_server(("127.0.0.1", 0)) as server:
        server.settimeout(DEADLINE)
        yield "127.0.0.1:%d" % (server.getsockname()[1] - FIRST_DISPLAY), server


def is_being_read(fifo):
    try:
        os.close(os.open(fifo, os.O_WRONLY | os.O_NONBLOCK))
    except OSError:
        return False
    return True


@situation(started=False)
def ReadsTheFontsWhileItWaitsForTheDisplay(world):
    fonts = os.path.join(world.folder, "fonts.conf")
    os.mkfifo(fonts)
    with display_that_does_not_answer() as (display, server):
        environment = dict(world.environment(), DISPLAY=display, FONTCONFIG_FILE=fonts)
        # The mocked devices' library lets one thread open a file at a time.
        del environment["LD_PRELOAD"]
        program = subprocess.Popen([os.path.join(world.build, "vorrano-setup")], env=environment)
        try:
            with server.accept()[0]:
                wait_for("the fonts to be read", lambda: is_being_read(fonts))
        finally:
            program.kill()
            program.wait()


def LoadsNoPlugInsToShowItsOwnIcon(world):
    # Each plug-in loads further libraries, and a computer may have dozens of plug-ins.
    world.program.button("Sign In")

    with open("/proc/%d/maps" % world.program.pid, encoding="utf-8") as loaded:
        assert "/imageformats/" not in loaded.read()


def StartsNoThreadsToPaintItsWindow(world):
    # Without a window manager, as here, the program draws a line around its windows.
    wait_for("the window to be painted", lambda: world.display.colours() > 1)

    names = world.program.thread_names()
    assert "vorrano-setup" in names and not any("pooled" in name for name in names), names


def CancellingTheAgreementLeavesTheLoginAsItWas(world):
    world.program.type("Account ID or email", "somebody")
    world.program.press("Create Account")
    world.program.find("push button", "Accept")
    world.picture("agreement")

    world.program.press("Cancel")

    wait_for("the agreement to go", lambda: not world.program.look_for("push button", "Accept"))
    assert world.program.field("Account ID or email").text == "somebody"
    world.program.press("Create Account")
    world.program.find("push button", "Accept")


def AcceptingTheAgreementOpensTheAccountTab(world):
    create_account(world.program)

    assert world.program.selected_tab() == "Account Information"
    assert [tab.name for tab in world.program.root.find_all("page tab")] == TABS
    assert world.program.field("Account ID").text == ""
    assert not world.program.look_for("push button", "Sign In")


def EveryTabCanBeChosenAgain(world):
    create_account(world.program)

    for name, button in [("Wifi Setup", "Save network name"), ("Utilities", "Power Status"),
                         ("Register Vorrano", "Register"), ("Account Information", "Save account"),
                         ("Wifi Setup", "Save network name")]:
        world.program.choose_tab(name)
        world.program.button(button)


def AChosenTabStartsAnew(world):
    open_wifi_setup(world.program)
    world.program.type("Network name", "My Home Net")

    world.program.choose_tab("Wifi Setup")

    wait_for("an empty screen", lambda: world.program.field("Network name").text == "")


def ClosingTheLastWindowEndsTheProgram(world):
    create_account(world.program)

    world.display.close_window(world.program.pid)

    assert world.program.wait() == 0


def ClosingTheLoginWindowEndsTheProgram(world):
    world.program.button("Sign In")

    world.display.close_window(world.program.pid)

    assert world.program.wait() == 0


def open_panel(world):
    open_utilities(world.program)
    world.program.press("Update Firmware")
    answer(world.program, PC_CONNECTED, "No")
    expect_proceed_question(world.program, "Yes")
    world.program.find("text", "File name")


def EndsOnSigtermWithNothingOpen(world):
    world.program.button("Sign In")

    assert world.program.end(signal.SIGTERM) == 0


@situation(started=False)
def EndsOnSigtermWithAPortOpenAndRestoresItsSettings(world):
    with open_line(world) as line:
        before = termios.tcgetattr(line)
    world.start()
    open_wifi_setup(world.program)
    wait_for("the rate", lambda: world.vorrano.state["line"]["baud"] == 9600)

    assert world.program.end(signal.SIGTERM) == 0

    with open_line(world) as line:
        assert termios.tcgetattr(line) == before
        assert before[4] != termios.B9600


@situation(started=False)
def GivesTheLineBackWhileTheComputerSleeps(world):
    with logind(world.folder) as login_manager:
        world.start({"DBUS_SYSTEM_BUS_ADDRESS": login_manager.address})
        open_wifi_setup(world.program)
        wait_for("the line to be open", lambda: holds_the_line(world))

        login_manager.prepare_for_sleep(True)
        wait_for("the line to be closed", lambda: not holds_the_line(world))
        login_manager.prepare_for_sleep(False)

        wait_for("the line to be open again", lambda: holds_the_line(world))
        world.vorrano.forget()
        world.program.press("Check network name")
        wait_for("the query", lambda: world.vorrano.received == b"c")
        world.program.dismiss(world.program.alert())


@situation(started=False)
def ClosesThePortForSleepUnderAnAlertToo(world):
    with logind(world.folder) as login_manager:
        world.start({"DBUS_SYSTEM_BUS_ADDRESS": login_manager.address})
        open_wifi_setup(world.program)
        wait_for("the line to be open", lambda: holds_the_line(world))
        world.program.press("Save security type")
        alert = world.program.alert()

        login_manager.prepare_for_sleep(True)

        wait_for("the line to be closed", lambda: not holds_the_line(world))
        world.program.dismiss(alert)


def open_line(world):
    return open(world.vorrano.node, "rb", buffering=0, opener=lambda path, _: os.open(path, os.O_RDWR | os.O_NOCTTY))


def holds_the_line(world):
    return world.vorrano.node in world.program.open_files()


def EndsOnSigtermWithAnAlertUp(world):
    open_wifi_setup(world.program)
    world.program.press("Save security type")
    world.program.alert()

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigtermWithTheAgreementUp(world):
    world.program.press("Create Account")
    world.program.find("push button", "Accept")

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigtermWhileAReplyIsAwaited(world):
    open_wifi_setup(world.program)
    world.vorrano.fault("silence")
    world.program.press("Check network name")
    wait_for("the query", lambda: world.vorrano.received == b"c")

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigtermWithAQuestionUp(world):
    open_utilities(world.program)
    world.program.press("Update Firmware")
    world.program.alert()

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigtermWithTheOpenPanelUp(world):
    open_panel(world)

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigtermWithTheOpenPanelsOwnMessageUp(world):
    open_panel(world)
    path = os.path.join(world.folder, "vorrano.hex")
    with open(path, "w", encoding="utf-8"):
        world.program.type("File name", path)
    wait_for("the button", lambda: world.program.button("Open").has("enabled"))
    os.unlink(path)
    world.program.press("Open")
    wait_for("the panel's message", lambda: world.program.alerts())

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigtermInTheMiddleOfAnUpload(world):
    open_utilities(world.program)
    begin(world, image_of(20))
    wait_for_upload(world)

    assert world.program.end(signal.SIGTERM) == 0


def EndsOnSigintAndOnSighup(world):
    open_wifi_setup(world.program)
    assert world.program.end(signal.SIGINT) == 0

    world.start()
    open_wifi_setup(world.program)
    assert world.program.end(signal.SIGHUP) == 0
