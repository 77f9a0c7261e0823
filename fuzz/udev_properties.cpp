// What udev tells of a tty, and the serial device that it makes of it.
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "platform/linux/SerialDevice.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

using namespace vorrano;
using fuzz::check;
using linux_platform::TtyFacts;

namespace {

// The kernel's own names are letters and digits.
std::string kernelName(fuzz::Input& input)
{
    constexpr std::array kBeginnings{"ttyUSB", "ttyACM", "ttyS", "tty", "ttyAMA", "rfcomm", ""};
    return kBeginnings[input.below(kBeginnings.size())] + std::to_string(input.byte());
}

TtyFacts factsFrom(fuzz::Input& input)
{
    constexpr std::array kSubsystems{"usb-serial", "usb", "platform", ""};
    constexpr std::array kDrivers{"cdc_acm", "serial8250", "ftdi_sio", ""};
    TtyFacts facts;
    facts.name = kernelName(input);
    facts.node = input.below(8) == 0 ? "" : "/dev/" + facts.name;
    facts.hasParent = input.below(8) != 0;
    facts.initialized = input.below(2) == 0;
    facts.parentSubsystem = kSubsystems[input.below(kSubsystems.size())];
    facts.parentDriver = kDrivers[input.below(kDrivers.size())];
    facts.usbDriver = kDrivers[input.below(kDrivers.size())];
    facts.usbInterfaceCount = static_cast<std::int8_t>(input.byte());
    if (input.below(4) != 0) {
        facts.uartType = input.text();
    }
    facts.sysPath = input.text();
    facts.bus = input.text();
    facts.usbInterface = input.text();
    facts.path = input.text();
    facts.serialNumber = input.rest();
    return facts;
}

bool isPlain(std::string_view name)
{
    return std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c <= '~' && c != '/'; });
}

void checkPath(const std::string& path, const std::string& node)
{
    constexpr std::array<std::string_view, 2> kPrefixes{"/dev/cu.usbserial-", "/dev/cu.usbmodem-"};
    const auto* const prefix =
        std::find_if(kPrefixes.begin(), kPrefixes.end(), [&](auto beginning) { return path.starts_with(beginning); });
    check(path == node || (prefix != kPrefixes.end() && isPlain(std::string_view(path).substr(prefix->size()))),
          "a callout path is the node, or plain ASCII below /dev");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto facts = factsFrom(input);
    const auto device = linux_platform::serialDeviceOf(facts);
    check(!device || (facts.hasParent && !facts.node.empty()), "a listed device has a parent and a node");
    if (!device) {
        return 0;
    }
    check(!device->calloutPaths.empty(), "a listed device has a path");
    check(std::set(device->calloutPaths.begin(), device->calloutPaths.end()).size() == device->calloutPaths.size(),
          "each of its paths is another one");
    for (const auto& path : device->calloutPaths) {
        checkPath(path, facts.node);
        check(propertyOf(*device, path, platform::kCalloutDeviceKey) == path, "its path can be asked for");
    }
    const auto base = propertyOf(*device, "", platform::kTTYBaseNameKey).value_or("");
    const auto suffix = propertyOf(*device, "", platform::kTTYSuffixKey).value_or("");
    check(base + suffix == device->name, "a name is its letters and its number");
    check(suffix.find_first_not_of("0123456789") == std::string::npos, "a number is digits");
    check(propertyOf(*device, "", platform::kDialinDeviceKey) == facts.node, "the dial-in path is the node");
    check(facts.serialNumber.starts_with("IO") || !propertyOf(*device, "", facts.serialNumber),
          "other keys have no value");
    return 0;
}
