#include "unit/serial/SerialPortFixture.h"

#include <set>

namespace vorrano::serial {

namespace {

class PortCreation : public testing::Test {
protected:
    support::DeviceProperties a1b2()
    {
        return {"/dev/cu.usbserial-A1B2", "/dev/ttyUSB3", "ttyUSB3", "ttyUSB", "3", "IOSerialStream"};
    }

    support::World world;
};

TEST_F(PortCreation, OfTheSameDeviceTwiceGivesTheSameObject)
{
    world.plugSerialDevice(a1b2());
    const auto device = world.registry.handleOf("/dev/cu.usbserial-A1B2");

    const auto port = SerialPort::serialPortWithDevice(device);

    EXPECT_EQ(SerialPort::serialPortWithDevice(device), port);
    EXPECT_EQ(SerialPort::initWithDevice(device), port);
}

TEST_F(PortCreation, OfTheCalloutAndTheDialinPathGivesTheSameObject)
{
    world.plugSerialDevice(a1b2());

    const auto port = SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2");

    EXPECT_NE(port, nullptr);
    EXPECT_EQ(SerialPort::serialPortWithPath("/dev/ttyUSB3"), port);
    EXPECT_EQ(SerialPort::initWithPath("/dev/cu.usbserial-A1B2"), port);
    EXPECT_EQ(port->path(), "/dev/cu.usbserial-A1B2");
}

TEST_F(PortCreation, AfterTheFirstObjectIsGoneGivesAnother)
{
    world.plugSerialDevice(a1b2());
    auto port = SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2");
    port->setParity(SerialParityOdd);

    port.reset();

    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.usbserial-A1B2"), nullptr);
    EXPECT_EQ(SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2")->parity(), SerialParityNone);
}

TEST_F(PortCreation, OfAnEmptyOrUnknownPathOrOfNoneYieldsNothing)
{
    world.plugSerialDevice(a1b2());

    EXPECT_EQ(SerialPort::initWithPath(""), nullptr);
    EXPECT_EQ(SerialPort::initWithPath("/dev/cu.usbserial-C3D4"), nullptr);
    EXPECT_EQ(SerialPort::init(), nullptr);
}

TEST_F(PortCreation, YieldsNothingWhenTheDevicesCannotBeListed)
{
    world.plugSerialDevice(a1b2());
    world.registry.failEnumeration();

    EXPECT_EQ(SerialPort::initWithPath("/dev/cu.usbserial-A1B2"), nullptr);
    EXPECT_EQ(SerialPort::deviceFromBSDPath("/dev/cu.usbserial-A1B2"),
              world.registry.handleOf("/dev/cu.usbserial-A1B2"));
}

TEST_F(PortCreation, SetsTheDefaults)
{
    world.plugSerialDevice(a1b2());

    const auto port = SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2");

    EXPECT_EQ(port->path(), "/dev/cu.usbserial-A1B2");
    EXPECT_EQ(port->name(), "ttyUSB3");
    EXPECT_EQ(port->IOKitDevice(), world.registry.handleOf("/dev/cu.usbserial-A1B2"));
    EXPECT_EQ(port->fileDescriptor(), 0);
    EXPECT_FALSE(port->isOpen());
    EXPECT_EQ(*port->baudRate(), 19200U);
    EXPECT_EQ(port->numberOfStopBits(), 1U);
    EXPECT_EQ(port->parity(), SerialParityNone);
    EXPECT_FALSE(port->shouldEchoReceivedData());
    EXPECT_FALSE(port->usesRTSCTSFlowControl());
    EXPECT_FALSE(port->usesDTRDSRFlowControl());
    EXPECT_FALSE(port->usesDCDOutputFlowControl());
    EXPECT_FALSE(port->RTS());
    EXPECT_FALSE(port->DTR());
    EXPECT_FALSE(port->CTS());
    EXPECT_FALSE(port->DSR());
    EXPECT_FALSE(port->DCD());
    EXPECT_EQ(port->delegate(), nullptr);
    EXPECT_THAT(world.terminal.calls(), IsEmpty());
}

TEST_F(PortCreation, MakesARequestQueueOfItsOwn)
{
    world.plugSerialDevice(a1b2());

    const auto port = SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2");
    const auto again = SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2");

    ASSERT_EQ(world.backgroundQueue.serialQueues().size(), 1U);
    EXPECT_TRUE(world.backgroundQueue.serialQueues().front().ends_with(".SerialPort.requestHandlingQueue"));
}

TEST_F(PortCreation, ReadsEachPropertyOfADevice)
{
    world.plugSerialDevice(a1b2());
    const auto device = world.registry.handleOf("/dev/cu.usbserial-A1B2");

    EXPECT_EQ(SerialPort::bsdCalloutPathFromDevice(device), "/dev/cu.usbserial-A1B2");
    EXPECT_EQ(SerialPort::bsdDialinPathFromDevice(device), "/dev/ttyUSB3");
    EXPECT_EQ(SerialPort::modemNameFromDevice(device), "ttyUSB3");
    EXPECT_EQ(SerialPort::baseNameFromDevice(device), "ttyUSB");
    EXPECT_EQ(SerialPort::suffixFromDevice(device), "3");
    EXPECT_EQ(SerialPort::serviceTypeFromDevice(device), "IOSerialStream");
    EXPECT_EQ(SerialPort::stringPropertyOfForIOSerialKey(device, "IOTTYDevice"), "ttyUSB3");
    EXPECT_EQ(SerialPort::stringPropertyOfForIOSerialKey(device, "IOUnknown"), std::nullopt);
    EXPECT_EQ(SerialPort::stringPropertyOfForIOSerialKey(999, "IOTTYDevice"), std::nullopt);
}

TEST_F(PortCreation, OfADeviceWithoutPropertiesHasAnEmptyPathAndName)
{
    const auto device = world.registry.plug({});

    const auto port = SerialPort::serialPortWithDevice(device);
    const auto other = SerialPort::serialPortWithDevice(device);

    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->path(), "");
    EXPECT_EQ(port->name(), "");
    EXPECT_NE(other, port);
    EXPECT_FALSE(port->isEqual(*other));
}

TEST_F(PortCreation, LooksDevicesUpByTheirCalloutAndTheirDialinPathInTheOrderOfTheRegistry)
{
    const auto first = world.registry.plug({"/dev/cu.one", "/dev/shared", "one", {}, {}, "IOSerialStream"});
    const auto second = world.registry.plug({"/dev/shared", "/dev/two", "two", {}, {}, "IOSerialStream"});

    EXPECT_EQ(SerialPort::deviceFromBSDPath("/dev/shared"), first);
    EXPECT_EQ(SerialPort::deviceFromBSDPath("/dev/two"), second);
    EXPECT_EQ(SerialPort::deviceFromBSDPath("/dev/three"), 0U);
    EXPECT_EQ(SerialPort::deviceFromBSDPath(""), 0U);
}

TEST_F(PortCreation, KeepsTheHandleOfTheDeviceItFindsAndReleasesTheOthers)
{
    const auto other = world.registry.plug({"/dev/cu.one", "/dev/one", "one", {}, {}, "IOSerialStream"});
    const auto wanted = world.registry.plug({"/dev/cu.two", "/dev/two", "two", {}, {}, "IOSerialStream"});
    const auto behind = world.registry.plug({"/dev/cu.three", "/dev/three", "three", {}, {}, "IOSerialStream"});

    ASSERT_EQ(SerialPort::deviceFromBSDPath("/dev/two"), wanted);

    EXPECT_EQ(world.registry.references(other), 0);
    EXPECT_EQ(world.registry.references(wanted), 1);
    EXPECT_EQ(world.registry.references(behind), 0);
    EXPECT_EQ(world.registry.references(), 1);
}

TEST_F(PortCreation, RetainsItsDeviceAndNeverReleasesIt)
{
    const auto device = world.registry.plug({"/dev/cu.one", "/dev/one", "one", {}, {}, "IOSerialStream"});

    auto port = SerialPort::serialPortWithDevice(device);
    EXPECT_EQ(world.registry.references(device), 1);
    port.reset();

    EXPECT_EQ(world.registry.references(device), 1);
}

TEST_F(PortCreation, HasTwoDeviceSettersOneThatCountsAndOneThatOnlyStores)
{
    const auto one = world.registry.plug({"/dev/cu.one", "/dev/one", "one", {}, {}, "IOSerialStream"});
    const auto two = world.registry.plug({"/dev/cu.two", "/dev/two", "two", {}, {}, "IOSerialStream"});
    const auto port = SerialPort::serialPortWithDevice(one);

    port->setIoKitDevice(two);
    EXPECT_EQ(port->IOKitDevice(), two);
    EXPECT_EQ(world.registry.references(one), 0);
    EXPECT_EQ(world.registry.references(two), 1);

    port->setIoKitDevice(two);
    EXPECT_EQ(world.registry.references(two), 1);

    port->setIOKitDevice(one);
    EXPECT_EQ(port->IOKitDevice(), one);
    EXPECT_EQ(world.registry.references(one), 0);
    EXPECT_EQ(world.registry.references(two), 1);

    port->setIOKitDevice(0);
    port->setIoKitDevice(two);
    port->setIoKitDevice(0);
    EXPECT_EQ(port->IOKitDevice(), 0U);
    EXPECT_EQ(world.registry.references(two), 1);
}

TEST_F(PortCreation, FindsTheFirstLivePortOfAPath)
{
    const auto one = SerialPort::serialPortWithDevice(world.registry.plug({"/dev/cu.one", {}, {}, {}, {}, {}}));
    const auto two = SerialPort::serialPortWithDevice(world.registry.plug({"/dev/cu.two", {}, {}, {}, {}, {}}));

    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.one"), one);
    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.two"), two);
    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.three"), nullptr);
    EXPECT_EQ(SerialPort::existingPortWithPath(""), nullptr);
}

TEST_F(PortCreation, RemovesEveryEntryOfAnObjectFromTheRegistry)
{
    const auto device = world.registry.plug({"/dev/cu.one", {}, {}, {}, {}, {}});
    const auto port = SerialPort::serialPortWithDevice(device);
    SerialPort::addSerialPort(port);

    SerialPort::removeSerialPort(*port);

    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.one"), nullptr);
    const auto other = SerialPort::serialPortWithDevice(device);
    EXPECT_NE(other, port);
    SerialPort::removeSerialPort(*port);
    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.one"), other);
}

TEST_F(PortCreation, TellsPortsApartByTheirPaths)
{
    const auto device = world.registry.plug({"/dev/cu.one", {}, "ttyUSB7", {}, {}, {}});
    const auto one = SerialPort::serialPortWithDevice(device);
    SerialPort::removeSerialPort(*one);
    const auto same = SerialPort::serialPortWithDevice(device);
    const auto two = SerialPort::serialPortWithDevice(world.registry.plug({"/dev/cu.two", {}, {}, {}, {}, {}}));

    EXPECT_TRUE(one->isEqual(*one));
    EXPECT_TRUE(one->isEqual(*same));
    EXPECT_FALSE(one->isEqual(*two));
    EXPECT_EQ(one->hash(), same->hash());
    EXPECT_EQ(one->hash(), std::hash<std::string>()("/dev/cu.one"));
    EXPECT_EQ(one->description(), "ttyUSB7");
}

TEST_F(PortCreation, KnowsThatIsOpenChangesWithTheFileDescriptor)
{
    EXPECT_EQ(SerialPort::keyPathsForValuesAffectingValueForKey("isOpen"), std::set<std::string>{"fileDescriptor"});
    EXPECT_EQ(SerialPort::keyPathsForValuesAffectingValueForKey("CTS"), std::set<std::string>{});
}

TEST_F(PortCreation, MayEndOnAnyThread)
{
    world.plugVorrano();
    auto port = SerialPort::serialPortWithPath("/dev/cu.usbserial-A1B2");
    const std::weak_ptr<SerialPort> alive = port;

    world.backgroundQueue.async([held = std::move(port)]() mutable { held.reset(); });
    world.run();

    EXPECT_TRUE(alive.expired());
    EXPECT_EQ(SerialPort::existingPortWithPath("/dev/cu.usbserial-A1B2"), nullptr);
}

} // namespace

} // namespace vorrano::serial
