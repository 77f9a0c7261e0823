// What a registry makes of a source that fails, loses events or is late with them.
#include "linux/EventLoop.h"
#include "linux/HeldQueue.h"
#include "linux/ScriptedSource.h"
#include "platform/linux/UdevDeviceRegistry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::EventsLost;
using linux_platform::TtyAdded;
using linux_platform::TtyRemoved;
using platform::DeviceEvent;
using platform::DeviceIterator;
using support::adapter;
using support::adapterOf;
using testing::ElementsAre;
using testing::IsEmpty;

class RegistryOnABadDay : public testing::Test {
protected:
    std::vector<std::string> walk(DeviceIterator list)
    {
        std::vector<std::string> paths;
        while (const auto device = registry.next(list)) {
            paths.push_back(registry.stringProperty(device, platform::kCalloutDeviceKey).value_or("none"));
            registry.release(device);
        }
        return paths;
    }

    std::vector<std::string> listed()
    {
        const auto list = registry.serialStreamDevices().value();
        const auto paths = walk(list);
        registry.release(list);
        return paths;
    }

    void watch()
    {
        walk(registry.watch(DeviceEvent::Published, [this](auto list) { published = walk(list); }).iterator);
        walk(registry.watch(DeviceEvent::Terminated, [this](auto list) { terminated = walk(list); }).iterator);
    }

    support::ScriptedSource::Script script;
    support::HeldQueue queue;
    linux_platform::UdevDeviceRegistry registry{queue, std::make_unique<support::ScriptedSource>(script)};
    std::vector<std::string> published;
    std::vector<std::string> terminated;
};

TEST_F(RegistryOnABadDay, RegistersNothingWhenItCannotListen)
{
    script.canStart = false;

    EXPECT_EQ(registry.serialStreamDevices(), std::nullopt);
    EXPECT_FALSE(registry.watch(DeviceEvent::Published, [](DeviceIterator) {}).registered);
}

TEST_F(RegistryOnABadDay, RegistersNothingWhenItCannotEnumerate)
{
    script.devices = std::nullopt;

    EXPECT_EQ(registry.serialStreamDevices(), std::nullopt);
    EXPECT_FALSE(registry.watch(DeviceEvent::Terminated, [](DeviceIterator) {}).registered);
}

TEST_F(RegistryOnABadDay, TriesAgainWhenItIsAskedAgain)
{
    script.canStart = false;
    ASSERT_EQ(registry.serialStreamDevices(), std::nullopt);

    script.canStart = true;

    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(RegistryOnABadDay, ListensBeforeItEnumerates)
{
    EXPECT_THAT(listed(), IsEmpty());

    EXPECT_THAT(script.calls, ElementsAre("start", "enumerate"));
}

TEST_F(RegistryOnABadDay, TellsOfWhatCameAndWentWhileEventsWereLost)
{
    script.devices = {adapter("ttyUSB0", "GONE"), adapter("ttyUSB1", "STAYS")};
    watch();

    script.devices = {adapter("ttyUSB1", "STAYS"), adapter("ttyUSB2", "NEW")};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-STAYS", "/dev/cu.usbserial-NEW"));
    ASSERT_EQ(queue.size(), 1u);
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-GONE"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-NEW"));
}

TEST_F(RegistryOnABadDay, HandsOnTheNextEventAfterWhatTheOneBeforeLeftToTheQueue)
{
    script.devices = {adapter("ttyUSB0", "BACK")};
    std::vector<std::string> order;
    walk(registry.watch(DeviceEvent::Published, [&](auto) { order.emplace_back("published"); }).iterator);
    walk(registry
             .watch(DeviceEvent::Terminated,
                    [&](auto) {
                        order.emplace_back("terminated");
                        queue.async([&] { order.emplace_back("removed"); });
                    })
             .iterator);

    script.devices = {adapter("ttyUSB1", "BACK")};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-BACK"));
    queue.run();

    EXPECT_THAT(order, ElementsAre("terminated", "removed", "published"));
}

TEST_F(RegistryOnABadDay, TellsOfAnAdapterThatTookAnothersPlaceWhileEventsWereLost)
{
    script.devices = {adapter("ttyUSB0", "OLD")};
    watch();

    script.devices = {adapter("ttyUSB0", "NEW")};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-NEW"));
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-OLD"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-NEW"));
}

TEST_F(RegistryOnABadDay, TellsOfAnAdapterThatWentAndCameBackWhileEventsWereLost)
{
    script.devices = {adapterOf("ttyUSB0", "A", 1000), adapterOf("ttyUSB1", "STAYS", 1000)};
    watch();

    script.devices = {adapterOf("ttyUSB0", "A", 2000), adapterOf("ttyUSB1", "STAYS", 1000)};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-STAYS", "/dev/cu.usbserial-A"));
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, TellsOfAnAdapterThatCameBackThoughUdevSawItsFirstStayOnlyAfterItWasListed)
{
    script.devices = {adapterOf("ttyUSB0", "A", 0)};
    script.lastNumber = 7;
    watch();
    script.events = {TtyAdded{7, adapterOf("ttyUSB0", "A", 1000)}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    ASSERT_EQ(queue.size(), 0u) << "it is the one that is listed";

    script.devices = {adapterOf("ttyUSB0", "A", 2000)};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, LearnsAfterALossWhenUdevSawAnAdapterThatStayed)
{
    script.devices = {adapterOf("ttyUSB0", "A", 0)};
    watch();
    script.devices = {adapterOf("ttyUSB0", "A", 1000)};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    ASSERT_EQ(queue.size(), 0u) << "it is the one that is listed";

    script.devices = {adapterOf("ttyUSB0", "A", 2000)};
    script.events = {EventsLost{}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, IgnoresTheEventsOfAnEarlierStayOfAnAdapterThatItFound)
{
    script.devices = {adapterOf("ttyUSB0", "A", 2000)};
    script.lastNumber = 9;
    watch();

    script.events = {TtyAdded{6, adapterOf("ttyUSB0", "A", 1000)}, TtyRemoved{7, "/sys/ttyUSB0"},
                     TtyAdded{9, adapterOf("ttyUSB0", "A", 2000)}};

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_EQ(queue.size(), 0u);
}

TEST_F(RegistryOnABadDay, TellsOfAnAdapterThatCameBackWhileItLooked)
{
    script.devices = {adapterOf("ttyUSB0", "A", 1000)};
    script.lastNumber = 9;
    watch();

    // Both happened after the enumeration had seen the adapter, and before it ended.
    script.events = {TtyRemoved{8, "/sys/ttyUSB0"}, TtyAdded{9, adapterOf("ttyUSB0", "A", 2000)}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, KeepsItsListWhenItCannotEnumerateAfterALoss)
{
    script.devices = {adapter("ttyUSB0", "A")};
    watch();

    script.devices = std::nullopt;
    script.events = {EventsLost{}};

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_EQ(queue.size(), 0u);
}

TEST_F(RegistryOnABadDay, IgnoresARemovalThatIsOlderThanTheAdapterItFound)
{
    script.devices = {adapter("ttyUSB0", "A")};
    script.lastNumber = 7;
    watch();

    script.events = {TtyRemoved{6, "/sys/ttyUSB0"}, TtyAdded{7, adapter("ttyUSB0", "A")}};

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    EXPECT_EQ(queue.size(), 0u);
}

TEST_F(RegistryOnABadDay, BelievesAnOldRemovalOfAnAdapterThatWasGoingWhenItLooked)
{
    script.devices = {adapter("ttyUSB0", "A")};
    script.lastNumber = 7;
    watch();

    script.devices.emplace();
    script.events = {TtyRemoved{7, "/sys/ttyUSB0"}};

    EXPECT_THAT(listed(), IsEmpty());
    queue.run();
    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, TakesAnAdapterOverWhosePropertiesCameLate)
{
    auto early = adapter("ttyUSB0", "");
    early.path = "";
    early.initialized = false;
    script.devices = {early};
    script.lastNumber = 7;
    watch();

    script.events = {TtyAdded{7, adapter("ttyUSB0", "A")}};

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A"));
    queue.run();
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, RenamesAnAdapterWhoseEventShowsAnotherSerialNumber)
{
    script.devices = {adapter("ttyUSB0", "OLD")};
    watch();

    script.events = {TtyAdded{1, adapter("ttyUSB0", "NEW")}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-NEW"));
    queue.run();

    EXPECT_THAT(terminated, ElementsAre("/dev/cu.usbserial-OLD"));
    EXPECT_THAT(published, ElementsAre("/dev/cu.usbserial-NEW"));
}

TEST_F(RegistryOnABadDay, GivesAFreedNameToTheNextAdapterNotToOneThatIsPresent)
{
    script.devices = {adapter("ttyUSB0", "A"), adapter("ttyUSB1", "A")};
    watch();

    script.events = {TtyRemoved{1, "/sys/ttyUSB0"}, TtyAdded{2, adapter("ttyUSB1", "A")}};
    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A-0:ttyUSB1"));
    script.events = {TtyAdded{3, adapter("ttyUSB2", "A")}};

    EXPECT_THAT(listed(), ElementsAre("/dev/cu.usbserial-A-0:ttyUSB1", "/dev/cu.usbserial-A"));
}

TEST_F(RegistryOnABadDay, GivesTheThirdOfOneNameAndPlaceItsTtyNameToo)
{
    auto second = adapter("ttyUSB1", "A");
    auto third = adapter("ttyUSB2", "A");
    second.path = third.path = "pci-usb-0:1";
    script.devices = {adapter("ttyUSB0", "A"), second, third};

    EXPECT_THAT(listed(),
                ElementsAre("/dev/cu.usbserial-A", "/dev/cu.usbserial-A-0:1", "/dev/cu.usbserial-A-0:1-ttyUSB2"));
}

TEST_F(RegistryOnABadDay, CountsTheHandlesItGivesOut)
{
    script.devices = {adapter("ttyUSB0", "A")};
    const auto list = registry.serialStreamDevices().value();
    const auto device = registry.next(list);
    registry.retain(device);

    registry.release(device);
    registry.release(device);
    registry.release(device);
    registry.release(list);

    EXPECT_EQ(registry.stringProperty(device, platform::kTTYDeviceKey), "ttyUSB0") << "present devices keep theirs";
    EXPECT_EQ(registry.next(list), 0u);
}

TEST_F(RegistryOnABadDay, KeepsAListForAsManyReleasesAsItWasRetained)
{
    script.devices = {adapter("ttyUSB0", "A")};
    const auto list = registry.serialStreamDevices().value();
    registry.retain(list);

    registry.release(list);

    EXPECT_THAT(walk(list), ElementsAre("/dev/cu.usbserial-A"));
    registry.release(list);
}

TEST_F(RegistryOnABadDay, KnowsNothingOfNumbersThatItNeverGaveOut)
{
    registry.retain(99);
    registry.release(99);

    EXPECT_EQ(registry.next(99), 0u);
    EXPECT_EQ(registry.stringProperty(99, platform::kTTYDeviceKey), std::nullopt);
    EXPECT_EQ(registry.nodeOfCalloutPath("/dev/cu.usbserial-A"), std::nullopt);
}

TEST_F(RegistryOnABadDay, EndsAWatchInsideItsOwnCallback)
{
    DeviceIterator list = 0;
    int calls = 0;
    list = registry
               .watch(DeviceEvent::Published,
                      [&](DeviceIterator told) {
                          ++calls;
                          registry.release(told);
                      })
               .iterator;
    EXPECT_THAT(walk(list), IsEmpty());

    script.events = {TtyAdded{1, adapter("ttyUSB0", "A")}, TtyAdded{2, adapter("ttyUSB1", "B")}};
    EXPECT_EQ(listed().size(), 2u);
    queue.run();

    EXPECT_EQ(calls, 1);
}

} // namespace vorrano
