"""A web service that means harm: the memory stays small, the window alive, and the session as after any other answer.

Whatever is no reply signs in without an account, as no reply at all does; a reply of another shape does not sign in.
"""
from harness.firmware import PC_CONNECTED, answer, expect_proceed_question
from harness.hostile import MIB, HostileService, body, head, redirection, repeated
from harness.https import Https
from harness.screens import open_utilities
from harness.waiting import stays, wait_for
from harness.world import situation
from service_test import LOOPBACK, sign_in

MOST_MEMORY = 200 * MIB
LONG = 60.0


def most_memory(program):
    """The most that the program has ever had in memory."""
    with open("/proc/%d/status" % program.pid, encoding="ascii") as status:
        kib = [line.split()[1] for line in status if line.startswith("VmHWM:")]
    return int(kib[0]) * 1024


def expect_little_memory(world):
    assert most_memory(world.program) < MOST_MEMORY, "%d MiB" % (most_memory(world.program) // MIB)


def press_sign_in(world):
    world.program.type("Account ID or email", "ada")
    world.program.type("Password", "secret1")
    world.program.press("Sign In")


def expect_sign_in_without_an_account(world, answer):
    service = HostileService(world, answer)
    press_sign_in(world)
    world.program.find("push button", "Save account", deadline=LONG)
    assert world.program.field("Email").text == ""
    expect_little_memory(world)
    service.close()


def expect_no_sign_in(world, answer):
    service = HostileService(world, answer)
    press_sign_in(world)
    world.program.expect_alert("Could not connect", "Please try again", deadline=LONG)
    world.program.button("Sign In")
    expect_little_memory(world)
    service.close()


@situation(program=LOOPBACK)
def ABodyOf64MiBIsNoReply(world):
    expect_sign_in_without_an_account(world, repeated(b'{"data":[{"Id":"', b"x", b'"}]}', 64 * MIB))


@situation(program=LOOPBACK)
def ABodyWithoutEndIsNoReply(world):
    expect_sign_in_without_an_account(world, repeated(b'{"data":[{"Id":"', b"x", b"", 1024 * 1024 * MIB))


@situation(program=LOOPBACK)
def AReplyOfMillionsOfObjectsIsNone(world):
    expect_sign_in_without_an_account(world, repeated(b"[0", b',{"":[]}', b"]", 16 * MIB - 64))


@situation(program=LOOPBACK)
def AReplyOfOneLongTextIsRead(world):
    expect_no_sign_in(world, repeated(b'{"data":["', b"x", b'"]}', 16 * MIB - 64))


@situation(program=LOOPBACK)
def AMillionBracketsAreNoReply(world):
    expect_sign_in_without_an_account(world, body(b"[" * 1_000_000))


@situation(program=LOOPBACK)
def AMillionBracketsThatCloseAreNoReply(world):
    expect_sign_in_without_an_account(world, body(b'{"data":' + b"[" * 1_000_000 + b"]" * 1_000_000 + b"}"))


@situation(program=LOOPBACK)
def InvalidUtf8IsNoReply(world):
    expect_sign_in_without_an_account(world, body(b'{"data":[{"Id":"12\xff\xc0\xaf"}]}'))


@situation(program=LOOPBACK)
def ANumberForATextDoesNotSignIn(world):
    expect_no_sign_in(world, body(b'{"data":[{"Id":1234}]}'))


@situation(program=LOOPBACK)
def RedirectionsWithoutEndAreNoReply(world):
    expect_sign_in_without_an_account(world, redirection("http://127.0.0.1:47811/again"))


@situation(program=LOOPBACK)
def ARedirectionToAFileIsNotFollowed(world):
    expect_sign_in_without_an_account(world, redirection("file:///etc/passwd"))


def ARedirectionDownToHttpIsNotFollowed(world):
    Https(world).serve()
    world.vorrano.do("serviceFault", kind="redirect", location="http://127.0.0.1:47811/down")

    sign_in(world)

    world.program.button("Save account")
    stays("no request over HTTP", lambda: not any("down" in target for target in world.vorrano.requests))
    assert len(world.vorrano.requests) == 2, world.vorrano.requests


@situation(program=LOOPBACK)
def AnAccountOfLongTextsIsShownAsFarAsAFieldHolds(world):
    """A field holds 32,767 characters."""
    record = repeated(b'{"data":[{"Id":"7","Name":"', b"x", b'","Email":"ada@host.example"}]}', 8 * MIB)
    service = HostileService(world, record)
    press_sign_in(world)

    wait_for("the account", lambda: world.program.field("Email").text == "ada@host.example", deadline=LONG)

    assert set(world.program.field("Name").text) == {"x"}
    expect_little_memory(world)
    service.close()


@situation(program=LOOPBACK)
def ALongAnswerAboutTheFirmwareIsReadAtItsPlace(world):
    service = HostileService(world, repeated(b'{"GetLatestFirmwareResult":9.50,"rest":"', b"x", b'"}', 64 * MIB))
    open_utilities(world.program)
    for times in (1, 2):
        world.program.press("Update Firmware")
        answer(world.program, PC_CONNECTED, "Yes")
        # The check waits half a second for the answer, and goes on without.
        wait_for("the next alert", world.program.alerts, deadline=LONG)
        if world.program.alert().buttons == ["Yes", "No"]:
            expect_proceed_question(world.program, "No")
        else:
            world.program.dismiss(world.program.alert())
        wait_for("the whole answer", lambda: service.answered == times, deadline=LONG)

    expect_little_memory(world)
    service.close()


@situation(program=LOOPBACK)
def AByteASecondNeitherEndsNorHoldsTheProgram(world):
    sent = []

    def drip(handler):
        head(handler, Connection="close")
        handler.wfile.write(b'{"data":[')
        while not service.ended.wait(1.0):
            handler.wfile.write(b" ")
            handler.wfile.flush()
            sent.append(b" ")

    service = HostileService(world, drip)
    press_sign_in(world)
    wait_for("three bytes", lambda: len(sent) >= 3)

    # The window goes on as ever, and so does the fetch.
    world.program.type("Account ID or email", "bob")
    world.program.press("Create Account")
    world.program.press("Cancel")
    count = len(sent)
    wait_for("two bytes more", lambda: len(sent) >= count + 2)
    assert not world.program.alerts()
    assert world.program.look_for("page tab", "Utilities") is None

    # A fetch under way holds nobody who quits.
    assert world.program.end(deadline=10) == 0
    service.close()
