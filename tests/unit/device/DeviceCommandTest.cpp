#include "device/DeviceCommand.h"
#include "support/DeviceLanguage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using namespace vorrano::device;
using namespace std::string_literals;

namespace {

std::string wordFor(Argument argument)
{
    switch (argument) {
    case Argument::None:
        return "none";
    case Argument::FreeText:
        return "free text";
    case Argument::Character:
        return "character";
    }
    return {};
}

TEST(TheCommands, AreThoseOfTheDevicesLanguageToTheLetter)
{
    const auto& language = vorrano::support::languageCommands();
    ASSERT_EQ(kCommands.size(), language.size());
    for (std::size_t at = 0; at < kCommands.size(); ++at) {
        const auto& command = kCommands[at];
        SCOPED_TRACE(language[at].name);

        EXPECT_EQ(command.name, language[at].name);
        EXPECT_EQ(bytesOf(command.command), std::string(1, language[at].code));
        EXPECT_EQ(wordFor(command.argument), language[at].argument);
        ASSERT_EQ(command.replyTest.has_value(), language[at].reply.has_value());
        if (command.replyTest) {
            EXPECT_EQ(command.replyTest->shortest, language[at].reply->shortest);
            EXPECT_EQ(command.replyTest->end, language[at].reply->end);
        }
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
    ReplyTest test;
    std::string received;
    bool isWhole;
};

class AReply : public testing::TestWithParam<ReplyCase> {};

TEST_P(AReply, IsWholeWhenEnoughHasComeAndEndsAsItMust)
{
    EXPECT_EQ(GetParam().test.isWhole(GetParam().received), GetParam().isWhole);
}

INSTANTIATE_TEST_SUITE_P(OfFourBytes, AReply,
                         testing::Values(ReplyCase{kAtLeastFourBytes, "", false},
                                         ReplyCase{kAtLeastFourBytes, "OK\n", false},
                                         ReplyCase{kAtLeastFourBytes, "OK\n\r", true},
                                         ReplyCase{kAtLeastFourBytes, "\0\0\0\0"s, true}));
INSTANTIATE_TEST_SUITE_P(OfTheMacPacket, AReply,
                         testing::Values(ReplyCase{kMacPacket, std::string(18, 'x'), false},
                                         ReplyCase{kMacPacket, std::string(19, 'x'), true}));
INSTANTIATE_TEST_SUITE_P(
    OfTheTripleTerminator, AReply,
    testing::Values(ReplyCase{kTripleTerminator, "", false}, ReplyCase{kTripleTerminator, "\n\n\r", false},
                    ReplyCase{kTripleTerminator, "x\n\n\r", true}, ReplyCase{kTripleTerminator, "Net\n\r", false},
                    ReplyCase{kTripleTerminator, "Net\n\n\r", true}, ReplyCase{kTripleTerminator, "Net\n\n\rx", false},
                    ReplyCase{kTripleTerminator, "\xFF\n\n\r", true}));
INSTANTIATE_TEST_SUITE_P(OfTheDoubleTerminator, AReply,
                         testing::Values(ReplyCase{kDoubleTerminator, "", false},
                                         ReplyCase{kDoubleTerminator, "1\n\r", false},
                                         ReplyCase{kDoubleTerminator, "OK\n\r", true},
                                         ReplyCase{kDoubleTerminator, "x\n\n\r", true},
                                         ReplyCase{kDoubleTerminator, "OK\n\rx", false}));
INSTANTIATE_TEST_SUITE_P(ThatIsNotAwaited, AReply,
                         testing::Values(ReplyCase{kAlways, "", true}, ReplyCase{kAlways, "x", true}));

// However a reply is cut, it is whole with its last byte and no earlier.
TEST(AReplyWithATerminator, IsWholeAtItsLastByteOnly)
{
    const std::string reply = "My$Home\nNet\n\n\r";
    for (std::size_t length = 0; length <= reply.size(); ++length) {
        EXPECT_EQ(kTripleTerminator.isWhole(reply.substr(0, length)), length == reply.size()) << length;
    }
}

TEST(AnEvaluator, AsksTheReplyTestOfItsCommand)
{
    const auto evaluator = evaluatorOf(DeviceCommand::MacAddress);

    EXPECT_FALSE(evaluator(std::string(18, 'x')));
    EXPECT_TRUE(evaluator(std::string(19, 'x')));
}

TEST(AnEvaluator, IsNoneForACommandWhoseChunksAreAnswersByThemselves)
{
    EXPECT_FALSE(evaluatorOf(DeviceCommand::FirmwareVersion));
}

} // namespace
