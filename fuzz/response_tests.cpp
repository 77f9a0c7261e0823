// The tests that decide whether what came from the device is a whole reply, at each length that the bytes may have.
#include "device/DeviceCommand.h"
#include "fuzz/Check.h"
#include "fuzz/Input.h"

#include <algorithm>

using namespace vorrano;
using fuzz::check;

namespace {

bool endsWith(const std::string& bytes, const std::string& end)
{
    return bytes.size() >= end.size() && std::equal(end.rbegin(), end.rend(), bytes.rbegin());
}

constexpr std::size_t kLongestReply = 64;

struct Tests {
    serial::ResponseEvaluator fourBytes = device::atLeastFourBytes();
    serial::ResponseEvaluator mac = device::macPacket();
    serial::ResponseEvaluator triple;
    serial::ResponseEvaluator twofold = device::doubleTerminator();
    serial::ResponseEvaluator always = device::always();
};

void checkAll(const Tests& tests, const std::string& bytes, std::size_t minimum)
{
    check(tests.fourBytes(bytes) == (bytes.size() > 3), "four bytes are enough");
    check(tests.mac(bytes) == (bytes.size() > 18), "a MAC packet has more than 18 bytes");
    check(tests.triple(bytes) == (bytes.size() >= minimum && endsWith(bytes, "\n\n\r")), "a text ends with three");
    check(tests.twofold(bytes) == (bytes.size() >= 4 && endsWith(bytes, "\n\r")), "a status ends with two");
    check(tests.always(bytes), "a reset needs no reply");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::size_t minimum = input.byte();
    const auto bytes = input.rest().substr(0, kLongestReply);
    Tests tests;
    tests.triple = device::tripleTerminator(minimum);
    // Asked as a request asks it.
    const auto request = serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        "c", {}, std::chrono::duration<double>(2), tests.triple);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const auto sofar = bytes.substr(0, length);
        checkAll(tests, sofar, minimum);
        check(request->dataIsValidResponse(sofar) == tests.triple(sofar), "a request asks its test");
    }
    return 0;
}
