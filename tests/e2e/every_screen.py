#!/usr/bin/python3
"""Takes a picture of every screen, for every kind of display and taste, so that somebody can look at them.

usage: every_screen.py BUILD_FOLDER PICTURE_FOLDER [VARIANT...]     without a variant: all of them
"""
import contextlib
import os
import pathlib
import subprocess
import sys

sys.dont_write_bytecode = True
HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent.parent / "simulator" / "tour")]
from harness.tastes import CONTRAST, DARK, LIGHT, desktop_settings  # noqa: E402

# What differs from the ordinary: the scale, the colours, the font in points, options of the program.
TASTES = {"scale-1": {}, "scale-1.5": {"scale": 1.5}, "scale-2": {"scale": 2}, "dark": {"colours": DARK},
          "contrast": {"colours": CONTRAST}, "font-200": {"points": 20}, "right-to-left": {"arguments": ["-reverse"]}}
VARIANTS = ["%s-%s" % (platform, taste) for platform in ("x11", "wayland") for taste in TASTES]
# The smallest display that the program is meant for, in units of the scale.
WIDTH, HEIGHT = 1024, 600
VARIANT, FOLDER = os.environ.get("VORRANO_PICTURE", ""), os.environ.get("VORRANO_PICTURES", "")
PLATFORM, _, TASTE_NAME = VARIANT.partition("-")
TASTE = TASTES.get(TASTE_NAME, {})
SCALE = TASTE.get("scale", 1)


def take_all(build, folder, variants):
    unknown = [variant for variant in variants if variant not in VARIANTS]
    if unknown:
        sys.exit("no such variant: %s; there are %s" % (" ".join(unknown), " ".join(VARIANTS)))
    for variant in variants or VARIANTS:
        print(variant, flush=True)
        target = os.path.abspath(os.path.join(folder, variant))
        os.makedirs(target, exist_ok=True)
        subprocess.run([sys.executable, str(HERE / "run.py"), build, "every_screen.py", "Screens"], check=True,
                       env=dict(os.environ, VORRANO_PICTURE=variant, VORRANO_PICTURES=target))


@contextlib.contextmanager
def compositor(world):
    """A Wayland display as a window that fills the X display; gives what a program needs to find it."""
    if PLATFORM != "wayland":
        yield {}
        return
    settings = pathlib.Path(world.folder, "weston.ini")
    settings.write_text("[core]\nidle-time=0\n"
                        "[shell]\npanel-position=none\nbackground-color=0xff6f9aab\nlocking=false\n")
    command = ["weston", "--backend=x11-backend.so", "--use-pixman", "--socket=vorrano-wayland",
               "--width=%d" % (WIDTH * SCALE), "--height=%d" % (HEIGHT * SCALE), "--config=%s" % settings]
    with open(world.artefact("weston.log"), "w", encoding="utf-8") as log:
        process = subprocess.Popen(command, env=dict(os.environ, XDG_RUNTIME_DIR=world.folder), stdout=log, stderr=log)
    try:
        from harness.waiting import wait_for
        wait_for("the compositor", lambda: os.path.exists(os.path.join(world.folder, "vorrano-wayland")))
        yield {"QT_QPA_PLATFORM": "wayland", "WAYLAND_DISPLAY": "vorrano-wayland"}
    finally:
        process.terminate()
        process.wait(10)


def Screens(world):
    os.chmod(world.folder, 0o700)
    with compositor(world) as environment:
        settings = desktop_settings(world.folder, TASTE.get("colours", LIGHT), TASTE.get("points", 10))
        world.start({**environment, **settings, "QT_SCALE_FACTOR": str(SCALE)}, TASTE.get("arguments", ()))
        try:
            go_through(world)
        except BaseException:
            world.report()
            raise
        finally:
            world.program.end()


Screens.options = {"program": "vorrano-setup-loopback", "started": False,
                   "screen": (int(WIDTH * SCALE), int(HEIGHT * SCALE))}


def go_through(world):
    from harness.firmware import FINISHED, PC_CONNECTED, answer, begin, expect_proceed_question, image_of
    from harness.screens import NO_VORRANO
    from harness.waiting import wait_for
    from service_test import ADA, FIELDS, wait_for_fields
    program = world.program
    program.button("Sign In")
    picture("sign-in")
    program.press("Create Account")
    program.button("Accept")
    picture("agreement")
    program.press("Cancel")
    wait_for("the agreement to go", lambda: not program.look_for("push button", "Accept"))
    world.vorrano.do("addAccount", values=ADA)
    program.type("Account ID or email", "ada")
    program.type("Password", "secret1")
    world.vorrano.do("serviceFault", kind="slow", delay=4000, times=1)
    program.press("Sign In")
    program.find("notification", "Working")
    picture("busy")
    wait_for_fields(world, FIELDS)
    picture("account")
    program.press("Help on the password")
    program.alert()
    picture("help")
    program.dismiss(program.alert())
    program.choose_tab("Register Vorrano")
    program.type("Name of your Vorrano", "Kitchen")
    picture("register")
    program.choose_tab("Wifi Setup")
    program.type("Network name", "My $ Net")
    picture("wifi")
    # By keys, as Wayland places a list beside its window that is opened without a key or a click.
    if PLATFORM == "x11":
        subprocess.run(["xdotool", "windowfocus", world.display.windows(program.pid)[-1]], check=True)
    window = program.button("Save network name").window
    wait_for("the keyboard", lambda: window.has("active"))
    world.display.keys("alt+t", "alt+Down")
    entries = [node for _, node in program.combo("Security type").tree() if node.role == "list"][0]
    wait_for("the list", lambda: entries.has("showing"))
    picture("list")
    world.display.keys("Escape")
    wait_for("the list to close", lambda: not entries.has("showing"))
    program.press("Save network name")
    program.alert()
    picture("refusal")
    program.dismiss(program.alert())
    program.choose_tab("Utilities")
    begin(world, image_of(40))
    wait_for("half of the image", lambda: world.vorrano.state["imageSize"] > 900)
    picture("upload")
    program.expect_alert(*FINISHED)
    program.choose_tab("Wifi Setup")
    program.button("Save network name")
    world.pull_the_cable()
    wait_for("the line", lambda: program.shows(NO_VORRANO))
    picture("unplugged")
    program.choose_tab("Utilities")
    program.button("Power Status")
    picture("utilities")
    program.press("Update Firmware")
    answer(program, PC_CONNECTED, "No")
    program.alert()
    picture("question")
    expect_proceed_question(program, "Yes")
    program.find("text", "File name")
    picture("file")
    program.press("Cancel")
    wait_for("the panel to go", lambda: not program.look_for("text", "File name"))


def picture(name):
    from pictures import still_picture
    still_picture(os.path.join(FOLDER, name + ".png"))


if __name__ == "__main__":
    take_all(sys.argv[1], sys.argv[2], sys.argv[3:])
