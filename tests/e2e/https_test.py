"""The program as it ships talks to the service over HTTPS, and to nobody who only pretends to be it."""
from harness.https import EXPIRED, Https
from harness.waiting import stays
from service_test import FIELDS, SIGNED_IN, sign_in, wait_for_fields


def expect_a_null_reply(world):
    """Which signs in, without an account."""
    sign_in(world)
    world.program.button("Save account")
    stays("no request", lambda: world.vorrano.requests == [])
    assert world.program.field("Email").text == ""


def SignsInOverHttps(world):
    Https(world).serve()

    sign_in(world)

    wait_for_fields(world, FIELDS)
    assert world.vorrano.requests == SIGNED_IN


def ACertificateOfAnotherHostIsRefused(world):
    Https(world).serve(host="somebody.else.example")

    expect_a_null_reply(world)


def AnExpiredCertificateIsRefused(world):
    Https(world).serve(validity=EXPIRED)

    expect_a_null_reply(world)


def AnUnknownAuthorityIsRefused(world):
    Https(world).serve(authority="unknown")

    expect_a_null_reply(world)


def NothingOfTheAccountReachesTheLog(world):
    Https(world).serve()
    sign_in(world)
    wait_for_fields(world, FIELDS)
    world.vorrano.do("refuseConnections")

    world.program.press("Save account")
    world.program.expect_alert("Success!", "Account Information Saved Successfully. Proceed to Register Vorrano")

    with open(world.artefact("log"), encoding="utf-8") as log:
        text = log.read()
    assert "Reachability" in text
    assert not [word for word in ("ada", "secret1", "guest12", "1234", "https:", "RestService") if word in text], text
