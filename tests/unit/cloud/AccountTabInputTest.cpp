#include "unit/cloud/AccountTab.h"

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(AccountTab, DropsSlashesQuestionMarksAndNumberSignsFromWhateverIsTyped)
{
    openForNewAccount();
    for (const auto& field : kFields) {
        view().type(field, "a#b/c?");

        EXPECT_EQ(view().text(field), "abc") << field;
    }
}

TEST_F(AccountTab, LeavesAPercentSignInTheField)
{
    openForNewAccount();

    view().type("name", "50%");
    EXPECT_EQ(view().text("name"), "50%");
    view().type("name", "50%/#");
    EXPECT_EQ(view().text("name"), "50%");
}

TEST_F(AccountTab, LeavesLookAlikesInTheField)
{
    openForNewAccount();

    view().type("name", "\xef\xbc\x83 \xe2\x81\x84");

    EXPECT_EQ(view().text("name"), "\xef\xbc\x83 \xe2\x81\x84");
}

TEST_F(AccountTab, DropsTheMarksOfASignedInAccountsFieldsToo)
{
    openSignedIn("57", kRecord);

    view().type("cityName", "To#wn");

    EXPECT_EQ(view().text("cityName"), "Town");
}

TEST_F(AccountTab, ScreensOnlyWhatThePersonTypes)
{
    openSignedIn("57", R"({"data":[{"Name":"a/b?c#"}]})");

    EXPECT_EQ(view().text("name"), "a/b?c#");
}

TEST_F(AccountTab, Helps)
{
    openForNewAccount();

    view().press("helpButton1");
    view().press("helpButton2");
    view().press("helpButton3");

    EXPECT_EQ(
        world.alerts.shown(),
        (std::vector{
            alertOf("Help", "The account ID is created by the user. It must be letters and/or numbers with no spaces."),
            alertOf("Help", "Password must be greater than 5 characters."),
            alertOf("Help", "Guest password must be greater than 5 characters.")}));
}

TEST_F(AccountTab, ShowsNoAlertForAnAbsentText)
{
    struct OpenTab : AccountInfoViewController {
        using AccountInfoViewController::displayAlertWithString;
    };
    const auto tab = std::make_shared<OpenTab>();

    tab->displayAlertWithString(std::nullopt);
    EXPECT_TRUE(world.alerts.shown().empty());
    tab->displayAlertWithString("");
    EXPECT_EQ(world.alerts.only(), alertOf("ERROR", ""));
}

TEST_F(AccountTab, HasAnEmptyDictionaryAndNoPoundSign)
{
    openForNewAccount();

    EXPECT_TRUE(controller->accountInfoDictionary().empty());
    EXPECT_FALSE(controller->poundSign());
}
