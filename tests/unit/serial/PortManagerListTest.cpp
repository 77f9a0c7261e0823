#include "unit/serial/PortManagerFixture.h"

#include <stdexcept>

namespace vorrano::serial {

namespace {

class PortManagerCallbacks : public PortManager {};

TEST_F(PortManagerCallbacks, ReleasesTheOldListHandleAndRetainsTheNewOne)
{
    const auto shared = manager();
    const auto old = shared->portPublishedNotificationIterator();
    const auto other = *world.registry.serialStreamDevices();

    shared->setPortPublishedNotificationIterator(other);
    EXPECT_EQ(world.registry.references(old), 0);
    EXPECT_EQ(world.registry.references(other), 2);
    shared->setPortPublishedNotificationIterator(other);
    EXPECT_EQ(world.registry.references(other), 2);

    shared->setPortTerminatedNotificationIterator(other);
    EXPECT_EQ(world.registry.references(other), 3);
    shared->setPortTerminatedNotificationIterator(0);
    EXPECT_EQ(world.registry.references(other), 2);
    EXPECT_EQ(shared->portTerminatedNotificationIterator(), 0U);
}

class ForeignContext : public CallbackContext {
public:
    [[nodiscard]] std::string description() const override { return "<Kettle>"; }
};

TEST_F(PortManagerCallbacks, ForwardsACallbackWithItsOwnContext)
{
    const auto shared = manager();
    listen();
    const auto devices = *world.registry.serialStreamDevices();

    SerialPortManagerPortsPublishedNotificationCallback(shared.get(), devices);
    SerialPortManagerPortsTerminatedNotificationCallback(shared.get(), devices);

    EXPECT_THAT(posted, ElementsAre("SerialPortWasConnectedNotification:", "SerialPortWasDisconnectedNotification:"));
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

TEST_F(PortManagerCallbacks, OnlyLogsACallbackWithAForeignContext)
{
    world.plugVorrano();
    manager();
    listen();
    ForeignContext foreign;
    const auto devices = *world.registry.serialStreamDevices();

    SerialPortManagerPortsPublishedNotificationCallback(&foreign, devices);
    SerialPortManagerPortsTerminatedNotificationCallback(&foreign, devices);
    SerialPortManagerPortsTerminatedNotificationCallback(nullptr, devices);

    EXPECT_THAT(posted, IsEmpty());
    EXPECT_THAT(
        world.log.lines(),
        ElementsAre("Unexpected context object <Kettle> in void "
                    "SerialPortManagerPortsPublishedNotificationCallback(void *, io_iterator_t). Context object should "
                    "be an instance of SerialPortManager",
                    "Unexpected context object <Kettle> in void "
                    "SerialPortManagerPortsTerminatedNotificationCallback(void *, io_iterator_t). Context object "
                    "should be an instance of SerialPortManager",
                    "Unexpected context object (null) in void "
                    "SerialPortManagerPortsTerminatedNotificationCallback(void *, io_iterator_t). Context object "
                    "should be an instance of SerialPortManager"));
    EXPECT_EQ(world.registry.next(devices), world.registry.handleOf(kA));
}

TEST_F(PortManagerCallbacks, DescribesItself) { EXPECT_EQ(manager()->description(), "<SerialPortManager>"); }

class PortList : public PortManager {
protected:
    PortList()
    {
        for (const auto* const serial : {"1", "2", "3"}) {
            world.plugVorrano(serial);
        }
        manager();
        ports = manager()->availablePorts();
        world.run();
        m_observer =
            manager()->observeAvailablePorts([this](const SerialPortsChange& change) { changes.push_back(change); });
    }
    ~PortList() override { m_observer.reset(); }

    SerialPorts ports;
    std::vector<SerialPortsChange> changes;

private:
    platform::Subscription m_observer;
};

TEST_F(PortList, IsReadByIndex)
{
    EXPECT_EQ(manager()->countOfAvailablePorts(), 3U);
    EXPECT_EQ(manager()->objectInAvailablePortsAtIndex(2), ports[2]);
    EXPECT_THROW(static_cast<void>(manager()->objectInAvailablePortsAtIndex(3)), std::out_of_range);
}

TEST_F(PortList, IsSetToACopy)
{
    SerialPorts given{ports[1]};

    manager()->setAvailablePorts(given);
    given.clear();

    EXPECT_THAT(manager()->availablePorts(), ElementsAre(ports[1]));
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].kind, SerialPortsChange::Kind::Setting);
    EXPECT_THAT(changes[0].objects, ElementsAre(ports[1]));
}

TEST_F(PortList, IsTheStoredOneItself)
{
    const auto& list = manager()->availablePorts();

    manager()->removeObjectFromAvailablePortsAtIndex(0);

    EXPECT_EQ(list.size(), 2U);
}

TEST_F(PortList, TakesPortsAtIndexesOfTheListAsItIsAfterwards)
{
    manager()->setAvailablePorts({ports[1]});
    changes.clear();

    manager()->insertAvailablePortsAtIndexes({ports[0], ports[2]}, {0, 2});

    EXPECT_THAT(manager()->availablePorts(), ElementsAre(ports[0], ports[1], ports[2]));
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].kind, SerialPortsChange::Kind::Insertion);
    EXPECT_THAT(changes[0].indexes, ElementsAre(0U, 2U));
    EXPECT_THAT(changes[0].objects, ElementsAre(ports[0], ports[2]));
}

TEST_F(PortList, LosesPortsAtIndexesOfTheListAsItWasBefore)
{
    manager()->removeAvailablePortsAtIndexes({0, 2});

    EXPECT_THAT(manager()->availablePorts(), ElementsAre(ports[1]));
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].kind, SerialPortsChange::Kind::Removal);
    EXPECT_THAT(changes[0].indexes, ElementsAre(0U, 2U));
    EXPECT_THAT(changes[0].objects, ElementsAre(ports[0], ports[2]));
}

TEST_F(PortList, RefusesIndexesThatAreNone)
{
    EXPECT_THROW(manager()->insertObjectInAvailablePortsAtIndex(ports[0], 4), std::out_of_range);
    EXPECT_THROW(manager()->insertAvailablePortsAtIndexes({ports[0], ports[1]}, {1, 1}), std::invalid_argument);
    EXPECT_THROW(manager()->insertAvailablePortsAtIndexes({ports[0]}, {1, 2}), std::invalid_argument);
    EXPECT_THROW(manager()->removeObjectFromAvailablePortsAtIndex(3), std::out_of_range);
    EXPECT_THROW(manager()->removeAvailablePortsAtIndexes({2, 1}), std::invalid_argument);

    EXPECT_EQ(manager()->availablePorts(), ports);
    EXPECT_TRUE(changes.empty());
}

} // namespace

} // namespace vorrano::serial
