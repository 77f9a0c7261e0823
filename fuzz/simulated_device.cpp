// The simulated Vorrano: whatever comes over its cable, at whatever times, with whatever faults.
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "simulator/device/SimulatedVorrano.h"

#include <chrono>
#include <string>

using namespace vorrano;
using fuzz::check;
using simulator::SimulatedVorrano;

namespace {

simulator::Fault faultFrom(fuzz::Input& input)
{
    simulator::Fault fault;
    fault.kind = static_cast<simulator::Fault::Kind>(input.below(7));
    if (input.below(2) == 0) {
        fault.command = static_cast<char>(input.byte());
    }
    if (input.below(2) == 0) {
        fault.times = input.below(4);
    }
    fault.delay = std::chrono::milliseconds(input.byte() * 16);
    fault.count = input.below(32);
    fault.at = {input.below(8), input.below(32)};
    fault.bytes = input.text();
    return fault;
}

void checkMemory(const simulator::Memory& memory)
{
    check(memory.ssid.size() <= 256 && memory.password.size() <= 256 && memory.wepKey.size() <= 256,
          "texts are limited");
    check(memory.securityType <= 4 || memory.securityType == 8, "a security type is a known one");
    check(memory.throttle >= 14 && memory.throttle <= 60, "a throttle is in its range");
    check(memory.unit <= 1, "a unit is one of two");
}

void checkOutput(SimulatedVorrano& device, simulator::Moment since)
{
    for (const auto& piece : device.takeOutput()) {
        check(piece.due >= since, "no piece is due before what it answers");
        check(!piece.bytes.empty() || piece.hangUpAfter, "a piece says something");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    SimulatedVorrano device;
    simulator::Moment now{};
    std::string received;
    while (!input.atEnd()) {
        const auto since = now;
        switch (input.below(6)) {
        case 0:
            device.order(faultFrom(input));
            break;
        case 1:
            device.cablePulled();
            break;
        case 2:
            device.hangUpAfterReceiving(input.below(8) + 1);
            break;
        case 3:
            now += std::chrono::milliseconds(input.byte() * 10);
            device.advance(now);
            break;
        default: {
            const auto bytes = input.text();
            received += bytes;
            device.receive(bytes, now);
        }
        }
        checkMemory(device.memory());
        checkOutput(device, since);
        check(!device.nextEvent() || *device.nextEvent() > now, "what was due has happened");
        check(device.image().bytes.size() == device.image().times.size(), "each byte of an image has its time");
    }
    check(device.received() == received, "every byte is kept");
    return 0;
}
