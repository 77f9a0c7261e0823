#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class PortRemoval : public SerialPortFixture {};

TEST_F(PortRemoval, TellsTheDelegateByTheMainQueueThenCloses)
{
    openQuietly();
    delegate->whenHearing("removed", [this] { EXPECT_TRUE(port->isOpen()); });

    port->cleanupAfterSystemRemoval();
    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_TRUE(port->isOpen());
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "closed"));
    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortRemoval, OfAClosedPortIsTold)
{
    port->cleanupAfterSystemRemoval();
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed"));
}

TEST_F(PortRemoval, ClosesAtOnceWhenTheDelegateDoesNotImplementIt)
{
    delegate->setCallbacks({SerialPortCallback::WasClosed});
    port->setDelegate(delegate);
    openQuietly();

    port->cleanupAfterSystemRemoval();

    EXPECT_FALSE(port->isOpen());
    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
}

TEST_F(PortRemoval, ClosesAtOnceWithoutADelegate)
{
    port->setDelegate({});
    openQuietly();

    port->cleanupAfterSystemRemoval();

    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortRemoval, ClosesAlsoWhenTheDelegateIsGoneByThen)
{
    openQuietly();
    port->cleanupAfterSystemRemoval();

    delegate.reset();
    world.run();

    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortRemoval, ClosesAlsoWhenTheDelegateThrows)
{
    openQuietly();
    delegate->whenHearing("removed", [] { throw std::runtime_error("no"); });

    port->cleanupAfterSystemRemoval();
    world.run();

    EXPECT_FALSE(port->isOpen());
    EXPECT_EQ(world.log.lines().size(), 1U);
}

TEST_F(PortRemoval, IsHarmlessWhenTheDelegateClosesThePortItself)
{
    openQuietly();
    delegate->whenHearing("removed", [this] { EXPECT_TRUE(port->close()); });

    port->cleanupAfterSystemRemoval();
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "closed"));
}

// Poll and hot-plug both tell of the same removal; when the second word comes, the delegate has the device back.
TEST_F(PortRemoval, ToldTwiceNeitherTellsNorClosesAnOpenThatCameBetween)
{
    openQuietly();
    port->cleanupAfterSystemRemoval();
    port->cleanupAfterSystemRemoval();
    delegate->whenHearing("removed", [this] {
        port->close();
        port->open();
    });

    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "closed", "opened"));
}

TEST_F(PortRemoval, AskedForWhileClosedLeavesALaterOpenAlone)
{
    port->cleanupAfterSystemRemoval();

    port->open();
    world.run();

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("opened"));
}

TEST_F(PortRemoval, ToldTwiceOfAPortThatStaysClosedIsToldTwice)
{
    openQuietly();

    port->cleanupAfterSystemRemoval();
    port->cleanupAfterSystemRemoval();
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "removed", "closed"));
}

TEST_F(PortRemoval, LeavesAnObjectThatCanBeOpenedAgain)
{
    openQuietly();
    world.unplug(line);
    world.advance(1s);
    ASSERT_FALSE(port->isOpen());
    auto& again = world.plugVorrano();

    port->open();
    port->sendData("7");

    EXPECT_TRUE(port->isOpen());
    EXPECT_EQ(again.written(), "7");
    EXPECT_EQ(SerialPort::serialPortWithPath(again.path()), port);
}

TEST_F(PortRemoval, ByTheDeprecatedNameIsTheSameWithALineInTheLog)
{
    openQuietly();

    port->cleanup();
    world.run();

    EXPECT_THAT(world.log.lines(),
                ElementsAre("Cleanup is deprecated and was never intended to be called publicly. You should update "
                            "your code to avoid calling this method."));
    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "closed"));
}

} // namespace

} // namespace vorrano::serial
