"""A person asks and adjusts the Vorrano."""
from harness.screens import open_utilities
from harness.waiting import stays, wait_for

SAVED = ("OK\n\r", "Success")


def ask(world, button, title, text, sent):
    world.vorrano.forget()
    world.program.press(button)
    world.program.expect_alert(title, text)
    assert world.vorrano.received == sent, (button, world.vorrano.received)


def ShowsWhatTheVorranoSaysOfItself(world):
    open_utilities(world.program)
    world.picture("utilities")

    ask(world, "Power Status", "USB power\n\r", "Success", b"0")
    ask(world, "MAC Address", "00:1E:5C:0A:1B:2C\n\r", "Success", b"3")
    ask(world, "Firmware Version", "9.50\n\r", "Device Firmware Version", b"4")
    ask(world, "Wi-Fi Firmware Version", "Wifi 2.36.1\n\r", "Wifi Firmware Version", b"5")
    ask(world, "ADC Version", "ADC V1.4\n\r", "ADC version number", b"1")
    ask(world, "Read network name", "Not set\n\n\r", "Success", b"c")
    ask(world, "Read Wi-Fi password", "none\n\n\r", "Success", b"d")
    ask(world, "Read throttle", "60", "Throttle is displayed", b"f")
    ask(world, "Read temperature unit", "Fahrenheit", "", b"h")
    world.vorrano.do("set", connected=True)
    ask(world, "Connection Status", "Connected, good signal\n\r", "Vorrano is Connected to your WIFI Network", b"2")


def SetsEachValue(world):
    open_utilities(world.program)
    world.program.type("Network name", "My Home Net")
    world.program.type("Wi-Fi password", "pass $ word")
    world.program.type("Throttle", "90")
    world.program.choose("Temperature unit", "Celsius")

    ask(world, "Set network name", *SAVED, b"8My$Home$Net\0")
    ask(world, "Set Wi-Fi password", *SAVED, b"9pass $ word\0")
    ask(world, "Set throttle", *SAVED, b"e\x3c")
    ask(world, "Set temperature unit", "OK\n\r", "", b"g\x01")

    ask(world, "Read network name", "My Home Net\n\n\r", "Success", b"c")
    ask(world, "Read throttle", "90", "Throttle is displayed", b"f")
    ask(world, "Read temperature unit", "Celsius", "", b"h")


def RefusesAThrottleOf20(world):
    open_utilities(world.program)
    world.program.type("Throttle", "20")

    ask(world, "Set throttle", "Invalid Throttle Value", "Throttle should be between 20 and 90", b"")


def RefusesALongPassword(world):
    open_utilities(world.program)
    world.program.type("Wi-Fi password", "x" * 65)

    ask(world, "Set Wi-Fi password", "ERROR", "Passwod cannot be greater than 64 characters", b"")


def ResetsTheModemAndTheVorrano(world):
    open_utilities(world.program)

    ask(world, "Reset Wi-Fi Modem", "Finished Resetting Modem", "Success", b"6")
    ask(world, "Reset Vorrano", "Finished Resetting Device", "Success", b"7")
    wait_for("the Vorrano to be up again", lambda: world.vorrano.state["mode"] == "normal")
    ask(world, "Power Status", "USB power\n\r", "Success", b"0")


def ATemperatureUnitWithoutItsLineEndIsShownWithoutAText(world):
    open_utilities(world.program)
    world.vorrano.fault("answer", command="h", bytes="0")

    world.vorrano.forget()
    world.program.press("Read temperature unit")

    world.program.expect_alert("", "")


def ASilentVorranoIsReportedForRequestsOnly(world):
    open_utilities(world.program)
    world.vorrano.fault("silence")

    ask(world, "Power Status", "ERROR", "Please try again", b"0")
    world.program.press("Firmware Version")
    wait_for("the query", lambda: world.vorrano.received == b"04")
    stays("no alert", lambda: not world.program.alerts(), 2.5)
