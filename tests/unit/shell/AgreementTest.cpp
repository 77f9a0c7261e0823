#include "app/shell/EULAWindowViewController.h"
#include "unit/shell/ShellTest.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

using namespace vorrano;
using namespace vorrano::shell;

using namespace std::chrono_literals;

namespace {

struct TheAgreement : ShellTest {
    // Presses Sign In; the service answers after that time, and the agreement is open by then.
    void openAgreementDuringASignIn(std::chrono::nanoseconds answered, const std::string& accountID)
    {
        world.urlFetch.answerAfter(answered, R"({"data":[{"Id":")" + accountID + R"("}]})");
        login().type("accountId", "ada");
        login().type("password", "secret1");
        press(login(), "loginButton");
        openAgreement();
    }

    [[nodiscard]] std::ptrdiff_t setupWindowsMade() const
    {
        const auto& loaded = world.layouts.loaded();
        return std::count(loaded.begin(), loaded.end(), "SetupMenuViewController");
    }
};

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

TEST_F(TheAgreement, GoesWithTheLoginWindowWhenAnEarlierSignInSucceeds)
{
    launch();
    openAgreementDuringASignIn(2s, "1234");

    world.advance(2500ms);

    EXPECT_FALSE(isVisible("LoginViewController"));
    EXPECT_FALSE(world.layouts.hasWindow("EULAWindowViewController"));
    EXPECT_TRUE(isVisible("SetupMenuViewController"));
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "1");
    EXPECT_FALSE(world.layouts.hasProgramEnded());
}

TEST_F(TheAgreement, GoesWithTheLoginWindowAlsoWhereThatIsTheActiveOne)
{
    launch();
    openAgreementDuringASignIn(2s, "1234");
    world.layouts.window("LoginViewController").activate();

    world.advance(2500ms);

    EXPECT_FALSE(isVisible("LoginViewController"));
    EXPECT_FALSE(world.layouts.hasWindow("EULAWindowViewController"));
    EXPECT_TRUE(isVisible("SetupMenuViewController"));
}

TEST_F(TheAgreement, ThatASignInClosedLeavesASetupWindowWhoseClosingEndsTheProgram)
{
    launch();
    openAgreementDuringASignIn(2s, "1234");
    world.advance(2500ms);
    world.log.forget();

    EXPECT_TRUE(world.layouts.window("SetupMenuViewController").closeAsPerson());
    world.advance(10s);

    EXPECT_TRUE(world.layouts.hasProgramEnded());
    EXPECT_EQ(setupWindowsMade(), 1);
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(TheAgreement, AcceptedBetweenAReplyAndItsSetupWindowEndsInOneSetupWindow)
{
    launch();
    openAgreementDuringASignIn(2s, "1234");
    world.advance(2300ms);

    press(agreement(), "buttonAccept");
    EXPECT_TRUE(isVisible("SetupMenuViewController"));
    const std::weak_ptr<platform::Window> first = world.layouts.keyWindow();
    world.advance(1s);

    // The sign-in opens its own in place of the first.
    EXPECT_TRUE(first.expired());
    EXPECT_TRUE(isVisible("SetupMenuViewController"));
    EXPECT_FALSE(isVisible("LoginViewController"));
    EXPECT_TRUE(world.layouts.window("SetupMenuViewController").closeAsPerson());
    EXPECT_TRUE(world.layouts.hasProgramEnded());
}

TEST_F(TheAgreement, StaysOpenWhenAnEarlierSignInFails)
{
    launch();
    openAgreementDuringASignIn(2s, "0");

    world.advance(10s);

    EXPECT_EQ(world.alerts.only().messageText, "Invalid AccountID/Password");
    EXPECT_TRUE(isVisible("LoginViewController"));
    press(agreement(), "buttonAccept");
    EXPECT_TRUE(isVisible("SetupMenuViewController"));
    EXPECT_EQ(setupWindowsMade(), 1);
}

} // namespace
