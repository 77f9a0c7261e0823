#include "platform/linux/UdevDeviceRegistry.h"
#include "linux/EventLoop.h"
#include "linux/HeldQueue.h"
#include "linux/umockdev/Testbed.h"

#include <map>
#include <optional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::UdevDeviceRegistry;
using platform::DeviceEvent;
using platform::DeviceIterator;
using support::Adapter;
using testing::ElementsAre;
using testing::IsEmpty;

class UdevRegistry : public testing::Test {
protected:
    // Walks a list to its end: the callout paths in it.
    std::vector<std::string> walk(DeviceIterator list)
    {
        std::vector<std::string> paths;
        while (const auto device = registry->next(list)) {
            paths.push_back(registry->stringProperty(device, platform::kCalloutDeviceKey).value_or("none"));
            registry->release(device);
        }
        return paths;
    }

    std::vector<std::string> listed()
    {
        const auto list = registry->serialStreamDevices();
        EXPECT_TRUE(list.has_value());
        const auto paths = walk(list.value_or(0));
        registry->release(list.value_or(0));
        return paths;
    }

    // Watches both kinds of event and writes down each call.
    void watch()
    {
        const auto onPublished = [this](DeviceIterator list) { published.push_back(walk(list)); };
        const auto onTerminated = [this](DeviceIterator list) { terminated.push_back(walk(list)); };
        atStart = walk(registry->watch(DeviceEvent::Published, onPublished).iterator);
        walk(registry->watch(DeviceEvent::Terminated, onTerminated).iterator);
    }

    // Lets the main queue run until so many events have been told.
    void expectEvents(std::size_t count)
    {
        const auto before = queue.ran();
        const auto told = [&] {
            queue.run();
            return queue.ran() - before;
        };
        EXPECT_TRUE(support::spinUntil([&] { return told() >= count; }));
        EXPECT_EQ(told(), count);
    }

    support::Testbed testbed;
    support::HeldQueue queue;
    std::optional<UdevDeviceRegistry> registry{std::in_place, queue};
    std::vector<std::string> atStart;
    std::vector<std::vector<std::string>> published;
    std::vector<std::vector<std::string>> terminated;
};

TEST_F(UdevRegistry, GivesAnAdapterAllOfItsProperties)
{
    testbed.plug({.node = "ttyUSB3", .serialNumber = "A1B2"});
    const auto list = registry->serialStreamDevices().value();

    const auto device = registry->next(list);

    const std::map<std::string_view, std::string> expected{{platform::kCalloutDeviceKey, "/dev/cu.usbserial-A1B2"},
                                                           {platform::kDialinDeviceKey, "/dev/ttyUSB3"},
                                                           {platform::kTTYDeviceKey, "ttyUSB3"},
                                                           {platform::kTTYBaseNameKey, "ttyUSB"},
                                                           {platform::kTTYSuffixKey, "3"},
                                                           {platform::kSerialClientTypeKey, "IOSerialStream"}};
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(registry->stringProperty(device, key), value) << key;
    }
    EXPECT_EQ(registry->stringProperty(device, "IOSomethingElse"), std::nullopt);
    EXPECT_EQ(registry->next(list), 0u);
}

TEST_F(UdevRegistry, NamesAnAdapterWithoutASerialNumberByItsPlace)
{
    testbed.plug({.socket = "2", .serialNumber = ""});

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-0:2:1.0"));
}

TEST_F(UdevRegistry, TellsTwoAdaptersWithOneSerialNumberApartByTheirPlaces)
{
    testbed.plug({.node = "ttyUSB0", .socket = "1", .serialNumber = "0001"});
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-0001"));

    testbed.plug({.node = "ttyUSB1", .socket = "2", .serialNumber = "0001"});

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-0001", "/dev/cu.usbserial-0001-0:2:1.0"));
    EXPECT_EQ(registry->nodeOfCalloutPath("/dev/cu.usbserial-0001"), "/dev/ttyUSB0");
    EXPECT_EQ(registry->nodeOfCalloutPath("/dev/cu.usbserial-0001-0:2:1.0"), "/dev/ttyUSB1");
}

TEST_F(UdevRegistry, TellsTheLinesOfOneAdapterApartByTheirInterfaces)
{
    testbed.plug({.node = "ttyUSB0", .interface = "00", .interfaces = 2});
    testbed.plug({.node = "ttyUSB1", .interface = "01", .interfaces = 2});

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A1B2-00", "/dev/cu.usbserial-A1B2-01"));
}

TEST_F(UdevRegistry, ListsACommunicationDeviceAsAModem)
{
    testbed.plug({.node = "ttyACM0", .serialNumber = "77", .interfaces = 2, .driver = "cdc_acm"});

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbmodem-77"));
}

TEST_F(UdevRegistry, ListsA8250PortThatIsThereByItsNode)
{
    testbed.addUart("ttyS0", "4");

    EXPECT_THAT(listed(), ElementsAre("/dev/ttyS0"));
}

TEST_F(UdevRegistry, LeavesOut8250PortsThatAreNotThere)
{
    testbed.addUart("ttyS1", "0");
    testbed.addUart("ttyS2", nullptr);

    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(UdevRegistry, LeavesOutTerminalsWithoutHardware)
{
    testbed.addVirtualTerminal("tty1");
    testbed.addVirtualTerminal("console");
    testbed.addVirtualTerminal("ptmx");

    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(UdevRegistry, ListsDevicesInTheOrderOfTheirPlaces)
{
    for (const char* socket : {"5", "3", "1", "4", "2"}) {
        testbed.plug({.node = std::string("ttyUSB") + socket, .socket = socket, .serialNumber = socket});
    }
    testbed.plug({.node = "ttyUSB9", .socket = "9", .serialNumber = "3"});

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-1", "/dev/cu.usbserial-2", "/dev/cu.usbserial-3",
                                      "/dev/cu.usbserial-4", "/dev/cu.usbserial-5", "/dev/cu.usbserial-3-0:9:1.0"));
}

TEST_F(UdevRegistry, GivesAWatchTheDevicesThatArePresent)
{
    testbed.plug({});

    watch();

    EXPECT_THAT(atStart, ElementsAre("/dev/cu.usbserial-A1B2"));
    EXPECT_EQ(queue.size(), 0u);
}

TEST_F(UdevRegistry, TellsOfAnAdapterThatAppears)
{
    watch();

    testbed.plug({});
    expectEvents(1);

    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(terminated, IsEmpty());
    EXPECT_EQ(registry->nodeOfCalloutPath("/dev/cu.usbserial-A1B2"), "/dev/ttyUSB0");
}

TEST_F(UdevRegistry, TellsOfAnAdapterThatVanishesWithItsProperties)
{
    testbed.plug({});
    watch();

    testbed.unplug({});
    expectEvents(1);

    EXPECT_THAT(published, IsEmpty());
    EXPECT_THAT(terminated, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(UdevRegistry, KnowsAtOnceThatAnAdapterHasGoneAndTellsWhenTheQueueIsFree)
{
    testbed.plug({});
    watch();

    testbed.unplug({});
    ASSERT_TRUE(support::spinUntil([&] { return queue.size() == 1; }));

    EXPECT_EQ(registry->nodeOfCalloutPath("/dev/cu.usbserial-A1B2"), std::nullopt);
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_THAT(terminated, IsEmpty());
}

TEST_F(UdevRegistry, KeepsThePropertiesUntilTheRemovalHasBeenHandled)
{
    testbed.plug({});
    const auto list = registry->serialStreamDevices().value();
    const auto device = registry->next(list);
    watch();
    testbed.unplug({});
    ASSERT_TRUE(support::spinUntil([&] { return queue.size() == 1; }));
    EXPECT_EQ(registry->stringProperty(device, platform::kCalloutDeviceKey), "/dev/cu.usbserial-A1B2");

    queue.run();

    EXPECT_EQ(registry->stringProperty(device, platform::kCalloutDeviceKey), std::nullopt);
}

TEST_F(UdevRegistry, KeepsTheNameOfAnAdapterThatReturnsUnderAnotherNode)
{
    testbed.plug({.node = "ttyUSB0"});
    watch();
    testbed.unplug({.node = "ttyUSB0"});
    expectEvents(1);

    testbed.plug({.node = "ttyUSB1", .socket = "4"});
    expectEvents(1);

    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_EQ(registry->nodeOfCalloutPath("/dev/cu.usbserial-A1B2"), "/dev/ttyUSB1");
}

TEST_F(UdevRegistry, KeepsTheNameOfAnAdapterThatReturnsBeforeItsRemovalWasTold)
{
    testbed.plug({.node = "ttyUSB0"});
    watch();

    testbed.unplug({.node = "ttyUSB0"});
    testbed.plug({.node = "ttyUSB1"});
    ASSERT_TRUE(
        support::spinUntil([&] { return registry->nodeOfCalloutPath("/dev/cu.usbserial-A1B2") == "/dev/ttyUSB1"; }));

    queue.runNext();
    EXPECT_THAT(terminated, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(published, IsEmpty());
    queue.runNext();
    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
}

TEST_F(UdevRegistry, PassesOnAnEventForAListedDevice)
{
    testbed.plug({});
    watch();

    testbed.sendEvent({}, "add");
    expectEvents(1);

    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(terminated, IsEmpty());
}

TEST_F(UdevRegistry, PassesOnEachEventThatComesTwice)
{
    watch();
    testbed.plug({});
    expectEvents(1);

    testbed.sendEvent({}, "add");
    expectEvents(1);

    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2"), ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A1B2"));
}

TEST_F(UdevRegistry, DropsAnEventThatRepeatsWhatTheEnumerationReported)
{
    testbed.plug({});
    testbed.setLastEventNumber(1'000'000);
    watch();
    testbed.setLastEventNumber(1'000'001);

    testbed.sendEvent({}, "add");
    testbed.plug({.node = "ttyUSB1", .socket = "2", .serialNumber = "C3D4"});
    expectEvents(1);

    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-C3D4")));
}

TEST_F(UdevRegistry, TellsOnlyOnceOfARemovalThatComesTwice)
{
    testbed.plug({});
    watch();

    testbed.sendEvent({}, "remove");
    testbed.unplug({});
    testbed.plug({.node = "ttyUSB1", .socket = "2", .serialNumber = "C3D4"});
    expectEvents(2);

    EXPECT_THAT(terminated, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
}

TEST_F(UdevRegistry, TellsOfAnAdapterThatCameBackThoughTheEventOfItsGoingWasLost)
{
    const Adapter adapter{.initializedAt = "1000"};
    testbed.plug(adapter);
    watch();

    testbed.replugUnseen(adapter, "2000");
    expectEvents(2);

    EXPECT_THAT(terminated, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
}

TEST_F(UdevRegistry, SaysNothingOfADeviceThatMerelyChanges)
{
    testbed.plug({});
    watch();

    testbed.sendEvent({}, "change");
    testbed.unplug({});
    expectEvents(1);

    EXPECT_THAT(published, IsEmpty());
    EXPECT_THAT(terminated, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
}

TEST_F(UdevRegistry, NamesAnotherAdapterInTheSamePlaceByItsOwnSerialNumber)
{
    testbed.plug({.serialNumber = "A1B2"});
    watch();

    testbed.unplug({});
    testbed.plug({.serialNumber = "C3D4"});
    expectEvents(2);

    EXPECT_THAT(terminated, ElementsAre(ElementsAre("/dev/cu.usbserial-A1B2")));
    EXPECT_THAT(published, ElementsAre(ElementsAre("/dev/cu.usbserial-C3D4")));
}

TEST_F(UdevRegistry, CallsNobodyBackBeforeTheLastEventWasWalkedToItsEnd)
{
    int calls = 0;
    const auto watch = registry->watch(DeviceEvent::Published, [&](DeviceIterator) { ++calls; });
    EXPECT_THAT(walk(watch.iterator), IsEmpty());
    testbed.plug({});
    expectEvents(1);
    EXPECT_EQ(calls, 1);

    testbed.plug({.node = "ttyUSB1", .socket = "2", .serialNumber = "C3D4"});
    expectEvents(1);

    EXPECT_EQ(calls, 1);
    EXPECT_THAT(walk(watch.iterator), ElementsAre("/dev/cu.usbserial-A1B2", "/dev/cu.usbserial-C3D4"));
}

TEST_F(UdevRegistry, TellsAReleasedWatchNothing)
{
    int calls = 0;
    const auto ended = registry->watch(DeviceEvent::Published, [&](DeviceIterator) { ++calls; });
    EXPECT_THAT(walk(ended.iterator), IsEmpty());
    registry->release(ended.iterator);

    testbed.plug({});
    expectEvents(1);

    EXPECT_EQ(calls, 0);
}

TEST_F(UdevRegistry, TellsALaterWatchNothingOfWhatItsListHeldAlready)
{
    ASSERT_THAT(listed(), IsEmpty());
    testbed.plug({});
    ASSERT_TRUE(support::spinUntil([&] { return queue.size() == 1; }));

    watch();
    queue.run();

    EXPECT_THAT(atStart, ElementsAre("/dev/cu.usbserial-A1B2"));
    EXPECT_THAT(published, IsEmpty());
}

TEST_F(UdevRegistry, AnswersForANodeOnAnyThread)
{
    testbed.plug({});
    watch();

    std::optional<std::string> node;
    std::thread([&] { node = registry->nodeOfCalloutPath("/dev/cu.usbserial-A1B2"); }).join();

    EXPECT_EQ(node, "/dev/ttyUSB0");
}

TEST_F(UdevRegistry, LeavesNothingDangerousOnTheQueueWhenItGoes)
{
    watch();
    testbed.plug({});
    ASSERT_TRUE(support::spinUntil([&] { return queue.size() == 1; }));

    registry.reset();
    queue.run();

    EXPECT_THAT(published, IsEmpty());
}

} // namespace vorrano
