#include "device/DeviceRequests.h"

#include <any>
#include <chrono>
#include <utility>

namespace vorrano::device {

namespace {
constexpr std::chrono::duration<double> kTimeLimit{2.0};
}

std::shared_ptr<serial::SerialRequest> makeRequest(serial::Bytes data, serial::ResponseEvaluator evaluator)
{
    return serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        std::move(data), std::any(), kTimeLimit, std::move(evaluator));
}

Requests requestsOf(DeviceCommand command, std::string argument)
{
    Requests requests{makeRequest(bytesOf(command))};
    const auto kind = descriptionOf(command).argument;
    if (kind != Argument::None) {
        requests.push_back(makeRequest(std::move(argument)));
    }
    if (kind == Argument::FreeText) {
        requests.push_back(makeRequest(endMark()));
    }
    requests.back()->setResponseEvaluator(evaluatorOf(command));
    requests.back()->setResponseSecret(command == DeviceCommand::ReadPassword);
    return requests;
}

} // namespace vorrano::device
