#include "unit/device/UtilitiesTabTest.h"
#include "unit/device/Texts.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

const Alert kInvalidThrottle = alertOf("Invalid Throttle Value", "Throttle should be between 20 and 90");

TEST_F(UtilitiesTab, OffersTheTemperatureUnitsAndShowsTheSecond)
{
    EXPECT_THAT(view().items("temperatureDisplayUnitButton"), ElementsAre("Fahrenheit", "Celsius"));
    EXPECT_EQ(view().selectedItem("temperatureDisplayUnitButton"), "Celsius");
}

TEST_F(UtilitiesTab, SetsFahrenheitAsZeroAndCelsiusAsOne)
{
    view().choose("temperatureDisplayUnitButton", "Fahrenheit");
    press("buttonSetTemperatureUnit");
    view().choose("temperatureDisplayUnitButton", "Celsius");
    press("buttonSetTemperatureUnit");

    EXPECT_THAT(writes(), ElementsAre("g", "\0"s, "g", "\x01"));
}

TEST_F(UtilitiesTab, ShowsThePowerStatusAsItIs)
{
    press("buttonPowerStatus");

    reply("Power OK\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("Power OK\n\r", "Success"));
    EXPECT_FALSE(isBusy());
}

TEST_F(UtilitiesTab, ShowsAMacAddressOf19BytesAndNotOf18)
{
    press("buttonMacAddress");

    reply("00:1B:44:11:3A:B7\n");
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_FALSE(tab->dataBufferHasCompleteMacAddressPacket());
    reply("\r");

    EXPECT_EQ(world.alerts.only(), alertOf("00:1B:44:11:3A:B7\n\r", "Success"));
    EXPECT_TRUE(tab->dataBufferHasCompleteMacAddressPacket());
}

TEST_F(UtilitiesTab, ShowsTheStoredSSIDWithItsSpacesBack)
{
    press("buttonGetSSID");

    reply("My$Net\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("My Net\n\n\r", "Success"));
}

TEST_F(UtilitiesTab, ShowsTheStoredPasswordAsItCame)
{
    press("buttonGetNetworkPassword");

    reply("pa$$word\n\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("pa$$word\n\n\r", "Success"));
}

TEST_F(UtilitiesTab, ShowsAStoredThrottleTimesOneAndAHalf)
{
    press("buttonGetThrottle");
    reply("14\n\r");
    press("buttonGetThrottle");
    reply("60\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf("21", "Throttle is displayed"), alertOf("90", "Throttle is displayed")));
    EXPECT_FALSE(isBusy());
}

TEST_F(UtilitiesTab, StopsTheProgressDisplayBeforeItShowsAReply)
{
    press("buttonGetThrottle");
    world.alerts.whileUp([this] { EXPECT_FALSE(isBusy()); });

    reply("14\n\r");

    EXPECT_EQ(alerts().size(), 1U);
}

TEST_F(UtilitiesTab, SendsAnSSIDOf32Characters)
{
    type("setSSID", std::string(30, 'x') + " y");

    press("buttonSetSSID");

    EXPECT_THAT(writes(), ElementsAre("8", std::string(30, 'x') + "$y", "\0"s));
    EXPECT_TRUE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::SetSSID);
    reply("OK\n\r");
    EXPECT_EQ(world.alerts.only(), alertOf("OK\n\r", "Success"));
}

TEST_F(UtilitiesTab, RefusesAnSSIDOf33Characters)
{
    type("setSSID", std::string(33, '$'));

    press("buttonSetSSID");

    EXPECT_EQ(world.alerts.only(), error("Network SSID cannot be greater than 32 characters"));
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_FALSE(isBusy());
}

TEST_F(UtilitiesTab, RefusesAnEmptySSID)
{
    press("buttonSetSSID");

    EXPECT_EQ(world.alerts.only(), error("Please enter a valid SSID"));
    EXPECT_THAT(writes(), IsEmpty());
}

TEST_F(UtilitiesTab, RefusesAnSSIDWithADollarSign)
{
    type("setSSID", "My$Net");

    press("buttonSetSSID");

    EXPECT_EQ(world.alerts.only(), error(kSSIDHasDollarSign));
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_EQ(tab->exchange().queryNumber(), std::nullopt);
}

TEST_F(UtilitiesTab, SendsAPasswordOf64CharactersWithItsDollarSignsAndSpaces)
{
    const auto password = std::string(60, 'x') + "$ $ ";
    type("setPassword", password);

    press("buttonSetPassword");

    EXPECT_THAT(writes(), ElementsAre("9", password, "\0"s));
    EXPECT_TRUE(isBusy());
    reply("OK\n\r");
    EXPECT_EQ(world.alerts.only(), alertOf("OK\n\r", "Success"));
}

TEST_F(UtilitiesTab, RefusesAPasswordOf65Characters)
{
    type("setPassword", std::string(65, 'x'));

    press("buttonSetPassword");

    EXPECT_EQ(world.alerts.only(), error("Passwod cannot be greater than 64 characters"));
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_FALSE(isBusy());
}

TEST_F(UtilitiesTab, SendsAnEmptyPassword)
{
    press("buttonSetPassword");

    EXPECT_EQ(line().written(), "9\0"s);
}

struct ThrottleCase {
    std::string text;
    std::string byte;
};

class UtilitiesTabThrottle : public UtilitiesTab, public testing::WithParamInterface<ThrottleCase> {};

TEST_P(UtilitiesTabThrottle, IsSentAsOneByte)
{
    type("setThrottleTextField", GetParam().text);

    press("buttonSetThrottle");

    EXPECT_THAT(writes(), ElementsAre("e", GetParam().byte));
    EXPECT_TRUE(isBusy());
    EXPECT_TRUE(tab->exchange().waitingForAck());
    reply("OK\n\r");
    EXPECT_EQ(world.alerts.only(), alertOf("OK\n\r", "Success"));
}

INSTANTIATE_TEST_SUITE_P(InRange, UtilitiesTabThrottle,
                         testing::Values(ThrottleCase{"21", "\x0E"}, ThrottleCase{"25", "\x10"},
                                         ThrottleCase{"90", "<"}, ThrottleCase{" 45 degrees", "\x1E"}));

class UtilitiesTabRefusedThrottle : public UtilitiesTab, public testing::WithParamInterface<std::string> {};

TEST_P(UtilitiesTabRefusedThrottle, ChangesTheCommandRememberedBeforeItIsRefused)
{
    type("setThrottleTextField", GetParam());

    press("buttonSetThrottle");

    EXPECT_EQ(world.alerts.only(), kInvalidThrottle);
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::SetThrottle);
    EXPECT_TRUE(tab->exchange().waitingForAck());
}

INSTANTIATE_TEST_SUITE_P(OutOfRange, UtilitiesTabRefusedThrottle,
                         testing::Values("20", "91", "fast", "", "-45", "x45", "99999999999999999999"));

TEST_F(UtilitiesTab, StopsTheProgressDisplayBeforeItAsksToTryAgain)
{
    press("buttonPowerStatus");
    world.alerts.whileUp([this] { EXPECT_FALSE(isBusy()); });

    world.advance(2s - 1ns);
    EXPECT_THAT(alerts(), IsEmpty());
    world.advance(1ns);

    EXPECT_EQ(world.alerts.only(), kTryAgain);
}

TEST_F(UtilitiesTab, ResetsTheDeviceWithoutWaitingForIt)
{
    press("buttonADC");
    world.alerts.whileUp([this] { EXPECT_TRUE(isBusy()); });

    press("resetDevice");

    EXPECT_THAT(writes(), ElementsAre("1", "7"));
    EXPECT_EQ(world.alerts.only(), alertOf("Finished Resetting Device", "Success"));
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::AdcVersion);
}

TEST_F(UtilitiesTab, ResetsTheModemWithoutWaitingForIt)
{
    press("resetModem");
    world.advance(10s);

    EXPECT_THAT(writes(), ElementsAre("6"));
    EXPECT_EQ(world.alerts.only(), alertOf("Finished Resetting Modem", "Success"));
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), std::nullopt);
}

TEST_F(UtilitiesTab, TellsOfTheTestThatNoControlIsBoundTo)
{
    reply("something");

    tab->test();

    EXPECT_EQ(world.alerts.only(), alertOf("pass", "Device Firmware Version"));
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_F(UtilitiesTab, TakesANewlyPluggedVorranoAndEmptiesTheIncomingBuffer)
{
    reply("something");
    EXPECT_EQ(tab->exchange().incomingDataBuffer(), "something");

    world.plugSerialDevice("/dev/ttyS0");
    world.run();

    EXPECT_EQ(tab->exchange().incomingDataBuffer(), "");
    EXPECT_TRUE(line().isOpen());
}

} // namespace
