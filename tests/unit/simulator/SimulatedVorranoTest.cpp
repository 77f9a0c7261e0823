#include "simulator/device/SimulatedVorrano.h"
#include "support/DeviceLanguage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorrano::simulator {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class VorranoOnTheLine : public testing::Test {
protected:
    void send(std::string_view bytes) { vorrano.receive(bytes, now); }
    void wait(Moment time)
    {
        now += time;
        vorrano.advance(now);
    }
    std::vector<std::string> pieces()
    {
        std::vector<std::string> texts;
        for (const auto& piece : vorrano.takeOutput()) {
            texts.push_back(piece.bytes);
        }
        return texts;
    }
    std::string reply()
    {
        std::string all;
        for (const auto& text : pieces()) {
            all += text;
        }
        return all;
    }
    void enterBootloader()
    {
        send("7b");
        wait(SimulatedVorrano::kRestartTime);
    }

    SimulatedVorrano vorrano;
    Moment now{1s};
};

struct Query {
    char code;
    std::string reply;
};

class EachQuery : public VorranoOnTheLine, public testing::WithParamInterface<Query> {};

TEST_P(EachQuery, IsAnswered)
{
    send(std::string(1, GetParam().code));

    EXPECT_EQ(reply(), GetParam().reply);
}

INSTANTIATE_TEST_SUITE_P(All, EachQuery,
                         testing::Values(Query{'0', "USB power\n\r"}, Query{'1', "ADC V1.4\n\r"},
                                         Query{'2', "Not connected 0\n\r"}, Query{'3', "00:1E:5C:0A:1B:2C\n\r"},
                                         Query{'4', "9.50\n\r"}, Query{'5', "Wifi 2.36.1\n\r"},
                                         Query{'c', "Not$set\n\n\r"}, Query{'d', "none\n\n\r"}, Query{'f', "40\n\r"},
                                         Query{'h', "0\n\r"}));

class EachQueryOfTheLanguage : public VorranoOnTheLine, public testing::WithParamInterface<support::LanguageCommand> {
public:
    // Those that are only the device's own, not its bootloader's.
    static std::vector<support::LanguageCommand> queries()
    {
        std::vector<support::LanguageCommand> found;
        for (const auto& command : support::languageCommands()) {
            const bool isAnswered = !command.reply || command.reply->shortest > 0;
            if (command.argument == "none" && isAnswered && command.code != 'b' && command.code != 'u') {
                found.push_back(command);
            }
        }
        return found;
    }
};

TEST_P(EachQueryOfTheLanguage, HasAWholeReply)
{
    send(std::string(1, GetParam().code));

    const auto answer = reply();
    EXPECT_NE(answer, "") << GetParam().name;
    EXPECT_TRUE(!GetParam().reply || GetParam().reply->isWhole(answer)) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(All, EachQueryOfTheLanguage, testing::ValuesIn(EachQueryOfTheLanguage::queries()));

TEST_F(VorranoOnTheLine, StoresAnSsidThatComesInPieces)
{
    send("8");
    send("My$Home");
    send("$Net");
    EXPECT_THAT(pieces(), IsEmpty());

    send("\0"s);

    EXPECT_EQ(reply(), "OK\n\r");
    EXPECT_EQ(vorrano.memory().ssid, "My$Home$Net");
    EXPECT_EQ(vorrano.received(), "8My$Home$Net\0"s);
}

TEST_F(VorranoOnTheLine, StoresPasswordAndWepKeyAsTheyCame)
{
    send("9pass word$\0"s);
    send("b0123456789\0"s);

    EXPECT_EQ(vorrano.memory().password, "pass word$");
    EXPECT_EQ(vorrano.memory().wepKey, "0123456789");
    EXPECT_EQ(reply(), "OK\n\rOK\n\r");
}

TEST_F(VorranoOnTheLine, StoresAnEmptyPassword)
{
    send("9\0"s);

    EXPECT_EQ(vorrano.memory().password, "");
    EXPECT_EQ(reply(), "OK\n\r");
}

TEST_F(VorranoOnTheLine, TakesOneByteAfterTheCommandsForSmallNumbers)
{
    send("a\x08"
         "e\x0Eg\x01");

    EXPECT_EQ(reply(), "OK\n\rOK\n\rOK\n\r");
    EXPECT_EQ(vorrano.memory().securityType, 8);
    EXPECT_EQ(vorrano.memory().throttle, 14);
    EXPECT_EQ(vorrano.memory().unit, 1);
}

TEST_F(VorranoOnTheLine, TakesZeroAsANumber)
{
    send("a\x04"s);

    send("a\0g\0"s);

    EXPECT_EQ(vorrano.memory().securityType, 0);
    EXPECT_EQ(vorrano.memory().unit, 0);
}

TEST_F(VorranoOnTheLine, RefusesNumbersThatItDoesNotKnow)
{
    send("a\x05"
         "e\x0D"
         "e\x3Dg\x02");

    EXPECT_EQ(reply(), "ERROR\n\rERROR\n\rERROR\n\rERROR\n\r");
    EXPECT_EQ(vorrano.memory().securityType, 0);
    EXPECT_EQ(vorrano.memory().throttle, 40);
}

TEST_F(VorranoOnTheLine, IgnoresBytesThatAreNoCommand)
{
    send("\n\rzA\xFF"s);

    EXPECT_THAT(pieces(), IsEmpty());
}

TEST_F(VorranoOnTheLine, AnswersConnectivityInTwoSteps)
{
    send("8Net\0"s);
    send("6");
    reply();

    send("2");

    const auto output = vorrano.takeOutput();
    ASSERT_EQ(output.size(), 2U);
    EXPECT_EQ(output[0].bytes, "Connected");
    EXPECT_EQ(output[1].bytes, ", good signal\n\r");
    EXPECT_EQ(output[1].due - output[0].due, SimulatedVorrano::kStepGap);
}

TEST_F(VorranoOnTheLine, SaysThatItIsUpWhenItHasRestarted)
{
    send("7");
    wait(SimulatedVorrano::kRestartTime - 1ns);
    EXPECT_THAT(pieces(), IsEmpty());

    wait(1ns);

    EXPECT_EQ(reply(), "Up\n\r");
    EXPECT_EQ(vorrano.mode(), SimulatedVorrano::Mode::Normal);
}

TEST_F(VorranoOnTheLine, AnswersNothingWhileItRestarts)
{
    send("7");

    send("0");

    EXPECT_THAT(pieces(), IsEmpty());
}

TEST_F(VorranoOnTheLine, KeepsWhatItWasToldOverARestart)
{
    send("8Net\0"s);
    send("7");
    wait(1s);
    reply();

    send("c");

    EXPECT_EQ(reply(), "Net\n\n\r");
}

TEST_F(VorranoOnTheLine, StaysInItsBootloaderWhenABFollowsTheReset)
{
    enterBootloader();

    EXPECT_EQ(reply(), ">");
    EXPECT_EQ(vorrano.mode(), SimulatedVorrano::Mode::Bootloader);
    EXPECT_EQ(vorrano.memory().wepKey, "");
}

TEST_F(VorranoOnTheLine, RecordsAnImageByteByByteWithItsTimes)
{
    enterBootloader();
    send("u");
    EXPECT_EQ(reply(), ">U");

    send(":1\r");
    wait(100ms);
    send(":2");

    EXPECT_EQ(vorrano.image().bytes, ":1\r:2");
    EXPECT_THAT(vorrano.image().times, ElementsAre(now - 100ms, now - 100ms, now - 100ms, now, now));
    EXPECT_FALSE(vorrano.image().complete);
}

TEST_F(VorranoOnTheLine, RunsTheNewFirmwareOnceNoMoreOfTheImageComes)
{
    enterBootloader();
    send("u:00000001FF");

    wait(SimulatedVorrano::kImageQuiet + SimulatedVorrano::kRestartTime);

    EXPECT_TRUE(vorrano.image().complete);
    EXPECT_EQ(vorrano.memory().firmwareVersion, "9.60");
    EXPECT_EQ(vorrano.mode(), SimulatedVorrano::Mode::Normal);
    EXPECT_EQ(reply(), ">UUp\n\r");
}

TEST_F(VorranoOnTheLine, KeepsItsFirmwareWhenNoImageComes)
{
    enterBootloader();
    send("u");

    wait(10s);

    EXPECT_EQ(vorrano.memory().firmwareVersion, "9.50");
    EXPECT_EQ(vorrano.mode(), SimulatedVorrano::Mode::Normal);
}

TEST_F(VorranoOnTheLine, CanBeResetFromItsBootloader)
{
    enterBootloader();
    reply();

    enterBootloader();

    EXPECT_EQ(reply(), ">");
}

TEST_F(VorranoOnTheLine, ForgetsAHalfCommandWhenTheCableIsPulled)
{
    send("8My$Ho");
    vorrano.cablePulled();

    send("0");

    EXPECT_EQ(reply(), "USB power\n\r");
    EXPECT_EQ(vorrano.memory().ssid, "Not$set");
}

TEST_F(VorranoOnTheLine, ForgetsAHalfImageWhenTheCableIsPulled)
{
    enterBootloader();
    send("u:10");
    vorrano.cablePulled();
    wait(10s);

    EXPECT_EQ(reply(), "");
    EXPECT_EQ(vorrano.memory().firmwareVersion, "9.50");
    EXPECT_FALSE(vorrano.image().complete);
    EXPECT_EQ(vorrano.image().bytes, ":10");
}

Fault faultOf(Fault::Kind kind)
{
    Fault fault;
    fault.kind = kind;
    return fault;
}

TEST_F(VorranoOnTheLine, StaysSilentWhenTold)
{
    vorrano.order(faultOf(Fault::Kind::Silence));

    send("0c8Net\0"s);

    EXPECT_THAT(pieces(), IsEmpty());
    EXPECT_EQ(vorrano.memory().ssid, "Net");
}

TEST_F(VorranoOnTheLine, IsWellAgainWhenTheFaultsAreCleared)
{
    vorrano.order(faultOf(Fault::Kind::Silence));
    vorrano.clearFaults();

    send("0");

    EXPECT_EQ(reply(), "USB power\n\r");
}

TEST_F(VorranoOnTheLine, FailsAsOftenAsTold)
{
    auto fault = faultOf(Fault::Kind::Silence);
    fault.times = 2;
    vorrano.order(fault);

    send("000");

    EXPECT_EQ(reply(), "USB power\n\r");
}

TEST_F(VorranoOnTheLine, FailsAtTheNamedCommandOnly)
{
    auto fault = faultOf(Fault::Kind::Silence);
    fault.command = '0';
    vorrano.order(fault);

    send("0h0");

    EXPECT_EQ(reply(), "0\n\r");
}

TEST_F(VorranoOnTheLine, AnswersLate)
{
    auto fault = faultOf(Fault::Kind::Delay);
    fault.delay = 700ms;
    vorrano.order(fault);

    send("0");

    const auto output = vorrano.takeOutput();
    ASSERT_EQ(output.size(), 1U);
    EXPECT_EQ(output[0].due, now + 700ms);
}

TEST_F(VorranoOnTheLine, AnswersInPieces)
{
    auto fault = faultOf(Fault::Kind::Split);
    fault.at = {1, 3};
    vorrano.order(fault);

    send("h");
    send("f");

    EXPECT_THAT(pieces(), ElementsAre("0", "\n\r", "4", "0\n", "\r"));
}

TEST_F(VorranoOnTheLine, AnswersByteByByte)
{
    vorrano.order(faultOf(Fault::Kind::Split));

    send("h");

    EXPECT_THAT(pieces(), ElementsAre("0", "\n", "\r"));
}

TEST_F(VorranoOnTheLine, AnswersTogetherWithTheNextReply)
{
    auto fault = faultOf(Fault::Kind::Merge);
    fault.times = 1;
    vorrano.order(fault);

    send("hf");

    EXPECT_THAT(pieces(), ElementsAre("0\n\r40\n\r"));
}

TEST_F(VorranoOnTheLine, AnswersWhatItIsTold)
{
    auto fault = faultOf(Fault::Kind::Answer);
    fault.bytes = "\xFFnonsense";
    vorrano.order(fault);

    send("h");

    EXPECT_THAT(pieces(), ElementsAre("\xFFnonsense"));
}

TEST_F(VorranoOnTheLine, CutsItsReply)
{
    auto fault = faultOf(Fault::Kind::Cut);
    fault.count = 2;
    vorrano.order(fault);

    send("f");

    EXPECT_THAT(pieces(), ElementsAre("40"));
}

TEST_F(VorranoOnTheLine, IsIdleUnlessItWaitsForAnArgumentOrRestarts)
{
    EXPECT_TRUE(vorrano.isIdle());
    for (const char* unfinished : {"8My", "a"}) {
        send(unfinished);
        EXPECT_FALSE(vorrano.isIdle()) << unfinished;
        send("\0"s);
        EXPECT_TRUE(vorrano.isIdle()) << unfinished;
    }
    send("7");
    EXPECT_FALSE(vorrano.isIdle());
    wait(SimulatedVorrano::kRestartTime);
    EXPECT_TRUE(vorrano.isIdle());
}

TEST_F(VorranoOnTheLine, SaysNothingWhereItsAnswerIsNothing)
{
    vorrano.order(faultOf(Fault::Kind::Answer));

    send("0");

    EXPECT_THAT(pieces(), IsEmpty());
}

TEST_F(VorranoOnTheLine, CutsItsReplyToNothing)
{
    vorrano.order(faultOf(Fault::Kind::Cut));

    send("f");

    EXPECT_THAT(pieces(), IsEmpty());
}

TEST_F(VorranoOnTheLine, HangsUpInTheMiddleOfAReply)
{
    auto fault = faultOf(Fault::Kind::HangUp);
    fault.count = 3;
    vorrano.order(fault);

    send("f");

    const auto output = vorrano.takeOutput();
    ASSERT_EQ(output.size(), 1U);
    EXPECT_EQ(output[0].bytes, "40\n");
    EXPECT_TRUE(output[0].hangUpAfter);
}

TEST_F(VorranoOnTheLine, HangsUpOnceSoManyBytesHaveCome)
{
    vorrano.hangUpAfterReceiving(3);

    send("8M");
    EXPECT_THAT(pieces(), IsEmpty());
    send("y$");

    const auto output = vorrano.takeOutput();
    ASSERT_EQ(output.size(), 1U);
    EXPECT_TRUE(output[0].hangUpAfter);
}

TEST_F(VorranoOnTheLine, LateAndInPiecesAtOnce)
{
    auto late = faultOf(Fault::Kind::Delay);
    late.delay = 50ms;
    vorrano.order(late);
    vorrano.order(faultOf(Fault::Kind::Split));

    send("h");

    const auto output = vorrano.takeOutput();
    ASSERT_EQ(output.size(), 3U);
    EXPECT_EQ(output[0].due, now + 50ms);
}

TEST_F(VorranoOnTheLine, AWrongPromptLeavesItInTheBootloaderAllTheSame)
{
    auto fault = faultOf(Fault::Kind::Answer);
    fault.command = kPromptCommand;
    fault.bytes = "\r\n>";
    vorrano.order(fault);

    enterBootloader();

    EXPECT_EQ(reply(), "\r\n>");
    EXPECT_EQ(vorrano.mode(), SimulatedVorrano::Mode::Bootloader);
}

TEST_F(VorranoOnTheLine, AWrongAnswerToTheUploadTakesNoImage)
{
    auto fault = faultOf(Fault::Kind::Answer);
    fault.command = 'u';
    fault.bytes = "E";
    fault.times = 1;
    vorrano.order(fault);
    enterBootloader();

    send("u");

    EXPECT_EQ(reply(), ">E");
    EXPECT_EQ(vorrano.mode(), SimulatedVorrano::Mode::Bootloader);
}

} // namespace
} // namespace vorrano::simulator
