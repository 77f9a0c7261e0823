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

TEST_F(TheSetupWindow, HasStoredTheNewControllerAndShowsItsViewBeforeItAwakes)
{
    const auto setupMenu = SetupMenuViewController::create();
    setupMenu->awakeFromNib();
    chooseTab(2);
    const std::weak_ptr<device::WifiSetupViewController> before = setupMenu->wifiSetupViewController();
    bool awoke = false;
    world.wifi.whileScanning([&] {
        awoke = true;
        EXPECT_TRUE(before.expired());
        const auto& stored = setupMenu->wifiSetupViewController();
        ASSERT_NE(stored, nullptr);
        EXPECT_EQ(page(2), stored->view());
    });

    chooseTab(2);

    EXPECT_TRUE(awoke);
}

// Of several live tabs the one chosen last hears of a connection last.
TEST_F(TheSetupWindow, GivesThePortToTheTabOnScreenWhenTheCableIsPulledAndPluggedIn)
{
    launch();
    openSetup();
    for (const std::string after : {"A1B2", "C3D4"}) {
        auto& before = world.plugVorrano("A1B2");
        for (const int tab : {1, 2, 3, 2}) {
            chooseTab(tab);
        }
        world.unplug(before);
        world.advance(std::chrono::seconds(3));
        auto& line = world.plugVorrano(after);
        world.run();

        const auto port = serial::SerialPortManager::sharedSerialPortManager()->availablePorts().front();
        EXPECT_NE(std::dynamic_pointer_cast<device::WifiSetupViewController>(port->delegate()), nullptr) << after;
        EXPECT_TRUE(page(2)->press("buttonCheckSSID"));
        world.run();
        line.reply("My$Net\n\n\r");
        world.run();
        EXPECT_EQ(world.alerts.only().messageText, "My Net\n\n\r");
        world.alerts.forget();
        world.unplug(line);
        world.advance(std::chrono::seconds(3));
    }
}

// The bootloader step is the controller's own.
TEST_F(TheSetupWindow, BeginsWithoutABootloaderStepWhenTheTabIsChosenAnewBeforeThePrompt)
{
    auto& line = world.plugVorrano();
    launch();
    openSetup();
    chooseTab(3);
    world.alerts.queueAnswer(platform::kAlertSecondButton);
    world.alerts.queueAnswer(platform::kAlertFirstButton);
    world.openPanel.queueFile("/nowhere/vorrano.hex");
    EXPECT_TRUE(page(3)->press("buttonUpdateFirmware"));
    EXPECT_EQ(line.written(), "7b");
    world.alerts.forget();

    chooseTab(3);
    line.reply(">");
    world.run();

    EXPECT_EQ(line.written(), "7b");
    EXPECT_THAT(world.alerts.shown(), IsEmpty());
}

// A sign-in without a reply leaves the session without an account id.
TEST_F(TheSetupWindow, SendsAnAbsentAccountIdAsAnEmptyTextInEveryAddress)
{
    const std::string root = "https://service.example/VorranoAPI/RestServiceImpl.svc/";
    auto& line = world.plugVorrano();
    launch();
    for (int call = 0; call < 4; ++call) {
        world.urlFetch.answerNothing();
    }
    login().type("accountId", "ada");
    login().type("password", "secret1");
    press(login(), "loginButton");
    world.advance(std::chrono::seconds(1));
    for (const auto* const field : {"accountID", "password", "confirmPassword", "email", "address", "cityName",
                                    "stateName", "countryName", "zipCode"}) {
        page(0)->setTextQuietly(field, "secret1");
    }
    page(0)->setTextQuietly("guestPassword", "guest22");
    page(0)->setTextQuietly("confirmGuestPassword", "guest22");
    press(*page(0), "saveButton");
    chooseTab(1);
    line.reply("00:1B:44:11:3A:B7\n\r");
    world.run();
    page(1)->setTextQuietly("vorranoName", "Kitchen");
    press(*page(1), "saveButton");

    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_THAT(world.urlFetch.requests(),
                ElementsAre(root + "validateLogin/ada/secret1", root + "getAccounts/",
                            root + "getAccounts///secret1/secret1/nil/secret1/nil/secret1/secret1/secret1/secret1/"
                                   "guest22",
                            root + "insertAccountVorranos//00:1B:44:11:3A:B7/Kitchen"));
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
