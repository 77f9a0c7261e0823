#include "unit/serial/PortManagerFixture.h"

namespace vorrano::serial {

namespace {

using platform::DeviceEvent;

TEST_F(PortManager, IsOneObjectWithOneSetOfRegistrations)
{
    const auto first = manager();
    const auto second = manager();

    EXPECT_EQ(first, second);
    EXPECT_EQ(world.registry.watches(DeviceEvent::Published), 1);
    EXPECT_EQ(world.registry.watches(DeviceEvent::Terminated), 1);
    EXPECT_EQ(world.power.watchers(), 2U);
}

TEST_F(PortManager, HasAnEmptyListWhenThereAreNoDevices)
{
    EXPECT_THAT(manager()->availablePorts(), IsEmpty());
    EXPECT_EQ(manager()->countOfAvailablePorts(), 0U);
}

TEST_F(PortManager, ListsThePortsInTheOrderOfTheRegistry)
{
    world.plugSerialDevice("/dev/ttyS0");
    world.plugVorrano("C3D4");
    world.plugVorrano("A1B2");

    EXPECT_THAT(paths(), ElementsAre("/dev/ttyS0", kB, kA));
    EXPECT_EQ(manager()->countOfAvailablePorts(), 3U);
}

TEST_F(PortManager, ListsThePortObjectThatLivesAlready)
{
    world.plugVorrano();
    const auto port = SerialPort::serialPortWithPath(kA);

    EXPECT_THAT(manager()->availablePorts(), ElementsAre(port));
    EXPECT_EQ(SerialPort::serialPortWithPath(kA), manager()->availablePorts().front());
}

TEST_F(PortManager, ReleasesEveryDeviceOfTheFirstList)
{
    world.plugVorrano();
    const auto device = world.registry.handleOf(kA);

    const auto shared = manager();

    // The one that is left is the port's own.
    EXPECT_EQ(world.registry.references(device), 1);
    EXPECT_EQ(world.registry.references(shared->portPublishedNotificationIterator()), 1);
    EXPECT_EQ(world.registry.references(shared->portTerminatedNotificationIterator()), 1);
}

TEST_F(PortManager, StaysEmptyAndWatchesNoRemovalWhenItCannotRegister)
{
    world.plugVorrano();
    world.registry.failWatch(DeviceEvent::Published);
    const auto before = world.registry.references();

    const auto shared = manager();

    EXPECT_THAT(shared->availablePorts(), IsEmpty());
    EXPECT_EQ(shared->portPublishedNotificationIterator(), 0U);
    EXPECT_EQ(world.registry.watches(DeviceEvent::Terminated), 0);
    EXPECT_EQ(world.registry.references(), before);
    EXPECT_THAT(world.log.lines(), IsEmpty());
    EXPECT_EQ(world.power.watchers(), 2U);
}

TEST_F(PortManager, StaysEmptyWhenARegistrationFailsWithoutAnIterator)
{
    world.plugVorrano();
    world.registry.failWatch(DeviceEvent::Published, false);

    EXPECT_THAT(manager()->availablePorts(), IsEmpty());
    EXPECT_EQ(world.registry.references(), 0);
}

class PortManagerWithoutRemovals : public PortManager, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(WithAnIteratorOrWithout, PortManagerWithoutRemovals, testing::Bool());

TEST_P(PortManagerWithoutRemovals, KeepsItsListAndReportsNone)
{
    world.plugVorrano();
    world.registry.failWatch(DeviceEvent::Terminated, GetParam());
    listen();
    EXPECT_THAT(paths(), ElementsAre(kA));
    EXPECT_EQ(manager()->portTerminatedNotificationIterator(), 0U);

    world.unplug(kA);
    world.advance(1s);

    EXPECT_THAT(paths(), ElementsAre(kA));
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(PortManager, AppendsAPluggedDeviceAndPostsItsConnection)
{
    world.plugVorrano("C3D4");
    manager();
    listen();

    world.plugVorrano("A1B2");
    EXPECT_THAT(paths(), ElementsAre(kB));
    world.run();

    EXPECT_THAT(paths(), ElementsAre(kB, kA));
    EXPECT_THAT(posted, ElementsAre(std::string("SerialPortWasConnectedNotification: ") + kA));
    EXPECT_EQ(carried.front(), manager()->availablePorts().back());
}

TEST_F(PortManager, AppendsTheDevicesOfOneEventInTheirOrderWithOneNotification)
{
    manager();
    listen();
    Lines changes;
    const auto observer = manager()->observeAvailablePorts([&](const SerialPortsChange& change) {
        EXPECT_EQ(change.kind, SerialPortsChange::Kind::Insertion);
        EXPECT_THAT(change.indexes, ElementsAre(0U, 1U));
        changes = pathsOf(change.objects);
    });

    world.registry.plugTogether({{kB, {}, {}, {}, {}, {}}, {kA, {}, {}, {}, {}, {}}});
    world.run();

    EXPECT_THAT(paths(), ElementsAre(kB, kA));
    EXPECT_THAT(posted, ElementsAre(std::string("SerialPortWasConnectedNotification: ") + kB + " " + kA));
    EXPECT_THAT(changes, ElementsAre(kB, kA));
}

TEST_F(PortManager, ReleasesTheDevicesOfAnEvent)
{
    manager();
    world.plugVorrano();
    const auto device = world.registry.handleOf(kA);
    world.run();
    EXPECT_EQ(world.registry.references(device), 1);

    world.registry.duplicateEvent(kA);
    world.run();
    EXPECT_EQ(world.registry.references(device), 1);

    world.unplug(kA);
    world.run();
    EXPECT_EQ(world.registry.references(device), 1);
}

TEST_F(PortManager, AddsNothingForADeviceAlreadyListedButPostsAnEmptyConnection)
{
    world.plugVorrano();
    manager();
    listen();
    int changes = 0;
    const auto observer = manager()->observeAvailablePorts([&](const SerialPortsChange&) { ++changes; });

    world.registry.duplicateEvent(kA);
    world.run();

    EXPECT_THAT(paths(), ElementsAre(kA));
    EXPECT_THAT(posted, ElementsAre("SerialPortWasConnectedNotification:"));
    EXPECT_THAT(carried, IsEmpty());
    EXPECT_EQ(changes, 0);
}

TEST_F(PortManager, PutsAPortObjectThatIsStillAliveBackIntoTheList)
{
    world.plugVorrano();
    manager();
    const auto held = SerialPort::serialPortWithPath(kA);
    world.unplug(kA);
    world.run();
    ASSERT_THAT(manager()->availablePorts(), IsEmpty());
    listen();

    world.plugVorrano();
    world.run();

    EXPECT_THAT(manager()->availablePorts(), ElementsAre(held));
    EXPECT_THAT(carried, ElementsAre(held));
}

TEST_F(PortManager, TellsClosesAndUnlistsAPulledDeviceAndPostsItsDisconnection)
{
    world.plugVorrano("C3D4");
    world.plugVorrano("A1B2");
    manager();
    listen();
    const auto port = SerialPort::serialPortWithPath(kA);
    const auto delegate = listenTo(port);
    port->open();
    world.advance(15ms);
    Lines changes;
    const auto observer = manager()->observeAvailablePorts([&](const SerialPortsChange& change) {
        EXPECT_EQ(change.kind, SerialPortsChange::Kind::Removal);
        EXPECT_THAT(change.indexes, ElementsAre(1U));
        changes = pathsOf(change.objects);
    });

    world.registry.unplug(kA);
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("opened", "removed", "closed"));
    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(paths(), ElementsAre(kB));
    EXPECT_THAT(changes, ElementsAre(kA));
    EXPECT_THAT(posted, ElementsAre(std::string("SerialPortWasDisconnectedNotification: ") + kA));
    EXPECT_THAT(carried, ElementsAre(port));
}

TEST_F(PortManager, PostsTheDisconnectionBeforeTheDelegateIsToldAsThatIsTheMainQueuesTurn)
{
    world.plugVorrano();
    manager();
    const auto port = SerialPort::serialPortWithPath(kA);
    const auto delegate = listenTo(port);
    listen();
    delegate->whenHearing("removed", [this] { EXPECT_EQ(posted.size(), 1U); });

    world.unplug(kA);
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre("removed"));
}

TEST_F(PortManager, UnlistsEveryPortOfOneEvent)
{
    world.plugSerialDevice("/dev/ttyS0");
    world.plugVorrano("A1B2");
    manager();
    const auto first = manager()->objectInAvailablePortsAtIndex(0);
    manager()->insertObjectInAvailablePortsAtIndex(first, 2);
    std::vector<std::size_t> indexes;
    const auto observer =
        manager()->observeAvailablePorts([&](const SerialPortsChange& change) { indexes = change.indexes; });

    world.registry.unplug("/dev/ttyS0");
    world.run();

    EXPECT_THAT(paths(), ElementsAre(kA));
    EXPECT_THAT(indexes, ElementsAre(0U, 2U));
}

TEST_F(PortManager, PostsTheDisconnectionOfADeviceThatWasNotListed)
{
    world.plugVorrano();
    manager();
    manager()->removeObjectFromAvailablePortsAtIndex(0);
    listen();
    int changes = 0;
    const auto observer = manager()->observeAvailablePorts([&](const SerialPortsChange&) { ++changes; });

    world.unplug(kA);
    world.run();

    EXPECT_THAT(posted, ElementsAre(std::string("SerialPortWasDisconnectedNotification: ") + kA));
    EXPECT_EQ(changes, 0);
}

TEST_F(PortManager, ListsAnAdapterThatReturnsUnderAnotherNodeByItsOldName)
{
    world.plugVorrano();
    manager();
    const auto port = manager()->objectInAvailablePortsAtIndex(0);
    EXPECT_EQ(port->name(), "ttyUSB0");
    world.unplug(kA);
    world.registry.plug({"/dev/cu.usbserial-A1B2", "/dev/ttyUSB1", "ttyUSB1", "ttyUSB", "1", "IOSerialStream"});

    world.run();

    EXPECT_THAT(manager()->availablePorts(), ElementsAre(port));
}

// The poll and the hot-plug watch both report the removal. After the first report the delegate drops the port and takes
// a new one when the device is back; the second report must not close the new one.
TEST_F(PortManager, DoesNotCloseAPortThatWasTakenAgainBetweenTheTwoReportsOfItsRemoval)
{
    world.plugVorrano();
    manager();
    const auto port = SerialPort::serialPortWithPath(kA);
    const auto delegate = listenTo(port);
    port->open();
    world.advance(15ms);
    auto hold = world.mainQueue.hold();
    world.terminal.line(kA).unplug();
    world.advance(15ms);
    world.registry.unplug(kA);
    world.plugVorrano();
    platform::Subscription connected =
        world.notificationCentre.observe(kSerialPortWasConnectedNotification, port, [&](const platform::Notification&) {
            port->close();
            port->open();
        });

    hold.reset();
    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(paths(), ElementsAre(kA));
    EXPECT_LE(delegate->heard("removed").size(), 1U);
    port->close();
}

TEST_F(PortManager, EndsItsWatchesWhenItIsReleased)
{
    manager();
    listen();

    SerialPortManager::releaseShared();

    EXPECT_EQ(world.registry.watches(DeviceEvent::Published), 0);
    EXPECT_EQ(world.registry.watches(DeviceEvent::Terminated), 0);
    EXPECT_EQ(world.power.watchers(), 0U);
    world.plugVorrano();
    world.run();
    world.power.sleep();
    world.notificationCentre.post({std::string(platform::kApplicationWillTerminateNotification), nullptr, {}});
    EXPECT_THAT(posted, IsEmpty());
    EXPECT_EQ(world.registry.references(), 0);
}

TEST_F(PortManager, IsMadeAnewAfterItsRelease)
{
    manager();
    world.plugVorrano();
    SerialPortManager::releaseShared();

    EXPECT_THAT(paths(), ElementsAre(kA));
}

TEST_F(PortManager, StaysWholeForAnEventThatWasUnderWayAtItsRelease)
{
    manager();
    world.plugVorrano();
    listen();

    SerialPortManager::releaseShared();
    world.run();

    EXPECT_THAT(posted, IsEmpty());
}

} // namespace

} // namespace vorrano::serial
