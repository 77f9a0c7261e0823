#include "device/DeviceCommand.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using namespace vorrano::device;
using namespace std::string_literals;

namespace {

TEST(DeviceCommands, AreOneByteEach)
{
    const std::vector<std::pair<DeviceCommand, std::string>> table = {
        {DeviceCommand::PowerStatus, "0"},
        {DeviceCommand::AdcVersion, "1"},
        {DeviceCommand::ConnectivityStatus, "2"},
        {DeviceCommand::MacAddress, "3"},
        {DeviceCommand::FirmwareVersion, "4"},
        {DeviceCommand::WifiFirmwareVersion, "5"},
        {DeviceCommand::ResetModem, "6"},
        {DeviceCommand::ResetDevice, "7"},
        {DeviceCommand::SetSSID, "8"},
        {DeviceCommand::SetPassword, "9"},
        {DeviceCommand::SetSecurityType, "a"},
        {DeviceCommand::SetWepKey, "b"},
        {DeviceCommand::EnterBootloader, "b"},
        {DeviceCommand::ReadSSID, "c"},
        {DeviceCommand::ReadPassword, "d"},
        {DeviceCommand::SetThrottle, "e"},
        {DeviceCommand::ReadThrottle, "f"},
        {DeviceCommand::SetTemperatureUnit, "g"},
        {DeviceCommand::ReadTemperatureUnit, "h"},
        {DeviceCommand::StartUpload, "u"},
    };
    for (const auto& [command, bytes] : table) {
        EXPECT_EQ(bytesOf(command), bytes);
    }
}

TEST(FreeText, EndsWithOneZeroByte) { EXPECT_EQ(endMark(), "\0"s); }

TEST(AnSSID, TravelsWithItsSpacesAsDollarSigns)
{
    EXPECT_EQ(replaceSSIDSpacesWithDollarSign("My Home Net"), "My$Home$Net");
    EXPECT_EQ(replaceSSIDSpacesWithDollarSign(" Net  "), "$Net$$");
    EXPECT_EQ(replaceSSIDSpacesWithDollarSign("Net"), "Net");
    EXPECT_EQ(replaceSSIDSpacesWithDollarSign("My\tNet\u00A0"), "My\tNet\u00A0");
}

TEST(AnSSID, ComesBackWithItsSpaces)
{
    EXPECT_EQ(replaceDollarSignWithSpaces("My$Home$Net\n\n\r"), "My Home Net\n\n\r");
    EXPECT_EQ(replaceDollarSignWithSpaces("Net\n\n\r"), "Net\n\n\r");
}

struct CharacterCase {
    std::int64_t number;
    std::string bytes;
};

class CharacterOfLow16Bits : public testing::TestWithParam<CharacterCase> {};

TEST_P(CharacterOfLow16Bits, IsOneUtf16UnitInUtf8)
{
    EXPECT_EQ(characterOfLow16Bits(GetParam().number), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(OfNumbers, CharacterOfLow16Bits,
                         testing::Values(CharacterCase{0, "\0"s}, CharacterCase{1, "\x01"}, CharacterCase{8, "\x08"},
                                         CharacterCase{127, "\x7F"}, CharacterCase{128, "\u0080"},
                                         CharacterCase{0x20AC, "\u20AC"}, CharacterCase{0x10001, "\x01"},
                                         CharacterCase{0xD800, "\uFFFD"}, CharacterCase{-1, "\uFFFF"}));

class CharacterOfLow8Bits : public testing::TestWithParam<CharacterCase> {};

TEST_P(CharacterOfLow8Bits, IsOneCodePointBelow256InUtf8)
{
    EXPECT_EQ(characterOfLow8Bits(GetParam().number), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(OfNumbers, CharacterOfLow8Bits,
                         testing::Values(CharacterCase{0, "\0"s}, CharacterCase{14, "\x0E"}, CharacterCase{60, "<"},
                                         CharacterCase{127, "\x7F"}, CharacterCase{128, "\xC2\x80"},
                                         CharacterCase{0xE9, "\u00E9"}, CharacterCase{0x20AC, "\u00AC"},
                                         CharacterCase{256, "\0"s}, CharacterCase{-1, "\u00FF"}));

TEST(AThrottle, IsStoredDividedByOneAndAHalfTowardZero)
{
    const std::vector<std::pair<std::int64_t, std::int64_t>> table = {{21, 14}, {22, 14}, {24, 16},
                                                                      {25, 16}, {89, 59}, {90, 60}};
    for (const auto& [throttle, stored] : table) {
        EXPECT_EQ(storedThrottle(throttle), stored) << throttle;
    }
}

TEST(AThrottle, IsReadMultipliedByOneAndAHalfAndRoundedHalfAwayFromZero)
{
    const std::vector<std::pair<std::string, std::int32_t>> table = {
        {"14\n\r", 21}, {"60\n\r", 90}, {"15\n\r", 23}, {"17", 26}, {"-15", -23},
        {"", 0},        {"OK\n\r", 0},  {" 16", 24},    {"1.9", 3}, {"1e300", 2147483647},
    };
    for (const auto& [reply, throttle] : table) {
        EXPECT_EQ(throttleFromReply(reply), throttle) << reply;
    }
}

struct ReplyCase {
    std::string received;
    bool complete;
};

using Cases = std::vector<ReplyCase>;

void expectAnswers(const vorrano::serial::ResponseEvaluator& test, const Cases& cases)
{
    for (const auto& [received, complete] : cases) {
        EXPECT_EQ(test(received), complete) << testing::PrintToString(received);
    }
}

TEST(AReplyTest, OfFourBytesLooksAtTheLengthOnly)
{
    expectAnswers(atLeastFourBytes(), {{"", false}, {"OK\n", false}, {"OK\n\r", true}, {"\0\0\0\0"s, true}});
}

TEST(AReplyTest, OfTheMacPacketAsksForNineteenBytes)
{
    expectAnswers(macPacket(), {{std::string(18, 'x'), false}, {std::string(19, 'x'), true}});
}

TEST(AReplyTest, OfTheTripleTerminatorAsksForFourBytesEndingInIt)
{
    expectAnswers(tripleTerminator(4), {{"", false},
                                        {"\n\n\r", false},
                                        {"x\n\n\r", true},
                                        {"Net\n\r", false},
                                        {"Net\n\n\r", true},
                                        {"Net\n\n\rx", false},
                                        {"\xFF\n\n\r", true}});
}

TEST(AReplyTest, OfTheTripleTerminatorKnowsItsMinimum)
{
    expectAnswers(tripleTerminator(6), {{"xx\n\n\r", false}, {"xxx\n\n\r", true}});
    expectAnswers(tripleTerminator(0), {{"", false}, {"\n\r", false}, {"\n\n\r", true}});
}

TEST(AReplyTest, OfTheDoubleTerminatorAsksForFourBytesEndingInIt)
{
    expectAnswers(doubleTerminator(),
                  {{"", false}, {"1\n\r", false}, {"OK\n\r", true}, {"x\n\n\r", true}, {"OK\n\rx", false}});
}

TEST(AReplyTest, ThatAlwaysPassesPassesOnNothing) { expectAnswers(always(), {{"", true}, {"x", true}}); }

// However a reply is cut, it is complete with its last byte and no earlier.
TEST(AReplyTest, OfATerminatorPassesAtTheLastByteOnly)
{
    const std::string reply = "My$Home\nNet\n\n\r";
    for (std::size_t length = 0; length <= reply.size(); ++length) {
        EXPECT_EQ(tripleTerminator(4)(reply.substr(0, length)), length == reply.size()) << length;
    }
}

} // namespace
