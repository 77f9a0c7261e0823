// What comes before what when the list changes, and when the computer sleeps, wakes or the program ends.
#include "unit/serial/PortManagerFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

using platform::DeviceEvent;

class PortManagerOrder : public PortManager {
protected:
    // Does something with each notification of that name.
    template <class Act>
    void whenPosted(std::string_view name, Act act)
    {
        m_subscription = world.notificationCentre.observe(name, m_ear, [act](const platform::Notification&) { act(); });
    }

    void endTheProgram()
    {
        world.notificationCentre.post({std::string(platform::kApplicationWillTerminateNotification), nullptr, {}});
    }

    // Both ports, open, each with a delegate that writes into one list what it hears: "A1B2 opened".
    void openBoth()
    {
        for (const auto* const serial : {"A1B2", "C3D4"}) {
            world.plugVorrano(serial);
        }
        ports = manager()->availablePorts();
        for (const auto& port : ports) {
            m_delegates.push_back(listenTo(port));
            for (const auto* const line : {"opened", "closed", "removed"}) {
                m_delegates.back()->whenHearing(
                    line, [this, line, serial = port->path().substr(18)] { heard.push_back(serial + " " + line); });
            }
            port->open();
        }
        world.run();
        heard.clear();
    }

    SerialPorts ports;
    Lines heard;

private:
    std::shared_ptr<int> m_ear = std::make_shared<int>(0);
    platform::Subscription m_subscription;
    std::vector<std::shared_ptr<RecordingDelegate>> m_delegates;
};

TEST_F(PortManagerOrder, ListsANewPortBeforeItPostsTheConnection)
{
    manager();
    Lines listed;
    whenPosted(kSerialPortWasConnectedNotification, [&] { listed = paths(); });

    world.plugVorrano();
    world.run();

    EXPECT_THAT(listed, ElementsAre(kA));
}

TEST_F(PortManagerOrder, UnlistsAPortBeforeItPostsTheDisconnection)
{
    world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    manager();
    Lines listed;
    whenPosted(kSerialPortWasDisconnectedNotification, [&] { listed = paths(); });

    world.unplug(kA);
    world.run();

    EXPECT_THAT(listed, ElementsAre(kB));
}

TEST_F(PortManagerOrder, ClosesARemovedPortBeforeItUnlistsIt)
{
    world.plugVorrano();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    port->open();
    std::vector<bool> wasOpen;
    const auto observer = manager()->observeAvailablePorts([&](auto) { wasOpen.push_back(port->isOpen()); });

    world.unplug(kA);
    world.run();

    EXPECT_THAT(wasOpen, ElementsAre(false));
}

TEST_F(PortManagerOrder, HasThePortStillListedWhileItClosesIt)
{
    auto& line = world.plugVorrano();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    const auto delegate = listenTo(port);
    delegate->setCallbacks({SerialPortCallback::DidEncounterError});
    port->setDelegate(delegate);
    port->open();
    Lines listed;
    delegate->whenHearing("error 5", [&] { listed = paths(); });
    line.failNext(TerminalCall::Close, EIO);

    world.registry.unplug(kA);
    world.run();

    EXPECT_THAT(listed, ElementsAre(kA));
    port->close();
}

TEST_F(PortManagerOrder, ClosesThePortsBeforeItEmptiesItsListWhenTheProgramEnds)
{
    world.plugVorrano();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    port->open();
    std::vector<bool> wasOpen;
    const auto observer = manager()->observeAvailablePorts([&](auto) { wasOpen.push_back(port->isOpen()); });

    endTheProgram();

    EXPECT_THAT(wasOpen, ElementsAre(false));
}

TEST_F(PortManagerOrder, TellsOfTheEndInTheOrderOfTheList)
{
    openBoth();

    endTheProgram();
    world.run();

    EXPECT_THAT(heard, ElementsAre("A1B2 removed", "C3D4 removed", "A1B2 closed", "C3D4 closed"));
}

TEST_F(PortManagerOrder, ClosesForSleepInTheOrderOfTheList)
{
    openBoth();

    world.power.sleep();
    world.run();

    EXPECT_THAT(heard, ElementsAre("A1B2 closed", "C3D4 closed"));
}

TEST_F(PortManagerOrder, OpensAfterSleepInTheOrderOfTheList)
{
    openBoth();
    world.power.sleep();
    world.run();
    heard.clear();

    world.power.wake();
    world.run();

    EXPECT_THAT(heard, ElementsAre("A1B2 opened", "C3D4 opened"));
    for (const auto& port : ports) {
        port->close();
    }
}

TEST_F(PortManagerOrder, ForgetsAPortOnlyAfterItWasOpenedAgain)
{
    auto& line = world.plugVorrano();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    const auto delegate = listenTo(port);
    port->open();
    world.power.sleep();
    SerialPorts waiting;
    delegate->whenHearing("error 13", [&] { waiting = manager()->portsToReopenAfterSleep(); });
    line.failNext(TerminalCall::Open, EACCES);

    world.power.wake();

    EXPECT_THAT(waiting, ElementsAre(port));
    EXPECT_THAT(manager()->portsToReopenAfterSleep(), IsEmpty());
}

TEST_F(PortManagerOrder, ClosesForTheEndWhatAWakingBeforeItHadOpened)
{
    openBoth();
    world.power.sleep();
    world.power.wake();
    world.run();
    heard.clear();

    endTheProgram();
    world.run();

    EXPECT_THAT(heard, ElementsAre("A1B2 removed", "C3D4 removed", "A1B2 closed", "C3D4 closed"));
}

TEST_F(PortManagerOrder, TellsOfTheEndDuringSleepWithoutOpeningAnything)
{
    openBoth();
    world.power.sleep();
    world.run();
    heard.clear();

    endTheProgram();
    world.run();

    EXPECT_THAT(heard, ElementsAre("A1B2 removed", "C3D4 removed"));
    EXPECT_FALSE(ports[0]->isOpen());
    EXPECT_FALSE(ports[1]->isOpen());
}

TEST_F(PortManagerOrder, ListsADeviceTwiceThatOneEventNamesTwice)
{
    manager();
    world.plugVorrano();
    world.run();
    manager()->removeObjectFromAvailablePortsAtIndex(0);
    listen();

    world.registry.nameTwiceInOneEvent(kA, DeviceEvent::Published);
    world.run();

    EXPECT_THAT(paths(), ElementsAre(kA, kA));
    EXPECT_EQ(manager()->objectInAvailablePortsAtIndex(0), manager()->objectInAvailablePortsAtIndex(1));
    EXPECT_THAT(posted, ElementsAre(std::string("SerialPortWasConnectedNotification: ") + kA + " " + kA));
}

TEST_F(PortManagerOrder, TellsAndPostsTwiceOfARemovalThatOneEventNamesTwice)
{
    world.plugVorrano();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    const auto delegate = listenTo(port);
    port->open();
    world.run();
    delegate->forget();
    listen();

    world.registry.nameTwiceInOneEvent(kA, DeviceEvent::Terminated);
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed", "removed", "closed"));
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_THAT(posted, ElementsAre(std::string("SerialPortWasDisconnectedNotification: ") + kA + " " + kA));
}

// Handles that it gets from the registry and has to release.
class PortManagerHandles : public PortManager {
protected:
    PortManagerHandles()
    {
        world.plugVorrano();
        m_port = SerialPort::serialPortWithPath(kA);
        m_before = world.registry.references();
    }

    // The handles that have come since, of devices and lists.
    [[nodiscard]] int more() const { return world.registry.references() - m_before; }

private:
    std::shared_ptr<SerialPort> m_port;
    int m_before = 0;
};

TEST_F(PortManagerHandles, AreTheTwoListsOfItsWatchesAndNoMore)
{
    manager();

    EXPECT_EQ(more(), 2);
    EXPECT_EQ(world.registry.references(manager()->portPublishedNotificationIterator()), 1);
    EXPECT_EQ(world.registry.references(manager()->portTerminatedNotificationIterator()), 1);
}

TEST_F(PortManagerHandles, OfTheFirstListOfRemovalsAreReleasedUnused)
{
    world.registry.nameInTheFirstListOfRemovals(kA);

    EXPECT_THAT(paths(), ElementsAre(kA));
    EXPECT_EQ(more(), 2);
}

TEST_F(PortManagerHandles, OfAWatchForRemovalsThatFailsAreReleased)
{
    world.registry.failWatch(DeviceEvent::Terminated);

    manager();

    EXPECT_EQ(more(), 1);
}

TEST_F(PortManagerHandles, OfAWatchForConnectionsThatFailsAreReleased)
{
    world.registry.failWatch(DeviceEvent::Published);

    manager();

    EXPECT_EQ(more(), 0);
}

TEST_F(PortManagerHandles, OfTheDevicesOfAConnectionAreReleased)
{
    manager();

    world.registry.nameTwiceInOneEvent(kA, DeviceEvent::Published);
    world.run();

    EXPECT_EQ(more(), 2);
}

TEST_F(PortManagerHandles, OfTheDevicesOfARemovalAreReleased)
{
    manager();

    world.registry.nameTwiceInOneEvent(kA, DeviceEvent::Terminated);
    world.run();

    EXPECT_EQ(more(), 2);
}

TEST_F(PortManagerHandles, AreAllReleasedWithTheManager)
{
    manager();

    SerialPortManager::releaseShared();

    EXPECT_EQ(more(), 0);
}

} // namespace

} // namespace vorrano::serial
