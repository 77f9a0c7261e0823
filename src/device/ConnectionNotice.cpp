#include "device/ConnectionNotice.h"

#include "device/DeviceTexts.h"

#include <cerrno>
#include <initializer_list>
#include <string_view>
#include <system_error>

namespace vorrano::device {

namespace {

std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const auto part : parts) {
        text += part;
    }
    return text;
}

std::string notAllowed(const std::optional<std::string>& group)
{
    using namespace device_text;
    return group ? joined({kPortNotAllowed, kOrJoinGroupBegin, *group, kOrJoinGroupEnd})
                 : joined({kPortNotAllowed, kSentenceEnd});
}

std::string inUse(const std::optional<std::string>& program)
{
    using namespace device_text;
    return program ? joined({kPortInUseByBegin, *program, kPortInUseByEnd}) : std::string(kPortInUse);
}

std::string notOpened(const PortRefusal& refusal)
{
    switch (refusal.error) {
    case EACCES:
        return notAllowed(refusal.group);
    case EBUSY:
        return inUse(refusal.program);
    default:
        return joined(
            {device_text::kPortNotOpened, std::generic_category().message(refusal.error), device_text::kSentenceEnd});
    }
}

} // namespace

std::optional<std::string> connectionNotice(const TabConnection& connection)
{
    if (!connection.isVorranoListed) {
        return std::string(device_text::kNoVorranoConnected);
    }
    if (!connection.isPortListed) {
        return std::string(device_text::kVorranoInUseUnplugged);
    }
    if (connection.refusal) {
        return notOpened(*connection.refusal);
    }
    return std::nullopt;
}

} // namespace vorrano::device
