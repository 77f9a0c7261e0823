#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/MainQueue.h"
#include "platform/linux/CalloutNodes.h"
#include "platform/linux/DeviceHandles.h"
#include "platform/linux/DeviceSource.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QSocketNotifier;

namespace vorrano::linux_platform {

// The serial devices that udev knows.
//
// It begins to listen with the first call, and needs the main thread's event loop from then on. A device that comes or
// goes is known at once (nodeOfCalloutPath() answers accordingly). It is reported on the main queue, one event per
// task; the next event waits until the tasks that the one before it submitted have run. Lifetime: the queue outlives
// it; what the queue still holds of it does nothing once it has gone.
class UdevDeviceRegistry final : public platform::DeviceRegistry {
public:
    explicit UdevDeviceRegistry(platform::MainQueue& mainQueue);
    UdevDeviceRegistry(platform::MainQueue& mainQueue, std::unique_ptr<DeviceSource> source);
    ~UdevDeviceRegistry() override;

    [[nodiscard]] std::optional<platform::DeviceIterator> serialStreamDevices() override;
    Watch watch(platform::DeviceEvent event, std::function<void(platform::DeviceIterator)> told) override;
    platform::DeviceHandle next(platform::DeviceIterator iterator) override;
    [[nodiscard]] std::optional<std::string> stringProperty(platform::DeviceHandle device,
                                                            std::string_view key) const override;
    void retain(std::uint32_t handle) override;
    void release(std::uint32_t handle) override;
    [[nodiscard]] std::optional<std::string> nodeOfCalloutPath(const std::string& path) const override;

private:
    struct Event {
        std::uint64_t number;
        platform::DeviceEvent kind;
        DeviceHandles::Use device;
    };
    struct WatchEntry {
        platform::DeviceIterator list;
        platform::DeviceEvent kind;
        // Events up to this number are part of the list that the watch started with.
        std::uint64_t since;
    };
    using Present = std::list<DeviceHandles::Use>;

    bool ensureStarted();
    void receiveEvents();
    void handle(const TtyAdded& added);
    void handle(const TtyRemoved& removed);
    void handle(const OtherEvent& other);
    void handle(const EventsLost& lost);
    [[nodiscard]] bool wasSeenByEnumeration(std::uint64_t number) const;

    [[nodiscard]] std::optional<std::vector<SerialDevice>> enumerate();
    platform::DeviceHandle add(const SerialDevice& device);
    void remove(Present::iterator device);
    [[nodiscard]] Present::iterator find(const std::string& sysPath);
    [[nodiscard]] const SerialDevice& deviceOf(const DeviceHandles::Use& present) const;
    void keepNewest(const DeviceHandles::Use& present, const SerialDevice& newest);
    [[nodiscard]] std::vector<platform::DeviceHandle> presentDevices() const;
    void post(platform::DeviceEvent kind, platform::DeviceHandle device);
    void submitDelivery();
    void deliverNext();

    platform::MainQueue& m_mainQueue;
    const std::unique_ptr<DeviceSource> m_source;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::uint64_t m_enumeratedUpTo = 0;

    DeviceHandles m_handles;
    Present m_present;
    CalloutNodes m_nodes;
    std::deque<Event> m_events;
    std::uint64_t m_lastEvent = 0;
    bool m_isDelivering = false;
    std::vector<WatchEntry> m_watches;

    // Held weakly by the tasks on the main queue.
    std::shared_ptr<UdevDeviceRegistry*> m_self;
};

} // namespace vorrano::linux_platform
