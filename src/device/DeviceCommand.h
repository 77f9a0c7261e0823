#pragma once

#include "serial/SerialRequest.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The device's command language, spoken at 9600 baud: a command is one character, some are followed by an argument, and
// the device answers with text. Nothing here has a state; everything may be called on any thread.
namespace vorrano::device {

// "b" has two meanings: a device that runs takes a WEP key, one that was reset just now stays in its bootloader.
enum class DeviceCommand : char {
    PowerStatus = '0',
    AdcVersion = '1',
    ConnectivityStatus = '2',
    MacAddress = '3',
    FirmwareVersion = '4',
    WifiFirmwareVersion = '5',
    ResetModem = '6',
    ResetDevice = '7',
    SetSSID = '8',
    SetPassword = '9',
    SetSecurityType = 'a',
    SetWepKey = 'b',
    EnterBootloader = 'b',
    ReadSSID = 'c',
    ReadPassword = 'd',
    SetThrottle = 'e',
    ReadThrottle = 'f',
    SetTemperatureUnit = 'g',
    ReadTemperatureUnit = 'h',
    StartUpload = 'u',
};

[[nodiscard]] std::string bytesOf(DeviceCommand command);

// What ends a free text: one byte 0x00.
[[nodiscard]] std::string endMark();

// The device keeps the spaces of an SSID as "$".
[[nodiscard]] std::string replaceSSIDSpacesWithDollarSign(std::string_view ssid);
[[nodiscard]] std::string replaceDollarSignWithSpaces(std::string_view reply);

// One character from a number: of its low 16 bits as a UTF-16 code unit, or of its low 8 bits as a code point. In
// UTF-8, so a number of 128 or more becomes more than one byte; a unit that is half of a pair becomes U+FFFD.
[[nodiscard]] std::string characterOfLow16Bits(std::int64_t number);
[[nodiscard]] std::string characterOfLow8Bits(std::int64_t number);

// The throttle as the device keeps it: divided by 1.5, toward zero. What the device keeps, as the throttle: read as a
// number, multiplied by 1.5 and rounded half away from zero.
[[nodiscard]] std::int64_t storedThrottle(std::int64_t throttle);
[[nodiscard]] std::int32_t throttleFromReply(std::string_view reply);

// Tests of what has come back so far: whether it is the whole reply. A request without one needs no reply.
[[nodiscard]] serial::ResponseEvaluator atLeastFourBytes();
[[nodiscard]] serial::ResponseEvaluator macPacket();
// At least `minimum` bytes, the last of them "\n\n\r". A stored text has its character at least before them.
inline constexpr std::size_t kShortestStoredText = 4;
[[nodiscard]] serial::ResponseEvaluator tripleTerminator(std::size_t minimum);
// At least 4 bytes, the last of them "\n\r".
[[nodiscard]] serial::ResponseEvaluator doubleTerminator();
// Passes at once, so the request is complete when it has been written.
[[nodiscard]] serial::ResponseEvaluator always();

} // namespace vorrano::device
