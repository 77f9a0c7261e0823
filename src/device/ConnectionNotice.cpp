#include "device/ConnectionNotice.h"

#include "device/DeviceTexts.h"

namespace vorrano::device {

std::optional<std::string_view> connectionNotice(const TabConnection& connection)
{
    if (!connection.isVorranoListed) {
        return device_text::kNoVorranoConnected;
    }
    if (!connection.isPortListed) {
        return device_text::kVorranoInUseUnplugged;
    }
    return std::nullopt;
}

} // namespace vorrano::device
