#include "support/FilledAccount.h"
#include "web/ServiceAddress.h"

using namespace vorrano;
using web::Account;

namespace {

const std::string kRoot = "https://host.example/VorranoAPI/RestServiceImpl.svc/";

struct RegistrationCase {
    const char* name;
    std::optional<std::string> accountID;
    std::string macAddress;
    std::string vorranoName;
    std::string path;
};

class RegistrationAddress : public testing::TestWithParam<RegistrationCase> {};

} // namespace

TEST(LoginAddress, JoinsTheRawTexts)
{
    EXPECT_EQ(web::loginAddress(kRoot, "ada@host.example", "secret1"),
              kRoot + "validateLogin/ada@host.example/secret1");
    EXPECT_EQ(web::loginAddress(kRoot, "a da", " p\xc3\xbc%/ "), kRoot + "validateLogin/a da/ p\xc3\xbc%/ ");
    EXPECT_EQ(web::loginAddress(kRoot, "", "secret1"), kRoot + "validateLogin//secret1");
}

TEST(AccountAddress, EndsWithTheRawAccountID)
{
    EXPECT_EQ(web::accountAddress(kRoot, "57"), kRoot + "getAccounts/57");
    EXPECT_EQ(web::accountAddress(kRoot, "5 7"), kRoot + "getAccounts/5 7");
}

TEST(AccountAddress, CountsAnAbsentAccountIDAsEmptyText)
{
    EXPECT_EQ(web::accountAddress(kRoot, std::nullopt), kRoot + "getAccounts/");
}

TEST_P(RegistrationAddress, CarriesAccountMacAndName)
{
    const auto& given = GetParam();

    EXPECT_EQ(web::registrationAddress(kRoot, given.accountID, given.macAddress, given.vorranoName),
              kRoot + "insertAccountVorranos/" + given.path);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RegistrationAddress,
    testing::Values(RegistrationCase{"Plain", "57", "00:11:22:33:44:55", "Kitchen", "57/00:11:22:33:44:55/Kitchen"},
                    RegistrationCase{"AnAbsentAccountIDIsEmpty", std::nullopt, "00:11", "Kitchen", "/00:11/Kitchen"},
                    RegistrationCase{"LineEndsAndBlanksAroundTheMacGo", "57", " \t00:11\n\n\r", "K", "57/00:11/K"},
                    RegistrationCase{"BlanksInsideTheMacStay", "57", "00 11\r\n", "K", "57/00%2011/K"},
                    RegistrationCase{"AMacOfLineEndsIsEmpty", "57", "\n\r", "K", "57//K"},
                    RegistrationCase{"BlanksOfTheNameAreSentAsTyped", "57", "00:11", " My  Room ",
                                     "57/00:11/%20My%20%20Room%20"},
                    RegistrationCase{"ASlashAddsASegment", "57", "00:11", "a/b", "57/00:11/a/b"},
                    RegistrationCase{"MarksOfAnAddressStay", "57", "00:11", "a#b?c&d%", "57/00:11/a#b?c&d%"},
                    RegistrationCase{"LettersBeyondAsciiAreEscaped", "57", "00:11",
                                     "K\xc3\xbc"
                                     "che",
                                     "57/00:11/K%C3%BCche"}),
    [](const auto& given) { return given.param.name; });

namespace {

using Change = void (*)(Account&);

struct AddressCase {
    const char* name;
    Change change;
    std::string path;
};

class SaveAddress : public testing::TestWithParam<AddressCase> {};

} // namespace

TEST_P(SaveAddress, OfANewAccountIsBuiltFieldByField)
{
    auto account = support::filledAccount();
    GetParam().change(account);

    EXPECT_EQ(web::newAccountAddress(kRoot, account), kRoot + "insertAccount/" + GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SaveAddress,
    testing::Values(
        AddressCase{"Filled", [](Account&) {},
                    "ada1815//secret1/ada@host.example/Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"EmptyNameAndAddress2AreNil", [](Account& account) { account.name = account.address2 = ""; },
                    "ada1815//secret1/ada@host.example/nil/1%20Main%20St/nil/Town/ST/Land/12345/guest22"},
        AddressCase{"EveryEmptyFieldBetweenEmailAndGuestPasswordIsNil",
                    [](Account& account) { account = {"a", "p", "g", "e", "", "", "", "", "", "", ""}; },
                    "a//p/e/nil/nil/nil/nil/nil/nil/nil/g"},
        AddressCase{
            "LeadingBlanksStay",
            [](Account& account) { account = {" a", " p", " g", " e", " n", " 1", " 2", " c", " s", " l", " z"}; },
            "%20a//%20p/%20e/%20n/%201/%202/%20c/%20s/%20l/%20z/%20g"},
        AddressCase{
            "TrailingBlanksGoButForAccountIDAndZipCode",
            [](Account& account) { account = {"a ", "p ", "g ", "e ", "n ", "1 ", "2 ", "c ", "s ", "l ", "z "}; },
            "a%20//p/e/n/1/2/c/s/l/z%20/g"},
        AddressCase{"TabsAreTrimmedLikeBlanks", [](Account& account) { account.name = "\tAda \t"; },
                    "ada1815//secret1/ada@host.example/%09Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"NoBreakSpacesAreTrimmedLikeBlanks", [](Account& account) { account.name = "Ada\xc2\xa0"; },
                    "ada1815//secret1/ada@host.example/Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"LineEndsAreNotTrimmed", [](Account& account) { account.name = "Ada\n"; },
                    "ada1815//secret1/ada@host.example/Ada%0A/1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"FieldsOfBlanksAreEmptyNotNil",
                    [](Account& account) { account.email = account.name = account.address = account.zipCode = "  "; },
                    "ada1815//secret1////Top/Town/ST/Land/%20%20/guest22"},
        AddressCase{"BlanksInsideAFieldAreEscaped", [](Account& account) { account.cityName = "New  Town"; },
                    "ada1815//secret1/ada@host.example/Ada/1%20Main%20St/Top/New%20%20Town/ST/Land/12345/guest22"},
        AddressCase{"LettersBeyondAsciiAreEscapedAsUtf8", [](Account& account) { account.name = "J\xc3\xbcrgen"; },
                    "ada1815//secret1/ada@host.example/J%C3%BCrgen/1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"PercentSignsAndAmpersandsStay", [](Account& account) { account.name = "100%41&b"; },
                    "ada1815//secret1/ada@host.example/100%41&b/1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"DotSegmentsStay", [](Account& account) { account.name = ".."; },
                    "ada1815//secret1/ada@host.example/../1%20Main%20St/Top/Town/ST/Land/12345/guest22"},
        AddressCase{"AnAccountIDOfBlanksStays", [](Account& account) { account.accountID = "  "; },
                    "%20%20//secret1/ada@host.example/Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22"}),
    [](const auto& given) { return given.param.name; });

TEST(UpdateAddress, CarriesTheSessionsAccountIDInsteadOfTheForms)
{
    EXPECT_EQ(web::accountUpdateAddress(kRoot, "57", support::filledAccount()),
              kRoot + "getAccounts/57//secret1/ada@host.example/Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22");
}

TEST(UpdateAddress, CountsAnAbsentAccountIDAsEmptyText)
{
    EXPECT_EQ(web::accountUpdateAddress(kRoot, std::nullopt, support::filledAccount()),
              kRoot + "getAccounts///secret1/ada@host.example/Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22");
}

TEST(LatestFirmwareAddress, EndsWithTheWholeVersion)
{
    EXPECT_EQ(web::latestFirmwareAddress(kRoot, 12), kRoot + "GetLatestFirmware/12");
    EXPECT_EQ(web::latestFirmwareAddress(kRoot, -1), kRoot + "GetLatestFirmware/-1");
}
