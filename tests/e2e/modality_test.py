"""With an alert up nothing else can be pressed, typed into or chosen, not even over the accessibility bus."""
from harness.screens import open_utilities, open_wifi_setup
from harness.waiting import stays, wait_for


def AnAlertBlocksPresses(world):
    open_wifi_setup(world.program)
    blocked = world.program.button("Check network name")
    world.program.press("Save security type")
    alert = world.program.alert()

    blocked.act("Press")

    stays("one alert, nothing sent", lambda: len(world.program.alerts()) == 1 and world.vorrano.received == b"")
    world.program.dismiss(alert)
    stays("no alert, nothing sent", lambda: not world.program.alerts() and world.vorrano.received == b"")


def AnAlertBlocksTyping(world):
    open_wifi_setup(world.program)
    world.program.type("Network name", "before")
    field = world.program.field("Network name")
    world.program.press("Save security type")
    alert = world.program.alert()

    field.set_text("meanwhile")

    stays("the text", lambda: field.text == "before")
    world.program.dismiss(alert)
    stays("the text", lambda: field.text == "before")


def AnAlertBlocksTabs(world):
    open_wifi_setup(world.program)
    tab = world.program.find("page tab", "Utilities")
    world.program.press("Save security type")
    alert = world.program.alert()

    tab.act("Press")

    stays("the tab", lambda: world.program.selected_tab() == "Wifi Setup")
    world.program.dismiss(alert)
    stays("the tab", lambda: world.program.selected_tab() == "Wifi Setup")
    assert world.program.look_for("push button", "Save network name")


def AnAlertBlocksCheckBoxes(world):
    open_wifi_setup(world.program)
    world.program.type("Wi-Fi password", "secret word")
    show = world.program.find("check box", "Show Wi-Fi password")
    world.program.press("Save security type")
    alert = world.program.alert()

    show.act("Toggle")

    stays("masked", lambda: world.program.field("Wi-Fi password").masked)
    world.program.dismiss(alert)
    assert not show.has("checked")


def AnAlertBlocksPickLists(world):
    open_wifi_setup(world.program)
    combo = world.program.combo("Security type")
    entries = [node for _, node in combo.tree() if node.role == "list"][0]
    world.program.press("Save security type")
    alert = world.program.alert()

    combo.act("Press")

    stays("a closed list", lambda: not entries.has("showing"))
    world.program.dismiss(alert)


def TheSheetBlocksTheLoginWindow(world):
    world.program.press("Create Account")
    world.program.find("push button", "Accept")
    world.program.type_now("Account ID or email", "somebody")

    world.program.press("Sign In")

    stays("no alert", lambda: not world.program.alerts())
    assert world.program.field("Account ID or email").text == ""


def AnAlertHoldsBackWhatArrivesMeanwhile(world):
    open_utilities(world.program)
    world.program.type("Wi-Fi password", "x" * 65)
    world.vorrano.fault("silence")
    world.program.press("Firmware Version")
    wait_for("the query", lambda: world.vorrano.received == b"4")
    world.program.press("Set Wi-Fi password")
    alert = world.program.alert()
    world.vorrano.do("say", bytes="9.50\n\r")
    wait_for("the reply", lambda: any(event.get("event") == "sent" for event in world.vorrano.events))

    stays("one alert", lambda: len(world.program.alerts()) == 1)

    world.program.dismiss(alert)
    world.program.expect_alert("9.50\n\r", "Device Firmware Version")


def AnAlertHoldsBackThePluggedCable(world):
    open_wifi_setup(world.program)
    world.program.press("Save security type")
    alert = world.program.alert()
    world.pull_the_cable()
    world.plug_the_cable_in(minor=1)

    world.program.dismiss(alert)

    wait_for("the line", lambda: world.vorrano.node in world.program.open_files())
    world.program.press("Check network name")
    world.program.expect_alert("Not set\n\n\r", "Success")
