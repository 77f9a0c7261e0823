#include "support/FakeDeviceRegistry.h"

#include "platform/ScopeExit.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

using platform::DeviceEvent;
using platform::DeviceHandle;
using platform::DeviceIterator;

namespace {

using Property = std::optional<std::string> DeviceProperties::*;
constexpr std::array kProperties = std::to_array<std::pair<std::string_view, Property>>({
    {platform::kCalloutDeviceKey, &DeviceProperties::calloutPath},
    {platform::kDialinDeviceKey, &DeviceProperties::dialinPath},
    {platform::kTTYDeviceKey, &DeviceProperties::ttyName},
    {platform::kTTYBaseNameKey, &DeviceProperties::baseName},
    {platform::kTTYSuffixKey, &DeviceProperties::suffix},
    {platform::kSerialClientTypeKey, &DeviceProperties::clientType},
});

} // namespace

FakeDeviceRegistry::FakeDeviceRegistry(FakeMainQueue& mainQueue)
    : m_mainQueue(mainQueue)
{}

std::optional<DeviceIterator> FakeDeviceRegistry::serialStreamDevices()
{
    expectMainThread();
    if (m_failingEnumerations > 0) {
        --m_failingEnumerations;
        return std::nullopt;
    }
    return addList({m_present, nullptr, std::nullopt});
}

platform::DeviceRegistry::Watch FakeDeviceRegistry::watch(DeviceEvent event, std::function<void(DeviceIterator)> told)
{
    expectMainThread();
    if (const auto failing = m_failingWatches.extract(event)) {
        return {false, failing.mapped() ? addList({}) : 0};
    }
    const auto devices = event == DeviceEvent::Published ? m_present : std::exchange(m_firstRemovals, {});
    return {true, addList({devices, std::move(told), event, false, m_lastEvent})};
}

DeviceHandle FakeDeviceRegistry::next(DeviceIterator iterator)
{
    expectMainThread();
    const auto known = m_lists.find(iterator);
    if (known == m_lists.end()) {
        return 0;
    }
    auto& list = known->second;
    if (list.devices.empty()) {
        list.armed = true;
        return 0;
    }
    const auto device = list.devices.front();
    list.devices.pop_front();
    ++m_references[device];
    return device;
}

std::optional<std::string> FakeDeviceRegistry::stringProperty(DeviceHandle device, std::string_view key) const
{
    expectMainThread();
    const auto hasKey = [key](const auto& property) { return property.first == key; };
    const auto property = std::find_if(kProperties.begin(), kProperties.end(), hasKey);
    if (property == kProperties.end() || !isReadable(device)) {
        return std::nullopt;
    }
    return m_devices.at(device).*(property->second);
}

void FakeDeviceRegistry::retain(std::uint32_t handle)
{
    expectMainThread();
    ++m_references[handle];
}

void FakeDeviceRegistry::release(std::uint32_t handle)
{
    expectMainThread();
    const auto known = m_references.find(handle);
    if (known == m_references.end()) {
        ADD_FAILURE() << "handle " << handle << " is released more often than it was had";
        return;
    }
    if (--known->second == 0) {
        m_references.erase(known);
        m_lists.erase(handle);
    }
}

std::optional<std::string> FakeDeviceRegistry::nodeOfCalloutPath(const std::string& path) const
{
    const auto device = handleOf(path);
    return device == 0 ? std::nullopt : m_devices.at(device).dialinPath;
}

DeviceHandle FakeDeviceRegistry::plug(const DeviceProperties& properties) { return plugTogether({properties}).front(); }

std::vector<DeviceHandle> FakeDeviceRegistry::plugTogether(const std::vector<DeviceProperties>& devices)
{
    std::vector<DeviceHandle> added;
    for (const auto& properties : devices) {
        added.push_back(++m_lastHandle);
        m_devices[m_lastHandle] = properties;
        m_present.push_back(m_lastHandle);
    }
    tell(DeviceEvent::Published, added);
    return added;
}

void FakeDeviceRegistry::unplug(const std::string& calloutPath)
{
    if (const auto device = pluggedInAt(calloutPath)) {
        std::erase(m_present, device);
        tell(DeviceEvent::Terminated, {device});
    }
}

void FakeDeviceRegistry::duplicateEvent(const std::string& calloutPath, DeviceEvent event)
{
    if (const auto device = pluggedInAt(calloutPath)) {
        tell(event, {device});
    }
}

void FakeDeviceRegistry::nameTwiceInOneEvent(const std::string& calloutPath, DeviceEvent event)
{
    if (const auto device = pluggedInAt(calloutPath)) {
        tell(event, {device, device});
    }
}

void FakeDeviceRegistry::nameInTheFirstListOfRemovals(const std::string& calloutPath)
{
    if (const auto device = pluggedInAt(calloutPath)) {
        m_firstRemovals.push_back(device);
    }
}

void FakeDeviceRegistry::failWatch(DeviceEvent event, bool withIterator)
{
    m_failingWatches.insert_or_assign(event, withIterator);
}

DeviceHandle FakeDeviceRegistry::handleOf(const std::string& calloutPath) const
{
    const auto has = [&](DeviceHandle device) { return m_devices.at(device).calloutPath == calloutPath; };
    const auto found = std::find_if(m_present.begin(), m_present.end(), has);
    return found == m_present.end() ? 0 : *found;
}

DeviceHandle FakeDeviceRegistry::pluggedInAt(const std::string& calloutPath) const
{
    const auto device = handleOf(calloutPath);
    EXPECT_NE(device, 0U) << "no device is plugged in at " << calloutPath;
    return device;
}

int FakeDeviceRegistry::references(std::uint32_t handle) const
{
    const auto known = m_references.find(handle);
    return known == m_references.end() ? 0 : known->second;
}

int FakeDeviceRegistry::references() const
{
    const auto add = [](int sum, const auto& entry) { return sum + entry.second; };
    return std::accumulate(m_references.begin(), m_references.end(), 0, add);
}

int FakeDeviceRegistry::watches(DeviceEvent event) const
{
    const auto isOfEvent = [event](const auto& entry) { return entry.second.event == event; };
    return static_cast<int>(std::count_if(m_lists.begin(), m_lists.end(), isOfEvent));
}

int FakeDeviceRegistry::freeTtyNumber() const
{
    for (int number = 0;; ++number) {
        const auto node = "/dev/ttyUSB" + std::to_string(number);
        const auto has = [&](DeviceHandle device) { return m_devices.at(device).dialinPath == node; };
        if (std::none_of(m_present.begin(), m_present.end(), has)) {
            return number;
        }
    }
}

DeviceIterator FakeDeviceRegistry::addList(List list)
{
    const auto iterator = ++m_lastHandle;
    m_lists.emplace(iterator, std::move(list));
    m_references[iterator] = 1;
    return iterator;
}

void FakeDeviceRegistry::expectMainThread() const
{
    EXPECT_TRUE(m_mainQueue.isMainThread()) << "the device registry is the main thread's";
}

// A device can be read while it is present, until its removal has been handled, and while a list holds it.
bool FakeDeviceRegistry::isReadable(DeviceHandle device) const
{
    const auto holds = [device](const std::deque<DeviceHandle>& devices) {
        return std::find(devices.begin(), devices.end(), device) != devices.end();
    };
    const auto isListed = [&](const auto& entry) { return holds(entry.second.devices); };
    return holds(m_present) || holds(m_going) || std::any_of(m_lists.begin(), m_lists.end(), isListed);
}

void FakeDeviceRegistry::tell(DeviceEvent event, const std::vector<DeviceHandle>& devices)
{
    // A published event too may come when the device has gone already.
    m_going.insert(m_going.end(), devices.begin(), devices.end());
    m_mainQueue.async([this, weak = std::weak_ptr(m_alive), event, devices, number = ++m_lastEvent] {
        if (weak.lock()) {
            const platform::ScopeExit handled([this, count = static_cast<std::ptrdiff_t>(devices.size())] {
                m_going.erase(m_going.begin(), m_going.begin() + count);
            });
            deliver(event, devices, number);
        }
    });
}

void FakeDeviceRegistry::deliver(DeviceEvent event, const std::vector<DeviceHandle>& devices, std::uint64_t number)
{
    std::vector<DeviceIterator> concerned;
    for (auto& [iterator, list] : m_lists) {
        if (list.event == event && list.since < number) {
            list.devices.insert(list.devices.end(), devices.begin(), devices.end());
            concerned.push_back(iterator);
        }
    }
    for (const auto iterator : concerned) {
        const auto known = m_lists.find(iterator);
        if (known != m_lists.end() && std::exchange(known->second.armed, false)) {
            const auto told = known->second.told;
            told(iterator);
        }
    }
}

} // namespace vorrano::support
