#include "device/FirmwareVersion.h"

#include "text/Text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using namespace vorrano::device;

namespace {

// 27 characters, and the value.
const std::string kUpToTheValue = R"({"GetLatestFirmwareResult":)";

TEST(WholeVersion, IsTheFloor)
{
    EXPECT_EQ(kUpToTheValue.size(), 27U);
    EXPECT_EQ(wholeVersion(9.5), 9);
    EXPECT_EQ(wholeVersion(12.0), 12);
    EXPECT_EQ(wholeVersion(0), 0);
    EXPECT_EQ(wholeVersion(-0.5), -1);
    EXPECT_EQ(wholeVersion(1e300), std::numeric_limits<std::int32_t>::max());
}

struct VersionCase {
    std::string afterTheBegin;
    std::int32_t whole;
    double version;
};

class LatestVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(LatestVersion, IsReadFromTheCharactersAfterTheFirst27)
{
    EXPECT_EQ(latestVersion(kUpToTheValue + GetParam().afterTheBegin, GetParam().whole), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(OfAnswers, LatestVersion,
                         testing::Values(VersionCase{"9.5}", 9, 9.5}, VersionCase{"9.6}", 9, 9.6},
                                         VersionCase{"9.65}", 9, 9.65}, VersionCase{"9.657}", 9, 9.65},
                                         VersionCase{"12.1}", 9, 12.1}, VersionCase{"12.1}", 11, 12.1},
                                         VersionCase{"12.15}", 10, 12.1}, VersionCase{"12.15}", 11, 12.15},
                                         VersionCase{"null}", 9, 0}, VersionCase{"\"9.5\"}", 9, 0},
                                         VersionCase{"    9", 11, 9}));

TEST(LatestVersion, CountsUtf16Units)
{
    // 26 characters, but 27 units.
    const std::string answer = std::string(25, 'x') + "\U0001F321" + "9.5}";

    EXPECT_EQ(latestVersion(answer, 9), 9.5);
}

TEST(LatestVersion, IsZeroWhileThereIsNoAnswer) { EXPECT_EQ(latestVersion(std::nullopt, 9), 0); }

TEST(LatestVersion, OfAnAnswerThatIsTooShortIsARangeError)
{
    EXPECT_THROW(static_cast<void>(latestVersion("", 9)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(latestVersion(kUpToTheValue + "9.5", 9)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(latestVersion(kUpToTheValue + "9.5}", 11)), std::out_of_range);
    EXPECT_EQ(latestVersion(kUpToTheValue + "9.5}", 10), 9.5);
    EXPECT_EQ(latestVersion(kUpToTheValue + "12.5}", 11), 12.5);
}

TEST(FirmwareAnswer, IsTheTextOfTheBody)
{
    EXPECT_EQ(firmwareAnswerOf(kUpToTheValue + "9.5}"), kUpToTheValue + "9.5}");
    EXPECT_EQ(firmwareAnswerOf(""), "");
    EXPECT_EQ(firmwareAnswerOf(std::nullopt), "");
    EXPECT_EQ(firmwareAnswerOf("\xFF"), std::nullopt);
}

TEST(FirmwareAnswer, KeepsNoMoreOfALongBodyThanAVersionCanStandIn)
{
    for (const std::string character : {"x", "\u00E9", "\u20AC", "\U0001F321"}) {
        std::string body = kUpToTheValue + "9.5}";
        while (body.size() < 100'000) {
            body += character;
        }

        const auto answer = firmwareAnswerOf(body);

        ASSERT_TRUE(answer.has_value());
        EXPECT_LT(answer->size(), 10'000U);
        EXPECT_TRUE(vorrano::text::textFromUtf8(*answer).has_value());
        EXPECT_EQ(latestVersion(answer, 9), 9.5);
        EXPECT_EQ(firmwareAnswerOf(body + "\xFF"), std::nullopt);
    }
}

} // namespace
