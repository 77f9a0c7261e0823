#include "platform/linux/DeviceHandles.h"

#include <utility>

namespace vorrano::linux_platform {

using platform::DeviceHandle;
using platform::DeviceIterator;

DeviceHandles::Use::Use(DeviceHandles& handles, DeviceHandle device)
    : m_handles(&handles)
    , m_device(device)
{
    ++m_handles->m_devices.at(device).uses;
}

DeviceHandles::Use::Use(Use&& other) noexcept
    : m_handles(std::exchange(other.m_handles, nullptr))
    , m_device(other.m_device)
{}

DeviceHandles::Use::~Use()
{
    if (m_handles == nullptr) {
        return;
    }
    auto& entry = m_handles->m_devices.find(m_device)->second;
    if (--entry.uses == 0) {
        entry.properties.reset();
        m_handles->eraseUnheld(m_device);
    }
}

DeviceHandles::Use DeviceHandles::add(ListedDevice device)
{
    const auto number = newNumber();
    m_devices[number].properties = std::make_unique<const ListedDevice>(std::move(device));
    return {*this, number};
}

const ListedDevice* DeviceHandles::find(DeviceHandle device) const
{
    const auto found = m_devices.find(device);
    return found == m_devices.end() ? nullptr : found->second.properties.get();
}

void DeviceHandles::update(DeviceHandle device, SerialDevice newest)
{
    auto& properties = m_devices.at(device).properties;
    properties = std::make_unique<const ListedDevice>(ListedDevice{std::move(newest), properties->calloutPath});
}

DeviceIterator DeviceHandles::addList(const std::vector<DeviceHandle>& devices, Told told)
{
    const auto number = newNumber();
    auto& list = m_lists[number];
    list.told = std::move(told);
    for (const auto device : devices) {
        list.devices.emplace_back(*this, device);
    }
    return number;
}

void DeviceHandles::append(DeviceIterator list, DeviceHandle device)
{
    const auto found = m_lists.find(list);
    if (found == m_lists.end()) {
        return;
    }
    found->second.devices.emplace_back(*this, device);
    if (std::exchange(found->second.armed, false)) {
        // The watch may end inside its own callback.
        const auto told = found->second.told;
        told(list);
    }
}

DeviceHandle DeviceHandles::next(DeviceIterator list)
{
    const auto found = m_lists.find(list);
    if (found == m_lists.end()) {
        return 0;
    }
    auto& devices = found->second.devices;
    if (devices.empty()) {
        found->second.armed = static_cast<bool>(found->second.told);
        return 0;
    }
    const auto device = devices.front().device();
    ++m_devices.at(device).holders;
    devices.pop_front();
    return device;
}

void DeviceHandles::retain(std::uint32_t handle)
{
    if (const auto device = m_devices.find(handle); device != m_devices.end()) {
        ++device->second.holders;
    } else if (const auto list = m_lists.find(handle); list != m_lists.end()) {
        ++list->second.holders;
    }
}

void DeviceHandles::release(std::uint32_t handle)
{
    if (const auto device = m_devices.find(handle); device != m_devices.end()) {
        if (device->second.holders > 0) {
            --device->second.holders;
        }
        eraseUnheld(handle);
    } else if (const auto list = m_lists.find(handle); list != m_lists.end() && --list->second.holders == 0) {
        // Taken out first: letting its devices go changes the table.
        const auto ended = m_lists.extract(list);
    }
}

std::uint32_t DeviceHandles::newNumber()
{
    do {
        ++m_lastNumber;
    } while (m_lastNumber == 0 || m_devices.contains(m_lastNumber) || m_lists.contains(m_lastNumber));
    return m_lastNumber;
}

void DeviceHandles::eraseUnheld(DeviceHandle device)
{
    const auto found = m_devices.find(device);
    if (found->second.uses == 0 && found->second.holders == 0) {
        m_devices.erase(found);
    }
}

} // namespace vorrano::linux_platform
