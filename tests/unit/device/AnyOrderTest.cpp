#include "device/UtilitiesViewController.h"
#include "device/WifiSetupViewController.h"
#include "unit/device/DeviceTabTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

// The same as elsewhere, with the threads taking turns in an order that the seed draws.
class InAnyOrder : public DeviceTabTest<DeviceTabController>, public testing::WithParamInterface<std::uint32_t> {
protected:
    InAnyOrder()
    {
        world.time.explore(GetParam());
        world.plugVorrano();
    }

    void choose(const std::shared_ptr<DeviceTabController>& chosen)
    {
        tab = chosen;
        tab->awakeFromNib();
        world.run();
    }
};

TEST_P(InAnyOrder, AnSSIDIsStoredAndReadBack)
{
    choose(WifiSetupViewController::create());
    view().type("SSID", "My Home Net");

    press("saveSSIDButton");
    reply("OK\n\r");
    press("buttonCheckSSID");
    reply("My$Home");
    reply("$Net\n\n\r");

    EXPECT_EQ(line().written(), "8My$Home$Net\0c"s);
    EXPECT_THAT(alerts(), ElementsAre(alertOf("OK\n\r", "Success"), alertOf("My Home Net\n\n\r", "Success")));
    EXPECT_FALSE(isBusy());
}

TEST_P(InAnyOrder, AResponseComesAfterItsChunk)
{
    choose(UtilitiesViewController::create());
    press("buttonPowerStatus");
    press("buttonGetTemperatureUnit");

    reply("Power OK\n\r");

    EXPECT_THAT(alerts(), ElementsAre(alertOf(std::nullopt, ""), alertOf("Power OK\n\r", "Success")));
}

TEST_P(InAnyOrder, ACableThatGoesAndComesIsFollowed)
{
    choose(UtilitiesViewController::create());
    press("buttonPowerStatus");

    world.unplug(line());
    world.advance(3s);
    EXPECT_EQ(tab->serialPort(), nullptr);
    world.plugVorrano();
    world.advance(3s);
    EXPECT_TRUE(tab->serialPort()->isOpen());
    press("buttonPowerStatus");
    reply("Power OK\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("Power OK\n\r", "Success"));
    EXPECT_EQ(world.terminal.openDescriptors(), 1U);
}

TEST_P(InAnyOrder, ATabTakesThePortOverFromAnother)
{
    choose(WifiSetupViewController::create());
    press("buttonCheckSSID");
    const auto first = tab;
    choose(UtilitiesViewController::create());

    world.advance(3s);
    press("buttonPowerStatus");
    reply("Power OK\n\r");

    // The first tab's time-out is told to the one that has the port by then.
    EXPECT_THAT(alerts(), ElementsAre(kTryAgain, alertOf("Power OK\n\r", "Success")));
    EXPECT_EQ(tab->serialPort()->delegate(), tab);
}

INSTANTIATE_TEST_SUITE_P(OfSeeds, InAnyOrder, testing::Range(std::uint32_t{1}, std::uint32_t{26}));

} // namespace
