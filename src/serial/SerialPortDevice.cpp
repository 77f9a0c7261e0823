#include "serial/SerialPort.h"

#include "platform/System.h"

namespace vorrano::serial {

platform::DeviceHandle SerialPort::deviceFromBSDPath(const std::string& path)
{
    if (path.empty()) {
        return 0;
    }
    auto& registry = platform::System::current().deviceRegistry;
    const auto devices = registry.serialStreamDevices();
    if (!devices) {
        return 0;
    }
    auto device = registry.next(*devices);
    while (device != 0 && bsdCalloutPathFromDevice(device) != path && bsdDialinPathFromDevice(device) != path) {
        registry.release(device);
        device = registry.next(*devices);
    }
    registry.release(*devices);
    return device;
}

std::optional<std::string> SerialPort::stringPropertyOfForIOSerialKey(platform::DeviceHandle device,
                                                                      std::string_view key)
{
    return platform::System::current().deviceRegistry.stringProperty(device, key);
}

std::optional<std::string> SerialPort::bsdCalloutPathFromDevice(platform::DeviceHandle device)
{
    return stringPropertyOfForIOSerialKey(device, platform::kCalloutDeviceKey);
}

std::optional<std::string> SerialPort::bsdDialinPathFromDevice(platform::DeviceHandle device)
{
    return stringPropertyOfForIOSerialKey(device, platform::kDialinDeviceKey);
}

std::optional<std::string> SerialPort::baseNameFromDevice(platform::DeviceHandle device)
{
    return stringPropertyOfForIOSerialKey(device, platform::kTTYBaseNameKey);
}

std::optional<std::string> SerialPort::serviceTypeFromDevice(platform::DeviceHandle device)
{
    return stringPropertyOfForIOSerialKey(device, platform::kSerialClientTypeKey);
}

std::optional<std::string> SerialPort::modemNameFromDevice(platform::DeviceHandle device)
{
    return stringPropertyOfForIOSerialKey(device, platform::kTTYDeviceKey);
}

std::optional<std::string> SerialPort::suffixFromDevice(platform::DeviceHandle device)
{
    return stringPropertyOfForIOSerialKey(device, platform::kTTYSuffixKey);
}

} // namespace vorrano::serial
