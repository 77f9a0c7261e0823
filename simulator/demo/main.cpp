#include "app/command_line/CommandLine.h"
#include "app/program/Program.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "simulator/demo/SimulatedDeviceSource.h"
#include "simulator/demo/SimulatedSurroundings.h"
#include "simulator/demo/SimulatorProcess.h"

#include <cstdio>
#include <exception>

namespace {

using namespace vorrano;

constexpr command_line::Program kProgram{
    "vorrano-demo", "Vorrano Setup with a simulated Vorrano on the line, and a simulated web service and Wi-Fi."};

// The program itself, with a simulated Vorrano, service, Wi-Fi and network.
program::Composition composition(const demo::SimulatorProcess& simulator)
{
    auto parts = program::thisComputer("http://127.0.0.1:" + std::to_string(simulator.servicePort()));
    parts.makeDeviceRegistry = [&simulator](platform::MainQueue& queue) {
        return std::make_unique<linux_platform::UdevDeviceRegistry>(
            queue, std::make_unique<demo::SimulatedDeviceSource>(simulator.controlPath()));
    };
    parts.makeWifi = [] { return std::make_unique<demo::SimulatedWifi>(); };
    parts.makeReachability = [](platform::MainQueue&, platform::BackgroundQueue&) {
        return std::make_unique<demo::SimulatedReachability>();
    };
    return parts;
}

} // namespace

int main(int argc, char** argv)
{
    if (const auto status = command_line::answer(argc, argv, kProgram)) {
        return *status;
    }
    try {
        const demo::SimulatorProcess simulator;
        std::printf("The simulated Vorrano is controlled at %s\n", simulator.controlPath().c_str());
        std::fflush(stdout);
        return program::run(argc, argv, composition(simulator));
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "vorrano-demo: %s\n", exception.what());
        return 1;
    }
}
