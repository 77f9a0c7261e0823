#include "unit/cloud/AccountTab.h"

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(AccountTab, ShowsAnEmptyFormAndTheHelpTextForANewAccount)
{
    openForNewAccount();
    world.run();

    EXPECT_EQ(form(), emptyForm());
    EXPECT_FALSE(view().isHidden(kHelpLabel));
    EXPECT_TRUE(view().isEnabled("accountID"));
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

TEST_F(AccountTab, ShowsAnEmptyFormWhenNobodyIsSignedIn)
{
    chooseTab();
    world.run();

    EXPECT_EQ(form(), emptyForm());
    EXPECT_FALSE(view().isHidden(kHelpLabel));
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

TEST_F(AccountTab, AsksForTheSignedInAccountWithItsIdFieldDisabledFromTheStart)
{
    GlobalVariables::setUserIsLoggedIn("1");
    GlobalVariables::setGlobalAccountID("57");

    chooseTab();

    EXPECT_FALSE(view().isEnabled("accountID"));
    EXPECT_TRUE(view().isHidden(kHelpLabel));
    world.run();
    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "getAccounts/57"});
}

TEST_F(AccountTab, AsksWithAnEmptyIdWhenTheSessionHasNone)
{
    GlobalVariables::setUserIsLoggedIn("1");

    chooseTab();
    world.run();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "getAccounts/"});
}

TEST_F(AccountTab, ShowsTheFirstRecordOfTheAccount)
{
    openSignedIn("57", kRecord);

    EXPECT_EQ(form(), kFilled);
    EXPECT_TRUE(world.alerts.shown().empty());
}

TEST_F(AccountTab, ReloadsTheAccountEachTimeItIsChosen)
{
    openSignedIn("57", kRecord);
    world.urlFetch.answer(kRecord);

    chooseTab();
    world.run();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "getAccounts/57"});
    EXPECT_EQ(form(), kFilled);
}

TEST_F(AccountTab, ShowsEmptyTextsWhenNoReplyCame)
{
    GlobalVariables::setUserIsLoggedIn("1");
    world.urlFetch.answerNothing();
    chooseTab();
    fillForm();

    world.run();

    EXPECT_EQ(form(), emptyForm());
    EXPECT_TRUE(world.alerts.shown().empty());
    EXPECT_TRUE(world.log.lines().empty());
}

TEST_F(AccountTab, ShowsAMissingFieldAsEmpty)
{
    openSignedIn("57", R"({"data":[{"AccountLogin":"ada1815","ZipCode":"12345"}]})");

    auto expected = emptyForm();
    expected["accountID"] = "ada1815";
    expected["zipCode"] = "12345";
    EXPECT_EQ(form(), expected);
}

TEST_F(AccountTab, StopsFillingTheFormAtAFieldThatIsNoText)
{
    openSignedIn("57", R"({"data":[{"AccountLogin":"ada1815","Password":"secret1","Email":"e","Name":7,"City":"x"}]})");

    auto expected = emptyForm();
    expected["accountID"] = "ada1815";
    expected["password"] = expected["confirmPassword"] = "secret1";
    expected["email"] = "e";
    EXPECT_EQ(form(), expected);
    EXPECT_TRUE(world.alerts.shown().empty());
    EXPECT_EQ(world.log.lines().size(), 1U);
    expectNotLogged("secret1");
}

TEST_F(AccountTab, StopsFillingTheFormAtAFieldThatIsJsonsNull)
{
    openSignedIn("57", R"({"data":[{"AccountLogin":"ada1815","Password":"secret1","Email":null,"Name":"Ada"}]})");

    auto expected = emptyForm();
    expected["accountID"] = "ada1815";
    expected["password"] = expected["confirmPassword"] = "secret1";
    EXPECT_EQ(form(), expected);
    EXPECT_TRUE(world.alerts.shown().empty());
    EXPECT_EQ(world.log.lines().size(), 1U);
    expectNotLogged("secret1");
}

namespace {

struct AccountReplyOfTheWrongShape : AccountTab, testing::WithParamInterface<ShapeCase> {};

} // namespace

TEST_P(AccountReplyOfTheWrongShape, LeavesTheFormAsItIsWithoutAnAlert)
{
    openSignedIn("57", GetParam().body);

    EXPECT_EQ(form(), emptyForm());
    EXPECT_TRUE(world.alerts.shown().empty());
    expectNotLogged("hunter2");
}

INSTANTIATE_TEST_SUITE_P(Table, AccountReplyOfTheWrongShape, kWrongShapes,
                         [](const auto& given) { return given.param.name; });
