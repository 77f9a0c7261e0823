#include "unit/cloud/AccountTab.h"

using namespace vorrano;
using namespace vorrano::cloud;

namespace {

struct SaveReplyOfTheWrongShape : AccountTab, testing::WithParamInterface<ShapeCase> {};
struct SaveReplyThatIsNull : AccountTab, testing::WithParamInterface<ShapeCase> {};

} // namespace

TEST_F(AccountTab, MakesTheSavedAccountTheSessionsAccount)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answer(bodyWithId("57"));
    world.alerts.whileUp([this] {
        EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "57");
        EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
        EXPECT_FALSE(view().isHidden(kHelpLabel));
        EXPECT_TRUE(view().isEnabled("accountID"));
    });

    save();

    EXPECT_EQ(world.alerts.only(), kSaved);
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "57");
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "1");
    EXPECT_TRUE(view().isHidden(kHelpLabel));
    EXPECT_FALSE(view().isEnabled("accountID"));
}

TEST_F(AccountTab, UpdatesTheNewAccountWithTheSecondSave)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answer(bodyWithId("57"));
    save();
    world.urlFetch.forget();

    save();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "getAccounts/57" + kFilledPath});
}

TEST_F(AccountTab, LeavesTheSessionUnchangedWhenTheAccountIdIsTaken)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answer(bodyWithId("-1"));

    save();

    EXPECT_EQ(world.alerts.only(), kTaken);
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_FALSE(view().isHidden(kHelpLabel));
    EXPECT_TRUE(view().isEnabled("accountID"));
}

TEST_F(AccountTab, ReportsSuccessForAnIdOf0AndKeepsTheSessionsId)
{
    openSignedIn("57", kRecord);
    world.urlFetch.answer(bodyWithId("0"));

    save();

    EXPECT_EQ(world.alerts.only(), kSaved);
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "57");
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "1");
}

TEST_P(SaveReplyThatIsNull, ReportsSuccessAndStoresAnAbsentId)
{
    openSignedIn("57", kRecord);
    world.urlFetch.answer(GetParam().body);

    save();

    EXPECT_EQ(world.alerts.only(), kSaved);
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "1");
}

INSTANTIATE_TEST_SUITE_P(Table, SaveReplyThatIsNull,
                         testing::Values(ShapeCase{"NoBytes", ""}, ShapeCase{"NotJson", "<html>"},
                                         ShapeCase{"ATopLevelNumber", "57"}, ShapeCase{"NoData", "{}"},
                                         ShapeCase{"NoId", R"({"data":[{"id":"57"}]})"}),
                         [](const auto& given) { return given.param.name; });

TEST_F(AccountTab, ReportsSuccessWhenTheServiceIsDown)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answerNothing();

    save();

    EXPECT_EQ(world.alerts.only(), kSaved);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "1");
    EXPECT_FALSE(view().isEnabled("accountID"));
}

TEST_P(SaveReplyOfTheWrongShape, SaysThatSavingFailedAndLogsTheException)
{
    openForNewAccount();
    fillForm();
    world.log.forget();
    world.urlFetch.answer(GetParam().body);

    save();

    EXPECT_EQ(world.alerts.only(), kNotSaved);
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_FALSE(view().isHidden(kHelpLabel));
    EXPECT_TRUE(view().isEnabled("accountID"));
    const auto lines = world.log.lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().rfind("Exception: ", 0), 0U) << lines.back();
    expectNotLogged("hunter2");
}

INSTANTIATE_TEST_SUITE_P(Table, SaveReplyOfTheWrongShape, kWrongShapes,
                         [](const auto& given) { return given.param.name; });
INSTANTIATE_TEST_SUITE_P(TableOfIds, SaveReplyOfTheWrongShape,
                         testing::Values(ShapeCase{"AnIdThatIsNull", R"({"data":[{"Id":null}]})"},
                                         ShapeCase{"AnIdThatIsANumber", R"({"data":[{"Id":57}]})"}),
                         [](const auto& given) { return given.param.name; });

TEST_F(AccountTab, LogsNoFieldAndNoAddress)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answer(R"({"data":[{"Id":["hunter2"]}]})");

    save();

    ASSERT_EQ(world.alerts.only(), kNotSaved);
    for (const auto& [field, text] : kFilled) {
        expectNotLogged(text);
    }
    for (const auto* secret : {"hunter2", "service.example", "insertAccount"}) {
        expectNotLogged(secret);
    }
}

TEST_F(AccountTab, SendsASecondSaveWhileTheFirstIsUnderWay)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answerAfter(2s, bodyWithId("57"));
    world.urlFetch.answerAfter(1s, bodyWithId("-1"));

    save();
    save();
    world.advance(3s);

    EXPECT_EQ(world.urlFetch.requests().size(), 2U);
    EXPECT_EQ(world.alerts.shown(), (std::vector{kTaken, kSaved}));
}

TEST_F(AccountTab, HoldsRepliesBackInOrderWhileAnAlertIsUp)
{
    openForNewAccount();
    fillForm();
    world.urlFetch.answerAfter(1s, bodyWithId("-1"));
    world.urlFetch.answerAfter(2s, bodyWithId("57"));
    save();
    save();
    world.alerts.whileUp([this] {
        world.advance(5s);
        EXPECT_EQ(world.alerts.shown().size(), 1U);
        EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    });

    view().press("helpButton1");
    world.run();

    ASSERT_EQ(world.alerts.shown().size(), 3U);
    EXPECT_EQ(world.alerts.shown()[1], kTaken);
    EXPECT_EQ(world.alerts.shown()[2], kSaved);
}

TEST_F(AccountTab, ReportsAReplyThatComesAfterTheTabWasLeft)
{
    openForNewAccount();
    fillForm();
    save();
    const std::weak_ptr<AccountInfoViewController> left = controller;

    controller.reset();
    EXPECT_FALSE(left.expired());
    world.urlFetch.answer(bodyWithId("57"));
    world.run();

    EXPECT_EQ(world.alerts.only(), kSaved);
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "57");
    EXPECT_TRUE(left.expired());
}

TEST_F(AccountTab, FillsTheFormOfTheTabThatAskedWhenItIsChosenAgain)
{
    GlobalVariables::setUserIsLoggedIn("1");
    GlobalVariables::setGlobalAccountID("57");
    chooseTab();
    chooseTab();

    world.urlFetch.answer("{}");
    world.urlFetch.answer(kRecord);
    world.run();

    EXPECT_EQ(form(), kFilled);
}
