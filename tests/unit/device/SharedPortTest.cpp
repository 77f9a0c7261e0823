#include "device/WifiSetupViewController.h"
#include "unit/device/DeviceTabTest.h"

using namespace vorrano;
using namespace vorrano::device;
using support::TerminalCall;

namespace {

// One port object, several tabs that come and go.
struct SharedPort : DeviceTabTest<WifiSetupViewController> {};

TEST_F(SharedPort, GoesToTheTabThatTookThePortLast)
{
    chooseTabWithVorrano();
    const auto first = tab;

    const auto second = WifiSetupViewController::create();
    second->awakeFromNib();
    world.run();

    EXPECT_EQ(first->serialPort(), second->serialPort());
    EXPECT_EQ(second->serialPort()->delegate(), second);
    EXPECT_THAT(world.terminal.callTexts({TerminalCall::Open, TerminalCall::Close}), ElementsAre("open"));
}

TEST_F(SharedPort, TellsOnlyTheTabThatTookThePortLast)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");
    const auto second = WifiSetupViewController::create();
    second->awakeFromNib();

    reply("My$Net\n\n\r");

    // The second tab never asked, so it knows of no spaces.
    EXPECT_EQ(world.alerts.only(), alertOf("My$Net\n\n\r", "Success"));
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_F(SharedPort, IsReportedUnpluggedOnEachTabThatSharedIt)
{
    auto& vorrano = world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    chooseTab();
    const auto second = WifiSetupViewController::create();
    second->awakeFromNib();
    const std::string label = "connectionNoticeLabel";

    world.unplug(vorrano);
    world.advance(200ms);

    // The first tab is not the port's delegate; it learns of the removal from the list.
    EXPECT_FALSE(view().isHidden(label));
    EXPECT_EQ(view().labelText(label), static_cast<FakeView&>(*second->view()).labelText(label));
}

TEST_F(SharedPort, IsLeftAloneByTheEndOfItsTab)
{
    chooseTabWithVorrano();
    const auto second = WifiSetupViewController::create();
    second->awakeFromNib();

    tab.reset();
    world.advance(200ms);

    EXPECT_TRUE(second->serialPort()->isOpen());
    EXPECT_EQ(second->serialPort()->delegate(), second);
}

TEST_F(SharedPort, IsNotMadeAnewForATabThatHasGone)
{
    chooseTab();
    tab.reset();

    auto& vorrano = world.plugVorrano();
    world.run();

    EXPECT_FALSE(vorrano.isOpen());
}

TEST_F(SharedPort, DeliversNothingToATabThatHasGone)
{
    chooseTabWithVorrano();
    press("buttonCheckSSID");
    tab.reset();

    line().reply("Net\n\n\r");
    world.advance(10s);

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(SharedPort, DropsItsLastReferenceOnAnyThread)
{
    chooseTabWithVorrano();
    const std::weak_ptr<WifiSetupViewController> watch = tab;

    world.backgroundQueue.async([last = std::move(tab)] {});
    world.run();

    EXPECT_TRUE(watch.expired());
}

} // namespace
