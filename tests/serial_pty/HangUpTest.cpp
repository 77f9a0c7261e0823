#include "serial_pty/SerialPtyFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class HangUpOfAPty : public SerialPtyFixture {
protected:
    // Holds the main thread while the reader goes through ten rounds: the line is readable all the time and gives
    // nothing, so a reader that does not wait each round out would ask it again and again.
    void expectNoSpinningWhileHeld()
    {
        auto& terminal = world->terminal;
        EXPECT_TRUE(world->loop.holdUntil([&] { return terminal.roundsWaitedOut >= 1; }));
        // The rounds are counted over the longer time, as they go on beside this thread.
        const auto roundsBefore = terminal.roundsWaitedOut.load();
        const auto readsBefore = terminal.reads.load();
        const auto waitsBefore = terminal.waits.load();

        EXPECT_TRUE(world->loop.holdUntil([&] { return terminal.roundsWaitedOut >= roundsBefore + 10; }));

        const auto reads = terminal.reads - readsBefore;
        const auto waits = terminal.waits - waitsBefore;
        const auto rounds = terminal.roundsWaitedOut - roundsBefore;
        EXPECT_LE(reads, rounds + 1);
        EXPECT_LE(waits, rounds + 1);
    }
};

TEST_F(HangUpOfAPty, IsToldAsErrorRemovalAndClose)
{
    giveModemLines();
    port->open();
    ASSERT_TRUE(hears("opened"));

    hangUp();
    ASSERT_TRUE(hears("closed"));

    EXPECT_THAT(delegate->heard(), testing::ElementsAre("opened", "error 6", "removed", "closed"));
    EXPECT_FALSE(port->isOpen());
}

TEST_F(HangUpOfAPty, LeavesAPortThatCanBeOpenedAgainUnderAnotherNode)
{
    giveModemLines();
    port->open();
    hangUp();
    ASSERT_TRUE(hears("closed"));
    port->open();
    ASSERT_TRUE(hears("error " + std::to_string(ENOENT)));

    plugAgain();
    port->open();
    pty->send("back");

    ASSERT_TRUE(hears("data back"));
    EXPECT_TRUE(port->isOpen());
}

// An alert holds the main thread, so nothing closes the port.
TEST_F(HangUpOfAPty, DoesNotSpinWhileAnAlertHoldsTheMainThread)
{
    giveModemLines();
    port->open();
    ASSERT_TRUE(hears("opened"));

    hangUp();
    expectNoSpinningWhileHeld();

    EXPECT_TRUE(port->isOpen());
    ASSERT_TRUE(hears("closed"));
}

TEST_F(HangUpOfAPty, DoesNotSpinEitherWhenTheDelegateListensToNoErrors)
{
    delegate->setCallbacks({SerialPortCallback::WasRemovedFromSystem, SerialPortCallback::WasClosed});
    port->setDelegate(delegate);
    giveModemLines();
    port->open();

    hangUp();
    expectNoSpinningWhileHeld();

    ASSERT_TRUE(hears("closed"));
    EXPECT_THAT(delegate->heard(), testing::ElementsAre("removed", "closed"));
}

TEST_F(HangUpOfAPty, EndsAWriteThatWaitsForTheDevice)
{
    giveModemLines();
    port->open();
    std::atomic<bool> done = false;
    world->background.async([&] {
        while (port->sendData(std::string(100'000, 'x'))) {
        }
        done = true;
    });
    ASSERT_FALSE(received(1000).empty());

    hangUp();

    ASSERT_TRUE(world->loop.runUntil([&] { return done.load(); }));
    ASSERT_TRUE(hears("error 5"));
    ASSERT_TRUE(hears("closed"));
}

TEST_F(HangUpOfAPty, WithARequestPendingEndsInItsTimeOut)
{
    giveModemLines();
    port->open();
    port->sendRequest(request("3", 0.2s, endsWith("!")));
    port->sendRequest(request("4", 0.2s, endsWith("!")));

    hangUp();

    ASSERT_TRUE(hears("timeout", 2));
    EXPECT_EQ(delegate->heard("removed").size(), 1U);
}

} // namespace

} // namespace vorrano::serial
