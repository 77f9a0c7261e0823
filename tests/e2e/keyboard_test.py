"""The way to stored Wi-Fi credentials without a pointer."""
from harness.waiting import wait_for


def GivesTheVorranoItsNetworkByKeysAlone(world):
    keys, program = world.display.keys, world.program
    program.button("Sign In")
    world.display.focus_window(program.pid)

    keys("alt+c")
    program.find("push button", "Accept")
    keys("alt+a")
    program.find("page tab", "Wifi Setup")
    world.display.focus_window(program.pid)
    keys("ctrl+Tab", "ctrl+Tab")
    wait_for("the tab", lambda: program.selected_tab() == "Wifi Setup")
    keys("alt+n")
    world.display.write("My Home Net")
    wait_for("the name", lambda: program.field("Network name").text == "My Home Net")
    keys("alt+m")
    program.alert()
    keys("Return")

    wait_for("the alert to go", lambda: not program.alerts())
    assert world.vorrano.device["ssid"] == "My$Home$Net"
