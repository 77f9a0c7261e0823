#include "simulator/control/Simulator.h"
#include "simulator/window/SimulatorWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <memory>
#include <string_view>

#include <unistd.h>

namespace {

using vorrano::simulator::Settings;

Settings settingsOf(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("A simulated Vorrano on a pseudo-terminal, and the vendor's web service.");
    parser.addHelpOption();
    parser.addOptions({
        {"control", "Where to make the control socket.", "path"},
        {"serial", "The adapter's serial number.", "number", "A1B2"},
        {"http-port", "The web service's port on loopback; 0 takes a free one.", "port", "0"},
        {"unplugged", "Start with the cable out."},
        {"until-stdin-ends", "End when standard input does."},
        {"account", "An account that is there from the start.", "name:password"},
        {"window", "Show the Vorrano as an object, and what passes."},
    });
    parser.process(application);
    if (!parser.isSet("control")) {
        parser.showHelp(2);
    }
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

bool isGiven(int argc, char* argv[], std::string_view option)
{
    return std::find(argv, argv + argc, option) != argv + argc;
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
    const bool window = isGiven(argc, argv, "--window");
    const bool untilStdinEnds = isGiven(argc, argv, "--until-stdin-ends");
    const auto application = applicationFor(argc, argv, window);
    const auto settings = settingsOf(*application);
    try {
        vorrano::simulator::Simulator simulator(settings);
        const auto shown = window ? std::make_unique<vorrano::simulator::SimulatorWindow>(simulator) : nullptr;
        if (shown) {
            shown->show();
        }
        const auto stdinEnds = untilStdinEnds ? quitWhenStdinEnds() : nullptr;
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
