#include "platform/linux/SerialDevice.h"

#include <algorithm>
#include <charconv>
#include <tuple>

namespace vorrano::linux_platform {

namespace {

constexpr std::string_view kDigits = "0123456789";

bool isOf8250Family(const TtyFacts& facts)
{
    constexpr std::string_view kPrefix = "ttyS";
    const auto number = std::string_view(facts.name).substr(std::min(kPrefix.size(), facts.name.size()));
    const bool isNamedLikeOne = facts.name.starts_with(kPrefix) && !number.empty() &&
                                number.find_first_not_of(kDigits) == std::string_view::npos;
    return isNamedLikeOne || facts.parentDriver.find("8250") != std::string::npos;
}

bool isPortThere(const TtyFacts& facts)
{
    int type = 0;
    const auto& text = facts.uartType;
    return text && std::from_chars(text->data(), text->data() + text->size(), type).ec == std::errc() && type != 0;
}

bool isUsbSerial(const TtyFacts& facts)
{
    return facts.parentSubsystem == "usb-serial" || facts.name.starts_with("ttyUSB");
}

bool isCdcAcm(const TtyFacts& facts)
{
    return facts.usbDriver == "cdc_acm" || facts.parentDriver == "cdc_acm" || facts.name.starts_with("ttyACM");
}

// A communication device takes two interfaces for its one line.
bool hasSeveralLines(const TtyFacts& facts)
{
    const int ownInterfaces = isCdcAcm(facts) ? 2 : 1;
    const bool isFirst = facts.usbInterface.find_first_not_of('0') == std::string::npos;
    return facts.usbInterfaceCount > ownInterfaces || !isFirst;
}

std::string lastPartOf(const std::string& path) { return path.substr(path.rfind('-') + 1); }

// A callout path is plain ASCII without further slashes, whatever the adapter calls itself.
std::string asFileName(std::string name)
{
    const auto isUnfit = [](char c) { return c <= ' ' || c > '~' || c == '/'; };
    std::replace_if(name.begin(), name.end(), isUnfit, '_');
    return name;
}

std::string adapterNameOf(const TtyFacts& facts)
{
    if (facts.serialNumber.empty()) {
        return facts.path.empty() ? facts.name : lastPartOf(facts.path);
    }
    const bool needsNumber = hasSeveralLines(facts) && !facts.usbInterface.empty();
    return needsNumber ? facts.serialNumber + "-" + facts.usbInterface : facts.serialNumber;
}

std::vector<std::string> calloutPathsOf(const TtyFacts& facts)
{
    if (!isUsbSerial(facts) && !isCdcAcm(facts)) {
        return {facts.node};
    }
    const std::string prefix = isUsbSerial(facts) ? "/dev/cu.usbserial-" : "/dev/cu.usbmodem-";
    const auto path = prefix + asFileName(adapterNameOf(facts));
    std::vector<std::string> paths{path};
    if (!facts.path.empty()) {
        paths.push_back(path + "-" + asFileName(lastPartOf(facts.path)));
    }
    // Several lines of one interface share their serial number and their place.
    paths.push_back(paths.back() + "-" + facts.name);
    return paths;
}

} // namespace

std::optional<SerialDevice> serialDeviceOf(const TtyFacts& facts)
{
    if (!facts.hasParent || facts.node.empty()) {
        return std::nullopt;
    }
    if (isOf8250Family(facts) && !isPortThere(facts)) {
        return std::nullopt;
    }
    const bool hasProperties = !facts.serialNumber.empty() || !facts.path.empty() || !facts.bus.empty();
    if ((isUsbSerial(facts) || isCdcAcm(facts)) && !facts.initialized && !hasProperties) {
        return std::nullopt;
    }
    return SerialDevice{facts.sysPath, facts.node, facts.name, calloutPathsOf(facts), facts.initializedAt};
}

bool isSameDevice(const SerialDevice& first, const SerialDevice& second)
{
    const bool agreeInTime =
        first.initializedAt == 0 || second.initializedAt == 0 || first.initializedAt == second.initializedAt;
    return agreeInTime && std::tie(first.sysPath, first.node, first.name, first.calloutPaths) ==
                              std::tie(second.sysPath, second.node, second.name, second.calloutPaths);
}

bool isOlder(const SerialDevice& first, const SerialDevice& second)
{
    return first.initializedAt != 0 && first.initializedAt < second.initializedAt;
}

std::optional<std::string> propertyOf(const SerialDevice& device, const std::string& calloutPath, std::string_view key)
{
    const auto suffixAt = device.name.find_last_not_of(kDigits) + 1;
    if (key == platform::kCalloutDeviceKey) {
        return calloutPath;
    }
    if (key == platform::kDialinDeviceKey) {
        return device.node;
    }
    if (key == platform::kTTYDeviceKey) {
        return device.name;
    }
    if (key == platform::kTTYBaseNameKey) {
        return device.name.substr(0, suffixAt);
    }
    if (key == platform::kTTYSuffixKey) {
        return device.name.substr(suffixAt);
    }
    if (key == platform::kSerialClientTypeKey) {
        return "IOSerialStream";
    }
    return std::nullopt;
}

} // namespace vorrano::linux_platform
