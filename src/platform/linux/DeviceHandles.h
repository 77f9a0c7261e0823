#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/linux/SerialDevice.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::linux_platform {

// A device under the callout path that it was given.
struct ListedDevice {
    SerialDevice device;
    std::string calloutPath;
};

// The numbers that stand for devices and for lists of them, with their counts.
//
// A device is held by its holders (who got its number and have yet to release it) and by uses of the registry's own:
// being present, standing in a list, being in an event that is still to be told. Without a use its properties go;
// without a holder as well the number goes too.
// Threads: one.
class DeviceHandles {
public:
    using Told = std::function<void(platform::DeviceIterator)>;

    // Counts a use for as long as it lives.
    class Use {
    public:
        Use(DeviceHandles& handles, platform::DeviceHandle device);
        Use(Use&& other) noexcept;
        Use& operator=(Use&&) = delete;
        ~Use();
        [[nodiscard]] platform::DeviceHandle device() const { return m_device; }

    private:
        DeviceHandles* m_handles;
        platform::DeviceHandle m_device;
    };

    DeviceHandles() = default;
    DeviceHandles(const DeviceHandles&) = delete;
    DeviceHandles& operator=(const DeviceHandles&) = delete;

    [[nodiscard]] Use add(ListedDevice device);

    // Null when its properties have gone.
    [[nodiscard]] const ListedDevice* find(platform::DeviceHandle device) const;

    // Replaces what is known of a device that has a use.
    void update(platform::DeviceHandle device, SerialDevice newest);

    // A list with one holder. A list with a callback is a watch: the callback reports devices that are appended after
    // the list has been walked to its end.
    [[nodiscard]] platform::DeviceIterator addList(const std::vector<platform::DeviceHandle>& devices, Told told);
    [[nodiscard]] bool isList(platform::DeviceIterator list) const { return m_lists.contains(list); }

    // Appends the device to the list and calls the watch's callback, unless the list has not been walked to its end
    // since the last call.
    void append(platform::DeviceIterator list, platform::DeviceHandle device);

    platform::DeviceHandle next(platform::DeviceIterator list);
    void retain(std::uint32_t handle);
    void release(std::uint32_t handle);

private:
    struct Entry {
        std::unique_ptr<const ListedDevice> properties;
        unsigned holders = 0;
        unsigned uses = 0;
    };
    struct List {
        std::deque<Use> devices;
        Told told;
        unsigned holders = 1;
        bool armed = false;
    };

    std::uint32_t newNumber();
    void eraseUnheld(platform::DeviceHandle device);

    std::map<platform::DeviceHandle, Entry> m_devices;
    std::map<platform::DeviceIterator, List> m_lists;
    std::uint32_t m_lastNumber = 0;
};

} // namespace vorrano::linux_platform
