#include "device/WifiSetupViewController.h"
#include "unit/device/DeviceTabTest.h"
#include "unit/device/Texts.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

struct WifiTab : DeviceTabTest<WifiSetupViewController> {
    void save(const std::string& field, const std::string& value, const std::string& button)
    {
        view().type(field, value);
        press(button);
    }
    void saveSSID(const std::string& ssid) { save("SSID", ssid, "saveSSIDButton"); }
    void savePassword(const std::string& password) { save("password", password, "savePasswordButton"); }

    void chooseSecurityType(const std::string& type)
    {
        EXPECT_TRUE(view().choose("securityTypeButton", type));
        world.run();
    }

    void expectRefusal(const std::string& message)
    {
        EXPECT_EQ(world.alerts.only(), error(message));
        EXPECT_THAT(writes(), IsEmpty());
        EXPECT_FALSE(isBusy());
        EXPECT_EQ(tab->exchange().queryNumber(), std::nullopt);
    }

    // The three requests of a free text, the third answered.
    void expectFreeText(const std::string& command, const std::string& value)
    {
        EXPECT_EQ(line().written(), command + value + "\0"s);
        EXPECT_TRUE(isBusy());
        EXPECT_THAT(alerts(), IsEmpty());
        reply("OK\n\r");
        EXPECT_EQ(world.alerts.only(), alertOf("OK\n\r", "Success"));
        EXPECT_FALSE(isBusy());
    }
};

struct SecurityCase {
    std::string type;
    std::string byte;
    bool isWep;
};

class WifiTabSecurityType : public WifiTab, public testing::WithParamInterface<SecurityCase> {};

TEST_P(WifiTabSecurityType, EnablesTheControlsOfItsSecretOnly)
{
    chooseTab();

    chooseSecurityType(GetParam().type);

    EXPECT_EQ(view().isEnabled("wepKeyField"), GetParam().isWep);
    EXPECT_EQ(view().isEnabled("saveKeyButton"), GetParam().isWep);
    EXPECT_EQ(view().isEnabled("password"), !GetParam().isWep);
    EXPECT_EQ(view().isEnabled("savePasswordButton"), !GetParam().isWep);
}

TEST_P(WifiTabSecurityType, IsSentAsOneByteWithoutAnEndMark)
{
    chooseTabWithVorrano();
    chooseSecurityType(GetParam().type);

    press("saveSecurityTypeButton");

    EXPECT_THAT(writes(), ElementsAre("a", GetParam().byte));
    EXPECT_TRUE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::SetSecurityType);
    reply("OK\n\r");
    EXPECT_EQ(world.alerts.only(), alertOf("OK\n\r", "Success"));
    EXPECT_FALSE(isBusy());
}

INSTANTIATE_TEST_SUITE_P(Each, WifiTabSecurityType,
                         testing::Values(SecurityCase{"Open", "\x00"s, false}, SecurityCase{"WEP-128", "\x01", true},
                                         SecurityCase{"WPA1", "\x02", false}, SecurityCase{"WPA mixed", "\x03", false},
                                         SecurityCase{"WPA2", "\x04", false}, SecurityCase{"WEP-64", "\x08", true}));

TEST_F(WifiTab, EnablesThePasswordControlsForTheBlankSecurityType)
{
    chooseTab();
    chooseSecurityType("WEP-64");

    chooseSecurityType("");

    EXPECT_EQ(tab->selectedSecurityKey(), std::nullopt);
    EXPECT_FALSE(view().isEnabled("wepKeyField"));
    EXPECT_FALSE(view().isEnabled("saveKeyButton"));
    EXPECT_TRUE(view().isEnabled("password"));
    EXPECT_TRUE(view().isEnabled("savePasswordButton"));
}

TEST_F(WifiTab, RefusesTheBlankSecurityType)
{
    chooseTabWithVorrano();

    press("saveSecurityTypeButton");

    expectRefusal("Please select a Security Type");
}

TEST_F(WifiTab, RefusesAnEmptySSID)
{
    chooseTabWithVorrano();

    saveSSID("");

    expectRefusal("Please enter a valid SSID");
}

TEST_F(WifiTab, SendsAnSSIDOf32Characters)
{
    chooseTabWithVorrano();

    saveSSID(std::string(32, 'x'));

    expectFreeText("8", std::string(32, 'x'));
}

TEST_F(WifiTab, RefusesAnSSIDOf33Characters)
{
    chooseTabWithVorrano();

    saveSSID(std::string(33, '$'));

    expectRefusal("Network SSID cannot be greater than 32 characters");
}

TEST_F(WifiTab, RefusesAnSSIDWithADollarSignBeforeAnyEncoding)
{
    chooseTabWithVorrano();

    saveSSID("My $ Net");

    expectRefusal(kSSIDHasDollarSign);
}

TEST_F(WifiTab, SendsAnSSIDWithItsSpacesAsDollarSigns)
{
    chooseTabWithVorrano();

    saveSSID("My Home Net");

    EXPECT_THAT(writes(), ElementsAre("8", "My$Home$Net", "\0"s));
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::SetSSID);
    expectFreeText("8", "My$Home$Net");
}

TEST_F(WifiTab, RefusesAPasswordWithADollarSignBeforeItLooksAtItsLength)
{
    chooseTabWithVorrano();

    savePassword(std::string(65, '$'));

    expectRefusal(kPasswordHasDollarSign);
}

TEST_F(WifiTab, SendsAPasswordOf64Characters)
{
    chooseTabWithVorrano();

    savePassword(std::string(64, 'x'));

    expectFreeText("9", std::string(64, 'x'));
}

TEST_F(WifiTab, RefusesAPasswordOf65Characters)
{
    chooseTabWithVorrano();

    savePassword(std::string(65, 'x'));

    expectRefusal("Password cannot be greater than 64 characters");
}

TEST_F(WifiTab, SendsAPasswordWithItsSpaces)
{
    chooseTabWithVorrano();

    savePassword(" open sesame ");

    EXPECT_THAT(writes(), ElementsAre("9", " open sesame ", "\0"s));
    expectFreeText("9", " open sesame ");
}

TEST_F(WifiTab, SendsAnEmptyPassword)
{
    chooseTabWithVorrano();

    savePassword("");

    expectFreeText("9", "");
}

TEST_F(WifiTab, RefusesAnEmptyWepKey)
{
    chooseTabWithVorrano();
    chooseSecurityType("WEP-64");

    press("saveKeyButton");

    expectRefusal("Please Enter WEP Key");
}

TEST_F(WifiTab, SendsAnyOtherWepKey)
{
    chooseTabWithVorrano();
    chooseSecurityType("WEP-128");

    save("wepKeyField", "$ not hex", "saveKeyButton");

    EXPECT_THAT(writes(), ElementsAre("b", "$ not hex", "\0"s));
    expectFreeText("b", "$ not hex");
}

TEST_F(WifiTab, ShowsTheStoredSSIDWithItsSpacesBack)
{
    chooseTabWithVorrano();

    press("buttonCheckSSID");
    EXPECT_THAT(writes(), ElementsAre("c"));
    EXPECT_TRUE(isBusy());
    reply("My$Home$Net\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("My Home Net\n\n\r", "Success"));
    EXPECT_EQ(tab->exchange().receivedString(), "My Home Net\n\n\r");
    EXPECT_FALSE(isBusy());
}

TEST_F(WifiTab, ShowsTheStoredPasswordAsItCame)
{
    chooseTabWithVorrano();

    press("buttonCheckPassword");
    EXPECT_THAT(writes(), ElementsAre("d"));
    reply("pa$$word\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("pa$$word\n\n\r", "Success"));
}

TEST_F(WifiTab, ShowsTheNetworkConnection)
{
    chooseTabWithVorrano();

    press("buttonCheckNetworkConnection");
    EXPECT_THAT(writes(), ElementsAre("2"));
    reply("Connected\n");
    EXPECT_THAT(alerts(), IsEmpty());
    reply("\r");

    EXPECT_EQ(world.alerts.only(), alertOf("Connected\n\r", "Success"));
}

TEST_F(WifiTab, DoesNotTakeTheTerminatorAloneForAnSSID)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");

    reply("\n\n\r");
    world.advance(1999ms);
    EXPECT_THAT(alerts(), IsEmpty());
    world.advance(1ms);

    EXPECT_EQ(world.alerts.only(), kTryAgain);
}

TEST_F(WifiTab, TakesOneLetterAndTheTerminatorForAnSSID)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");

    reply("x\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("x\n\n\r", "Success"));
}

TEST_F(WifiTab, AsksToTryAgainAfterTwoSecondsOfSilence)
{
    chooseTabWithVorrano();
    saveSSID("Net");

    world.advance(2s - 1ns);
    EXPECT_THAT(alerts(), IsEmpty());
    world.alerts.whileUp([this] { EXPECT_TRUE(isBusy()); });
    world.advance(1ns);

    EXPECT_EQ(world.alerts.only(), kTryAgain);
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(line().written(), "8Net\0"s);
}

TEST_F(WifiTab, AsksToTryAgainNoLaterThanTheTimersLeeway)
{
    world.time.setLateness(1.0);
    chooseTabWithVorrano();
    saveSSID("Net");

    world.advance(2200ms);

    EXPECT_EQ(world.alerts.only(), kTryAgain);
}

TEST_F(WifiTab, StopsTheProgressDisplayBeforeItShowsAReply)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");
    world.alerts.whileUp([this] { EXPECT_FALSE(isBusy()); });

    reply("Net\n\n\r");

    EXPECT_EQ(alerts().size(), 1U);
}

TEST_F(WifiTab, ResetsWithoutWaitingForTheDevice)
{
    chooseTabWithVorrano();
    world.alerts.whileUp([this] { EXPECT_TRUE(isBusy()); });

    press("buttonResetDevice");

    EXPECT_THAT(writes(), ElementsAre("7"));
    EXPECT_EQ(world.alerts.only(), alertOf("Finished Resetting Device", "Success"));
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), std::nullopt);
}

TEST_F(WifiTab, ShowsNoSecondAlertWhateverTheDeviceAnswersToAReset)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");
    reply("Net\n\n\r");
    world.alerts.forget();

    press("buttonResetDevice");
    reply("Vorrano ready\n\n\r");
    world.advance(10s);

    EXPECT_EQ(alerts().size(), 1U);
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::ReadSSID);
}

TEST_F(WifiTab, QueuesASecondExchangeBehindTheFirstAndReadsBothByTheLaterCommand)
{
    chooseTabWithVorrano();

    press("buttonCheckPassword");
    press("buttonCheckSSID");
    EXPECT_THAT(writes(), ElementsAre("d"));
    reply("pa$$\n\n\r");
    EXPECT_THAT(writes(), ElementsAre("d", "c"));
    reply("My$Net\n\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf("pa  \n\n\r", "Success"), alertOf("My Net\n\n\r", "Success")));
}

TEST_F(WifiTab, EndsTheBusyStateWithTheFirstOfTwoQueuedExchanges)
{
    chooseTabWithVorrano();
    press("buttonCheckPassword");
    press("buttonCheckSSID");

    reply("secret\n\n\r");

    EXPECT_FALSE(isBusy());
    EXPECT_THAT(writes(), ElementsAre("d", "c"));
    EXPECT_EQ(alerts().size(), 1U);
    reply("Net\n\n\r");
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(alerts().size(), 2U);
}

TEST_F(WifiTab, ShowsAReplyThatIsNoTextWithoutATitle)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");

    reply("\xFF\xFE\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf(std::nullopt, "Success"));
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_F(WifiTab, HearsNoDataBesidesResponses)
{
    chooseTabWithVorrano();

    reply("unasked\n\n\r");

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

} // namespace
