#include "ctl/Arguments.h"
#include "ctl/Task.h"
#include "ctl/Tool.h"
#include "ctl/program/SecretInput.h"
#include "ctl/program/StandardConsole.h"
#include "platform/NotificationCentre.h"
#include "platform/System.h"
#include "platform/asio/AsioBackgroundQueue.h"
#include "platform/linux/LogindPowerEvents.h"
#include "platform/linux/LogindStayAwake.h"
#include "platform/linux/UdevDeviceRegistry.h"
#include "platform/posix/PosixPortAccess.h"
#include "platform/posix/PosixSystemLog.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/posix/StandardStreams.h"
#include "platform/qtcore/QtMainQueue.h"
#include "platform/qtcore/QtSignals.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <QCoreApplication>

namespace {

using namespace vorrano;

// A control call that an unplugged adapter holds up fails after 5 s.
constexpr std::chrono::seconds kLongestControlCall{6};

// The adapters in the order in which they need each other.
struct Adapters {
    posix_platform::PosixSystemLog log;
    platform::NotificationCentre notificationCentre;
    qt::QtMainQueue mainQueue{log};
    linux_platform::LogindPowerEvents powerEvents{[this](platform::Task task) { mainQueue.async(std::move(task)); }};
    linux_platform::LogindStayAwake stayAwake;
    linux_platform::UdevDeviceRegistry deviceRegistry{mainQueue};
    posix_platform::PosixTerminal terminal{deviceRegistry};
    posix_platform::PosixPortAccess portAccess{deviceRegistry};
    asio_platform::AsioBackgroundQueue backgroundQueue{log};
    platform::System system{
        {mainQueue, backgroundQueue, notificationCentre, terminal, deviceRegistry, powerEvents, log}};
};

// The status to end with: what did not go out is told, unless its reader did not want it.
int end(ctl::StandardConsole& console, ctl::ExitStatus status)
{
    const auto failure = console.failure();
    if (failure && failure != std::errc::broken_pipe) {
        console.error(std::string(ctl::kProgramName) + ": write error: " + failure.message() + "\n");
    }
    return static_cast<int>(failure && status == ctl::ExitStatus::Done ? ctl::ExitStatus::DeviceFailed : status);
}

int end(ctl::StandardConsole& console, const ctl::Answer& answer)
{
    if (answer.status == ctl::ExitStatus::Done) {
        console.output(answer.text);
    } else {
        const std::string name(ctl::kProgramName);
        console.error(name + ": " + answer.text + "\nTry '" + name + " --help'.\n");
    }
    return end(console, answer.status);
}

int run(int argc, char** argv, ctl::StandardConsole& console, ctl::Arguments arguments, ctl::Task task)
{
    QCoreApplication application(argc, argv);
    Adapters adapters;
    auto status = ctl::ExitStatus::Done;
    {
        ctl::Tool tool(std::move(arguments), std::move(task), {console, adapters.portAccess, adapters.stayAwake});
        const qt::QtSignals endingSignals([&](int number) { number == SIGINT ? tool.interrupt() : tool.terminate(); });
        adapters.mainQueue.async([&] {
            tool.start([&](ctl::ExitStatus ended) {
                status = ended;
                QCoreApplication::quit();
            });
        });
        QCoreApplication::exec();
    }
    serial::SerialPortManager::releaseShared();
    adapters.mainQueue.endAndDrain();
    adapters.backgroundQueue.stop();
    const int ended = end(console, status);
    if (!adapters.backgroundQueue.joinWithin(kLongestControlCall)) {
        std::_Exit(ended);
    }
    return ended;
}

} // namespace

int main(int argc, char** argv)
{
    posix_platform::occupyStandardStreams();
    // An output whose reader has gone must not end the program before the ports have their settings back.
    std::signal(SIGPIPE, SIG_IGN);
    ctl::StandardConsole console;
    auto arguments = ctl::argumentsOf({argv + 1, argv + argc}, VORRANO_VERSION);
    if (const auto* answer = std::get_if<ctl::Answer>(&arguments)) {
        return end(console, *answer);
    }
    auto task = ctl::taskOf(std::get<ctl::Arguments>(arguments), ctl::readSecret);
    if (const auto* answer = std::get_if<ctl::Answer>(&task)) {
        return end(console, *answer);
    }
    return run(argc, argv, console, std::get<ctl::Arguments>(std::move(arguments)),
               std::get<ctl::Task>(std::move(task)));
}
