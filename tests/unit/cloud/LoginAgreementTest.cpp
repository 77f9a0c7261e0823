#include "unit/cloud/LoginScreen.h"

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(LoginScreen, SetsTheSessionToNewAccountAndShowsTheAgreementOverTheLoginWindow)
{
    view.press("registerVorranoButton");

    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    auto& agreement = world.layouts.window(kAgreementLayout);
    EXPECT_TRUE(agreement.isVisible());
    EXPECT_EQ(agreement.sheetParent(), mainWindow.get());
    ASSERT_NE(controller->eulaWindowViewController(), nullptr);
    EXPECT_EQ(controller->eulaWindowViewController()->window().get(), &agreement);
}

TEST_F(LoginScreen, ShowsTheAgreementWithoutANetworkPathToo)
{
    world.reachability.setFlags(0);

    view.press("registerVorranoButton");

    EXPECT_TRUE(world.layouts.hasWindow(kAgreementLayout));
    EXPECT_TRUE(world.alerts.shown().empty());
}

TEST_F(LoginScreen, KeepsWindowContentsAndTheLoggedInValueWhenTheAgreementIsCancelled)
{
    view.type("accountId", "ada");
    view.press("registerVorranoButton");

    cancelAgreement();

    EXPECT_TRUE(mainWindow->isVisible());
    EXPECT_EQ(view.text("accountId"), "ada");
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_EQ(controller->eulaWindowViewController(), nullptr);
    EXPECT_EQ(setupWindowsMade, 0);
}

TEST_F(LoginScreen, OpensTheAgreementAgainAfterItWasCancelled)
{
    view.press("registerVorranoButton");
    cancelAgreement();

    view.press("registerVorranoButton");

    EXPECT_TRUE(world.layouts.window(kAgreementLayout).isVisible());
}

TEST_F(LoginScreen, ClosesTheLoginWindowAndOpensTheSetupWindowWhenTheAgreementIsAccepted)
{
    view.press("registerVorranoButton");

    acceptAgreement();

    EXPECT_FALSE(mainWindow->isVisible());
    EXPECT_TRUE(world.layouts.window(kSetupLayout).isVisible());
    EXPECT_EQ(setupWindowsMade, 1);
    EXPECT_EQ(controller->eulaWindowViewController(), nullptr);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_FALSE(world.layouts.hasProgramEnded());
}

TEST_F(LoginScreen, OpensOneSetupWindowWhenASignInOvertakesTheAcceptedAgreement)
{
    view.press("registerVorranoButton");
    auto& agreement = world.layouts.window(kAgreementLayout);
    agreement.sheetParent()->endSheet(agreement, 1);

    controller->navigateToSetupMenu();
    world.run();

    EXPECT_EQ(setupWindowsMade, 1);
    EXPECT_TRUE(world.layouts.window(kSetupLayout).isVisible());
    EXPECT_FALSE(mainWindow->isVisible());
    EXPECT_EQ(controller->eulaWindowViewController(), nullptr);
}

TEST_F(LoginScreen, LeavesTheAccountIdUnsetWhenANewAccountIsChosenAfterAFailedLogin)
{
    world.urlFetch.answer(bodyWithId("0"));
    signIn("ada", "wrong");

    view.press("registerVorranoButton");

    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
}

TEST_F(LoginScreen, HasNoSessionBeforeAnyLogin)
{
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), std::nullopt);
    EXPECT_FALSE(GlobalVariables::getUserIsLoggedIn() == "1");
    EXPECT_FALSE(controller->success());
    EXPECT_EQ(controller->loginUser(), std::nullopt);
}

TEST_F(LoginScreen, LogsNeitherAccountNorPasswordNorAddress)
{
    world.urlFetch.answer(R"({"data":["hunter3"]})");

    signIn("ada@host.example", "hunter2");

    ASSERT_EQ(world.alerts.only(), kCouldNotConnect);
    for (const auto* secret : {"ada", "hunter2", "hunter3", "service.example", "validateLogin"}) {
        expectNotLogged(secret);
    }
}

TEST_F(LoginScreen, KeepsNothingAliveOnceItIsLetGo)
{
    const std::weak_ptr<LoginViewController> weak = controller;
    view.press("registerVorranoButton");
    acceptAgreement();

    controller.reset();

    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(world.layouts.hasWindow(kSetupLayout));
}

TEST_F(LoginScreen, DoesNothingForAPressAfterItWasLetGo)
{
    controller.reset();

    view.press("loginButton");
    view.press("registerVorranoButton");
    world.run();

    EXPECT_TRUE(world.alerts.shown().empty());
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), std::nullopt);
}

namespace {

struct LoginsWifiScan : LoginScreen {
    LoginsWifiScan()
    {
        LoginViewController::forgetNetworkScan();
        world.wifi.setNetworks(std::vector<std::string>{"My Home Net", "Other"});
    }
    int scansBefore = world.wifi.scans();
};

} // namespace

TEST_F(LoginsWifiScan, KeepsTheNetworksSeenAtLoad)
{
    const auto first = makeController();

    EXPECT_EQ(world.wifi.scans(), scansBefore + 1);
    EXPECT_EQ(first->availableNetworks(), (std::vector<std::string>{"My Home Net", "Other"}));
}

TEST_F(LoginsWifiScan, IsMadeOnceForAllControllersOfARun)
{
    const auto first = makeController();
    const auto second = makeController();
    first->awakeFromNib();

    EXPECT_EQ(world.wifi.scans(), scansBefore + 1);
    EXPECT_EQ(second->availableNetworks(), std::nullopt);
}

TEST_F(LoginsWifiScan, HasNoResultWithoutAnInterface)
{
    world.wifi.setNetworks(std::nullopt);

    const auto first = makeController();

    EXPECT_EQ(first->availableNetworks(), std::nullopt);
    EXPECT_TRUE(world.alerts.shown().empty());
}
