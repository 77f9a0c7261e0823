"""What a person does without a pointer."""
from harness.waiting import stays, wait_for
from harness.world import situation
from service_test import FIELDS, LOOPBACK, SIGNED_IN, fill_in, wait_for_fields

# Many repetitions of a held key.
HELD = 1.0


def GivesTheVorranoItsNetworkByKeysAlone(world):
    keys, program, keyboard = world.display.keys, world.program, world.display.give_keyboard
    keyboard(program.button("Create Account"))

    keys("alt+c")
    keyboard(program.button("Accept"))
    keys("alt+a")
    tab = program.find("page tab", "Wifi Setup")
    # A window that goes takes the keyboard with it.
    wait_for("the sign-in to go", lambda: len(world.display.windows(program.pid)) == 1)
    keyboard(tab)
    keys("ctrl+Tab", "ctrl+Tab")
    wait_for("the tab", lambda: program.selected_tab() == "Wifi Setup")
    name = program.field("Network name")

    def reached():
        keyboard(tab)
        keys("alt+n")
        return name.has("focused")
    # The display may take the keyboard away once more, for the window that went.
    wait_for("the field", reached, look=0.3)
    world.display.write("My Home Net")
    wait_for("the name", lambda: program.field("Network name").text == "My Home Net")
    keys("alt+m")
    keyboard(program.alert().node)
    keys("Return")

    wait_for("the alert to go", lambda: not program.alerts())
    assert world.vorrano.device["ssid"] == "My$Home$Net"


def AHeldLetterGoesOnBeingTyped(world):
    field = world.program.field("Account ID or email")
    focus(world, field)

    with world.display.held("x"):
        wait_for("many letters", lambda: len(field.text) > 10)

    assert set(field.text) == {"x"}


def AHeldReturnOpensTheAgreementAndAcceptsItOnlyWhenPressedAnew(world):
    focus(world, world.program.button("Create Account"))

    with world.display.held("Return"):
        accept = world.program.button("Accept")
        world.display.give_keyboard(accept)
        stays("the agreement", lambda: accept.has("showing"), HELD)

    world.display.keys("Return")
    world.program.find("page tab", "Account Information")


def AHeldMnemonicOrEscapeEndsNoAgreementThatCameUpMeanwhile(world):
    for held in (["Escape"], ["alt", "a"]):
        world.display.give_keyboard(world.program.button("Create Account"))
        with world.display.held(*held):
            world.program.press("Create Account")
            accept = world.program.button("Accept")
            world.display.give_keyboard(accept)
            stays("the agreement", lambda: accept.has("showing"), HELD)

        world.display.keys("Escape")
        wait_for("the agreement to go", lambda: not world.program.look_for("push button", "Accept"))


@situation(program=LOOPBACK)
def AHeldReturnSignsInOnceAndSavesNothing(world):
    fill_in(world)
    focus(world, world.program.field("Password"))

    with world.display.held("Return"):
        wait_for_fields(world, FIELDS)
        world.display.give_keyboard(world.program.button("Save account"))
        stays("no alert", lambda: not world.program.alerts(), HELD)

    assert world.vorrano.requests == SIGNED_IN, world.vorrano.requests


def AHeldReturnOnAnEmptyFormShowsOneAlertWhichStays(world):
    focus(world, world.program.field("Password"))

    with world.display.held("Return"):
        alert = world.program.alert()
        world.display.give_keyboard(alert.node)
        stays("that alert", lambda: [shown.node for shown in world.program.alerts()] == [alert.node], HELD)

    world.display.keys("Return")
    wait_for("the alert to go", lambda: not world.program.alerts())


def focus(world, control):
    """Gives the keyboard to a control."""
    world.display.give_keyboard(control)
    control.focus()
    wait_for("the focus", lambda: control.has("focused"))
