"""A firmware update as a person makes it."""
import os

from .waiting import wait_for

PC_CONNECTED = "Does the Vorrano screen display 'PC Connected...' ?"
PROCEED_BEGIN = "You must have downloaded the update file(vorrano.hex) from "
PROCEED_END = " downloads before proceeding. Do you want to proceed with updating the Vorrano Firmware?"
FINISHED = ("Finished Updating Firmware", "Success")


def image_of(lines):
    """An image whose lines end with a carriage return and a line feed."""
    return "".join(":10%04X00%032X%02X\r\n" % (16 * i, i * 0x1234567, i % 256) for i in range(lines - 1)) + \
        ":00000001FF\r\n"


def answer(program, title, button):
    alert = program.alert()
    assert alert.title == title, alert
    assert alert.buttons == ["Yes", "No"], alert.buttons
    program.dismiss(alert, button)


def expect_proceed_question(program, button):
    alert = program.alert()
    assert alert.title.startswith(PROCEED_BEGIN) and alert.title.endswith(PROCEED_END), alert
    program.dismiss(alert, button)


def choose_file(program, path):
    program.type("File name", path)
    program.press("Open")
    wait_for("the panel to go", lambda: not program.look_for("text", "File name"))


def begin(world, image, check="No"):
    """From the button to the bootloader, with an image file of that text."""
    path = os.path.join(world.folder, "vorrano.hex")
    with open(path, "w", encoding="utf-8", newline="") as file:
        file.write(image)
    world.program.press("Update Firmware")
    answer(world.program, PC_CONNECTED, check)
    expect_proceed_question(world.program, "Yes")
    choose_file(world.program, path)


def wait_for_upload(world):
    wait_for("the image", lambda: world.vorrano.state["mode"] == "image" and world.vorrano.state["imageSize"] > 0)


def expect_image(world, image):
    got = world.vorrano.do("image")["bytes"]
    assert got == image.replace("\n", ""), (len(got), len(image))
