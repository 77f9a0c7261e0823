#include "device/NetworkInput.h"
#include "unit/device/Texts.h"

#include <gtest/gtest.h>

#include <string>

using namespace vorrano::device;

namespace {

using Message = std::optional<std::string_view>;

struct InputCase {
    std::string input;
    Message refusal;
};

std::string times(std::size_t count, const std::string& text)
{
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

const std::string kThermometer = "\U0001F321"; // two UTF-16 units

const Message kNoSSID = "Please enter a valid SSID";
const Message kSSIDTooLong = "Network SSID cannot be greater than 32 characters";

class RefusalOfSSID : public testing::TestWithParam<InputCase> {};

TEST_P(RefusalOfSSID, FollowsItsOrder) { EXPECT_EQ(refusalOfSSID(GetParam().input), GetParam().refusal); }

INSTANTIATE_TEST_SUITE_P(
    OfText, RefusalOfSSID,
    testing::Values(InputCase{"", kNoSSID}, InputCase{" ", std::nullopt}, InputCase{"My Home Net", std::nullopt},
                    InputCase{std::string(32, 'x'), std::nullopt}, InputCase{std::string(33, 'x'), kSSIDTooLong},
                    InputCase{times(16, kThermometer), std::nullopt},
                    InputCase{times(16, kThermometer) + "x", kSSIDTooLong},
                    InputCase{times(32, "\u00E9"), std::nullopt}, InputCase{"My$Net", kSSIDHasDollarSign},
                    InputCase{"My $ Net", kSSIDHasDollarSign}, InputCase{std::string(33, '$'), kSSIDTooLong}));

const Message kWifiTabPasswordTooLong = "Password cannot be greater than 64 characters";

class RefusalOfWifiTabPassword : public testing::TestWithParam<InputCase> {};

TEST_P(RefusalOfWifiTabPassword, LooksForADollarSignFirst)
{
    EXPECT_EQ(refusalOfWifiTabPassword(GetParam().input), GetParam().refusal);
}

INSTANTIATE_TEST_SUITE_P(OfText, RefusalOfWifiTabPassword,
                         testing::Values(InputCase{"", std::nullopt}, InputCase{"a b", std::nullopt},
                                         InputCase{std::string(64, 'x'), std::nullopt},
                                         InputCase{std::string(65, 'x'), kWifiTabPasswordTooLong},
                                         InputCase{times(32, kThermometer), std::nullopt},
                                         InputCase{times(32, kThermometer) + "x", kWifiTabPasswordTooLong},
                                         InputCase{"a$", kPasswordHasDollarSign},
                                         InputCase{std::string(65, '$'), kPasswordHasDollarSign}));

const Message kUtilitiesTabPasswordTooLong = "Passwod cannot be greater than 64 characters";

class RefusalOfUtilitiesTabPassword : public testing::TestWithParam<InputCase> {};

TEST_P(RefusalOfUtilitiesTabPassword, LooksAtTheLengthOnly)
{
    EXPECT_EQ(refusalOfUtilitiesTabPassword(GetParam().input), GetParam().refusal);
}

INSTANTIATE_TEST_SUITE_P(OfText, RefusalOfUtilitiesTabPassword,
                         testing::Values(InputCase{"", std::nullopt}, InputCase{"a$ b", std::nullopt},
                                         InputCase{std::string(64, '$'), std::nullopt},
                                         InputCase{std::string(65, '$'), kUtilitiesTabPasswordTooLong}));

TEST(RefusalOfWepKey, LooksForEmptinessOnly)
{
    EXPECT_EQ(refusalOfWepKey(""), Message("Please Enter WEP Key"));
    EXPECT_EQ(refusalOfWepKey(" "), std::nullopt);
    EXPECT_EQ(refusalOfWepKey("not $ hexadecimal"), std::nullopt);
    EXPECT_EQ(refusalOfWepKey(std::string(200, 'x')), std::nullopt);
}

} // namespace
