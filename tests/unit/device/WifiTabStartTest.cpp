#include "device/WifiSetupViewController.h"
#include "unit/device/DeviceTabTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

using Titles = std::vector<std::string>;

struct WifiTabStart : DeviceTabTest<WifiSetupViewController> {};

TEST_F(WifiTabStart, OffersTheNetworksInRangeAndTheFirstAsSSID)
{
    world.wifi.setNetworks(Titles{"My Home Net", "Guests"});

    chooseTab();

    EXPECT_THAT(view().items("wifiSSIDButton"), ElementsAre("My Home Net", "Guests"));
    EXPECT_EQ(view().selectedItem("wifiSSIDButton"), "My Home Net");
    EXPECT_EQ(view().text("SSID"), "My Home Net");
    EXPECT_EQ(tab->availableNetworks(), (Titles{"My Home Net", "Guests"}));
}

TEST_F(WifiTabStart, DisablesTheWepControlsAtItsStart)
{
    world.wifi.setNetworks(Titles{"My Home Net"});

    chooseTab();

    EXPECT_FALSE(view().isEnabled("wepKeyField"));
    EXPECT_FALSE(view().isEnabled("saveKeyButton"));
    EXPECT_TRUE(view().isEnabled("password"));
    EXPECT_TRUE(view().isEnabled("savePasswordButton"));
}

TEST_F(WifiTabStart, LeavesThePickListAndTheWepControlsAsTheyAreWithoutAScan)
{
    world.wifi.setNetworks(std::nullopt);
    world.layouts.prepare("WifiSetupViewController",
                          [](FakeView& layout) { layout.setItems("wifiSSIDButton", {"from the layout"}); });

    chooseTab();

    EXPECT_THAT(view().items("wifiSSIDButton"), ElementsAre("from the layout"));
    EXPECT_TRUE(view().isEnabled("wepKeyField"));
    EXPECT_TRUE(view().isEnabled("saveKeyButton"));
    EXPECT_EQ(view().text("SSID"), "");
}

TEST_F(WifiTabStart, OffersNothingWhereNoNetworkIsInRange)
{
    world.wifi.setNetworks(Titles{});
    world.layouts.prepare("WifiSetupViewController",
                          [](FakeView& layout) { layout.setItems("wifiSSIDButton", {"from the layout"}); });

    chooseTab();

    EXPECT_THAT(view().items("wifiSSIDButton"), IsEmpty());
    EXPECT_EQ(view().text("SSID"), "");
    EXPECT_FALSE(view().isEnabled("wepKeyField"));
    press("buttonScanSSID");
    EXPECT_EQ(view().text("SSID"), "");
}

TEST_F(WifiTabStart, ScansAtItsStartOnly)
{
    world.wifi.setNetworks(Titles{"My Home Net"});
    chooseTab();

    world.plugVorrano();
    press("buttonScanSSID");

    EXPECT_EQ(world.wifi.scans(), 1);
}

TEST_F(WifiTabStart, CopiesTheChosenNetworkOnlyWhenAsked)
{
    world.wifi.setNetworks(Titles{"My Home Net", "Guests"});
    chooseTab();

    view().choose("wifiSSIDButton", "Guests");
    EXPECT_EQ(view().text("SSID"), "My Home Net");
    press("buttonScanSSID");

    EXPECT_EQ(view().text("SSID"), "Guests");
}

TEST_F(WifiTabStart, OffersABlankSecurityTypeAndTheSix)
{
    chooseTab();

    EXPECT_THAT(view().items("securityTypeButton"),
                ElementsAre("", "Open", "WEP-128", "WPA1", "WPA mixed", "WPA2", "WEP-64"));
    EXPECT_EQ(view().selectedItem("securityTypeButton"), "");
    EXPECT_EQ(tab->selectedSecurityKey(), std::nullopt);
}

} // namespace
