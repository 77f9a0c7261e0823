"""A person signs in, sees and changes the account, and registers the Vorrano, with the simulated web service."""
import subprocess

from harness.screens import create_account
from harness.waiting import stays, wait_for
from harness.world import situation

LOOPBACK = "vorrano-setup-loopback"
ROOT = "/VorranoAPI/RestServiceImpl.svc/"
ADA = {"AccountLogin": "ada", "Password": "secret1", "GuestPassword": "guest12", "Email": "ada@vorrano.example",
       "Name": "Ada L\u00f6w", "Address1": "1 Long Road", "City": "Springfield", "State": "Ohio", "Country": "USA",
       "ZipCode": "12345"}
FIELDS = {"Account ID": "ada", "Email": "ada@vorrano.example", "Name": "Ada L\u00f6w", "Address": "1 Long Road",
          "Address line 2": "", "City": "Springfield", "State or province": "Ohio", "Country": "USA",
          "Zip or postal code": "12345"}
SIGNED_IN = [ROOT + "validateLogin/ada/secret1", ROOT + "getAccounts/1234"]
SAVED = ("Success!", "Account Information Saved Successfully. Proceed to Register Vorrano")


def fill_in(world, account="ada", password="secret1"):
    world.vorrano.do("addAccount", values=ADA)
    world.program.type("Account ID or email", account)
    world.program.type("Password", password)


def sign_in(world, account="ada", password="secret1"):
    fill_in(world, account, password)
    world.program.press("Sign In")


def wait_for_fields(world, fields):
    for name, text in fields.items():
        wait_for("%r in %r" % (text, name), lambda: world.program.field(name).text == text)


@situation(program=LOOPBACK)
def SigningInLoadsTheAccount(world):
    sign_in(world)

    wait_for_fields(world, FIELDS)

    assert not world.program.field("Account ID").has("enabled")
    assert world.vorrano.requests == SIGNED_IN
    world.picture("account")


@situation(program=LOOPBACK)
def AWrongPasswordStaysAtTheLogin(world):
    sign_in(world, password="Secret1")

    world.program.expect_alert("Invalid AccountID/Password", "Please try again")

    world.program.button("Sign In")
    assert world.vorrano.requests == [ROOT + "validateLogin/ada/Secret1"]


@situation(program=LOOPBACK)
def EmptyFieldsAreAskedForInOrder(world):
    world.program.press("Sign In")
    world.program.expect_alert("ERROR", "Please enter Account ID or email")
    world.program.type("Account ID or email", "ada")
    world.program.press("Sign In")
    world.program.expect_alert("ERROR", "Please enter Password")

    assert world.vorrano.requests == []


@situation(program=LOOPBACK)
def AChangedAccountIsSaved(world):
    sign_in(world)
    wait_for_fields(world, FIELDS)
    world.vorrano.forget()
    world.program.type("City", "Shelby ville ")

    world.program.press("Save account")
    world.program.expect_alert(*SAVED)

    assert world.vorrano.requests == [
        ROOT + "getAccounts/1234//secret1/ada@vorrano.example/Ada%20L%C3%B6w/1%20Long%20Road/nil/Shelby%20ville/Ohio/"
               "USA/12345/guest12"]
    assert world.vorrano.state["service"]["accounts"][0]["values"]["City"] == "Shelby ville"


@situation(program=LOOPBACK)
def ANewAccountNeedsAFreeId(world):
    world.vorrano.do("addAccount", values=ADA)
    create_account(world.program)
    for name, text in {**FIELDS, "Password": "secret2", "Confirm password": "secret2", "Guest password": "guest34",
                       "Confirm guest password": "guest34"}.items():
        world.program.type(name, text)

    world.program.press("Save account")
    world.program.expect_alert("ERROR", "This Account ID already exists. Please enter another Account ID")
    world.program.type("Account ID", "bob")
    world.program.press("Save account")
    world.program.expect_alert(*SAVED)

    assert world.vorrano.requests[-1] == (
        ROOT + "insertAccount/bob//secret2/ada@vorrano.example/Ada%20L%C3%B6w/1%20Long%20Road/nil/Springfield/Ohio/USA/"
               "12345/guest34")
    assert not world.program.field("Account ID").has("enabled")
    world.vorrano.forget()
    world.program.choose_tab("Account Information")
    wait_for("the account to be loaded", lambda: world.vorrano.requests == [ROOT + "getAccounts/1235"])


@situation(program=LOOPBACK)
def RegistersTheVorranoOnTheLine(world):
    sign_in(world)
    world.program.choose_tab("Register Vorrano")
    wait_for("the MAC query", lambda: world.vorrano.received == b"3")
    wait_for("its answer", lambda: any(event.get("event") == "sent" for event in world.vorrano.events))
    world.program.type("Name of your Vorrano", "Living Room/\u00e9")
    world.picture("register")

    world.program.press("Register")
    world.program.expect_alert("Success", "Device Successfully Registered. Proceed to WiFi Setup.")

    assert world.vorrano.requests[-1] == (
        ROOT + "insertAccountVorranos/1234/00:1E:5C:0A:1B:2C/Living%20Room/%C3%A9")


@situation(program=LOOPBACK, plugged=False)
def DoesNotRegisterWithoutAVorrano(world):
    sign_in(world)
    world.program.choose_tab("Register Vorrano")
    world.program.type("Name of your Vorrano", "Kitchen")
    world.vorrano.forget()

    world.program.press("Register")
    world.program.expect_alert("ERROR", "Failed to retrieve Mac Address of the Vorrano. Please try again")

    assert not world.program.alerts()
    assert world.vorrano.requests == []


@situation(program=LOOPBACK)
def SaysThatThereIsNoNetwork(world):
    subprocess.run(["ip", "link", "set", "out", "down"], check=True)

    sign_in(world)

    world.program.expect_alert("Wi-Fi not connected", "Please check your connection and try again")
    assert world.vorrano.requests == []


@situation(program=LOOPBACK)
def AServiceThatCannotBeReachedSignsIn(world):
    world.vorrano.do("refuseConnections")

    sign_in(world)

    world.program.button("Save account")
    assert world.program.field("Email").text == ""


@situation(program=LOOPBACK)
def AReplyOfAnotherShapeDoesNotSignIn(world):
    world.vorrano.do("serviceFault", kind="answer", body='{"data": []}')

    sign_in(world)

    world.program.expect_alert("Could not connect", "Please try again")
    world.program.button("Sign In")


@situation(program=LOOPBACK)
def ASignInThatSucceedsUnderTheAgreementLeavesTheSetupWindowAlone(world):
    world.vorrano.do("serviceFault", kind="slow", method="validateLogin", delay=5000)
    sign_in(world)
    wait_for("the request", lambda: world.vorrano.requests)
    world.program.press("Create Account")
    world.program.find("push button", "Accept")
    world.picture("agreement")

    world.program.find("page tab", "Wifi Setup")

    wait_for("the setup window alone", lambda: len(world.program.windows()) == 1)
    for gone in ("Accept", "Sign In"):
        assert not world.program.look_for("push button", gone), gone
    wait_for_fields(world, FIELDS)
    world.display.close_window(world.program.pid)
    assert world.program.wait() == 0


@situation(program=LOOPBACK)
def AReplyThatComesDuringAnAlertWaitsForIt(world):
    world.vorrano.do("serviceFault", kind="slow", delay=4000)
    sign_in(world, password="wrong")
    wait_for("the request", lambda: world.vorrano.requests)
    world.program.type("Account ID or email", "")
    world.program.press("Sign In")
    alert = world.program.alert()
    assert alert.text == "Please enter Account ID or email"

    stays("one alert", lambda: len(world.program.alerts()) == 1, 5.0)
    world.program.dismiss(alert)

    world.program.expect_alert("Invalid AccountID/Password", "Please try again")


@situation(program=LOOPBACK)
def TheWindowGoesOnWhileTheServiceIsSilent(world):
    world.vorrano.do("serviceFault", kind="noAnswer")
    sign_in(world)
    wait_for("the request", lambda: world.vorrano.requests)

    world.program.type("Account ID or email", "somebody")
    world.program.press("Create Account")

    world.program.button("Accept")
