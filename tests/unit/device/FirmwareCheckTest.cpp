#include "unit/device/FirmwareUpdateTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

const std::string kAddress = "https://service.example/VorranoAPI/RestServiceImpl.svc/GetLatestFirmware/";

struct FirmwareCheck : FirmwareUpdateTest {
    // The person does not want the update that a check leads to.
    void declineUpdate() { world.alerts.queueAnswer(kNo); }
};

TEST_F(FirmwareCheck, IsSkippedAfterNoAndWithItTheCallOfTheService)
{
    world.alerts.queueAnswer(kNo);
    declineUpdate();

    press("buttonUpdateFirmware");
    world.advance(10s);

    EXPECT_THAT(alerts(), ElementsAre(kPcConnected, kProceed));
    EXPECT_THAT(world.urlFetch.requests(), IsEmpty());
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareCheck, AsksTheDeviceForItsVersionAfterYes)
{
    beginCheck();

    EXPECT_THAT(writes(), ElementsAre("4"));
    EXPECT_EQ(tab->exchange().queryNumber(), DeviceCommand::FirmwareVersion);
    EXPECT_TRUE(tab->exchange().waitingForAck());
    EXPECT_TRUE(tab->firmwareUpdate().readVersion());
    EXPECT_TRUE(isBusy());
}

TEST_F(FirmwareCheck, DoesNothingAfterAnyOtherAnswer)
{
    world.alerts.queueAnswer(platform::kNoAnswer);

    press("buttonUpdateFirmware");

    EXPECT_FALSE(isBusy());
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_EQ(alerts().size(), 1U);
}

TEST_F(FirmwareCheck, WaitsForeverForADeviceThatIsSilent)
{
    beginCheck();

    world.advance(60s);

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_TRUE(isBusy());
}

TEST_F(FirmwareCheck, LeavesTheAnswerToAnotherQueryThatIsPressedBeforeIt)
{
    beginCheck();
    press("buttonADC");

    reply("9.5\n\r");

    EXPECT_EQ(tab->replies().adcNumber(), "9.5\n\r");
    EXPECT_THAT(world.urlFetch.requests(), IsEmpty());
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_TRUE(tab->firmwareUpdate().readVersion());
    EXPECT_TRUE(isBusy());
}

TEST_F(FirmwareCheck, LeavesTheAnswerToAnotherRequestThatIsPressedBeforeIt)
{
    beginCheck();
    press("buttonPowerStatus");

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("9.5\n\r", "Success"));
    EXPECT_THAT(world.urlFetch.requests(), IsEmpty());
    EXPECT_TRUE(tab->firmwareUpdate().readVersion());
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareCheck, ThatLostItsAnswerToAnotherQueryGoesOnWithTheNextFirmwareVersion)
{
    beginCheck();
    press("buttonADC");
    reply("9.5\n\r");
    world.urlFetch.answer(answerOf("9.5"));

    press("buttonFirmwareVersion");
    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kUpToDate);
    EXPECT_FALSE(tab->firmwareUpdate().readVersion());
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareCheck, OfEqualVersionsSaysThatThereIsNoNeedToUpdate)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.5"));
    world.alerts.whileUp([this] { EXPECT_TRUE(isBusy()); });

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kUpToDate);
    EXPECT_THAT(world.urlFetch.requests(), ElementsAre(kAddress + "9"));
    EXPECT_FALSE(isBusy());
    EXPECT_FALSE(tab->firmwareUpdate().readVersion());
    EXPECT_EQ(tab->exchange().receivedString(), std::nullopt);
}

TEST_F(FirmwareCheck, OfANewerVersionLeadsToTheUpdate)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.6"));
    declineUpdate();

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kProceed);
    EXPECT_FALSE(isBusy());
    EXPECT_FALSE(tab->firmwareUpdate().readVersion());
}

TEST_F(FirmwareCheck, OfAnOlderVersionLeadsToTheUpdateToo)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.4"));
    declineUpdate();

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kProceed);
}

TEST_F(FirmwareCheck, WaitsHalfASecondThreeTimes)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.5"));
    const auto begin = world.now();

    reply("9.5\n\r");

    EXPECT_THAT(world.pause.pauses(), ElementsAre(500ms, 500ms, 500ms));
    EXPECT_EQ(world.now() - begin, 1500ms);
}

TEST_F(FirmwareCheck, FromVersion11OnReadsFiveCharacters)
{
    beginCheck();
    world.urlFetch.answer(answerOf("12.01"));
    declineUpdate();

    reply("12.0\n\r");

    // By four characters, "12.0", the versions would be equal.
    EXPECT_EQ(world.alerts.only(), kProceed);
    EXPECT_THAT(world.urlFetch.requests(), ElementsAre(kAddress + "12"));
}

TEST_F(FirmwareCheck, BelowVersion11ReadsFourCharacters)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.507"));

    reply("9.50\n\r");

    EXPECT_EQ(world.alerts.only(), kUpToDate);
}

TEST_F(FirmwareCheck, ReadsAnAnswerThatIsNoJsonAllTheSame)
{
    beginCheck();
    world.urlFetch.answer(std::string(27, '<') + "9.5 is the latest");

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kUpToDate);
}

TEST_F(FirmwareCheck, TakesNoAnswerInTimeForVersionZero)
{
    beginCheck();
    world.urlFetch.answerAfter(501ms, answerOf("9.5"));
    declineUpdate();

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kProceed);
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(FirmwareCheck, ReadsTheAnswerOfTheCheckBeforeWhileItsOwnIsUnderWay)
{
    beginCheck();
    world.urlFetch.answerAfter(600ms, answerOf("9.5"));
    declineUpdate();
    reply("9.5\n\r");
    world.alerts.forget();
    beginCheck();
    world.urlFetch.answerAfter(600ms, answerOf("9.6"));

    reply("9.5\n\r");
    EXPECT_EQ(world.alerts.only(), kUpToDate);
    world.run();

    EXPECT_EQ(tab->firmwareUpdate().data(), answerOf("9.6"));
}

TEST_F(FirmwareCheck, WritesAnAnswerThatComesDuringALaterCheck)
{
    beginCheck();
    world.urlFetch.answerAfter(5s, answerOf("9.7"));
    declineUpdate();
    reply("9.5\n\r");
    world.alerts.forget();
    beginCheck();
    world.urlFetch.answer(answerOf("9.5"));
    world.advance(2900ms);

    // The later answer comes at once; the earlier one 0.6 s after the check began, in its last pause.
    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kUpToDate);
    world.run();
    EXPECT_EQ(tab->firmwareUpdate().data(), answerOf("9.7"));
}

TEST_F(FirmwareCheck, SurvivesAnAnswerThatComesAfterTheScreenHasGone)
{
    beginCheck();
    world.urlFetch.answerAfter(5s, answerOf("9.5"));
    declineUpdate();
    reply("9.5\n\r");
    tab.reset();

    world.advance(10s);

    EXPECT_THAT(world.log.lines(), IsEmpty());
}

struct ShortCase {
    std::string version;
    std::optional<std::string> body;
};

class AShortAnswer : public FirmwareCheck, public testing::WithParamInterface<ShortCase> {};

TEST_P(AShortAnswer, IsARangeErrorThatLeavesEverythingAsItWas)
{
    beginCheck();
    world.urlFetch.answerAfter(0ns, GetParam().body);

    reply(GetParam().version);

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(world.log.lines().size(), 1U);
    EXPECT_THAT(world.pause.pauses(), ElementsAre(500ms, 500ms));
    EXPECT_TRUE(tab->firmwareUpdate().readVersion());
    EXPECT_EQ(tab->exchange().receivedString(), GetParam().version);
    EXPECT_TRUE(isBusy());
}

TEST_P(AShortAnswer, EndsNeitherTheProgramNorTheNextCheck)
{
    beginCheck();
    world.urlFetch.answerAfter(0ns, GetParam().body);
    reply(GetParam().version);
    world.urlFetch.answer(answerOf("9.50"));

    beginCheck();
    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kUpToDate);
}

INSTANTIATE_TEST_SUITE_P(Of, AShortAnswer,
                         testing::Values(ShortCase{"9.5\n\r", std::nullopt}, ShortCase{"9.5\n\r", ""},
                                         ShortCase{"9.5\n\r", std::string(30, '9')},
                                         ShortCase{"12.0\n\r", std::string(31, '9')}));

TEST_F(FirmwareCheck, ThatStoppedHalfwayIsOverWithNo)
{
    beginCheck();
    world.urlFetch.answer("");
    reply("9.5\n\r");
    EXPECT_TRUE(tab->firmwareUpdate().readVersion());
    world.alerts.queueAnswer(kNo);
    declineUpdate();
    press("buttonUpdateFirmware");
    world.alerts.forget();

    press("buttonFirmwareVersion");
    reply("9.50\n\r");

    EXPECT_EQ(world.alerts.only(), alertOf("9.50\n\r", "Device Firmware Version"));
}

TEST_F(FirmwareCheck, TakesAnAnswerThatIsNoTextForVersionZero)
{
    beginCheck();
    world.urlFetch.answer(std::string(40, '\xFF'));
    declineUpdate();

    reply("9.5\n\r");

    EXPECT_EQ(world.alerts.only(), kProceed);
}

TEST_F(FirmwareCheck, TakesAChunkThatIsNoVersionForVersionZero)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.5"));
    declineUpdate();

    reply("\xFF\xFE");

    EXPECT_EQ(world.alerts.only(), kProceed);
    EXPECT_THAT(world.urlFetch.requests(), ElementsAre(kAddress + "0"));
}

TEST_F(FirmwareCheck, ReadsTheFirstChunkOnly)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.5"));
    declineUpdate();
    world.alerts.whileUp([this] { line().reply("5\n\r"); });

    reply("9.");

    EXPECT_EQ(world.alerts.only(), kProceed);
    EXPECT_THAT(world.urlFetch.requests(), ElementsAre(kAddress + "9"));
}

TEST_F(FirmwareCheck, HoldsInputAndQueuedWorkBackInItsPauses)
{
    beginCheck();
    world.urlFetch.answer(answerOf("9.5"));
    bool ran = false;
    world.pause.whilePaused([&] {
        world.mainQueue.async([&ran] { ran = true; });
        EXPECT_FALSE(view().press("buttonADC"));
        EXPECT_FALSE(ran);
    });

    reply("9.5\n\r");

    EXPECT_TRUE(ran);
    EXPECT_THAT(writes(), ElementsAre("4"));
}

} // namespace
