#include "cloud/AccountInfoViewController.h"
#include "cloud/RegisterVorranoViewController.h"
#include "device/UtilitiesViewController.h"
#include "device/WifiSetupViewController.h"
#include "unit/shell/ShellTest.h"

#include <algorithm>
#include <chrono>

using namespace vorrano;
using namespace vorrano::shell;

namespace {

struct TheSetupWindow : ShellTest {};

struct TabCase {
    int index;
    std::string layout;
};

class ATab : public ShellTest, public testing::WithParamInterface<TabCase> {
protected:
    std::size_t timesLoaded()
    {
        const auto& loaded = world.layouts.loaded();
        return static_cast<std::size_t>(std::count(loaded.begin(), loaded.end(), GetParam().layout));
    }
};

TEST_P(ATab, ShowsItsOwnScreenOnItsOwnPage)
{
    launch();
    openSetup();

    chooseTab(GetParam().index);

    EXPECT_EQ(page(GetParam().index).get(), &world.layouts.view(GetParam().layout));
}

TEST_P(ATab, BeginsAnewWithEachChoiceAlsoOfTheTabOnScreen)
{
    launch();
    openSetup();
    chooseTab(GetParam().index);
    const auto before = timesLoaded();
    const std::weak_ptr<FakeView> first = page(GetParam().index);

    chooseTab(GetParam().index);

    EXPECT_EQ(timesLoaded(), before + 1);
    EXPECT_TRUE(first.expired());
    EXPECT_EQ(page(GetParam().index).get(), &world.layouts.view(GetParam().layout));
}

TEST_P(ATab, IsLeftWithoutEndingAnything)
{
    launch();
    openSetup();
    chooseTab(GetParam().index);
    const auto screen = page(GetParam().index);

    chooseTab((GetParam().index + 1) % 4);

    EXPECT_EQ(page(GetParam().index), screen);
}

INSTANTIATE_TEST_SUITE_P(Each, ATab,
                         testing::Values(TabCase{0, "AccountInfoViewController"},
                                         TabCase{1, "RegisterVorranoViewController"},
                                         TabCase{2, "WifiSetupViewController"}, TabCase{3, "UtilitiesViewController"}));

TEST_F(TheSetupWindow, BeginsWithTheAccountTabAndLeavesTheOthersEmpty)
{
    launch();

    openSetup();

    EXPECT_NE(page(0), nullptr);
    EXPECT_EQ(page(1), nullptr);
    EXPECT_EQ(page(2), nullptr);
    EXPECT_EQ(page(3), nullptr);
    EXPECT_EQ(world.terminal.openDescriptors(), 0U);
}

TEST_F(TheSetupWindow, GivesATabOfAnUnknownLabelNoController)
{
    setTabs({"Account Information", "Register Vorrano", "Wifi Setup", "Utilities", "About"});
    launch();
    openSetup();
    const auto loaded = world.layouts.loaded().size();

    chooseTab(4);

    EXPECT_EQ(page(4), nullptr);
    EXPECT_EQ(world.layouts.loaded().size(), loaded);
}

// The label is the key; the page is the label's, wherever the tab stands.
TEST_F(TheSetupWindow, PutsAScreenOnTheFixedPageOfItsLabel)
{
    setTabs({"Account Information", "Wifi Setup", "Register Vorrano", "Utilities"});
    launch();
    openSetup();

    chooseTab(1);

    EXPECT_EQ(page(1), nullptr);
    EXPECT_EQ(page(2).get(), &world.layouts.view("WifiSetupViewController"));
}

TEST_F(TheSetupWindow, ComparesLabelsExactly)
{
    setTabs({"Account Information", "register vorrano", "Wifi Setup ", "&Utilities"});
    launch();
    openSetup();
    const auto loaded = world.layouts.loaded().size();

    chooseTab(1);
    chooseTab(2);
    chooseTab(3);

    EXPECT_EQ(world.layouts.loaded().size(), loaded);
}

TEST_F(TheSetupWindow, LooksForThePortAgainWithEachChoiceOfADeviceTab)
{
    launch();
    openSetup();
    chooseTab(2);
    EXPECT_EQ(world.terminal.openDescriptors(), 0U);
    auto& line = world.plugVorrano();
    world.run();

    chooseTab(3);

    EXPECT_TRUE(line.isOpen());
    EXPECT_EQ(world.terminal.openDescriptors(), 1U);
}

TEST_F(TheSetupWindow, HandsThePortToTheDeviceTabChosenLast)
{
    world.plugVorrano();
    launch();
    openSetup();
    chooseTab(2);
    chooseTab(3);
    const auto port = serial::SerialPortManager::sharedSerialPortManager()->availablePorts().front();

    EXPECT_NE(std::dynamic_pointer_cast<device::UtilitiesViewController>(port->delegate()), nullptr);
    chooseTab(2);

    EXPECT_NE(std::dynamic_pointer_cast<device::WifiSetupViewController>(port->delegate()), nullptr);
}

TEST_F(TheSetupWindow, SurvivesAReplyForATabThatWasChosenAgain)
{
    auto& line = world.plugVorrano();
    launch();
    openSetup();
    chooseTab(2);
    EXPECT_TRUE(page(2)->press("buttonCheckSSID"));

    chooseTab(2);
    line.reply("My$Net\n\n\r");
    world.advance(std::chrono::seconds(3));

    // It comes to the new one, which has not asked.
    ASSERT_EQ(world.alerts.shown().size(), 1U);
    EXPECT_EQ(world.alerts.only().messageText, "My$Net\n\n\r");
}

TEST_F(TheSetupWindow, LetsGoOfEverythingWithTheProgram)
{
    world.plugVorrano();
    launch();
    openSetup();
    for (const int tab : {1, 2, 3}) {
        chooseTab(tab);
    }

    quit();

    EXPECT_FALSE(world.layouts.hasWindow("SetupMenuViewController"));
    EXPECT_FALSE(world.layouts.hasView("UtilitiesViewController"));
    EXPECT_FALSE(world.layouts.hasView("AccountInfoViewController"));
}

TEST_F(TheSetupWindow, EndsTheProgramWhenThePersonClosesIt)
{
    launch();
    openSetup();

    EXPECT_TRUE(world.layouts.window("SetupMenuViewController").closeAsPerson());

    EXPECT_TRUE(world.layouts.hasProgramEnded());
}

TEST_F(TheSetupWindow, StaysShutForATabChosenUnderAnAlert)
{
    world.plugVorrano();
    launch();
    openSetup();
    chooseTab(2);
    const auto screen = page(2);
    world.alerts.whileUp([this] { EXPECT_FALSE(setup().selectTab("setupTabView", 2)); });

    EXPECT_TRUE(screen->press("buttonResetDevice"));
    world.run();

    EXPECT_EQ(page(2), screen);
}

} // namespace
