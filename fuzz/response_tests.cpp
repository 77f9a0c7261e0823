// The tests that decide whether what came from the device is a whole reply, at each length that the bytes may have.
#include "device/DeviceCommand.h"
#include "fuzz/Check.h"
#include "fuzz/Input.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace vorrano;
using device::DeviceCommand;
using fuzz::check;
using serial::SerialRequest;

namespace {

constexpr std::size_t kLongestReply = 64;

bool endsWith(const std::string& bytes, const std::string& end)
{
    return bytes.size() >= end.size() && std::equal(end.rbegin(), end.rend(), bytes.rbegin());
}

// The rule of each reply test, told a second time. Which command has which test, the unit tests know.
bool isWholeByRule(const std::optional<device::ReplyTest>& test, const std::string& bytes)
{
    if (test == device::kMacPacket) {
        return bytes.size() > 18;
    }
    if (test == device::kTripleTerminator) {
        return bytes.size() > 3 && endsWith(bytes, "\n\n\r");
    }
    if (test == device::kDoubleTerminator) {
        return bytes.size() > 3 && endsWith(bytes, "\n\r");
    }
    if (test == device::kAtLeastFourBytes) {
        return bytes.size() > 3;
    }
    // Resets wait for nothing, and what is sent past the request queue takes any chunk.
    return true;
}

struct Request {
    DeviceCommand command;
    std::shared_ptr<SerialRequest> request;
};

// One for each command, with its test as a tab would have set it.
std::vector<Request> allRequests()
{
    std::vector<Request> requests;
    for (const auto& description : device::kCommands) {
        requests.push_back(
            {description.command, SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
                                      device::bytesOf(description.command), {}, std::chrono::duration<double>(2),
                                      device::evaluatorOf(description.command))});
    }
    return requests;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const auto kRequests = allRequests();
    const auto bytes = fuzz::Input(data, size).rest().substr(0, kLongestReply);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const auto sofar = bytes.substr(0, length);
        for (const auto& [command, request] : kRequests) {
            check(request->dataIsValidResponse(sofar) == isWholeByRule(device::descriptionOf(command).replyTest, sofar),
                  "a reply is whole by its command's rule");
        }
    }
    return 0;
}
