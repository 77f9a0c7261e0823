// What every list of devices promises, the program's and the one that tests use in its place.
#include "linux/HeldQueue.h"
#include "linux/ScriptedSource.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "support/World.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::TtyAdded;
using linux_platform::TtyRemoved;
using platform::DeviceEvent;
using platform::DeviceHandle;
using platform::DeviceIterator;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The program's registry, on a source that the test writes.
class RealRegistry {
public:
    [[nodiscard]] platform::DeviceRegistry& registry() { return m_registry; }

    // A Vorrano with that serial number, which becomes the tty of the next number.
    void plug(const std::string& serialNumber)
    {
        const auto facts = support::adapter("ttyUSB" + std::to_string(m_plugged++), serialNumber);
        m_script.devices->push_back(facts);
        m_script.events.emplace_back(TtyAdded{++m_script.lastNumber, facts});
        receive();
    }

    void unplug(const std::string& serialNumber)
    {
        std::erase_if(*m_script.devices, [&](const auto& facts) {
            if (facts.serialNumber != serialNumber) {
                return false;
            }
            m_script.events.emplace_back(TtyRemoved{++m_script.lastNumber, facts.sysPath});
            return true;
        });
        receive();
    }

    void run() { m_queue.run(); }

private:
    // What a readable descriptor does. Nobody listens before the registry has been asked something.
    void receive()
    {
        if (m_script.calls.empty()) {
            m_script.events.clear();
        } else {
            m_registry.release(m_registry.serialStreamDevices().value());
        }
    }

    support::ScriptedSource::Script m_script;
    support::HeldQueue m_queue;
    linux_platform::UdevDeviceRegistry m_registry{m_queue, std::make_unique<support::ScriptedSource>(m_script)};
    int m_plugged = 0;
};

// The registry of the tests.
class FakeRegistry {
public:
    [[nodiscard]] platform::DeviceRegistry& registry() { return m_world.registry; }
    void plug(const std::string& serialNumber) { m_world.plugVorrano(serialNumber); }
    void unplug(const std::string& serialNumber) { m_world.unplug("/dev/cu.usbserial-" + serialNumber); }
    void run() { m_world.run(); }

private:
    support::World m_world;
};

} // namespace

template <class Maker>
class ADeviceRegistry : public testing::Test {
protected:
    // The callout paths of a list, walked to its end.
    std::vector<std::string> walk(DeviceIterator list)
    {
        std::vector<std::string> paths;
        while (const auto device = registry().next(list)) {
            paths.push_back(registry().stringProperty(device, platform::kCalloutDeviceKey).value_or("none"));
            registry().release(device);
        }
        return paths;
    }

    std::vector<std::string> listed()
    {
        const auto list = registry().serialStreamDevices().value();
        const auto paths = walk(list);
        registry().release(list);
        return paths;
    }

    // Writes down what each event brings; gives what the watch's list held at first.
    std::vector<std::string> watch(DeviceEvent event, std::vector<std::string>& told)
    {
        m_watch = registry()
                      .watch(event,
                             [this, &told](DeviceIterator list) {
                                 for (const auto& path : walk(list)) {
                                     told.push_back(path);
                                 }
                             })
                      .iterator;
        return walk(m_watch);
    }

    // The list of the last watch().
    [[nodiscard]] DeviceIterator watched() const { return m_watch; }

    [[nodiscard]] platform::DeviceRegistry& registry() { return maker.registry(); }

    Maker maker;
    std::vector<std::string> published;
    std::vector<std::string> terminated;

private:
    DeviceIterator m_watch = 0;
};

using Makers = testing::Types<RealRegistry, FakeRegistry>;
TYPED_TEST_SUITE(ADeviceRegistry, Makers);

TYPED_TEST(ADeviceRegistry, ListsWhatIsPlugged)
{
    this->maker.plug("A1");
    this->maker.plug("B2");
    EXPECT_THAT(this->listed(), ElementsAre("/dev/cu.usbserial-A1", "/dev/cu.usbserial-B2"));

    this->maker.unplug("A1");
    EXPECT_THAT(this->listed(), ElementsAre("/dev/cu.usbserial-B2"));
}

TYPED_TEST(ADeviceRegistry, TellsTheFactsOfADevice)
{
    this->maker.plug("A1");
    const auto list = this->registry().serialStreamDevices().value();
    const auto device = this->registry().next(list);
    const auto property = [&](std::string_view key) { return this->registry().stringProperty(device, key); };

    EXPECT_EQ(property(platform::kCalloutDeviceKey), "/dev/cu.usbserial-A1");
    EXPECT_EQ(property(platform::kDialinDeviceKey), "/dev/ttyUSB0");
    EXPECT_EQ(property(platform::kTTYDeviceKey), "ttyUSB0");
    EXPECT_EQ(property(platform::kTTYBaseNameKey), "ttyUSB");
    EXPECT_EQ(property(platform::kTTYSuffixKey), "0");
    EXPECT_EQ(property("IONothing"), std::nullopt);
    EXPECT_EQ(this->registry().next(list), DeviceHandle{0});
}

TYPED_TEST(ADeviceRegistry, KnowsTheNodeBehindACalloutPathAsLongAsTheDeviceIsThere)
{
    EXPECT_THAT(this->listed(), IsEmpty());
    this->maker.plug("A1");
    EXPECT_EQ(this->registry().nodeOfCalloutPath("/dev/cu.usbserial-A1"), "/dev/ttyUSB0");
    EXPECT_EQ(this->registry().nodeOfCalloutPath("/dev/ttyUSB0"), std::nullopt);

    this->maker.unplug("A1");
    EXPECT_EQ(this->registry().nodeOfCalloutPath("/dev/cu.usbserial-A1"), std::nullopt);
}

TYPED_TEST(ADeviceRegistry, BeginsAWatchWithWhatIsThere)
{
    this->maker.plug("A1");
    EXPECT_THAT(this->watch(DeviceEvent::Published, this->published), ElementsAre("/dev/cu.usbserial-A1"));
    EXPECT_THAT(this->watch(DeviceEvent::Terminated, this->terminated), IsEmpty());

    this->maker.run();
    EXPECT_THAT(this->published, IsEmpty());
}

TYPED_TEST(ADeviceRegistry, TellsOnTheMainQueueWhatCameAndWent)
{
    this->watch(DeviceEvent::Published, this->published);
    this->watch(DeviceEvent::Terminated, this->terminated);

    this->maker.plug("A1");
    this->maker.plug("B2");
    EXPECT_THAT(this->published, IsEmpty());
    this->maker.run();
    EXPECT_THAT(this->published, ElementsAre("/dev/cu.usbserial-A1", "/dev/cu.usbserial-B2"));

    this->maker.unplug("A1");
    EXPECT_THAT(this->terminated, IsEmpty());
    this->maker.run();
    EXPECT_THAT(this->terminated, ElementsAre("/dev/cu.usbserial-A1"));
}

TYPED_TEST(ADeviceRegistry, FillsAListThatWasNotWalkedToItsEndWithoutACall)
{
    int calls = 0;
    const auto watch = this->registry().watch(DeviceEvent::Published, [&](DeviceIterator) { ++calls; });
    this->maker.plug("A1");
    this->maker.run();
    EXPECT_EQ(calls, 0);

    EXPECT_THAT(this->walk(watch.iterator), ElementsAre("/dev/cu.usbserial-A1"));
    this->maker.plug("B2");
    this->maker.run();
    EXPECT_EQ(calls, 1);
}

TYPED_TEST(ADeviceRegistry, TellsNothingToAWatchWhoseListWasReleased)
{
    this->watch(DeviceEvent::Published, this->published);
    this->registry().release(this->watched());

    this->maker.plug("A1");
    this->maker.run();

    EXPECT_THAT(this->published, IsEmpty());
}

TYPED_TEST(ADeviceRegistry, TellsAWatchNothingOfWhatItsListHeldAlready)
{
    std::vector<std::string> others;
    this->watch(DeviceEvent::Published, others);
    this->maker.plug("A1");
    EXPECT_THAT(this->watch(DeviceEvent::Published, this->published), ElementsAre("/dev/cu.usbserial-A1"));

    this->maker.run();

    EXPECT_THAT(others, ElementsAre("/dev/cu.usbserial-A1"));
    EXPECT_THAT(this->published, IsEmpty());
}

} // namespace vorrano
