#include "support/World.h"

#include "platform/SerialQueue.h"

#include <stdexcept>

#include <gtest/gtest-spi.h>

// What a test is told when it, or the program, does what the ports forbid.
namespace vorrano::support {
namespace {

using namespace std::chrono_literals;

class Misuse : public ::testing::Test {
protected:
    World world;
};

TEST_F(Misuse, AMainThreadThatWaitsForWhatCannotHappenFailsTheTest)
{
    auto& line = world.plugVorrano();
    const auto descriptor = world.terminal.open(line.path()).value;
    line.stall(TerminalCall::Write);

    EXPECT_NONFATAL_FAILURE(EXPECT_THROW(world.terminal.write(descriptor, {}), std::logic_error),
                            "the main thread waits for what can't happen");
}

TEST_F(Misuse, AProgramThatFindsNoRestFailsTheTest)
{
    Task again = [&] { world.mainQueue.async(again); };
    world.mainQueue.async(again);

    EXPECT_NONFATAL_FAILURE(EXPECT_THROW(world.run(), std::logic_error), "does not come to rest");
}

TEST_F(Misuse, ASerialTaskThatWaitsForItsOwnQueueFailsTheTest)
{
    const auto queue = world.backgroundQueue.makeSerialQueue("queue");
    queue->async([&] {
        EXPECT_NONFATAL_FAILURE(EXPECT_THROW(queue->sync([] {}), std::logic_error), "waits for its own queue");
    });

    world.run();
}

TEST_F(Misuse, AFetchOnTheMainThreadFailsTheTest)
{
    world.urlFetch.answer("body");

    EXPECT_NONFATAL_FAILURE(static_cast<void>(world.urlFetch.contentsOfUrl("https://one")), "main thread");
}

TEST_F(Misuse, AnAlertInTheBackgroundFailsTheTest)
{
    world.backgroundQueue.async(
        [&] { EXPECT_NONFATAL_FAILURE(world.alerts.runModal({}), "alerts are the main thread's"); });

    world.run();
}

TEST_F(Misuse, ReleasingAnOpenDescriptorOrAHandleTwiceFailsTheTest)
{
    const auto descriptor = world.terminal.open(world.plugVorrano().path()).value;
    const auto list = world.registry.serialStreamDevices().value();
    world.registry.release(list);

    EXPECT_NONFATAL_FAILURE(world.terminal.release(descriptor), "not closed before");
    EXPECT_NONFATAL_FAILURE(world.registry.release(list), "released more often than it was had");
}

TEST_F(Misuse, AskingForTheOneAlertOfNoneOrTwoFailsTheTest)
{
    EXPECT_NONFATAL_FAILURE(static_cast<void>(world.alerts.only()), "alerts shown");
    world.alerts.runModal({});
    world.alerts.runModal({});

    EXPECT_NONFATAL_FAILURE(static_cast<void>(world.alerts.only()), "alerts shown");
}

TEST_F(Misuse, UsingAScreenThatIsNotThereFailsTheTest)
{
    EXPECT_NONFATAL_FAILURE(EXPECT_THROW(static_cast<void>(world.layouts.view("Screen")), std::logic_error),
                            "nothing named Screen");
    const auto view = world.layouts.loadView("Screen");
    auto& screen = world.layouts.view("Screen");

    EXPECT_NONFATAL_FAILURE(EXPECT_THROW(static_cast<void>(screen.text("ssid")), std::logic_error),
                            "nobody has used a control");
    EXPECT_NONFATAL_FAILURE(screen.press("save"), "does not know the button save");
    EXPECT_NONFATAL_FAILURE(screen.choose("security", "Open"), "has no entry Open");
}

} // namespace
} // namespace vorrano::support
