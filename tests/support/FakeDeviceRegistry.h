#pragma once

#include "platform/DeviceRegistry.h"
#include "support/FakeMainQueue.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::support {

// A device's properties; an absent one can't be read.
struct DeviceProperties {
    std::optional<std::string> calloutPath{};
    std::optional<std::string> dialinPath{};
    std::optional<std::string> ttyName{};
    std::optional<std::string> baseName{};
    std::optional<std::string> suffix{};
    std::optional<std::string> clientType = "IOSerialStream";
};

// A list of serial devices that a test plugs and unplugs. Events are delivered by the main queue, one task each. A
// list whose end the program has not walked to yet is filled without a call.
class FakeDeviceRegistry : public platform::DeviceRegistry {
public:
    explicit FakeDeviceRegistry(FakeMainQueue& mainQueue);

    [[nodiscard]] std::optional<platform::DeviceIterator> serialStreamDevices() override;
    Watch watch(platform::DeviceEvent event, std::function<void(platform::DeviceIterator)> told) override;
    platform::DeviceHandle next(platform::DeviceIterator iterator) override;
    [[nodiscard]] std::optional<std::string> stringProperty(platform::DeviceHandle device,
                                                            std::string_view key) const override;
    void retain(std::uint32_t handle) override;
    void release(std::uint32_t handle) override;
    [[nodiscard]] std::optional<std::string> nodeOfCalloutPath(const std::string& path) const override;

    // Appends a device to the list and tells of it. Two plugs with no run() between them are two events; plugTogether
    // makes one event of several devices.
    platform::DeviceHandle plug(const DeviceProperties& properties);
    std::vector<platform::DeviceHandle> plugTogether(const std::vector<DeviceProperties>& devices);

    // Takes the device with that callout path out of the list and tells of it.
    void unplug(const std::string& calloutPath);

    // Tells of a present device once more.
    void duplicateEvent(const std::string& calloutPath, platform::DeviceEvent event = platform::DeviceEvent::Published);

    // Tells of a present device in one event that names it twice.
    void nameTwiceInOneEvent(const std::string& calloutPath, platform::DeviceEvent event);

    // The first list of the next watch for removals names this present device.
    void nameInTheFirstListOfRemovals(const std::string& calloutPath);

    // The next enumeration (serialStreamDevices) can't start.
    void failEnumeration(int times = 1) { m_failingEnumerations = times; }

    // The next registration for that event fails, with an iterator or without one.
    void failWatch(platform::DeviceEvent event, bool withIterator = true);

    // The handle of the present device; 0 when there is none.
    [[nodiscard]] platform::DeviceHandle handleOf(const std::string& calloutPath) const;

    // How many releases the handle (of a device or a list) still asks for.
    [[nodiscard]] int references(std::uint32_t handle) const;

    // The same, of all handles together; a program that keeps nothing leaves 0.
    [[nodiscard]] int references() const;

    // Registrations that stand for the event.
    [[nodiscard]] int watches(platform::DeviceEvent event) const;

    // A free tty number: the lowest N for which no present device has the dial-in path "/dev/ttyUSBN".
    [[nodiscard]] int freeTtyNumber() const;

private:
    struct List {
        std::deque<platform::DeviceHandle> devices;
        std::function<void(platform::DeviceIterator)> told;
        std::optional<platform::DeviceEvent> event;
        bool armed = false;
        std::uint64_t since = 0;
    };

    void expectMainThread() const;
    platform::DeviceIterator addList(List list);
    [[nodiscard]] platform::DeviceHandle pluggedInAt(const std::string& calloutPath) const;
    [[nodiscard]] bool isReadable(platform::DeviceHandle device) const;
    void tell(platform::DeviceEvent event, const std::vector<platform::DeviceHandle>& devices);
    void deliver(platform::DeviceEvent event, const std::vector<platform::DeviceHandle>& devices, std::uint64_t number);

    FakeMainQueue& m_mainQueue;
    std::map<platform::DeviceHandle, DeviceProperties> m_devices;
    std::deque<platform::DeviceHandle> m_present;
    std::deque<platform::DeviceHandle> m_firstRemovals;
    // The devices of the events that have not been handled, in their order.
    std::deque<platform::DeviceHandle> m_going;
    std::map<platform::DeviceIterator, List> m_lists;
    std::map<std::uint32_t, int> m_references;
    std::map<platform::DeviceEvent, bool> m_failingWatches;
    std::uint32_t m_lastHandle = 0;
    std::uint64_t m_lastEvent = 0;
    int m_failingEnumerations = 0;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
};

} // namespace vorrano::support
