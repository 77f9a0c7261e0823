#pragma once

#include "serial/SerialRequest.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The device's command language: a command is one character, some are followed by an argument, and the device answers
// with text. docs/device.md describes it. Nothing here has a state; everything may be called on any thread.
namespace vorrano::device {

// When a reply is whole: so many bytes have come, and these are the last of them.
struct ReplyTest {
    std::size_t shortest;
    std::string_view end;

    [[nodiscard]] constexpr bool isWhole(std::string_view received) const
    {
        return received.size() >= shortest && received.ends_with(end);
    }
    friend bool operator==(const ReplyTest&, const ReplyTest&) = default;
};

inline constexpr ReplyTest kAtLeastFourBytes{4, ""};
inline constexpr ReplyTest kMacPacket{19, ""};
// A stored text has its character at least before the terminator.
inline constexpr ReplyTest kTripleTerminator{4, "\n\n\r"};
inline constexpr ReplyTest kDoubleTerminator{4, "\n\r"};
// No reply is awaited: the request is complete when it has been written.
inline constexpr ReplyTest kAlways{0, ""};
// Sent past the request queue: each chunk that comes is an answer by itself.
inline constexpr std::optional<ReplyTest> kEachChunk{};

// What follows the command's character: nothing; a text and the end mark; one character.
enum class Argument { None, FreeText, Character };

enum class DeviceCommand {
    PowerStatus,
    AdcVersion,
    ConnectivityStatus,
    MacAddress,
    FirmwareVersion,
    WifiFirmwareVersion,
    ResetModem,
    ResetDevice,
    SetSSID,
    SetPassword,
    SetSecurityType,
    SetWepKey,
    EnterBootloader,
    ReadSSID,
    ReadPassword,
    SetThrottle,
    ReadThrottle,
    SetTemperatureUnit,
    ReadTemperatureUnit,
    StartUpload,
};

struct CommandDescription {
    DeviceCommand command;
    char code;
    std::string_view name;
    Argument argument;
    std::optional<ReplyTest> replyTest;
};

// All commands, in the order of DeviceCommand. "b" has two meanings: a device that runs takes a WEP key, one that was
// reset just now stays in its bootloader.
inline constexpr std::array kCommands{
    CommandDescription{DeviceCommand::PowerStatus, '0', "power status", Argument::None, kAtLeastFourBytes},
    CommandDescription{DeviceCommand::AdcVersion, '1', "ADC version", Argument::None, kEachChunk},
    CommandDescription{DeviceCommand::ConnectivityStatus, '2', "connectivity", Argument::None, kDoubleTerminator},
    CommandDescription{DeviceCommand::MacAddress, '3', "MAC address", Argument::None, kMacPacket},
    CommandDescription{DeviceCommand::FirmwareVersion, '4', "firmware version", Argument::None, kEachChunk},
    CommandDescription{DeviceCommand::WifiFirmwareVersion, '5', "Wi-Fi firmware version", Argument::None, kEachChunk},
    CommandDescription{DeviceCommand::ResetModem, '6', "reset the modem", Argument::None, kAlways},
    CommandDescription{DeviceCommand::ResetDevice, '7', "reset the device", Argument::None, kAlways},
    CommandDescription{DeviceCommand::SetSSID, '8', "set the SSID", Argument::FreeText, kAtLeastFourBytes},
    CommandDescription{DeviceCommand::SetPassword, '9', "set the password", Argument::FreeText, kAtLeastFourBytes},
    CommandDescription{DeviceCommand::SetSecurityType, 'a', "set the security type", Argument::Character,
                       kAtLeastFourBytes},
    CommandDescription{DeviceCommand::SetWepKey, 'b', "set the WEP key", Argument::FreeText, kAtLeastFourBytes},
    CommandDescription{DeviceCommand::EnterBootloader, 'b', "enter the bootloader", Argument::None, kEachChunk},
    CommandDescription{DeviceCommand::ReadSSID, 'c', "read the SSID", Argument::None, kTripleTerminator},
    CommandDescription{DeviceCommand::ReadPassword, 'd', "read the password", Argument::None, kTripleTerminator},
    CommandDescription{DeviceCommand::SetThrottle, 'e', "set the throttle", Argument::Character, kAtLeastFourBytes},
    CommandDescription{DeviceCommand::ReadThrottle, 'f', "read the throttle", Argument::None, kAtLeastFourBytes},
    CommandDescription{DeviceCommand::SetTemperatureUnit, 'g', "set the temperature unit", Argument::Character,
                       kEachChunk},
    CommandDescription{DeviceCommand::ReadTemperatureUnit, 'h', "read the temperature unit", Argument::None,
                       kEachChunk},
    CommandDescription{DeviceCommand::StartUpload, 'u', "start the upload", Argument::None, kEachChunk},
};

[[nodiscard]] constexpr const CommandDescription& descriptionOf(DeviceCommand command)
{
    return kCommands.at(static_cast<std::size_t>(command));
}

[[nodiscard]] constexpr bool areInTheOrderOfDeviceCommand()
{
    for (const auto& description : kCommands) {
        if (&descriptionOf(description.command) != &description) {
            return false;
        }
    }
    return true;
}
static_assert(areInTheOrderOfDeviceCommand());

[[nodiscard]] std::string bytesOf(DeviceCommand command);

// The test as a request takes it. A command without one accepts anything, as a request without an evaluator does.
[[nodiscard]] serial::ResponseEvaluator evaluatorOf(DeviceCommand command);

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

} // namespace vorrano::device
