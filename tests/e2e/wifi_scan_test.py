"""A person chooses the network from those that the computer sees."""
from harness.network_manager import network_manager
from harness.screens import open_wifi_setup
from harness.waiting import wait_for
from harness.world import situation


def start(world, networks, ssids):
    for ssid in ssids:
        networks.add_access_point(ssid)
    world.start({"DBUS_SYSTEM_BUS_ADDRESS": networks.address})
    open_wifi_setup(world.program)


@situation(started=False)
def OffersTheNetworksInRangeAndGivesTheVorranoTheChosenOne(world):
    with network_manager(world.folder) as networks:
        start(world, networks, ["My Home Net", "Caf\u00e9", "", "My Home Net", "Guests"])

        assert world.program.items("Networks in range") == ["My Home Net", "Caf\u00e9", "Guests"]
        assert world.program.field("Network name").text == "My Home Net"
        assert not world.program.button("Save WEP key").has("enabled")
        world.picture("networks")
        world.program.choose("Networks in range", "Guests")
        assert world.program.field("Network name").text == "My Home Net"
        world.program.press("Use this network")
        wait_for("the chosen name", lambda: world.program.field("Network name").text == "Guests")
        world.program.press("Save network name")
        world.program.expect_alert("OK\n\r", "Success")
        assert world.vorrano.received == b"8Guests\0"


@situation(started=False)
def LooksForNetworksAgainWhenTheTabIsChosenAgain(world):
    with network_manager(world.folder) as networks:
        start(world, networks, ["My Home Net"])
        assert world.program.items("Networks in range") == ["My Home Net"]
        networks.add_access_point("Guests")

        world.program.choose_tab("Wifi Setup")

        wait_for("both", lambda: world.program.items("Networks in range") == ["My Home Net", "Guests"])


@situation(started=False)
def OffersNothingWhereNoNetworkIsInRange(world):
    with network_manager(world.folder) as networks:
        start(world, networks, [])

        assert world.program.items("Networks in range") == []
        assert world.program.field("Network name").text == ""
        world.program.press("Use this network")
        assert world.program.field("Network name").text == ""
