"""What a person who hears the screen instead of seeing it comes to know."""
from harness.bus import Gone, plain
from harness.firmware import FINISHED, begin, image_of
from harness.listener import Listener
from harness.screens import TABS, create_account, open_tab, open_utilities, open_wifi_setup
from harness.waiting import wait_for
from harness.world import situation

LOOPBACK = "vorrano-setup-loopback"
FOCUSED, CARET, SHOWING = "object:state-changed:focused", "object:text-caret-moved", "object:state-changed:showing"
TEXT = "object:text-changed"
NAMES, VALUES = "object:property-change:accessible-name", "object:property-change:accessible-value"
FOCUS = ("StateChanged", "focused", 1)
STOPS = {"push button", "text", "password text", "combo box", "check box", "page tab"}
FIELDS = {"text", "password text", "combo box"}
# More than any screen has.
MANY = 60


def AFieldThatTabReachesReportsItsFocusBeforeItsCaret(world):
    world.display.give_keyboard(world.program.button("Sign In"))
    listener = Listener(world.bus, FOCUSED, CARET)

    world.display.keys("Tab")

    expect_focus_first(listener, world.program.field("Password"))


def AFieldWhoseMnemonicIsPressedReportsItsFocusBeforeItsCaret(world):
    open_wifi_setup(world.program)
    field = world.program.field("Network name")
    world.display.give_keyboard(field)
    listener = Listener(world.bus, FOCUSED, CARET)

    world.display.keys("alt+n")

    expect_focus_first(listener, field)


def expect_focus_first(listener, field):
    wait_for("the focus", lambda: FOCUS in listener.of(field))
    said = listener.of(field)
    assert said[0] == FOCUS, said
    assert said.count(FOCUS) == 1, said


def TheSetupWindowBeginsAtTheNamedTab(world):
    listener = Listener(world.bus, FOCUSED)
    create_account(world.program)

    world.display.give_keyboard(world.program.find("page tab", "Account Information"))

    wait_for("the tab", lambda: last_focus(listener) == ("page tab", "Account Information"))


def TheTabThatIsChosenInsideAPageGetsTheFocus(world):
    open_wifi_setup(world.program)
    world.display.give_keyboard(world.program.field("Network name"))
    world.display.keys("alt+n")
    wait_for("the field", lambda: world.program.field("Network name").has("focused"))
    listener = Listener(world.bus, FOCUSED)

    world.display.keys("ctrl+Tab")

    wait_for("the tab", lambda: last_focus(listener) == ("page tab", "Utilities"))
    assert world.program.find("page tab", "Utilities").has("focused")


def last_focus(listener):
    nodes = [node for node, member, detail, value in listener.heard() if (member, detail, value) == FOCUS]
    try:
        return (nodes[-1].role, nodes[-1].name) if nodes else None
    except Gone:
        return None


def TheAgreementIsReadLineByLine(world):
    world.program.press("Create Account")
    text = world.program.field("Licence agreement")
    world.display.give_keyboard(text)
    wait_for("the focus", lambda: text.has("focused"))
    assert "You may use this program to set up" in text.text
    assert text.has("read only") and not text.has("editable")

    before = text.caret
    world.display.keys("Down", "Down")

    wait_for("the caret", lambda: text.caret > before)
    before = text.text
    world.display.keys("x", "Tab")
    wait_for("the next stop", lambda: not text.has("focused"))
    assert text.text == before


def AnEntryThatAKeyChoosesInAClosedListIsReported(world):
    open_wifi_setup(world.program)
    world.display.give_keyboard(world.program.field("Network name"))
    world.display.keys("alt+t")
    wait_for("the list", lambda: world.program.combo("Security type").has("focused"))
    listener = Listener(world.bus, FOCUSED)

    world.display.keys("Down")

    wait_for("the entry", lambda: last_focus(listener) == ("list item", "Open"))


def APasswordThatIsTypedIsNotOnTheBus(world):
    field = world.program.field("Password")
    listener = Listener(world.bus, TEXT)
    world.display.give_keyboard(field)
    world.display.click_on(field)
    wait_for("the focus", lambda: field.has("focused"))

    world.display.write("k3ttle")
    world.display.keys("BackSpace")
    wait_for("the last key", lambda: listener.texts_of(field)[-1:] == [("delete", "\u2022")])
    assert listener.texts_of(field) == 6 * [("insert", "\u2022")] + [("delete", "\u2022")], listener.texts_of(field)


def WhatIsTypedWhereItIsShownIsOnTheBus(world):
    field = world.program.field("Account ID or email")
    listener = Listener(world.bus, TEXT)
    world.display.give_keyboard(field)

    world.display.write("ada")

    wait_for("the name", lambda: listener.texts_of(field) == [("insert", "a"), ("insert", "d"), ("insert", "a")])


def AKeyThatIsPressedTwiceActsTwice(world):
    # Who listens gets the keys before the program does.
    listener = Listener(world.bus, FOCUSED)
    world.display.give_keyboard(world.program.button("Sign In"))
    for _ in range(3):
        world.display.keys("Return")
        alert = world.program.alert()
        world.display.give_keyboard(alert.node)
        world.display.keys("Return")
        wait_for("the alert to go", lambda: not world.program.alerts())
        world.display.give_keyboard(world.program.button("Sign In"))
    assert listener.heard()


@situation(program=LOOPBACK)
def ABusyScreenSaysSo(world):
    world.vorrano.do("serviceFault", kind="slow", delay=2000)
    listener = Listener(world.bus, SHOWING)
    world.program.type("Account ID or email", "ada")
    world.program.type("Password", "secret1")

    world.program.press("Sign In")

    sign = world.program.find("notification", "Working")
    assert sign.has("busy")
    assert ("StateChanged", "showing", 1) in listener.of(sign)
    world.program.expect_alert("Invalid AccountID/Password", "Please try again")
    wait_for("the sign to go", lambda: not sign.has("showing"))


def AnUploadReportsNotEveryLineToTheBus(world):
    # A screen reader with more than 100 reports to read passes over what is announced.
    open_utilities(world.program)
    listener = Listener(world.bus, NAMES, VALUES, SHOWING)
    begin(world, image_of(150))
    bar = world.program.find("progress bar", "Firmware upload")
    line = [node for node in world.program.root.find_all("notification") if node.name.startswith("Line ")][0]

    world.program.expect_alert(*FINISHED)

    announced = listener.of(line).count(("StateChanged", "showing", 1))
    assert announced > 1, listener.of(line)
    assert changes_of(listener, line) <= announced + 1, listener.of(line)
    assert 9 <= changes_of(listener, bar) <= 12, listener.of(bar)


def changes_of(listener, node):
    return [member for member, *_ in listener.of(node)].count("PropertyChange")


def EveryStopOfEveryScreenIsNamedAndComesAsRead(world):
    program = world.program
    expect_stops_as_read(world, program.button("Sign In"))
    program.press("Sign In")
    expect_alert_to_be_read(world)
    program.press("Create Account")
    expect_stops_as_read(world, program.button("Accept"))
    program.press("Accept")
    program.find("page tab", "Wifi Setup")
    for name in TABS:
        program.choose_tab(name)
        expect_stops_as_read(world, program.find("page tab", name))


def expect_alert_to_be_read(world):
    """A screen reader reads out the alert's name, the labels in it that say something else and label nothing, and its
    description; then what has the focus: its one button. A text that is a label and a description is heard twice."""
    alert = world.program.alert()
    world.display.give_keyboard(alert.node)
    assert (alert.node.name, alert.node.description) == ("ERROR", "")
    assert (alert.title, alert.text) == ("ERROR", "Please enter Account ID or email")
    button = alert.node.find_all("push button", "OK")[0]
    wait_for("the focus", lambda: button.has("focused"))
    world.program.dismiss(alert)


def expect_stops_as_read(world, node):
    """Goes once around the window of a control with Tab."""
    world.display.give_keyboard(node)
    window = node.window
    stops = walk(world)
    controls = [found for found in window.find_all() if found.role in STOPS]
    for stop in stops:
        assert stop.role in STOPS | {"label"}, stop
        assert plain(stop.name), stop
        assert stop.role not in FIELDS or stop.labels or stop.has("read only"), stop
    missed = [found for found in controls if found.has("focusable") and found.has("enabled") and found not in stops and
              found.role != "page tab"]
    assert not missed, missed
    expect_order(stops)
    keys = sorted(key for found in controls for key in found.keys)
    assert len(keys) == len(set(keys)), keys


def walk(world):
    listener = Listener(world.bus, FOCUSED)
    stops = []
    while len(stops) < MANY:
        listener.forget()
        world.display.keys("Tab")
        stop = wait_for("the next stop", lambda: [node for node, *said in listener.heard() if tuple(said) == FOCUS])[-1]
        if stops and stop == stops[0]:
            return stops
        assert stop not in stops, (stop, stops)
        stops.append(stop)
    raise AssertionError("Tab never comes back: %r" % stops)


def expect_order(stops):
    """Line by line, and along each line; a group of controls is done before the next one begins."""
    # Tab goes around: the walk may have begun anywhere.
    first = min(range(len(stops)), key=lambda index: (stops[index].extents[1], stops[index].extents[0]))
    groups = []
    for stop in stops[first:] + stops[:first]:
        if not groups or groups[-1][0] != stop.parent:
            groups.append((stop.parent, []))
        groups[-1][1].append(stop.extents)
    parents = [parent for parent, _ in groups]
    assert len(parents) == len(set(parents)), parents
    for _, places in groups:
        for before, after in zip(places, places[1:]):
            assert follows(before, after), (before, after, stops)
    for (_, before), (_, after) in zip(groups, groups[1:]):
        below = top_of(after) >= max(y + height for _, y, _, height in before)
        beside = min(x for x, _, _, _ in after) >= max(x + width for x, _, width, _ in before)
        assert below or beside, (before, after, stops)


def follows(before, after):
    """Whether a place is on the same line and further on, or on a lower line."""
    middle = after[1] + after[3] / 2
    if before[1] < middle < before[1] + before[3]:
        return after[0] > before[0]
    return after[1] > before[1]


def top_of(places):
    return min(y for _, y, _, _ in places)
