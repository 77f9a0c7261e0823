#include "serial_pty/SerialPtyFixture.h"

#include <cerrno>

#include <sys/resource.h>

namespace vorrano::serial {

namespace {

std::chrono::microseconds timeOnTheProcessor()
{
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    const auto of = [](const timeval& value) {
        return std::chrono::seconds(value.tv_sec) + std::chrono::microseconds(value.tv_usec);
    };
    return of(used.ru_utime) + of(used.ru_stime);
}

// A sanitizer's own work counts too.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer) || __has_feature(address_sanitizer)
#define VORRANO_SANITIZED
#endif
#endif
#ifdef VORRANO_SANITIZED
constexpr double kShareOfACore = 0.05;
#else
constexpr double kShareOfACore = 0.01;
#endif

class HangUpOfAPty : public SerialPtyFixture {
protected:
    // The share of a core that the process takes while the main thread is held and the reader goes through ten rounds.
    double shareOfACoreWhileHeld()
    {
        auto& rounds = world->terminal.roundsWaitedOut;
        EXPECT_TRUE(world->loop.holdUntil([&] { return rounds >= 1; }));
        const auto begin = std::chrono::steady_clock::now();
        const auto before = timeOnTheProcessor();
        const auto from = rounds.load();
        EXPECT_TRUE(world->loop.holdUntil([&] { return rounds >= from + 10; }, pty_rig::MainLoop::kPatience, 100ms));
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
        return std::chrono::duration<double>(timeOnTheProcessor() - before) / took;
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

// An alert holds the main thread, so nothing closes the port; the line is readable all the time and gives nothing.
TEST_F(HangUpOfAPty, DoesNotSpinWhileAnAlertHoldsTheMainThread)
{
    giveModemLines();
    port->open();
    ASSERT_TRUE(hears("opened"));
    hangUp();
    ASSERT_TRUE(world->loop.holdUntil([&] { return world->terminal.roundsWaitedOut >= 1; }));
    const auto readsBefore = world->terminal.reads.load();
    const auto roundsBefore = world->terminal.roundsWaitedOut.load();

    const auto share = shareOfACoreWhileHeld();

    EXPECT_LE(world->terminal.reads - readsBefore, world->terminal.roundsWaitedOut - roundsBefore + 1);
    EXPECT_TRUE(port->isOpen());
    EXPECT_LT(share, kShareOfACore);
    ASSERT_TRUE(hears("closed"));
}

TEST_F(HangUpOfAPty, DoesNotSpinEitherWhenTheDelegateListensToNoErrors)
{
    delegate->setCallbacks({SerialPortCallback::WasRemovedFromSystem, SerialPortCallback::WasClosed});
    port->setDelegate(delegate);
    giveModemLines();
    port->open();
    hangUp();

    const auto share = shareOfACoreWhileHeld();

    EXPECT_LT(share, kShareOfACore);
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
