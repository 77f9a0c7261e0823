#include "app/shell/EULAWindowViewController.h"
#include "unit/shell/ShellTest.h"

using namespace vorrano;
using namespace vorrano::shell;

namespace {

struct TheAgreement : ShellTest {};

TEST_F(TheAgreement, IsASheetOverTheLoginWindow)
{
    launch();

    openAgreement();

    EXPECT_TRUE(isVisible("EULAWindowViewController"));
    EXPECT_EQ(world.layouts.window("EULAWindowViewController").sheetParent(), program().window().get());
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_FALSE(login().press("registerVorranoButton"));
}

TEST_F(TheAgreement, AcceptedClosesTheLoginWindowAndOpensTheSetupWindow)
{
    launch();
    openAgreement();

    press(agreement(), "buttonAccept");

    EXPECT_FALSE(isVisible("LoginViewController"));
    EXPECT_FALSE(world.layouts.hasWindow("EULAWindowViewController"));
    EXPECT_TRUE(isVisible("SetupMenuViewController"));
    EXPECT_FALSE(world.layouts.hasProgramEnded());
}

TEST_F(TheAgreement, AcceptedLeadsToAnEmptyAccountForm)
{
    launch();

    openSetup();

    EXPECT_EQ(page(0).get(), &world.layouts.view("AccountInfoViewController"));
    EXPECT_EQ(page(0)->text("accountID"), "");
    EXPECT_THAT(world.urlFetch.requests(), IsEmpty());
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
}

// The handler runs after the button's action, or the action would close the window that the handler opens.
TEST_F(TheAgreement, AcceptedClosesTheLoginWindowBeforeTheSetupWindowOpens)
{
    launch();
    openAgreement();

    agreement().press("buttonAccept");
    EXPECT_FALSE(isVisible("LoginViewController"));
    EXPECT_FALSE(isVisible("SetupMenuViewController"));
    world.run();

    EXPECT_TRUE(isVisible("SetupMenuViewController"));
}

TEST_F(TheAgreement, CancelledLeavesTheLoginScreenAsItWas)
{
    launch();
    login().type("accountId", "me@example.org");
    openAgreement();

    press(agreement(), "buttonCancel");

    EXPECT_TRUE(isVisible("LoginViewController"));
    EXPECT_FALSE(world.layouts.hasWindow("EULAWindowViewController"));
    EXPECT_FALSE(world.layouts.hasWindow("SetupMenuViewController"));
    EXPECT_EQ(login().text("accountId"), "me@example.org");
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
}

TEST_F(TheAgreement, ClosedByThePersonIsCancelled)
{
    launch();
    openAgreement();

    EXPECT_TRUE(world.layouts.window("EULAWindowViewController").closeAsPerson());
    world.run();

    EXPECT_TRUE(isVisible("LoginViewController"));
    EXPECT_FALSE(world.layouts.hasWindow("SetupMenuViewController"));
}

TEST_F(TheAgreement, OpensAgainAfterItWasCancelled)
{
    launch();
    openAgreement();
    press(agreement(), "buttonCancel");

    openSetup();

    EXPECT_TRUE(isVisible("SetupMenuViewController"));
}

TEST_F(TheAgreement, OutsideOfASheetEndsNothing)
{
    launch();
    const auto agreementWindow = EULAWindowViewController::create();
    agreementWindow->window()->show();

    press(agreement(), "buttonCancel");

    EXPECT_TRUE(agreementWindow->window()->isVisible());
}

TEST_F(TheAgreement, GoneWithTheProgramIsNotAnsweredAnyMore)
{
    launch();
    openAgreement();

    agreement().press("buttonAccept");
    quit();
    world.run();

    EXPECT_FALSE(world.layouts.hasWindow("SetupMenuViewController"));
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

} // namespace
