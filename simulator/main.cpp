#include "app/command_line/CommandLine.h"
#include "simulator/control/Simulator.h"
#include "simulator/window/SimulatorWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QSocketNotifier>

#include <array>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>

#include <unistd.h>

namespace {

using namespace vorrano;

constexpr command_line::Program kProgram{"vorrano-simulator",
                                         "A simulated Vorrano on a pseudo-terminal, and the vendor's web service."};

void addOptions(QCommandLineParser& parser)
{
    parser.addOptions({
        {"control", "Where to make the control socket.", "path"},
        {"serial", "The adapter's serial number.", "number", "A1B2"},
        {"http-port", "The web service's port on loopback; 0 takes a free one.", "port", "0"},
        {"unplugged", "Start with the cable out."},
        {"until-stdin-ends", "End when standard input does."},
        {"account", "An account that is there from the start.", "name:password"},
        {"window", "Show the Vorrano as an object, and what passes."},
    });
}

// The status to end with at once, as CommandLine.h has it.
std::optional<int> answer(int argc, char* argv[], QCommandLineParser& parser)
{
    addOptions(parser);
    if (const auto status = command_line::answer(argc, argv, kProgram, parser)) {
        return status;
    }
    if (!parser.isSet("control")) {
        return command_line::refuse(kProgram, "--control is missing.");
    }
    bool isPort = false;
    parser.value("http-port").toUShort(&isPort);
    if (!isPort) {
        return command_line::refuse(kProgram, "--http-port takes a number from 0 to 65535.");
    }
    return std::nullopt;
}

simulator::Settings settingsOf(const QCommandLineParser& parser)
{
    const auto account = parser.value("account");
    return {parser.value("control").toStdString(),    parser.value("serial").toStdString(),
            parser.value("http-port").toUShort(),     !parser.isSet("unplugged"),
            account.section(':', 0, 0).toStdString(), account.section(':', 1).toStdString()};
}

// Whoever started the simulator holds the other end of its standard input: with it ends the simulator, however it ends.
std::unique_ptr<QSocketNotifier> quitWhenStdinEnds()
{
    auto notifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [] {
        std::array<char, 256> buffer{};
        if (::read(STDIN_FILENO, buffer.data(), buffer.size()) <= 0) {
            QCoreApplication::quit();
        }
    });
    return notifier;
}

// Only a simulator with a window needs a display.
std::unique_ptr<QCoreApplication> applicationFor(int& argc, char* argv[], bool window)
{
    if (!window) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return std::make_unique<QApplication>(argc, argv);
}

} // namespace

int main(int argc, char* argv[])
{
    QCommandLineParser parser;
    if (const auto status = answer(argc, argv, parser)) {
        return *status;
    }
    const bool window = parser.isSet("window");
    const auto application = applicationFor(argc, argv, window);
    try {
        simulator::Simulator simulator(settingsOf(parser));
        const auto shown = window ? std::make_unique<simulator::SimulatorWindow>(simulator) : nullptr;
        if (shown) {
            shown->show();
        }
        const auto stdinEnds = parser.isSet("until-stdin-ends") ? quitWhenStdinEnds() : nullptr;
        auto ready = simulator.state();
        ready["event"] = "ready";
        std::printf("%s\n", QJsonDocument(ready).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
        return QCoreApplication::exec();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "vorrano-simulator: %s\n", exception.what());
        return 1;
    }
}
