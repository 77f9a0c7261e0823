#include "unit/device/FirmwareUpdateTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

struct FirmwareUpload : FirmwareUpdateTest {};

TEST_F(FirmwareUpload, WritesEachCharacterAloneAndPausesAfterEachLine)
{
    const TemporaryFile image(":0\n1");

    upload(image.path());

    EXPECT_THAT(writes(), ElementsAre(":", "0", "1"));
    EXPECT_THAT(world.pause.pauses(), ElementsAre(kLinePause, kLinePause));
    EXPECT_EQ(line().writes()[2].at - line().writes()[1].at, kLinePause);
    EXPECT_EQ(world.alerts.only(), kFinished);
    EXPECT_EQ(step(), BootloaderSequence::Three);
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareUpload, PausesAfterEmptyLinesTooTheLastIncluded)
{
    const TemporaryFile image("a\n\nb\n");

    upload(image.path());

    EXPECT_EQ(line().written(), "ab");
    EXPECT_EQ(world.pause.pauses().size(), 4U);
}

TEST_F(FirmwareUpload, SendsEveryCarriageReturnAndNoLineFeed)
{
    const TemporaryFile image(":00\r\n:01\r\n");

    upload(image.path());

    EXPECT_EQ(line().written(), ":00\r:01\r");
    EXPECT_EQ(world.pause.pauses().size(), 3U);
}

TEST_F(FirmwareUpload, SendsTheLow8BitsOfACharacterBeyondAscii)
{
    const TemporaryFile image("\u00E9\u20AC");

    upload(image.path());

    EXPECT_THAT(writes(), ElementsAre("\xC3\xA9", "\xC2\xAC"));
}

TEST_F(FirmwareUpload, SendsAByteOrderMarkLikeAnyOtherCharacter)
{
    const TemporaryFile image("\uFEFF:0");

    upload(image.path());

    EXPECT_THAT(writes(), ElementsAre("\u00FF", ":", "0"));
}

TEST_F(FirmwareUpload, OfAnEmptyFileIsOnePause)
{
    const TemporaryFile image("");

    upload(image.path());

    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_EQ(world.pause.pauses().size(), 1U);
    EXPECT_EQ(world.alerts.only(), kFinished);
}

TEST_F(FirmwareUpload, OfAFileThatIsNoUtf8SendsNothingAndIsFinishedAllTheSame)
{
    const TemporaryFile image(":00\n\xFF\n");

    upload(image.path());

    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_THAT(world.pause.pauses(), IsEmpty());
    EXPECT_EQ(world.alerts.only(), kFinished);
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareUpload, OfAFileThatIsGoneIsAProblemAndFinished)
{
    beginUpdate("/nowhere/vorrano.hex");
    reply(">");

    reply("U");

    EXPECT_THAT(alerts(), ElementsAre(kProblemWithImage, kFinished));
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(step(), BootloaderSequence::Three);
}

TEST_F(FirmwareUpload, OfAFolderIsAProblemAndFinished)
{
    upload("/");

    EXPECT_THAT(alerts(), ElementsAre(kProblemWithImage, kFinished));
}

TEST_F(FirmwareUpload, OfAFileThatMayNotBeReadIsAProblemAndFinished)
{
    const TemporaryFile image(":0\n");
    const AccessDenied denied(image.path());

    upload(image.path());

    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_THAT(alerts(), ElementsAre(kProblemWithImage, kFinished));
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareUpload, ThatThrowsInTheImageIsAProblemAndFinished)
{
    const TemporaryFile image("ab\ncd\n");
    beginUpdate(image.path());
    reply(">");
    throwOnWrite("c");
    world.alerts.whileUp([this] { EXPECT_TRUE(isBusy()); });

    reply("U");

    EXPECT_THAT(alerts(), ElementsAre(kProblemWithImage, kFinished));
    EXPECT_EQ(line().written(), "7buabc");
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareUpload, HandlesWhatTheDeviceSaysMeanwhileAfterItsEnd)
{
    const TemporaryFile image("a\nb\n");
    press("buttonGetTemperatureUnit");
    beginUpdate(image.path());
    reply(">");
    reply(">");
    world.alerts.forget();
    world.pause.whilePaused([this] { line().reply("0\n\r"); });

    reply("U");

    // By "h", the last command that asked for something.
    EXPECT_THAT(alerts(), ElementsAre(kFinished, alertOf(std::nullopt, ""), alertOf("Fahrenheit", "")));
}

TEST_F(FirmwareUpload, FollowsACheckThatFoundANewerVersion)
{
    const TemporaryFile image("ab\n");
    beginCheck();
    world.urlFetch.answer(answerOf("9.6"));
    world.alerts.queueAnswer(kYes);
    world.openPanel.queueFile(image.path());
    reply("9.5\n\r");
    EXPECT_EQ(world.alerts.only(), kProceed);
    world.alerts.forget();

    reply(">");
    reply("U");

    EXPECT_EQ(line().written(), "47buab");
    EXPECT_EQ(world.alerts.only(), kFinished);
    EXPECT_FALSE(isBusy());
}

TEST_F(FirmwareUpload, TakesNoInputUntilItsEnd)
{
    const TemporaryFile image("a\nb\n");
    beginUpdate(image.path());
    reply(">");
    for (int pause = 0; pause < 3; ++pause) {
        world.pause.whilePaused([this] {
            EXPECT_FALSE(view().press("buttonADC"));
            EXPECT_FALSE(view().type("setSSID", "Net"));
        });
    }

    reply("U");

    EXPECT_EQ(line().written(), "7buab");
    EXPECT_EQ(view().text("setSSID"), "");
}

TEST_F(FirmwareUpload, KeepsTheComputerAwakeUntilItsEnd)
{
    const TemporaryFile image("a\nb");
    beginUpdate(image.path());
    reply(">");
    EXPECT_FALSE(world.stayAwake.isOn());
    std::vector<bool> awake;
    for (int pause = 0; pause < 2; ++pause) {
        world.pause.whilePaused([&] { awake.push_back(world.stayAwake.isOn()); });
    }
    world.alerts.whileUp([&] { awake.push_back(world.stayAwake.isOn()); });

    reply("U");

    EXPECT_THAT(awake, ElementsAre(true, true, false));
    EXPECT_THAT(world.stayAwake.reasons(), ElementsAre("The firmware of the Vorrano is being updated"));
}

TEST_F(FirmwareUpload, LetsTheComputerSleepAgainWhenItThrowsInTheImage)
{
    const TemporaryFile image("ab\ncd\n");
    beginUpdate(image.path());
    reply(">");
    throwOnWrite("c");
    world.alerts.whileUp([this] { EXPECT_FALSE(world.stayAwake.isOn()) << "while the problem is shown"; });

    reply("U");

    EXPECT_EQ(world.stayAwake.reasons().size(), 1U);
    EXPECT_FALSE(world.stayAwake.isOn());
}

TEST_F(FirmwareUpload, LetsTheComputerSleepAgainWhenTheImageCannotBeRead)
{
    beginUpdate("/nowhere/vorrano.hex");
    reply(">");
    world.alerts.whileUp([this] { EXPECT_FALSE(world.stayAwake.isOn()) << "while the problem is shown"; });

    reply("U");

    EXPECT_THAT(alerts(), ElementsAre(kProblemWithImage, kFinished));
    EXPECT_FALSE(world.stayAwake.isOn());
}

TEST_F(FirmwareUpload, LetsTheComputerSleepAgainWhenTheImageIsNoUtf8)
{
    const TemporaryFile image("\xFF");

    upload(image.path());

    EXPECT_FALSE(world.stayAwake.isOn());
}

TEST_F(FirmwareUpload, PacesAnImageOf2000LinesByItsPauses)
{
    std::string lines;
    for (int i = 0; i < 1999; ++i) {
        lines += ":10\n";
    }
    const TemporaryFile image(lines);
    beginUpdate(image.path());
    reply(">");
    const auto begin = world.now();

    reply("U");

    EXPECT_EQ(world.now() - begin, 2000 * kLinePause);
    EXPECT_EQ(line().writes().size(), 3U + 3U * 1999U);
}

} // namespace
