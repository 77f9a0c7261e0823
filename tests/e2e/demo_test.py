"""The demo: the same program with a simulated Vorrano beside it."""
import os
import random
import re

from harness.bus import Gone, plain
from harness.firmware import image_of
from harness.screens import NO_VORRANO, create_account, open_tab
from harness.simulator import Control
from harness.waiting import Late, stays, wait_for
from harness.world import situation

PULLS = 100
CONTROLS = [("push button", "Pull the Cable Out"), ("slider", "Temperature"), ("combo box", "It answers"),
            ("label", "To sign in"), ("text", "What passes")]
BUTTONS = {
    "Register Vorrano": ["Register"],
    "Wifi Setup": ["Save network name", "Save password", "Check network name", "Check connection", "Reset Vorrano"],
    "Utilities": ["Power Status", "MAC Address", "Firmware Version", "ADC Version", "Connection Status",
                  "Read throttle", "Set temperature unit", "Reset Wi-Fi Modem", "Reset Vorrano"],
}


def control_of(world):
    """The demo says where its simulator is controlled."""
    def path():
        with open(world.artefact("log"), encoding="utf-8") as log:
            return re.search("controlled at (.*)", log.read())
    return Control(wait_for("the simulator's address", path).group(1))


def face(world, text):
    """Whether the simulated Vorrano's screen shows the text."""
    return any(root.find_all("label", text) for root in world.bus.applications("vorrano-simulator"))


def cable_button(world):
    buttons = world.bus.applications("vorrano-simulator")[0].find_all("push button")
    return next(button for button in buttons if "Cable" in button.name)


def focused(root):
    """What has the keyboard, as (role, name) with its label's name for what has one."""
    nodes = [node for node in root.find_all() if node.has("focused")]
    return (nodes[0].role, plain((nodes[0].labels + [nodes[0].name])[0])) if nodes else None


@situation(program="vorrano-demo", plugged=False)
def TheVorranosScreenFollowsWhatItIsTold(world):
    vorrano = control_of(world)
    open_tab(world.program, "Wifi Setup")
    wait_for("the cable", lambda: face(world, "PC Connected..."))

    world.program.type("Network name", "My Home Net")
    world.program.press("Save network name")
    world.program.expect_alert("OK\n\r", "Success")
    wait_for("the network", lambda: face(world, "Network: My Home Net"))

    vorrano.do("set", unit=1, fahrenheit=50)
    wait_for("the temperature", lambda: face(world, "10.0 \u00b0C"))
    slider = world.bus.applications("vorrano-simulator")[0].find_all("slider", "Temperature")[0]
    assert slider.value == 50, slider.value
    vorrano.close()


@situation(program="vorrano-demo", plugged=False)
def TheCableCanBePulledWhileAnAlertIsUp(world):
    open_tab(world.program, "Wifi Setup")
    world.program.press("Save security type")
    alert = world.program.alert()

    cable_button(world).act("Press")
    wait_for("the Vorrano alone", lambda: face(world, "On its own"))
    world.program.dismiss(alert)
    wait_for("the line about it", lambda: world.program.shows(NO_VORRANO))

    cable_button(world).act("Press")
    wait_for("the line about it to go", lambda: not world.program.shows(NO_VORRANO))
    world.program.press("Check network name")
    world.program.expect_alert("Not set\n\n\r", "Success")


@situation(program="vorrano-demo", plugged=False)
def EachControlOfTheSimulatedVorranoHasANameAndIsReachedByKeys(world):
    root = wait_for("the simulator", lambda: world.bus.applications("vorrano-simulator"))[0]
    world.display.give_keyboard(cable_button(world))
    first = wait_for("the keyboard", lambda: focused(root))

    way = [first]
    for _ in range(len(CONTROLS)):
        world.display.keys("Tab")
        way.append(wait_for("the next control", lambda: focused(root) not in (way[-1], None) and focused(root)))

    assert way == CONTROLS + CONTROLS[:1], way
    # Nothing else takes the keyboard.
    takers = [node for node in root.find_all() if node.has("focusable") and node.role in {role for role, _ in CONTROLS}]
    assert len(takers) == len(CONTROLS), takers


@situation(program="vorrano-demo", plugged=False)
def TheSimulatedVorranoIsWorkedByKeysAndReadAloud(world):
    keys = world.display.keys
    root = wait_for("the simulator", lambda: world.bus.applications("vorrano-simulator"))[0]
    vorrano = control_of(world)
    open_tab(world.program, "Wifi Setup")
    world.display.give_keyboard(cable_button(world))
    wait_for("the keyboard", lambda: focused(root))

    keys("alt+c")
    wait_for("the Vorrano alone", lambda: face(world, "On its own"))
    wait_for("the button's new name", lambda: cable_button(world).name == "Plug the Cable In")
    assert cable_button(world).description == "The cable is out"
    keys("alt+c")
    wait_for("the cable", lambda: face(world, "PC Connected..."))
    assert cable_button(world).description == "The cable is in"

    keys("alt+t", "End")
    wait_for("the heat", lambda: face(world, "104.0 \u00b0F"))
    keys("alt+a", "Down")
    wait_for("the trouble", lambda: root.find_all("combo box", "Not at all"))

    vorrano.do("clearFaults")
    vorrano.do("set", ssid="A$network$with$a$very$long$name$indeed")
    wait_for("the whole name", lambda: face(world, "Network: A network with a very long name indeed"))
    world.program.press("Check network name")
    world.program.expect_alert("A network with a very long name indeed\n\n\r", "Success")
    passed = root.find_all("text", "What passes")[0].text
    assert passed.endswith("\u2192 c\n\u2190 A$network$with$a$very$long$name$indeed\\n\\n\\r"), passed
    vorrano.close()


@situation(program="vorrano-demo", plugged=False)
def TheSignInThatTheWindowNamesIsGood(world):
    world.program.type("Account ID or email", "demo")
    world.program.type("Password", "vorrano")

    world.program.press("Sign In")

    wait_for("the account", lambda: world.program.field("Email").text == "demo@vorrano.example")


@situation(program="vorrano-demo", plugged=False)
def TheSimulatorEndsWithTheDemo(world):
    wait_for("the simulator", lambda: world.bus.applications("vorrano-simulator"))

    assert world.program.end() == 0

    wait_for("its end", lambda: not world.bus.applications("vorrano-simulator"))


def close_alerts(program):
    """Whatever has come up by now is answered, a question with No, a panel with its cancel button."""
    try:
        for alert in program.alerts():
            program.dismiss(alert, alert.buttons[-1])
        panel = program.look_for("text", "File name")
        if panel:
            program.press("Cancel")
    except (Gone, IndexError, Late):
        pass


def act_somehow(world, dice):
    tab = dice.choice(list(BUTTONS))
    if dice.random() < 0.4:
        world.program.choose_tab(tab)
    for button in dice.sample(BUTTONS[tab], min(2, len(BUTTONS[tab]))):
        node = world.program.look_for("push button", button)
        if node:
            node.act("Press")


def begin_upload(world):
    """On its way to an upload: up to which point it gets is left to the cable."""
    path = os.path.join(world.folder, "vorrano.hex")
    with open(path, "w", encoding="utf-8", newline="") as file:
        file.write(image_of(8))
    world.program.choose_tab("Utilities")
    world.program.press("Update Firmware")
    world.program.dismiss(world.program.alert(), "No")
    world.program.dismiss(world.program.alert(), "Yes")
    world.program.type("File name", path)
    world.program.press("Open")


@situation(program="vorrano-demo", plugged=False)
def ACableThatIsPulledAHundredTimesHurtsNothing(world):
    seed = int(os.environ.get("VORRANO_SEED", random.randrange(1 << 32)))
    print("seed %d" % seed, flush=True)
    dice = random.Random(seed)
    vorrano = control_of(world)
    create_account(world.program)

    for pull in range(PULLS):
        try:
            if pull % 12 == 11:
                begin_upload(world)
            else:
                act_somehow(world, dice)
        except (Gone, Late, IndexError, ValueError):
            # An alert of an earlier command came between; it is closed below.
            pass
        stays("the program", lambda: world.program.running, dice.uniform(0, 0.3))
        vorrano.do("unplug")
        stays("the program", lambda: world.program.running, dice.uniform(0, 0.2))
        vorrano.do("plug")
        close_alerts(world.program)

    wait_for("quiet", lambda: close_alerts(world.program) or not world.program.alerts())
    world.program.choose_tab("Wifi Setup")
    expect_an_answer(world)
    vorrano.close()


def expect_an_answer(world):
    """Requests that lost their line run out of time first."""
    world.program.press("Check network name")
    for _ in range(20):
        alert = world.program.alert()
        title = alert.title
        world.program.dismiss(alert, alert.buttons[-1])
        if title.endswith("\n\n\r"):
            return
    raise AssertionError("no answer")
