#include "cloud/AccountForm.h"
#include "support/FilledAccount.h"

using namespace vorrano;
using cloud::AccountForm;

namespace {

AccountForm filledForm()
{
    const auto account = support::filledAccount();
    return {account, account.password, account.guestPassword};
}

using Change = void (*)(AccountForm&);

void setPasswords(AccountForm& form, const std::string& password)
{
    form.password = password;
    form.confirmPassword = password;
}

void setGuestPasswords(AccountForm& form, const std::string& password)
{
    form.guestPassword = password;
    form.confirmGuestPassword = password;
}

struct FormCase {
    const char* name;
    Change change;
    std::optional<std::string_view> refusal;
};

class CheckingTheForm : public testing::TestWithParam<FormCase> {};

constexpr auto kHasSpaces = "Account ID cannot have spaces";
constexpr auto kTooShort = "Password must be at least 6 characters long";
constexpr auto kGuestTooShort = "GuestPassword must be at least 6 characters long";
constexpr auto kDiffer = "Passwords do not match. Please re-enter the Passwords";

} // namespace

TEST_P(CheckingTheForm, RefusesWithTheExactMessage)
{
    auto form = filledForm();
    GetParam().change(form);

    EXPECT_EQ(cloud::refusalOf(form), GetParam().refusal);
}

INSTANTIATE_TEST_SUITE_P(
    EachCheck, CheckingTheForm,
    testing::Values(
        FormCase{"Filled", [](AccountForm&) {}, std::nullopt},
        FormCase{"NoAccountID", [](AccountForm& form) { form.accountID = ""; }, "Please enter Account ID"},
        FormCase{"ABlankInsideTheAccountID", [](AccountForm& form) { form.accountID = "ada 1815"; }, kHasSpaces},
        FormCase{"ATabInsideTheAccountID", [](AccountForm& form) { form.accountID = "ada\t1815"; }, kHasSpaces},
        FormCase{"ANoBreakSpaceInsideTheAccountID",
                 [](AccountForm& form) {
                     form.accountID = "a\xc2\xa0"
                                      "b";
                 },
                 kHasSpaces},
        FormCase{"BlanksAroundTheAccountID", [](AccountForm& form) { form.accountID = " ada1815\t "; }, std::nullopt},
        FormCase{"AnAccountIDOfBlanks", [](AccountForm& form) { form.accountID = "  "; }, std::nullopt},
        FormCase{"NoPassword", [](AccountForm& form) { setPasswords(form, ""); }, "Please Enter a Password"},
        FormCase{"NoGuestPassword", [](AccountForm& form) { setGuestPasswords(form, ""); },
                 "Please Enter Guest Password"},
        FormCase{"NoEmail", [](AccountForm& form) { form.email = ""; }, "Please Enter an Email"},
        FormCase{"AnotherConfirmPassword", [](AccountForm& form) { form.confirmPassword = "Secret1"; }, kDiffer},
        FormCase{"AnotherConfirmGuestPassword", [](AccountForm& form) { form.confirmGuestPassword = "guest22 "; },
                 "Guest Passwords do not match.Please re-enter the passwords"},
        FormCase{"APasswordOfFive", [](AccountForm& form) { setPasswords(form, "12345"); }, kTooShort},
        FormCase{"APasswordOfSix", [](AccountForm& form) { setPasswords(form, "123456"); }, std::nullopt},
        FormCase{"APasswordOfFiveUmlauts",
                 [](AccountForm& form) { setPasswords(form, "\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4"); }, kTooShort},
        FormCase{"APasswordOfThreePairsOfUnits",
                 [](AccountForm& form) { setPasswords(form, "\xf0\x9f\x8c\xa1\xf0\x9f\x8c\xa1\xf0\x9f\x8c\xa1"); },
                 std::nullopt},
        FormCase{"AGuestPasswordOfFive", [](AccountForm& form) { setGuestPasswords(form, "12345"); }, kGuestTooShort},
        FormCase{"AGuestPasswordOfSix", [](AccountForm& form) { setGuestPasswords(form, "123456"); }, std::nullopt},
        FormCase{"TheGuestPasswordIsThePassword", [](AccountForm& form) { setGuestPasswords(form, "secret1"); },
                 "Guest Passwords cannot be the same as password.Please re-enter the passwords"},
        FormCase{"TheGuestPasswordInOtherCase", [](AccountForm& form) { setGuestPasswords(form, "SECRET1"); },
                 std::nullopt},
        FormCase{"NoAddress", [](AccountForm& form) { form.address = ""; }, "Please Enter Your Address"},
        FormCase{"NoCity", [](AccountForm& form) { form.cityName = ""; }, "Please Enter Your City Name"},
        FormCase{"NoState", [](AccountForm& form) { form.stateName = ""; }, "Please Enter your State Name"},
        FormCase{"NoCountry", [](AccountForm& form) { form.countryName = ""; }, "Please Enter your Country"},
        FormCase{"NoZipCode", [](AccountForm& form) { form.zipCode = ""; }, "Please Enter your ZipCode"},
        FormCase{"FieldsOfBlanks",
                 [](AccountForm& form) { form.email = form.address = form.cityName = form.zipCode = " "; },
                 std::nullopt},
        FormCase{"NoNameAndNoSecondAddressLine", [](AccountForm& form) { form.name = form.address2 = ""; },
                 std::nullopt}),
    [](const auto& given) { return given.param.name; });

// Everything is wrong at first; each step mends what was refused, and the next check in order speaks.
TEST(CheckingTheFormInOrder, StopsAtTheFirstFailureOfTheFifteen)
{
    struct Step {
        Change mend;
        std::optional<std::string_view> next;
    };
    const std::vector<Step> steps{
        {[](AccountForm&) {}, "Please enter Account ID"},
        {[](AccountForm& form) { form.accountID = "a b"; }, kHasSpaces},
        {[](AccountForm& form) { form.accountID = "ab"; }, "Please Enter a Password"},
        {[](AccountForm& form) { form.password = "12345"; }, "Please Enter Guest Password"},
        {[](AccountForm& form) { form.guestPassword = "12345"; }, "Please Enter an Email"},
        {[](AccountForm& form) { form.email = "e"; }, kDiffer},
        {[](AccountForm& form) { form.confirmPassword = "12345"; },
         "Guest Passwords do not match.Please re-enter the passwords"},
        {[](AccountForm& form) { form.confirmGuestPassword = "12345"; }, kTooShort},
        {[](AccountForm& form) { setPasswords(form, "123456"); }, kGuestTooShort},
        {[](AccountForm& form) { setGuestPasswords(form, "123456"); },
         "Guest Passwords cannot be the same as password.Please re-enter the passwords"},
        {[](AccountForm& form) { setGuestPasswords(form, "654321"); }, "Please Enter Your Address"},
        {[](AccountForm& form) { form.address = "a"; }, "Please Enter Your City Name"},
        {[](AccountForm& form) { form.cityName = "c"; }, "Please Enter your State Name"},
        {[](AccountForm& form) { form.stateName = "s"; }, "Please Enter your Country"},
        {[](AccountForm& form) { form.countryName = "l"; }, "Please Enter your ZipCode"},
        {[](AccountForm& form) { form.zipCode = "z"; }, std::nullopt},
    };
    AccountForm form;
    for (const auto& step : steps) {
        step.mend(form);
        EXPECT_EQ(cloud::refusalOf(form), step.next);
    }
}

TEST(CheckingTheFormInOrder, ComparesTheGuestPasswordWithThePasswordOnlyAfterBothLengths)
{
    auto form = filledForm();
    setPasswords(form, "same");
    setGuestPasswords(form, "same");

    EXPECT_EQ(cloud::refusalOf(form), kTooShort);
    setPasswords(form, "same66");
    setGuestPasswords(form, "same66");
    EXPECT_EQ(cloud::refusalOf(form), "Guest Passwords cannot be the same as password.Please re-enter the passwords");
}

TEST(TextFieldContainsWhiteSpaces, CountsOnlyBlanksInside)
{
    EXPECT_FALSE(cloud::textFieldContainsWhiteSpaces(""));
    EXPECT_FALSE(cloud::textFieldContainsWhiteSpaces("   "));
    EXPECT_FALSE(cloud::textFieldContainsWhiteSpaces(" ab\t"));
    EXPECT_FALSE(cloud::textFieldContainsWhiteSpaces("a\nb"));
    EXPECT_TRUE(cloud::textFieldContainsWhiteSpaces("a b"));
    EXPECT_TRUE(cloud::textFieldContainsWhiteSpaces(" a\tb "));
}

TEST(RemovingAddressMarks, TakesSlashesQuestionMarksAndNumberSignsAndNothingElse)
{
    EXPECT_EQ(cloud::removingAddressMarks("a#b/c?"), "abc");
    EXPECT_EQ(cloud::removingAddressMarks("/?#"), "");
    EXPECT_EQ(cloud::removingAddressMarks("50% \xef\xbc\x83 \\ a"), "50% \xef\xbc\x83 \\ a");
    EXPECT_EQ(cloud::removingAddressMarks(""), "");
}
