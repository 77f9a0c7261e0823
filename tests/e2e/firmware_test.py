"""A person gives the Vorrano new firmware."""
import os
import re

from harness.announcements import Announcements
from harness.firmware import (FINISHED, PC_CONNECTED, answer, begin, expect_image, expect_proceed_question, image_of,
                              wait_for_upload)
from harness.logind import logind
from harness.screens import open_utilities
from harness.stamps import WriteStamps
from harness.waiting import stays, wait_for
from harness.world import situation

LOOPBACK = "vorrano-setup-loopback"
AWAKE = ("sleep:idle:handle-lid-switch:shutdown", "block")
# Seconds; the single-precision value of 0.1.
LINE_PAUSE = 0.10000000149011612
LATEST = ("Your Vorrano is updated with the latest version. There is no need to update.", "Latest Version Detected")


def AnImageIsSentAsItStands(world):
    image = image_of(20)
    open_utilities(world.program)

    begin(world, image)
    wait_for_upload(world)
    world.picture("upload")
    world.program.expect_alert(*FINISHED)

    assert world.vorrano.received == b"7bu" + image.replace("\n", "").encode()
    expect_image(world, image)
    wait_for("the new firmware", lambda: world.vorrano.device["firmwareVersion"] == "9.60")


def ShowsHowFarTheImageHasCome(world):
    announcements = Announcements(world.bus)
    open_utilities(world.program)
    bar, line = progress(world)
    assert not bar.has("showing") and not line.has("showing")

    begin(world, image_of(100))
    wait_for("the bar", lambda: bar.has("showing") and line.has("showing"))
    wait_for("the announcement", lambda: any(text.startswith("Line ") for text in announcements.texts))
    before = bar.value
    assert re.fullmatch(r"Line \d+ of 101, about (5|10) s left", line.name), line.name
    wait_for("more of the image", lambda: bar.value > before)
    assert not world.program.alerts(), "the upload was over too soon"
    world.picture("progress")

    world.program.alert()
    assert not bar.has("showing") and not line.has("showing")
    world.program.expect_alert(*FINISHED)
    assert not bar.has("showing") and not line.has("showing")


def progress(world):
    """The bar and the line of an upload, whether they are on the screen or not: to look for them in the whole program
    takes longer than an upload may."""
    bar = world.program.root.find_all("progress bar", "Firmware upload", showing=False)[0]
    return bar, [node for node in bar.parent.children if node.role == "notification"][0]


@situation(started=False)
def KeepsTheComputerAwakeDuringTheUpload(world):
    with logind(world.folder) as login_manager:
        world.start({"DBUS_SYSTEM_BUS_ADDRESS": login_manager.address})
        open_utilities(world.program)
        assert AWAKE not in login_manager.requests()

        begin(world, image_of(5))
        alert = world.program.alert()

        assert (alert.title, alert.text) == FINISHED, alert
        assert AWAKE in login_manager.requests()
        wait_for("the computer to sleep as it likes", lambda: AWAKE not in login_manager.inhibitors())
        world.program.dismiss(alert)


@situation(started=False)
def NoPauseAfterALineIsTooShort(world):
    stamps = WriteStamps(world)
    world.start(stamps.environment)
    open_utilities(world.program)
    image = image_of(20)

    begin(world, image)
    world.program.expect_alert(*FINISHED)

    _, pauses = stamps.of_image(image)
    assert len(pauses) == 19
    assert min(pauses) >= LINE_PAUSE, min(pauses)


@situation(program=LOOPBACK)
def TheSameVersionNeedsNoUpdate(world):
    world.vorrano.do("latestFirmware", version="9.5")
    open_utilities(world.program)

    world.program.press("Update Firmware")
    answer(world.program, PC_CONNECTED, "Yes")
    world.program.expect_alert(*LATEST)

    assert world.vorrano.received == b"4"
    assert world.vorrano.requests == ["/VorranoAPI/RestServiceImpl.svc/GetLatestFirmware/9"]


@situation(program=LOOPBACK)
def ANewerVersionIsOffered(world):
    image = image_of(3)
    open_utilities(world.program)

    begin(world, image, check="Yes")
    world.program.expect_alert(*FINISHED)

    expect_image(world, image)


def TheWholeQuestionCanBeRead(world):
    open_utilities(world.program)
    world.program.press("Update Firmware")
    answer(world.program, PC_CONNECTED, "No")

    alert = world.program.alert()

    world.picture("question")
    label = alert.node.find_all("label", alert.title)[0]
    _, _, width, height = label.extents
    # No letter of the text is smaller than this.
    assert width * height > len(alert.title) * 6 * 12, (width, height)
    world.program.dismiss(alert, "No")


def NoEndsTheUpdate(world):
    open_utilities(world.program)

    world.program.press("Update Firmware")
    answer(world.program, PC_CONNECTED, "No")
    expect_proceed_question(world.program, "No")

    stays("no alert, nothing sent", lambda: not world.program.alerts() and world.vorrano.received == b"")


def EscapeIsNoAnswer(world):
    open_utilities(world.program)
    world.program.press("Update Firmware")
    alert = world.program.alert()
    world.display.give_keyboard(alert.node)

    world.display.keys("Escape")

    stays("the question", lambda: len(world.program.alerts()) == 1)
    world.program.dismiss(alert, "No")
    expect_proceed_question(world.program, "No")


def ACancelledPanelSendsNothing(world):
    open_utilities(world.program)
    world.program.press("Update Firmware")
    answer(world.program, PC_CONNECTED, "No")
    expect_proceed_question(world.program, "Yes")
    world.program.find("text", "File name")

    world.program.press("Cancel")

    wait_for("the panel to go", lambda: not world.program.look_for("text", "File name"))
    stays("nothing sent", lambda: world.vorrano.received == b"")


def APromptThatIsNotExactIsRefused(world):
    world.vorrano.fault("answer", command=">", bytes="\r\n>", times=1)
    open_utilities(world.program)

    begin(world, image_of(2))
    world.program.expect_alert("Failed to enter bootloader mode", "Error")

    assert world.vorrano.received == b"7b"


def AnUploadThatIsNotTakenIsRefused(world):
    world.vorrano.fault("answer", command="u", bytes="E", times=1)
    open_utilities(world.program)

    begin(world, image_of(2))
    world.program.expect_alert("Failed to upload data", "Error")

    assert world.vorrano.received == b"7bu"


def AFileThatIsNotThereIsReportedAndFinished(world):
    open_utilities(world.program)
    world.vorrano.fault("silence", command=">")
    begin(world, image_of(2))
    wait_for("the bootloader", lambda: world.vorrano.state["mode"] == "bootloader")
    os.unlink(os.path.join(world.folder, "vorrano.hex"))
    world.vorrano.do("say", bytes=">")

    world.program.expect_alert("Problem encountered during final bootloader sequence", "Error")
    world.program.expect_alert(*FINISHED)


def NothingCanBePressedDuringTheUpload(world):
    open_utilities(world.program)
    status, field = world.program.button("Power Status"), world.program.field("Throttle")
    tab = world.program.find("page tab", "Wifi Setup")
    image = image_of(20)
    begin(world, image)
    wait_for_upload(world)

    status.act("Press")
    field.set_text("21")
    tab.act("Press")

    world.program.expect_alert(*FINISHED)
    expect_nothing_but(world, image)


def APersonsOwnPointerAndKeysReachNothingDuringTheUpload(world):
    open_utilities(world.program)
    field = world.program.field("Throttle")
    clicked = [world.program.button("Power Status"), world.program.find("page tab", "Wifi Setup"), field]
    # Long enough for all that follows on a slow machine.
    image = image_of(200)
    begin(world, image)
    wait_for_upload(world)
    world.display.give_keyboard(field)
    before = focused(world)

    for node in clicked:
        world.display.click_on(node)
    world.display.keys("Tab", "space", "Return", "alt+r", "ctrl+Tab")
    world.display.write("21")

    # Pauses in which the program would have met all of it.
    sent = world.vorrano.state["imageSize"]
    wait_for("more of the image", lambda: world.vorrano.state["imageSize"] > sent + 200)
    after = focused(world)
    assert not world.program.alerts(), "the upload was over too soon"
    assert after == before
    world.program.expect_alert(*FINISHED)
    expect_nothing_but(world, image)
    world.display.give_keyboard(field)
    assert focused(world) == before


def focused(world):
    return [node for node in world.program.root.find_all() if node.has("focused")]


def expect_nothing_but(world, image):
    """The image was sent, and nothing came of what the person did meanwhile."""
    field = world.program.field("Throttle")
    stays("nothing happened", lambda: world.vorrano.received == b"7bu" + image.replace("\n", "").encode() and
          world.program.selected_tab() == "Utilities" and field.text == "" and not world.program.alerts())


def pulled(world, order):
    """A cable that is pulled at some point of an update, and what can be done afterwards."""
    open_utilities(world.program)
    order()
    begin(world, image_of(20))
    wait_for("the line to be hung up", lambda: not world.vorrano.state["line"]["plugged"])
    world.adapter.unplug()


def update_again(world):
    world.plug_the_cable_in(minor=1)
    wait_for("the line", lambda: world.vorrano.node in world.program.open_files())
    image = image_of(3)
    begin(world, image)
    world.program.expect_alert(*FINISHED)
    expect_image(world, image)


def ACablePulledBeforeThePromptLeavesTheNextUpdateToSucceed(world):
    pulled(world, lambda: world.vorrano.do("hangUpAfterReceiving", count=2))

    stays("no alert", lambda: not world.program.alerts())
    update_again(world)


def ACablePulledBeforeTheUploadLeavesTheNextUpdateToSucceed(world):
    pulled(world, lambda: world.vorrano.fault("hangUp", command="u", count=0, times=1))

    stays("no alert", lambda: not world.program.alerts())
    update_again(world)


def ACablePulledInTheImageEndsAsFinished(world):
    pulled(world, lambda: world.vorrano.do("hangUpAfterReceiving", count=100))

    world.program.expect_alert(*FINISHED)
    update_again(world)
