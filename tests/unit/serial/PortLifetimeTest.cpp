#include "unit/serial/SerialPortFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

// States callbacks that it leaves to the base.
class StatingDelegate : public SerialPortDelegate {
public:
    [[nodiscard]] SerialPortCallbacks callbacks() const override { return SerialPortCallbacks::all(); }
};

class PortLifetime : public SerialPortFixture {
protected:
    // Drops the last reference and checks that nothing kept the port.
    void drop()
    {
        const std::weak_ptr<SerialPort> alive = port;
        port.reset();
        EXPECT_TRUE(alive.expired());
    }
};

TEST_F(PortLifetime, OfAClosedPortEndsWhileItsQueueHasWorkAndNobodyIsCalled)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    port->close();
    world.advance(200ms);
    forget();

    drop();
    world.advance(30s);

    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_THAT(world.terminal.calls(), IsEmpty());
}

TEST_F(PortLifetime, LastsUntilATimeOutThatIsUnderWayHasBeenTold)
{
    openQuietly();
    port->sendRequest(request("1", 2s, endsWith("!")));
    port->sendRequest(request("2", 2s, endsWith("!")));
    port->close();
    auto hold = world.mainQueue.hold();
    world.advance(2s);
    forget();

    const std::weak_ptr<SerialPort> alive = port;
    port.reset();
    EXPECT_FALSE(alive.expired());
    hold.reset();
    world.advance(30s);

    EXPECT_THAT(delegate->heard(), ElementsAre("closed", "timeout"));
    EXPECT_TRUE(alive.expired());
}

// The request that times out takes the last other reference along.
TEST_F(PortLifetime, EndsOnItsOwnRequestQueue)
{
    port->setDelegate({});
    std::shared_ptr<SerialPort> last = port;
    auto timed = request("1", 2s, endsWith("!"));
    timed->setUserInfo(std::shared_ptr<void>(nullptr, [&](void*) {
        EXPECT_FALSE(world.mainQueue.isMainThread());
        last.reset();
    }));
    port->sendRequest(std::move(timed));
    port->sendRequest(request("2", 2s, endsWith("!")));

    port.reset();
    world.advance(10s);

    EXPECT_EQ(last, nullptr);
    EXPECT_EQ(SerialPort::existingPortWithPath(line.path()), nullptr);
}

TEST_F(PortLifetime, DropsWhatTheObserversHold)
{
    const auto held = std::make_shared<int>(0);
    auto subscription = port->observe("CTS", [held] {});
    EXPECT_EQ(held.use_count(), 2);

    drop();

    EXPECT_EQ(held.use_count(), 1);
    subscription.reset();
}

TEST_F(PortLifetime, IsNotProlongedByItsDelegateNorTheOtherWayRound)
{
    EXPECT_EQ(delegate.use_count(), 1);
    drop();
    EXPECT_EQ(delegate.use_count(), 1);
}

TEST_F(PortLifetime, IsTheSameWithADelegateThatOverridesNoneOfTheCallbacksItStates)
{
    const auto stating = std::make_shared<StatingDelegate>();
    port->setDelegate(stating);
    line.failNext(TerminalCall::Open, EBUSY);
    port->open();
    port->open();
    port->sendRequest(request("1", 1s, endsWith("!")));
    port->sendRequest(request("2", 1s, endsWith("!")));
    world.advance(1s);
    line.reply("!");
    world.run();
    port->cleanupAfterSystemRemoval();
    world.run();

    EXPECT_EQ(line.written(), "12");
    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortLifetime, LeavesNothingBehindInAnyOrderOfThreads)
{
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        world.time.explore(seed);
        port = SerialPort::serialPortWithPath(line.path());
        port->setDelegate(delegate);
        port->open();
        port->sendRequest(request("1", std::chrono::milliseconds(seed), endsWith("!")));
        world.backgroundQueue.async([held = port] { held->sendRequest(request("2", 50ms)); });
        line.reply("some");
        world.advance(std::chrono::milliseconds(seed % 25));
        world.backgroundQueue.async([held = port] { held->close(); });
        port->close();

        const std::weak_ptr<SerialPort> alive = port;
        port.reset();
        world.advance(1s);

        EXPECT_TRUE(alive.expired()) << seed;
        EXPECT_EQ(world.terminal.descriptorsInUse(), 0U) << seed;
        EXPECT_EQ(world.time.backgroundTasks(), 0U) << seed;
    }
}

} // namespace

} // namespace vorrano::serial
