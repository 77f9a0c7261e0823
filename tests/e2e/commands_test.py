"""Each button of the device's tabs sends its command to the letter and shows the reply."""
from harness.language import buttons_of, fill
from harness.screens import open_tab
from harness.waiting import stays, wait_for


def press_each_button(world, tab, screen):
    open_tab(world.program, tab)
    for button in buttons_of(screen):
        fill(world.program, button)
        world.vorrano.do("clearFaults")
        world.vorrano.fault("answer", command=button["sent"][0], bytes=button["answer"])
        world.vorrano.forget()

        world.program.press(button["label"])

        if button["shown"]:
            world.program.expect_alert(*button["shown"])
        sent = button["sent"].encode("latin-1")
        wait_for("%r" % sent, lambda: world.vorrano.received == sent)
        stays("no other alert", lambda: not world.program.alerts())
        wait_for("the Vorrano to be up", lambda: world.vorrano.state["mode"] == "normal")


def EachButtonOfTheWifiTab(world):
    press_each_button(world, "Wifi Setup", "WifiSetupViewController")


def EachButtonOfTheUtilitiesTab(world):
    press_each_button(world, "Utilities", "UtilitiesViewController")
