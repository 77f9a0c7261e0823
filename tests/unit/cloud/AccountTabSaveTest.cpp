#include "unit/cloud/AccountTab.h"

using namespace vorrano;
using namespace vorrano::cloud;

TEST_F(AccountTab, RefusesToSaveWithoutANetworkPathBeforeItLooksAtTheForm)
{
    openForNewAccount();
    world.reachability.setFlags(0);

    save();

    EXPECT_EQ(world.alerts.only(), cloud::kWifiNotConnected);
    EXPECT_TRUE(world.urlFetch.requests().empty());
}

namespace {

struct RefusalCase {
    const char* name;
    std::map<std::string, std::string> changes;
    std::string message;
};

struct RefusedForm : AccountTab, testing::WithParamInterface<RefusalCase> {};

} // namespace

TEST_P(RefusedForm, IsNotSentAndShowsTheMessage)
{
    openForNewAccount();
    fillForm();
    for (const auto& [field, text] : GetParam().changes) {
        view().setTextQuietly(field, text);
    }

    save();

    EXPECT_EQ(world.alerts.only(), alertOf("ERROR", GetParam().message));
    EXPECT_TRUE(world.urlFetch.requests().empty());
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
}

INSTANTIATE_TEST_SUITE_P(
    EachRow, RefusedForm,
    testing::Values(RefusalCase{"AccountIDEmpty", {{"accountID", ""}}, "Please enter Account ID"},
                    RefusalCase{"AccountIDWithABlank", {{"accountID", "a b"}}, "Account ID cannot have spaces"},
                    RefusalCase{"PasswordEmpty", {{"password", ""}}, "Please Enter a Password"},
                    RefusalCase{"GuestPasswordEmpty", {{"guestPassword", ""}}, "Please Enter Guest Password"},
                    RefusalCase{"EmailEmpty", {{"email", ""}}, "Please Enter an Email"},
                    RefusalCase{"PasswordsDiffer",
                                {{"confirmPassword", "secret2"}},
                                "Passwords do not match. Please re-enter the Passwords"},
                    RefusalCase{"GuestPasswordsDiffer",
                                {{"confirmGuestPassword", "guest23"}},
                                "Guest Passwords do not match.Please re-enter the passwords"},
                    RefusalCase{"PasswordOfFive",
                                {{"password", "12345"}, {"confirmPassword", "12345"}},
                                "Password must be at least 6 characters long"},
                    RefusalCase{"GuestPasswordOfFive",
                                {{"guestPassword", "12345"}, {"confirmGuestPassword", "12345"}},
                                "GuestPassword must be at least 6 characters long"},
                    RefusalCase{"GuestPasswordSame",
                                {{"guestPassword", "secret1"}, {"confirmGuestPassword", "secret1"}},
                                "Guest Passwords cannot be the same as password.Please re-enter the passwords"},
                    RefusalCase{"AddressEmpty", {{"address", ""}}, "Please Enter Your Address"},
                    RefusalCase{"CityEmpty", {{"cityName", ""}}, "Please Enter Your City Name"},
                    RefusalCase{"StateEmpty", {{"stateName", ""}}, "Please Enter your State Name"},
                    RefusalCase{"CountryEmpty", {{"countryName", ""}}, "Please Enter your Country"},
                    RefusalCase{"ZipCodeEmpty", {{"zipCode", ""}}, "Please Enter your ZipCode"}),
    [](const auto& given) { return given.param.name; });

TEST_F(AccountTab, SendsANewAccountWithTheFormsAccountId)
{
    openForNewAccount();
    GlobalVariables::setGlobalAccountID("99");
    fillForm();

    save();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "insertAccount/ada1815" + kFilledPath});
    EXPECT_TRUE(view().isEnabled("saveButton"));
}

TEST_F(AccountTab, SendsAChangedAccountWithTheSessionsAccountId)
{
    openSignedIn("57", kRecord);
    view().type("name", "Grace");

    save();

    EXPECT_EQ(
        world.urlFetch.requests(),
        std::vector<std::string>{
            kRoot + "getAccounts/57//secret1/ada@host.example/Grace/1%20Main%20St/Top/Town/ST/Land/12345/guest22"});
}

TEST_F(AccountTab, SendsAnUpdateWithAnEmptyIdWhenNobodyHasSignedIn)
{
    chooseTab();
    fillForm();

    save();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "getAccounts/" + kFilledPath});
}

TEST_F(AccountTab, SendsAnAccountIdWithItsLeadingBlankEscaped)
{
    openForNewAccount();
    fillForm();
    view().type("accountID", " ada1815");

    save();

    EXPECT_EQ(world.urlFetch.requests(), std::vector<std::string>{kRoot + "insertAccount/%20ada1815" + kFilledPath});
}

TEST_F(AccountTab, TakesAPasswordOfSixCharactersButNoneOfFive)
{
    openForNewAccount();
    fillForm();
    for (const std::string password : {"12345", "123456"}) {
        view().type("password", password);
        view().type("confirmPassword", password);
        save();
    }

    EXPECT_EQ(world.alerts.only(), alertOf("ERROR", "Password must be at least 6 characters long"));
    EXPECT_EQ(world.urlFetch.requests().size(), 1U);
}

TEST_F(AccountTab, SendsAnEmptyNameAndSecondAddressLineAsNil)
{
    openForNewAccount();
    fillForm();
    view().type("name", "");
    view().type("address2", "");

    save();

    EXPECT_EQ(world.urlFetch.requests(),
              std::vector<std::string>{
                  kRoot +
                  "insertAccount/ada1815//secret1/ada@host.example/nil/1%20Main%20St/nil/Town/ST/Land/12345/guest22"});
}

TEST_F(AccountTab, SendsABlankInsideAFieldAsPercent20)
{
    openForNewAccount();
    fillForm();
    view().type("cityName", "New Town");

    save();

    ASSERT_EQ(world.urlFetch.requests().size(), 1U);
    EXPECT_NE(world.urlFetch.requests().front().find("/New%20Town/"), std::string::npos);
}
