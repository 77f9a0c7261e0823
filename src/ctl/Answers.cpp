#include "ctl/Answers.h"

#include "device/DeviceValues.h"
#include "text/Text.h"

namespace vorrano::ctl {

using device::DeviceCommand;

namespace {

constexpr std::string_view kEndOfStoredText = device::kTripleTerminator.end;

device::ReplyTest testOf(DeviceCommand command)
{
    if (const auto& test = device::descriptionOf(command).replyTest) {
        return *test;
    }
    switch (command) {
    case DeviceCommand::FirmwareVersion:
        return {6, ""};
    case DeviceCommand::WifiFirmwareVersion:
        return {13, ""};
    default:
        return {3, ""};
    }
}

std::optional<Outcome::Value> unitOf(std::string_view answer)
{
    const auto unit = device::unitOfReply(answer);
    return unit ? std::optional<Outcome::Value>(std::string(*unit)) : std::nullopt;
}

// A stored text may begin and end with blanks.
std::string storedTextOf(std::string_view answer)
{
    if (answer.ends_with(kEndOfStoredText)) {
        answer.remove_suffix(kEndOfStoredText.size());
    }
    return std::string(answer);
}

} // namespace

device::Requests answeredRequestsOf(DeviceCommand command, const std::string& argument)
{
    auto requests = device::requestsOf(command, argument);
    requests.back()->setResponseEvaluator(
        [test = testOf(command)](const serial::Bytes& received) { return test.isWhole(received); });
    return requests;
}

std::optional<Outcome::Value> valueOf(DeviceCommand command, std::string_view answer)
{
    if (!text::textFromUtf8(answer)) {
        return std::nullopt;
    }
    switch (command) {
    case DeviceCommand::ReadSSID:
        return device::replaceDollarSignWithSpaces(storedTextOf(answer));
    case DeviceCommand::ReadPassword:
        return storedTextOf(answer);
    case DeviceCommand::ReadThrottle:
        return std::int64_t{device::throttleFromReply(answer)};
    case DeviceCommand::ReadTemperatureUnit:
        return unitOf(answer);
    case DeviceCommand::SetTemperatureUnit:
        if (!device::isUnitAcknowledged(answer)) {
            return std::nullopt;
        }
        break;
    default:
        break;
    }
    return text::trimmingBlanksAndLineEnds(answer);
}

} // namespace vorrano::ctl
