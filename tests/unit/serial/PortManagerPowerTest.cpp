#include "unit/serial/PortManagerFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class PortManagerPower : public PortManager {};

TEST_F(PortManagerPower, ClosesOpenPortsForSleepAndReopensThemOnWake)
{
    world.plugVorrano();
    manager();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    const auto delegate = listenTo(port);
    port->open();
    world.run();

    world.power.sleep();
    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(manager()->portsToReopenAfterSleep(), ElementsAre(port));
    world.power.wake();
    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(manager()->portsToReopenAfterSleep(), IsEmpty());

    world.run();
    EXPECT_THAT(delegate->heard(), ElementsAre("opened", "closed", "opened"));
    port->close();
}

TEST_F(PortManagerPower, LeavesAPortClosedAfterWakeThatTheUserHadClosedBefore)
{
    world.plugVorrano();
    manager();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);

    world.power.sleep();
    EXPECT_THAT(manager()->portsToReopenAfterSleep(), IsEmpty());
    world.power.wake();

    EXPECT_FALSE(port->isOpen());
}

TEST_F(PortManagerPower, DoesNotReopenAPortWhoseCloseFailed)
{
    auto& line = world.plugVorrano();
    manager();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    port->open();
    line.failNext(TerminalCall::Close, EIO);

    world.power.sleep();

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(manager()->portsToReopenAfterSleep(), IsEmpty());
    port->close();
}

TEST_F(PortManagerPower, ReopensInTheOrderOfTheListAndForgetsThePortsThatCannotBe)
{
    auto& first = world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    manager();
    const auto ports = manager()->availablePorts();
    const auto delegate = listenTo(ports[0]);
    ports[0]->open();
    ports[1]->open();
    world.power.sleep();
    EXPECT_THAT(manager()->portsToReopenAfterSleep(), ElementsAre(ports[0], ports[1]));
    world.advance(1s);
    world.terminal.forgetCalls();
    first.unplug();

    world.power.wake();

    EXPECT_THAT(manager()->portsToReopenAfterSleep(), IsEmpty());
    EXPECT_FALSE(ports[0]->isOpen());
    EXPECT_TRUE(ports[1]->isOpen());
    EXPECT_THAT(delegate->heard("error"), ElementsAre("error 2"));
    const auto opens = world.terminal.calls({TerminalCall::Open});
    ASSERT_EQ(opens.size(), 2U);
    EXPECT_EQ(opens[1].path, kB);
    ports[1]->close();
}

TEST_F(PortManagerPower, ReopensAPortThatLeftTheListDuringSleep)
{
    world.plugVorrano();
    manager();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    port->open();
    world.power.sleep();
    manager()->removeObjectFromAvailablePortsAtIndex(0);

    world.power.wake();

    EXPECT_TRUE(port->isOpen());
    port->close();
}

TEST_F(PortManagerPower, TreatsEveryPortAsRemovedWhenTheProgramEnds)
{
    world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    manager();
    const auto ports = manager()->availablePorts();
    const auto first = listenTo(ports[0]);
    const auto second = listenTo(ports[1]);
    ports[0]->open();
    world.run();
    SerialPortsChange::Kind kind = SerialPortsChange::Kind::Insertion;
    const auto observer =
        manager()->observeAvailablePorts([&](const SerialPortsChange& change) { kind = change.kind; });

    world.notificationCentre.post({std::string(platform::kApplicationWillTerminateNotification), nullptr, {}});

    EXPECT_THAT(manager()->availablePorts(), IsEmpty());
    EXPECT_EQ(manager()->countOfAvailablePorts(), 0U);
    EXPECT_EQ(kind, SerialPortsChange::Kind::Setting);
    world.run();
    EXPECT_THAT(first->heard(), ElementsAre("opened", "removed", "closed"));
    EXPECT_THAT(second->heard(), ElementsAre("removed"));
}

} // namespace

} // namespace vorrano::serial
