#include "cloud/ServiceRequests.h"

using namespace vorrano;

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
    EXPECT_EQ(cloud::loginAddress(kRoot, "ada@host.example", "secret1"),
              kRoot + "validateLogin/ada@host.example/secret1");
    EXPECT_EQ(cloud::loginAddress(kRoot, "a da", " p\xc3\xbc%/ "), kRoot + "validateLogin/a da/ p\xc3\xbc%/ ");
    EXPECT_EQ(cloud::loginAddress(kRoot, "", "secret1"), kRoot + "validateLogin//secret1");
}

TEST(AccountAddress, EndsWithTheRawAccountID)
{
    EXPECT_EQ(cloud::accountAddress(kRoot, "57"), kRoot + "getAccounts/57");
    EXPECT_EQ(cloud::accountAddress(kRoot, "5 7"), kRoot + "getAccounts/5 7");
}

TEST(AccountAddress, CountsAnAbsentAccountIDAsEmptyText)
{
    EXPECT_EQ(cloud::accountAddress(kRoot, std::nullopt), kRoot + "getAccounts/");
}

TEST_P(RegistrationAddress, CarriesAccountMacAndName)
{
    const auto& given = GetParam();

    EXPECT_EQ(cloud::registrationAddress(kRoot, given.accountID, given.macAddress, given.vorranoName),
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
