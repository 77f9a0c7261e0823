"""The ways through the program's screens that several cases take."""
NO_VORRANO = "No Vorrano is connected. Plug it in with its USB cable."
OTHER_VORRANO = "The Vorrano in use was unplugged. Another one is connected: choose this tab again to use it."
TABS = ["Account Information", "Register Vorrano", "Wifi Setup", "Utilities"]


def create_account(program):
    """From the login window past the agreement to the setup window."""
    program.press("Create Account")
    program.press("Accept")
    program.find("page tab", "Wifi Setup")


def open_tab(program, name):
    create_account(program)
    program.choose_tab(name)
    program.find("push button", {"Wifi Setup": "Save network name", "Utilities": "Power Status",
                                 "Register Vorrano": "Register"}[name])


def open_wifi_setup(program):
    open_tab(program, "Wifi Setup")


def open_utilities(program):
    open_tab(program, "Utilities")
