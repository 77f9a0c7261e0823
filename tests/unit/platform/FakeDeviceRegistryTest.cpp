#include "support/World.h"

#include <string>
#include <vector>

namespace vorrano::support {
namespace {

using platform::DeviceEvent;
using platform::DeviceIterator;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FakeDeviceRegistryTest : public ::testing::Test {
protected:
    World world;
    FakeDeviceRegistry& registry = world.registry;
    std::vector<std::vector<std::string>> heard;

    // The callout paths of the list, read as a program does: each handle released, the list walked to its end.
    std::vector<std::string> walk(DeviceIterator iterator)
    {
        std::vector<std::string> paths;
        while (const auto device = registry.next(iterator)) {
            paths.push_back(registry.stringProperty(device, platform::kCalloutDeviceKey).value_or("none"));
            registry.release(device);
        }
        return paths;
    }

    DeviceIterator watch(DeviceEvent event)
    {
        return registry.watch(event, [this](DeviceIterator list) { heard.push_back(walk(list)); }).iterator;
    }
};

TEST_F(FakeDeviceRegistryTest, ListsTheDevicesInTheOrderOfTheirPlugging)
{
    world.plugSerialDevice("/dev/ttyS0");
    world.plugVorrano("A1B2");
    world.plugVorrano("C3D4");
    world.unplug("/dev/cu.usbserial-A1B2");

    const auto list = registry.serialStreamDevices();

    ASSERT_TRUE(list.has_value());
    EXPECT_THAT(walk(*list), ElementsAre("/dev/ttyS0", "/dev/cu.usbserial-C3D4"));
}

TEST_F(FakeDeviceRegistryTest, KnowsADevicesProperties)
{
    world.plugVorrano("C3D4");
    world.plugVorrano("A1B2");
    const auto device = registry.handleOf("/dev/cu.usbserial-A1B2");

    EXPECT_EQ(registry.stringProperty(device, platform::kDialinDeviceKey), "/dev/ttyUSB1");
    EXPECT_EQ(registry.stringProperty(device, platform::kTTYDeviceKey), "ttyUSB1");
    EXPECT_EQ(registry.stringProperty(device, platform::kTTYBaseNameKey), "ttyUSB");
    EXPECT_EQ(registry.stringProperty(device, platform::kTTYSuffixKey), "1");
    EXPECT_EQ(registry.stringProperty(device, platform::kSerialClientTypeKey), "IOSerialStream");
    EXPECT_EQ(registry.stringProperty(device, "IONothing"), std::nullopt);
    EXPECT_EQ(registry.nodeOfCalloutPath("/dev/cu.usbserial-A1B2"), "/dev/ttyUSB1");
    EXPECT_EQ(registry.nodeOfCalloutPath("/dev/ttyUSB1"), std::nullopt);
}

TEST_F(FakeDeviceRegistryTest, CountsEachHandleThatIsHandedOutOrRetained)
{
    world.plugVorrano();
    const auto list = registry.serialStreamDevices().value();
    const auto device = registry.next(list);
    registry.retain(device);

    EXPECT_EQ(registry.references(device), 2);
    EXPECT_EQ(registry.references(list), 1);
    EXPECT_EQ(registry.references(), 3);

    registry.release(device);
    registry.release(device);
    registry.release(list);

    EXPECT_EQ(registry.references(), 0);
}

TEST_F(FakeDeviceRegistryTest, TellsThroughTheMainQueueOfWhatComesAndGoes)
{
    world.plugVorrano("A1B2");
    EXPECT_THAT(walk(watch(DeviceEvent::Published)), ElementsAre("/dev/cu.usbserial-A1B2"));
    EXPECT_THAT(walk(watch(DeviceEvent::Terminated)), IsEmpty());

    world.plugVorrano("C3D4");
    world.unplug("/dev/cu.usbserial-A1B2");
    EXPECT_THAT(heard, IsEmpty());
    world.run();

    EXPECT_THAT(heard, ElementsAre(ElementsAre("/dev/cu.usbserial-C3D4"), ElementsAre("/dev/cu.usbserial-A1B2")));
}

TEST_F(FakeDeviceRegistryTest, TellsOfSeveralDevicesInOneEvent)
{
    walk(watch(DeviceEvent::Published));

    registry.plugTogether({{.calloutPath = "/dev/cu.one"}, {.calloutPath = "/dev/cu.two"}});
    world.run();

    EXPECT_THAT(heard, ElementsAre(ElementsAre("/dev/cu.one", "/dev/cu.two")));
}

TEST_F(FakeDeviceRegistryTest, FillsAListWithoutAWordThatWasNotWalkedToItsEnd)
{
    const auto list = watch(DeviceEvent::Published);

    world.plugVorrano();
    world.run();

    EXPECT_THAT(heard, IsEmpty());
    EXPECT_THAT(walk(list), ElementsAre("/dev/cu.usbserial-A1B2"));
}

TEST_F(FakeDeviceRegistryTest, RepeatsAnEventOfADeviceThatIsThere)
{
    world.plugVorrano();
    walk(watch(DeviceEvent::Published));

    registry.duplicateEvent("/dev/cu.usbserial-A1B2");
    world.run();

    EXPECT_THAT(heard, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
}

TEST_F(FakeDeviceRegistryTest, LetsADeviceBeReadUntilTheWordOfItsGoingWasHandled)
{
    world.plugVorrano();
    const auto device = registry.handleOf("/dev/cu.usbserial-A1B2");
    walk(watch(DeviceEvent::Terminated));

    world.unplug("/dev/cu.usbserial-A1B2");
    EXPECT_EQ(registry.stringProperty(device, platform::kTTYDeviceKey), "ttyUSB0");
    EXPECT_EQ(registry.nodeOfCalloutPath("/dev/cu.usbserial-A1B2"), std::nullopt);
    world.run();

    EXPECT_EQ(registry.stringProperty(device, platform::kTTYDeviceKey), std::nullopt);
}

TEST_F(FakeDeviceRegistryTest, EndsAWatchWhenItsListIsReleased)
{
    const auto list = watch(DeviceEvent::Published);
    walk(list);
    EXPECT_EQ(registry.watches(DeviceEvent::Published), 1);

    registry.release(list);
    world.plugVorrano();
    world.run();

    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(registry.watches(DeviceEvent::Published), 0);
}

TEST_F(FakeDeviceRegistryTest, FailsAsOrdered)
{
    registry.failEnumeration();
    registry.failWatch(DeviceEvent::Published, true);
    registry.failWatch(DeviceEvent::Terminated, false);

    EXPECT_EQ(registry.serialStreamDevices(), std::nullopt);
    const auto published = registry.watch(DeviceEvent::Published, {});
    const auto terminated = registry.watch(DeviceEvent::Terminated, {});

    EXPECT_FALSE(published.registered);
    EXPECT_EQ(registry.references(published.iterator), 1);
    EXPECT_FALSE(terminated.registered);
    EXPECT_EQ(terminated.iterator, 0U);
    EXPECT_TRUE(registry.serialStreamDevices().has_value());
}

} // namespace
} // namespace vorrano::support
