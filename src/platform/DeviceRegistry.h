#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::platform {

// Numbers for a device, and for a list of devices that is being walked; 0 stands for none.
using DeviceHandle = std::uint32_t;
using DeviceIterator = std::uint32_t;

// The keys of a serial device's properties.
inline constexpr std::string_view kCalloutDeviceKey = "IOCalloutDevice";
inline constexpr std::string_view kDialinDeviceKey = "IODialinDevice";
inline constexpr std::string_view kTTYBaseNameKey = "IOTTYBaseName";
inline constexpr std::string_view kSerialClientTypeKey = "IOSerialBSDClientType";
inline constexpr std::string_view kTTYDeviceKey = "IOTTYDevice";
inline constexpr std::string_view kTTYSuffixKey = "IOTTYSuffix";

enum class DeviceEvent { Published, Terminated };

// The serial devices of the system, and events about those that come and go.
//
// A device's properties are: callout path ("/dev/cu.usbserial-A1B2"; a name that stays with the adapter, not a file),
// dial-in path (its node, "/dev/ttyUSB0"), tty name ("ttyUSB0"), base name ("ttyUSB"), suffix ("0") and client type.
// They can be read from the device's published event until its terminated event has been handled.
//
// Handles are counted: each one that is given out, and each retain(), needs one release(). A handle that is never
// released costs its number and nothing else.
// Threads: the main thread; nodeOfCalloutPath() on any.
class DeviceRegistry {
public:
    struct Watch {
        bool registered = false;
        DeviceIterator iterator = 0;
    };

    DeviceRegistry() = default;
    DeviceRegistry(const DeviceRegistry&) = delete;
    DeviceRegistry& operator=(const DeviceRegistry&) = delete;
    virtual ~DeviceRegistry() = default;

    // All serial devices that are present, in the registry's order; none when the enumeration can't start.
    [[nodiscard]] virtual std::optional<DeviceIterator> serialStreamDevices() = 0;

    // Calls back on the main queue with an iterator over the devices concerned. It is the iterator returned here,
    // filled anew; the callback must not release it. At first it holds the devices present (Published) or none
    // (Terminated).
    virtual Watch watch(DeviceEvent event, std::function<void(DeviceIterator)> told) = 0;

    // The next device of the list, its handle counted; 0 at the end, which arms the list for the next event.
    virtual DeviceHandle next(DeviceIterator iterator) = 0;

    [[nodiscard]] virtual std::optional<std::string> stringProperty(DeviceHandle device,
                                                                    std::string_view key) const = 0;

    // For handles of both kinds. The last release of a watch's iterator ends the watch.
    virtual void retain(std::uint32_t handle) = 0;
    virtual void release(std::uint32_t handle) = 0;

    // The device node that a present device with this callout path has now.
    [[nodiscard]] virtual std::optional<std::string> nodeOfCalloutPath(const std::string& path) const = 0;
};

} // namespace vorrano::platform
