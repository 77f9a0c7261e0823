#include "unit/cloud/LoginScreen.h"

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(LoginScreen, RefusesToStartWithoutANetworkPath)
{
    world.reachability.setFlags(0);
    view.type("accountId", "");

    view.press("loginButton");
    world.run();

    EXPECT_EQ(world.alerts.only(), cloud::kWifiNotConnected);
    EXPECT_TRUE(world.urlFetch.requests().empty());
    expectIdle();
    expectStillOnLoginScreen();
}

TEST_F(LoginScreen, RefusesAnEmptyAccountIdBeforeItLooksAtThePassword)
{
    signIn("", "");

    EXPECT_EQ(world.alerts.only(), alertOf("ERROR", "Please enter Account ID or email"));
    EXPECT_TRUE(world.urlFetch.requests().empty());
    expectIdle();
    expectStillOnLoginScreen();
}

TEST_F(LoginScreen, RefusesAnEmptyPassword)
{
    signIn("ada", "");

    EXPECT_EQ(world.alerts.only(), alertOf("ERROR", "Please enter Password"));
    EXPECT_TRUE(world.urlFetch.requests().empty());
    expectIdle();
    expectStillOnLoginScreen();
}

TEST_F(LoginScreen, HidesTheSpinnerBeforeItRefusesAnEmptyField)
{
    world.alerts.whileUp([this] { expectIdle(); });
    signIn("", "");
    world.alerts.whileUp([this] { expectIdle(); });
    signIn("ada", "");

    EXPECT_EQ(world.alerts.shown().size(), 2U);
}

TEST_F(LoginScreen, DimsTheScreenAndSpinsWhileTheServiceIsAsked)
{
    signIn("ada", "secret1");

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "validateLogin/ada/secret1"});
    EXPECT_EQ(controller->loginUser(), "1");
    expectBusy();
    EXPECT_TRUE(view.isEnabled("loginButton"));
}

TEST_F(LoginScreen, SignsInWithTheIdOfTheFirstRecord)
{
    world.urlFetch.answer(R"({"data":[{"Id":"1234"},{"Id":"0"}]})");

    signIn("ada", "secret1");

    expectSignedIn("1234");
}

TEST_F(LoginScreen, OpensTheSetupWindowHalfASecondAfterTheReplyAndSpinsUntilThen)
{
    world.urlFetch.answer(bodyWithId("1234"));
    signIn("ada", "secret1");

    world.advance(499ms);
    EXPECT_TRUE(mainWindow->isVisible());
    EXPECT_FALSE(world.layouts.hasWindow(kSetupLayout));
    expectBusy();
    world.advance(1ms);

    EXPECT_FALSE(mainWindow->isVisible());
    EXPECT_TRUE(world.layouts.window(kSetupLayout).isVisible());
    EXPECT_FALSE(world.layouts.hasProgramEnded());
}

TEST_F(LoginScreen, StaysWhenTheIdIs0)
{
    world.urlFetch.answer(bodyWithId("0"));
    world.alerts.whileUp([this] { expectBusy(); });

    signIn("ada", "wrong");

    EXPECT_EQ(world.alerts.only(), kInvalid);
    expectIdle();
    expectStillOnLoginScreen();
}

TEST_F(LoginScreen, TakesNoOtherZeroForAWrongPassword)
{
    world.urlFetch.answer(bodyWithId("00"));

    signIn("ada", "secret1");

    expectSignedIn("00");
}

TEST_F(LoginScreen, SaysCouldNotConnectWhenTheDataIsAnEmptyArray)
{
    world.urlFetch.answer(R"({"data":[]})");
    world.alerts.whileUp([this] { expectBusy(); });

    signIn("ada", "secret1");

    EXPECT_EQ(world.alerts.only(), kCouldNotConnect);
    expectIdle();
    expectStillOnLoginScreen();
}

TEST_F(LoginScreen, SendsAnAccountIdOfBlanksAsAnEmptySegment)
{
    signIn(" \t ", "secret1");

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "validateLogin//secret1"});
    EXPECT_EQ(view.text("accountId"), "");
}

TEST_F(LoginScreen, WritesTheTrimmedAccountIdBackAndSendsIt)
{
    signIn(" \tada@host.example ", "secret1");

    EXPECT_EQ(view.text("accountId"), "ada@host.example");
    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "validateLogin/ada@host.example/secret1"});
}

TEST_F(LoginScreen, SendsThePasswordsBlanks)
{
    signIn("ada", " secret1 ");

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "validateLogin/ada/ secret1 "});
    EXPECT_EQ(view.text("password"), " secret1 ");
}

TEST_F(LoginScreen, SendsARawAddressForAnAccountIdWithASpaceInTheMiddle)
{
    world.urlFetch.answerNothing();

    signIn("a da", "secret1");

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "validateLogin/a da/secret1"});
    expectSignedIn(std::nullopt);
}

TEST_F(LoginScreen, SignsInWithoutAnAccountIdWhenTheCableIsPulledAfterTheReachabilityTest)
{
    signIn("ada", "secret1");
    world.reachability.setFlags(0);

    world.urlFetch.answerNothing();
    world.run();

    expectSignedIn(std::nullopt);
}

namespace {

struct LoginReplyThatIsNull : LoginScreen, testing::WithParamInterface<ShapeCase> {};
struct LoginReplyOfTheWrongShape : LoginScreen, testing::WithParamInterface<ShapeCase> {};

} // namespace

TEST_P(LoginReplyThatIsNull, SignsInWithoutAnAccountId)
{
    GlobalVariables::setGlobalAccountID("of before");
    world.urlFetch.answer(GetParam().body);

    signIn("ada", "secret1");

    expectSignedIn(std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, LoginReplyThatIsNull,
                         testing::Values(ShapeCase{"NoBytes", ""}, ShapeCase{"NotJson", "<html>"},
                                         ShapeCase{"ATopLevelText", R"("0")"}, ShapeCase{"NoData", "{}"},
                                         ShapeCase{"NoId", R"({"data":[{}]})"}),
                         [](const auto& given) { return given.param.name; });

TEST_P(LoginReplyOfTheWrongShape, SaysCouldNotConnect)
{
    world.urlFetch.answer(GetParam().body);

    signIn("ada", "secret1");

    EXPECT_EQ(world.alerts.only(), kCouldNotConnect);
    expectIdle();
    expectStillOnLoginScreen();
}

INSTANTIATE_TEST_SUITE_P(Table, LoginReplyOfTheWrongShape,
                         testing::Values(ShapeCase{"ABareArray", "[]"}, ShapeCase{"DataNull", R"({"data":null})"},
                                         ShapeCase{"DataAText", R"({"data":"0"})"},
                                         ShapeCase{"DataAnObject", R"({"data":{"Id":"1"}})"},
                                         ShapeCase{"DataEmpty", R"({"data":[]})"},
                                         ShapeCase{"ARecordThatIsNull", R"({"data":[null]})"},
                                         ShapeCase{"ARecordThatIsNoObject", R"({"data":["1"]})"},
                                         ShapeCase{"AnIdThatIsNull", R"({"data":[{"Id":null}]})"},
                                         ShapeCase{"AnIdThatIsANumber", R"({"data":[{"Id":1234}]})"}),
                         [](const auto& given) { return given.param.name; });

TEST_F(LoginScreen, HandlesTheRepliesOfTwoPressesAsTheyArrive)
{
    world.urlFetch.answerAfter(2s, bodyWithId("0"));
    world.urlFetch.answerAfter(1s, R"({"data":[]})");
    signIn("ada", "secret1");
    signIn("ada", "secret2");

    world.advance(3s);

    EXPECT_EQ(world.alerts.shown(), (std::vector{kCouldNotConnect, kInvalid}));
    EXPECT_EQ(world.urlFetch.requests(),
              (std::vector<std::string>{kRoot + "validateLogin/ada/secret1", kRoot + "validateLogin/ada/secret2"}));
    expectStillOnLoginScreen();
}

TEST_F(LoginScreen, HoldsTheSecondReplyBackWhileTheAlertOfTheFirstIsUp)
{
    world.urlFetch.answer(bodyWithId("0"));
    world.urlFetch.answer(R"({"data":[]})");
    view.type("accountId", "ada");
    view.type("password", "secret1");
    world.alerts.whileUp([this] {
        world.advance(10s);
        EXPECT_EQ(world.alerts.shown().size(), 1U);
    });

    view.press("loginButton");
    view.press("loginButton");
    world.run();

    EXPECT_EQ(world.alerts.shown(), (std::vector{kInvalid, kCouldNotConnect}));
}

TEST_F(LoginScreen, OpensASecondSetupWindowInPlaceOfTheFirstForASecondGoodReply)
{
    world.urlFetch.answerAfter(1s, bodyWithId("1"));
    world.urlFetch.answerAfter(3s, bodyWithId("2"));
    signIn("ada", "secret1");
    signIn("ada", "secret1");
    world.advance(1500ms);
    const auto first = controller->setupMenu();
    ASSERT_NE(first, nullptr);
    ASSERT_TRUE(first->window()->isVisible());

    world.advance(2s);

    EXPECT_EQ(setupWindowsMade, 2);
    EXPECT_FALSE(first->window()->isVisible());
    EXPECT_NE(controller->setupMenu(), first);
    EXPECT_TRUE(controller->setupMenu()->window()->isVisible());
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "2");
    EXPECT_FALSE(world.layouts.hasProgramEnded());
}

TEST_F(LoginScreen, LetsGoOfTheFirstSetupWindowWhenTheSecondOpens)
{
    controller->navigateToSetupMenu();
    const std::weak_ptr<cloud::ScreenWindow> first = controller->setupMenu();

    controller->navigateToSetupMenu();

    EXPECT_TRUE(first.expired());
    EXPECT_TRUE(world.layouts.window(kSetupLayout).isVisible());
}

TEST_F(LoginScreen, HandlesAReplyThatComesAfterTheSetupWindowOpened)
{
    world.urlFetch.answerAfter(1s, bodyWithId("1"));
    world.urlFetch.answerAfter(3s, bodyWithId("0"));
    signIn("ada", "secret1");
    signIn("ada", "wrong");

    world.advance(4s);

    EXPECT_EQ(world.alerts.only(), kInvalid);
    EXPECT_TRUE(world.layouts.window(kSetupLayout).isVisible());
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "1");
}

TEST_F(LoginScreen, LivesOnForTheReplyOfACallUnderWay)
{
    signIn("ada", "secret1");
    const std::weak_ptr<LoginViewController> weak = controller;
    controller.reset();

    world.urlFetch.answer(R"({"data":[]})");
    world.run();

    EXPECT_EQ(world.alerts.only(), kCouldNotConnect);
    EXPECT_TRUE(weak.expired());
}
