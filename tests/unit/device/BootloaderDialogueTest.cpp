#include "unit/device/FirmwareUpdateTest.h"

using namespace vorrano;
using namespace vorrano::device;

namespace {

struct BootloaderDialogue : FirmwareUpdateTest {};

TEST_F(BootloaderDialogue, IsDeclinedWithNo)
{
    world.alerts.queueAnswer(kNo);
    world.alerts.queueAnswer(kNo);

    press("buttonUpdateFirmware");

    EXPECT_EQ(world.openPanel.timesShown(), 0);
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(step(), BootloaderSequence::None);
}

TEST_F(BootloaderDialogue, LeavesTheProgressDisplayOnWhenThePanelIsCancelled)
{
    world.alerts.queueAnswer(kNo);
    world.alerts.queueAnswer(kYes);
    world.openPanel.queueCancel();

    press("buttonUpdateFirmware");

    EXPECT_EQ(world.openPanel.timesShown(), 1);
    EXPECT_THAT(writes(), IsEmpty());
    EXPECT_TRUE(isBusy());
    EXPECT_EQ(step(), BootloaderSequence::None);
}

TEST_F(BootloaderDialogue, ResetsTheDeviceIntoItsBootloaderWithoutAPause)
{
    const TemporaryFile image(":00\n");

    beginUpdate(image.path());

    EXPECT_THAT(writes(), ElementsAre("7", "b"));
    EXPECT_EQ(line().writes()[0].at, line().writes()[1].at);
    EXPECT_EQ(step(), BootloaderSequence::One);
    EXPECT_EQ(tab->firmwareUpdate().filename(), image.path());
    EXPECT_TRUE(tab->exchange().waitingForAck());
    EXPECT_TRUE(isBusy());
    EXPECT_EQ(tab->exchange().queryNumber(), std::nullopt);
}

TEST_F(BootloaderDialogue, AsksForTheUploadAtTheBootloadersPrompt)
{
    const TemporaryFile image(":00\n");
    beginUpdate(image.path());

    reply(">");

    EXPECT_THAT(writes(), ElementsAre("7", "b", "u"));
    EXPECT_EQ(step(), BootloaderSequence::Two);
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(BootloaderDialogue, WaitsForEachPromptAsLongAsItTakes)
{
    const TemporaryFile image(":00\n");
    beginUpdate(image.path());

    world.advance(60s);
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(step(), BootloaderSequence::One);
    reply(">");
    world.advance(60s);
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(step(), BootloaderSequence::Two);
    reply("U");

    EXPECT_EQ(line().written(), "7bu:00");
    EXPECT_EQ(world.alerts.only(), kFinished);
}

class NotTheBootloadersPrompt : public BootloaderDialogue, public testing::WithParamInterface<std::string> {};

TEST_P(NotTheBootloadersPrompt, IsAFailureButALaterPromptStillGoesOn)
{
    const TemporaryFile image(":00\n");
    beginUpdate(image.path());

    reply(GetParam());
    EXPECT_EQ(world.alerts.only(), kNoBootloader);
    EXPECT_EQ(step(), BootloaderSequence::One);
    EXPECT_TRUE(isBusy());
    reply(">");

    EXPECT_EQ(line().written(), "7bu");
}

INSTANTIATE_TEST_SUITE_P(Chunk, NotTheBootloadersPrompt,
                         testing::Values("\r\n>", ">\n", "> ", ">>", "U", "garbage", "\xFF"));

class NotTheUploadPrompt : public BootloaderDialogue, public testing::WithParamInterface<std::string> {};

TEST_P(NotTheUploadPrompt, IsAFailureButALaterPromptStillGoesOn)
{
    const TemporaryFile image(":00\n");
    beginUpdate(image.path());
    reply(">");

    reply(GetParam());
    EXPECT_EQ(world.alerts.only(), kNoUpload);
    EXPECT_EQ(step(), BootloaderSequence::Two);
    EXPECT_TRUE(isBusy());
    world.alerts.forget();
    reply("U");

    EXPECT_EQ(line().written(), "7bu:00");
    EXPECT_EQ(world.alerts.only(), kFinished);
}

INSTANTIATE_TEST_SUITE_P(Chunk, NotTheUploadPrompt, testing::Values(">", "U\n\r", "UU", "u", "\xFF"));

TEST_F(BootloaderDialogue, ThatThrowsOnTheWayIntoTheBootloaderIsAProblem)
{
    const TemporaryFile image(":00\n");
    throwOnWrite("b");
    world.alerts.queueAnswer(kNo);
    world.alerts.queueAnswer(kYes);
    world.openPanel.queueFile(image.path());

    press("buttonUpdateFirmware");

    EXPECT_THAT(alerts(),
                ElementsAre(kPcConnected, kProceed, alertOf("Encountered problem with entering bootloader", "Error")));
    EXPECT_EQ(step(), BootloaderSequence::One);
    EXPECT_TRUE(isBusy());
}

TEST_F(BootloaderDialogue, ThatThrowsAtTheBeginOfTheUploadIsAProblem)
{
    const TemporaryFile image(":00\n");
    beginUpdate(image.path());
    throwOnWrite("u");

    reply(">");

    EXPECT_EQ(world.alerts.only(), alertOf("Encountered problem with uploading data", "Error"));
    EXPECT_EQ(step(), BootloaderSequence::Two);
    EXPECT_TRUE(isBusy());
}

TEST_F(BootloaderDialogue, RoutesTheBootloadersPromptsByTheLastQueryToo)
{
    const TemporaryFile image("a\n");
    press("buttonGetTemperatureUnit");
    beginUpdate(image.path());

    reply(">");
    EXPECT_EQ(world.alerts.only(), alertOf(std::nullopt, ""));
    world.alerts.forget();
    reply("no");

    EXPECT_THAT(alerts(), ElementsAre(kNoUpload, alertOf(std::nullopt, "")));
}

TEST_F(BootloaderDialogue, LeftAtItsFirstStepMakesEveryLaterChunkAFailure)
{
    const TemporaryFile image("a\n");
    beginUpdate(image.path());

    press("buttonPowerStatus");
    reply("Power OK\n\r");
    reply("more");

    EXPECT_THAT(alerts(), ElementsAre(kNoBootloader, alertOf("Power OK\n\r", "Success"), kNoBootloader));
}

TEST_F(BootloaderDialogue, LeftAtItsSecondStepMakesEveryLaterChunkAFailure)
{
    const TemporaryFile image("a\n");
    beginUpdate(image.path());
    reply(">");

    press("buttonGetTemperatureUnit");
    reply("1\n\r");
    reply("0\n\r");

    EXPECT_THAT(alerts(), ElementsAre(kNoUpload, alertOf("Celsius", ""), kNoUpload, alertOf("Fahrenheit", "")));
}

TEST_F(BootloaderDialogue, ThatIsFinishedRoutesNothingAnyMore)
{
    const TemporaryFile image("a\n");
    upload(image.path());
    world.alerts.forget();

    reply(">");
    reply("U");
    reply("garbage");

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(line().written(), "a");
}

TEST_F(BootloaderDialogue, AfterAFailedOneBeginsAtTheFirstStepAgain)
{
    const TemporaryFile image("a\n");
    beginUpdate(image.path());
    reply(">");
    reply("no");
    world.alerts.forget();

    upload(image.path());

    EXPECT_EQ(line().written(), "a");
    EXPECT_EQ(world.alerts.only(), kFinished);
}

TEST_F(BootloaderDialogue, IsForgottenWhenTheTabIsChosenAnewBeforeThePrompt)
{
    const TemporaryFile image("a\n");
    beginUpdate(image.path());

    chooseTab();
    reply(">");

    EXPECT_EQ(step(), BootloaderSequence::None);
    EXPECT_EQ(line().written(), "7b");
    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_FALSE(isBusy());
}

TEST_F(BootloaderDialogue, IsForgottenWhenTheTabIsChosenAnewBeforeTheUpload)
{
    const TemporaryFile image("a\n");
    beginUpdate(image.path());
    reply(">");

    chooseTab();
    reply("U");

    EXPECT_EQ(step(), BootloaderSequence::None);
    EXPECT_EQ(line().written(), "7bu");
    EXPECT_THAT(alerts(), IsEmpty());
}

TEST_F(BootloaderDialogue, WithoutAPortWaitsForAPromptThatNeverComes)
{
    const TemporaryFile image("a\n");
    world.unplug(line());
    world.advance(200ms);

    beginUpdate(image.path());
    world.advance(60s);

    EXPECT_THAT(alerts(), IsEmpty());
    EXPECT_EQ(step(), BootloaderSequence::One);
    EXPECT_TRUE(isBusy());
}

} // namespace
