"""What a person meets who plugs an adapter in, pulls it at any time, and plugs it in again. Each case begins with the
Wi-Fi tab on the screen and the Vorrano on the cable, as the one before it leaves them."""
import subprocess

from adapter import SLOW, Adapter, node_of
from harness.firmware import FINISHED, begin, expect_image, image_of, wait_for_upload
from harness.screens import NO_VORRANO, OTHER_VORRANO, open_wifi_setup
from harness.waiting import wait_for
from port_world import Held

NAME = "My Home Net"
TIME_OUT = ("ERROR", "Please try again")


def shows_no_vorrano(world, wanted):
    wait_for("the line about the missing Vorrano: %s" % wanted,
             lambda: world.program.shows(NO_VORRANO) == wanted, SLOW)


def check_the_network_name(world, name):
    """Asks again where the question ran out of time, as it may in a slow guest."""
    for _ in range(5):
        world.program.press("Check network name")
        alert = world.program.alert(SLOW)
        world.program.dismiss(alert)
        if (alert.title, alert.text) != TIME_OUT:
            break
    assert (alert.title, alert.text) == (name + "\n\n\r", "Success"), alert


def lets_go(world):
    """Whether the missing Vorrano is told of. In a slow guest the request's time-out may come first, and its alert holds
    back what follows."""
    for alert in world.program.alerts():
        assert (alert.title, alert.text) == TIME_OUT, alert
        world.program.dismiss(alert)
    return world.program.shows(NO_VORRANO)


def takes_it_up(world, node):
    """The program has found the adapter again, and talks to its device."""
    shows_no_vorrano(world, False)
    opens(world, node)
    check_the_network_name(world, NAME)


def opens(world, node):
    wait_for("the program to open %s" % node, lambda: node in world.program.open_files(), SLOW)


def opens_none(world):
    wait_for("the descriptor to be closed",
             lambda: not any("ttyUSB" in name for name in world.program.open_files()), SLOW)


def TakesUpAnAdapterThatIsPluggedIn(world):
    open_wifi_setup(world.program)
    shows_no_vorrano(world, True)

    node = world.cable.plug()

    shows_no_vorrano(world, False)
    opens(world, node)


def SetsTheLineTo9600Baud8N1WithItsOutputsLow(world):
    adapter = world.cable.adapter
    wait_for("the rate", lambda: abs(adapter.baud - 9600) < 20, SLOW)
    wait_for("DTR and RTS to be low", lambda: not adapter.dtr and not adapter.rts, SLOW)

    assert adapter.frame == "8N1", adapter.frame
    assert ("DTR", True) in world.cable.events and ("RTS", True) in world.cable.events, world.cable.events


def GivesTheVorranoItsNetwork(world):
    world.program.type("Network name", NAME)

    world.program.press("Save network name")

    world.program.expect_alert("OK\n\r", "Success", deadline=SLOW)
    assert world.vorrano.received == b"8My$Home$Net\0", world.vorrano.received
    check_the_network_name(world, NAME)


def LetsGoOfAnAdapterThatIsPulledAndTakesItUpAgain(world):
    world.cable.pull()
    shows_no_vorrano(world, True)
    opens_none(world)

    node = world.cable.plug()

    takes_it_up(world, node)


def LetsGoOfAnAdapterThatIsPulledWhileARequestIsPending(world):
    world.vorrano.fault("silence", times=1)
    world.program.press("Check network name")
    wait_for("the request at the device", lambda: world.vorrano.received.endswith(b"c"), SLOW)

    world.cable.pull()
    wait_for("the line about the missing Vorrano", lambda: lets_go(world), SLOW)
    world.vorrano.do("clearFaults")

    takes_it_up(world, world.cable.plug())


def LosesNothingWhenItIsPulledInTheMiddleOfASave(world):
    taken = world.cable.takes_only(4)
    world.program.type("Network name", "Another Net")
    world.program.press("Save network name")
    wait_for("the beginning of the name at the device", taken.is_set, SLOW)

    world.cable.pull()

    wait_for("the line about the missing Vorrano", lambda: lets_go(world), SLOW)
    takes_it_up(world, world.cable.plug())


def TakesUpAnAdapterThatWentAndCameBackUnderAnAlert(world):
    world.program.press("Save security type")
    alert = world.program.alert(SLOW)

    world.cable.pull()
    node = world.cable.plug()
    world.program.dismiss(alert)

    takes_it_up(world, node)


def TakesUpAnAdapterThatComesBackUnderAnotherNode(world):
    former = world.cable.adapter.node(SLOW)
    with Held(former):
        world.cable.pull()
        shows_no_vorrano(world, True)

        node = world.cable.plug()

        assert node != former, node
        takes_it_up(world, node)


def TakesUpAnAdapterThatBounces(world):
    """As a worn plug does: four pulls, one right after the other."""
    for _ in range(4):
        world.cable.pull()
        world.cable.push_in()

    takes_it_up(world, world.cable.adapter.node(SLOW))


def GivesTheLineBackWhileTheComputerSleeps(world):
    node = world.cable.adapter.node(SLOW)

    world.login_manager.prepare_for_sleep(True)
    opens_none(world)
    world.login_manager.prepare_for_sleep(False)

    takes_it_up(world, node)


def TakesUpAnAdapterThatIsPulledWhileTheComputerSleeps(world):
    world.login_manager.prepare_for_sleep(True)
    opens_none(world)

    world.cable.pull()
    node = world.cable.plug()
    world.login_manager.prepare_for_sleep(False)

    takes_it_up(world, node)


def SaysHowToUseTheOtherOfTwoAdaptersWhenItsOwnIsPulled(world):
    other = Adapter(serial="C3D4")
    other.plug()
    node = node_of(other)
    # Told of both at once, the program would take the other one by itself.
    subprocess.run(["udevadm", "settle"], check=True)
    takes_it_up(world, world.cable.adapter.node(SLOW))

    world.cable.pull()
    wait_for("the notice", lambda: world.program.shows(OTHER_VORRANO), SLOW)
    world.program.choose_tab("Wifi Setup")

    wait_for("the notice to go", lambda: not world.program.shows(OTHER_VORRANO), SLOW)
    opens(world, node)
    world.program.press("Check network name")
    wait_for("the question at the other adapter", lambda: other.received == b"c", SLOW)
    other.send(b"Elsewhere\n\n\r")
    world.program.expect_alert("Elsewhere\n\n\r", "Success", deadline=SLOW)
    other.unplug()
    shows_no_vorrano(world, True)
    takes_it_up(world, world.cable.plug())


def UploadsAnImageAfterItWasPulledInTheMiddleOfOne(world):
    world.program.choose_tab("Utilities")
    world.program.button("Power Status")
    begin(world, image_of(40))
    wait_for_upload(world)

    world.cable.pull()

    world.program.expect_alert(*FINISHED, deadline=SLOW)
    opens_none(world)
    opens(world, world.cable.plug())
    image = image_of(3)
    begin(world, image)
    world.program.expect_alert(*FINISHED, deadline=SLOW)
    expect_image(world, image)


CASES = (TakesUpAnAdapterThatIsPluggedIn, SetsTheLineTo9600Baud8N1WithItsOutputsLow, GivesTheVorranoItsNetwork,
         LetsGoOfAnAdapterThatIsPulledAndTakesItUpAgain, LetsGoOfAnAdapterThatIsPulledWhileARequestIsPending,
         LosesNothingWhenItIsPulledInTheMiddleOfASave, TakesUpAnAdapterThatWentAndCameBackUnderAnAlert,
         TakesUpAnAdapterThatComesBackUnderAnotherNode, TakesUpAnAdapterThatBounces,
         GivesTheLineBackWhileTheComputerSleeps, TakesUpAnAdapterThatIsPulledWhileTheComputerSleeps,
         SaysHowToUseTheOtherOfTwoAdaptersWhenItsOwnIsPulled, UploadsAnImageAfterItWasPulledInTheMiddleOfOne)
