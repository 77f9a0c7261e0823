#include "platform/linux/UdevDeviceRegistry.h"

#include "platform/linux/UdevSource.h"

#include <algorithm>
#include <utility>

#include <QSocketNotifier>

namespace vorrano::linux_platform {

using platform::DeviceEvent;
using platform::DeviceHandle;
using platform::DeviceIterator;

UdevDeviceRegistry::UdevDeviceRegistry(platform::MainQueue& mainQueue)
    : UdevDeviceRegistry(mainQueue, std::make_unique<UdevSource>())
{}

UdevDeviceRegistry::UdevDeviceRegistry(platform::MainQueue& mainQueue, std::unique_ptr<DeviceSource> source)
    : m_mainQueue(mainQueue)
    , m_source(std::move(source))
    , m_self(std::make_shared<UdevDeviceRegistry*>(this))
{}

UdevDeviceRegistry::~UdevDeviceRegistry() = default;

std::optional<DeviceIterator> UdevDeviceRegistry::serialStreamDevices()
{
    if (!ensureStarted()) {
        return std::nullopt;
    }
    receiveEvents();
    return m_handles.addList(presentDevices(), nullptr);
}

UdevDeviceRegistry::Watch UdevDeviceRegistry::watch(DeviceEvent event, std::function<void(DeviceIterator)> told)
{
    if (!ensureStarted()) {
        return {};
    }
    receiveEvents();
    const auto devices = event == DeviceEvent::Published ? presentDevices() : std::vector<DeviceHandle>();
    const auto list = m_handles.addList(devices, std::move(told));
    m_watches.push_back({list, event, m_lastEvent});
    return {true, list};
}

DeviceHandle UdevDeviceRegistry::next(DeviceIterator iterator) { return m_handles.next(iterator); }

std::optional<std::string> UdevDeviceRegistry::stringProperty(DeviceHandle device, std::string_view key) const
{
    const auto* listed = m_handles.find(device);
    return listed == nullptr ? std::nullopt : propertyOf(listed->device, listed->calloutPath, key);
}

void UdevDeviceRegistry::retain(std::uint32_t handle) { m_handles.retain(handle); }

void UdevDeviceRegistry::release(std::uint32_t handle)
{
    m_handles.release(handle);
    std::erase_if(m_watches, [this](const WatchEntry& watch) { return !m_handles.isList(watch.list); });
}

std::optional<std::string> UdevDeviceRegistry::nodeOfCalloutPath(const std::string& path) const
{
    return m_nodes.nodeOf(path);
}

// Listening starts before the enumeration, so that nothing falls between the two.
bool UdevDeviceRegistry::ensureStarted()
{
    if (m_notifier) {
        return true;
    }
    if (!m_source->start()) {
        return false;
    }
    const auto devices = enumerate();
    if (!devices) {
        return false;
    }
    for (const auto& device : *devices) {
        add(device);
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_source->descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { receiveEvents(); });
    return true;
}

void UdevDeviceRegistry::receiveEvents()
{
    while (const auto event = m_source->receive()) {
        std::visit([this](const auto& kind) { handle(kind); }, *event);
    }
}

void UdevDeviceRegistry::handle(const TtyAdded& added)
{
    const auto device = serialDeviceOf(added.facts);
    if (!device) {
        return;
    }
    const auto known = find(device->sysPath);
    if (known == m_present.end()) {
        post(DeviceEvent::Published, add(*device));
    } else if (isOlder(*device, deviceOf(*known))) {
        // The enumeration has found a later device in its place.
        return;
    } else if (isSameDevice(deviceOf(*known), *device)) {
        keepNewest(*known, *device);
        if (!wasSeenByEnumeration(added.number)) {
            post(DeviceEvent::Published, known->device());
        }
    } else {
        remove(known);
        post(DeviceEvent::Published, add(*device));
    }
}

void UdevDeviceRegistry::handle(const TtyRemoved& removed)
{
    const auto known = find(removed.sysPath);
    if (known == m_present.end()) {
        return;
    }
    // The enumeration came after this removal and found the device: it is plugged in again, unless it was listed while
    // it went.
    if (wasSeenByEnumeration(removed.number) && m_source->exists(removed.sysPath)) {
        return;
    }
    remove(known);
}

void UdevDeviceRegistry::handle(const OtherEvent&) {}

void UdevDeviceRegistry::handle(const EventsLost&)
{
    const auto devices = enumerate();
    if (!devices) {
        return;
    }
    for (auto present = m_present.begin(); present != m_present.end();) {
        const auto current = present++;
        const auto isCurrent = [&](const auto& device) { return isSameDevice(deviceOf(*current), device); };
        if (std::none_of(devices->begin(), devices->end(), isCurrent)) {
            remove(current);
        }
    }
    for (const auto& device : *devices) {
        if (const auto known = find(device.sysPath); known != m_present.end()) {
            keepNewest(*known, device);
        } else {
            post(DeviceEvent::Published, add(device));
        }
    }
}

bool UdevDeviceRegistry::wasSeenByEnumeration(std::uint64_t number) const
{
    return number != 0 && number <= m_enumeratedUpTo;
}

std::optional<std::vector<SerialDevice>> UdevDeviceRegistry::enumerate()
{
    const auto ttys = m_source->enumerate();
    if (!ttys) {
        return std::nullopt;
    }
    m_enumeratedUpTo = m_source->lastEventNumber();
    std::vector<SerialDevice> devices;
    for (const auto& facts : *ttys) {
        if (auto device = serialDeviceOf(facts)) {
            devices.push_back(std::move(*device));
        }
    }
    return devices;
}

DeviceHandle UdevDeviceRegistry::add(const SerialDevice& device)
{
    m_present.push_back(m_handles.add({device, m_nodes.add(device.calloutPaths, device.node)}));
    return m_present.back().device();
}

void UdevDeviceRegistry::remove(Present::iterator device)
{
    const auto handle = device->device();
    post(DeviceEvent::Terminated, handle);
    m_nodes.remove(m_handles.find(handle)->calloutPath);
    m_present.erase(device);
}

UdevDeviceRegistry::Present::iterator UdevDeviceRegistry::find(const std::string& sysPath)
{
    const auto hasPath = [&](const auto& use) { return deviceOf(use).sysPath == sysPath; };
    return std::find_if(m_present.begin(), m_present.end(), hasPath);
}

const SerialDevice& UdevDeviceRegistry::deviceOf(const DeviceHandles::Use& present) const
{
    return m_handles.find(present.device())->device;
}

// Udev may have seen the device only after it was listed.
void UdevDeviceRegistry::keepNewest(const DeviceHandles::Use& present, const SerialDevice& newest)
{
    if (newest.initializedAt != 0) {
        m_handles.update(present.device(), newest);
    }
}

std::vector<DeviceHandle> UdevDeviceRegistry::presentDevices() const
{
    std::vector<DeviceHandle> devices;
    std::transform(m_present.begin(), m_present.end(), std::back_inserter(devices),
                   [](const auto& use) { return use.device(); });
    return devices;
}

// The event keeps the device's properties until it has been handled.
void UdevDeviceRegistry::post(DeviceEvent kind, DeviceHandle device)
{
    m_events.push_back({++m_lastEvent, kind, DeviceHandles::Use(m_handles, device)});
    if (!m_isDelivering) {
        submitDelivery();
    }
}

void UdevDeviceRegistry::submitDelivery()
{
    m_isDelivering = true;
    m_mainQueue.async([weak = std::weak_ptr(m_self)] {
        if (const auto self = weak.lock()) {
            (*self)->deliverNext();
        }
    });
}

void UdevDeviceRegistry::deliverNext()
{
    // What an event leaves to the main queue (the removal of a port) comes before the next event (its return).
    struct NextInAnyCase {
        UdevDeviceRegistry& registry;
        ~NextInAnyCase()
        {
            registry.m_isDelivering = false;
            if (!registry.m_events.empty()) {
                registry.submitDelivery();
            }
        }
    };
    const NextInAnyCase next{*this};
    const auto event = std::move(m_events.front());
    m_events.pop_front();
    const auto watches = m_watches;
    for (const auto& watch : watches) {
        if (watch.kind == event.kind && watch.since < event.number) {
            m_handles.append(watch.list, event.device.device());
        }
    }
}

} // namespace vorrano::linux_platform
