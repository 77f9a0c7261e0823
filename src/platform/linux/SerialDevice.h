#pragma once

#include "platform/DeviceRegistry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::linux_platform {

// What udev tells of a tty, as far as it decides whether and how the tty is listed. A text that udev does not give is
// empty.
struct TtyFacts {
    std::string sysPath;
    std::string name;
    std::string node;
    // Udev has run its rules for the device: its properties are complete.
    bool initialized = true;
    // When udev first saw the device since it was plugged in, in microseconds of the computer's own clock; 0 when that
    // is not known.
    std::uint64_t initializedAt = 0;
    bool hasParent = false;
    std::string parentSubsystem;
    std::string parentDriver;
    // The sysfs attribute "type" of a UART: "0" where there is no port; none when it can't be read.
    std::optional<std::string> uartType;
    std::string serialNumber;
    std::string path;
    std::string bus;
    std::string usbDriver;
    std::string usbInterface;
    // Interfaces of the whole USB adapter; 0 when that is not known.
    int usbInterfaceCount = 0;
};

// A serial device that is to be listed.
struct SerialDevice {
    std::string sysPath;
    std::string node;
    std::string name;
    // Its callout path is the first of these that no present device has; the last is the device's alone.
    std::vector<std::string> calloutPaths;
    // As in the facts.
    std::uint64_t initializedAt = 0;
};

// Whether the two descriptions, read at different times, are of one device that stayed plugged in. A device that went
// and came back is another one, though everything else about it is the same.
[[nodiscard]] bool isSameDevice(const SerialDevice& first, const SerialDevice& second);

// Whether the first was plugged in before the second; no when one of the times is not known.
[[nodiscard]] bool isOlder(const SerialDevice& first, const SerialDevice& second);

// The serial device that the facts speak of; none for virtual terminals, for ports of the 8250 family that are not
// there, and for USB adapters whose properties are still to come.
[[nodiscard]] std::optional<SerialDevice> serialDeviceOf(const TtyFacts& facts);

// A property of a listed device by its key; none for a key that it does not have.
[[nodiscard]] std::optional<std::string> propertyOf(const SerialDevice& device, const std::string& calloutPath,
                                                    std::string_view key);

} // namespace vorrano::linux_platform
