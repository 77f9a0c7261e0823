// This project's serial port beside those of well-known libraries and beside the bare system calls, all in one run, by
// turns. For scripts/bench --all, which reads what it prints.
//
// usage: bench_libraries PYSERIAL_SCRIPT     ends with 2 when it could not measure
#include "AsioPort.h"
#include "BarePoll.h"
#include "Cost.h"
#include "EchoDevice.h"
#include "Figures.h"
#include "HandoverPort.h"
#include "LibserialportPort.h"
#include "OwnPort.h"
#include "OwnSystem.h"
#include "PosixPort.h"
#include "PyserialPort.h"
#include "QtPort.h"
#include "ThreadsPort.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>

namespace {

using namespace vorrano::bench;
using std::chrono::steady_clock;

constexpr int kRuns = 5;
constexpr std::size_t kManyPorts = 64;
constexpr int kExchangesOfMany = 20;
constexpr int kStreamsOfARun = 5;
constexpr std::chrono::seconds kIdle{10};
constexpr int kIdleRuns = 3;

struct Pace {
    const char* row;
    char request;
    int slices;
    int exchangesEach;
};
constexpr Pace kPaced{"paced exchange", kPacedRequest, 2, 20};
constexpr Pace kUnpaced{"unpaced exchange", kRequest, 10, 100};

struct Competitor {
    std::string name;
    std::unique_ptr<Port> port;
};
using Competitors = std::vector<Competitor>;

void exchangeByTurns(const Competitors& competitors, const Pace& pace, Figures& figures)
{
    const double exchanges = pace.slices * pace.exchangesEach;
    for (int run = 0; run < kRuns; ++run) {
        std::vector<Cost> costs(competitors.size());
        for (int slice = 0; slice < pace.slices; ++slice) {
            for (std::size_t i = 0; i < competitors.size(); ++i) {
                costs[i] += costOfExchanges(*competitors[i].port, pace.request, pace.exchangesEach);
            }
        }
        for (std::size_t i = 0; i < competitors.size(); ++i) {
            figures.add(std::string(pace.row) + ", time", competitors[i].name, "us", costs[i].time.count() / exchanges);
            figures.add(std::string(pace.row) + ", CPU", competitors[i].name, "us", costs[i].cpu.count() / exchanges);
        }
    }
}

// From the moment when the device sends the last byte to the moment when the program hears of the reply.
void followLastByte(const Competitor& competitor, const EchoDevice& device, Figures& figures)
{
    competitor.port->onReply([&] {
        const Microseconds delay = steady_clock::now() - device.lastByteTime();
        figures.add("last byte to the callback", competitor.name, "us", delay.count());
    });
}

void stream(OwnSystem& system, const EchoDevice& ownDevice, const EchoDevice& bareDevice, const EchoDevice& thirdDevice,
            Figures& figures)
{
    OwnPort own(system, ownDevice.node());
    PosixPort bare(bareDevice.node());
    HandoverPort handover(thirdDevice.node());
    const std::vector<std::pair<const char*, StreamPort*>> ports{
        {"vorrano", &own}, {"bare POSIX", &bare}, {"a bare reader and a main loop", &handover}};
    for (const auto& [name, port] : ports) {
        open(*port);
    }
    for (int run = 0; run < kRuns; ++run) {
        std::vector<Cost> costs(ports.size());
        for (int i = 0; i < kStreamsOfARun; ++i) {
            for (std::size_t p = 0; p < ports.size(); ++p) {
                costs[p] += costOfStream(*ports[p].second);
            }
        }
        for (std::size_t p = 0; p < ports.size(); ++p) {
            figures.add("1 MiB at full speed", ports[p].first, "MiB/s", 1e6 * kStreamsOfARun / costs[p].time.count());
        }
    }
}

long wakeUps()
{
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    return used.ru_nvcsw;
}

void idle(Port& own, const BarePoll& bare, Figures& figures)
{
    const auto wait = [] {
        QEventLoop loop;
        QTimer::singleShot(kIdle, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    };
    const auto measure = [&](const char* who, const auto& work) {
        const auto before = wakeUps();
        const auto cost = costOf(own, work);
        figures.add("idle, CPU", who, "% of a core", 100 * (cost.cpu / cost.time));
        figures.add("idle, wake-ups", who, "per s", static_cast<double>(wakeUps() - before) * 1e6 / cost.time.count());
    };
    for (int run = 0; run < kIdleRuns; ++run) {
        measure("port closed", wait);
        measure("bare poll", [&] { bare.poll(kIdle); });
        open(own);
        measure("vorrano", wait);
        own.close();
    }
}

using MakePort = std::function<std::unique_ptr<Port>(const std::string& node)>;

// All at the line's pace at once: each exchange, and the longest of all.
void many(const char* who, const MakePort& makePort, const std::vector<std::unique_ptr<EchoDevice>>& devices,
          Figures& figures)
{
    struct Member {
        std::unique_ptr<Port> port;
        steady_clock::time_point asked;
        Microseconds longest{};
    };
    std::vector<Member> members(devices.size());
    QEventLoop loop;
    std::size_t busy = members.size();
    bool all = true;
    for (std::size_t i = 0; i < members.size(); ++i) {
        auto& member = members[i];
        member.port = makePort(devices[i]->node());
        open(*member.port);
        member.port->onReply([&] {
            const Microseconds waited = steady_clock::now() - member.asked;
            figures.add("64 ports, exchange", who, "us", waited.count());
            member.longest = std::max(member.longest, waited);
            member.asked = steady_clock::now();
        });
    }
    QTimer::singleShot(0, &loop, [&] {
        for (auto& member : members) {
            member.asked = steady_clock::now();
            member.port->exchange(kPacedRequest, kExchangesOfMany, [&](bool well) {
                all = all && well;
                if (--busy == 0) {
                    loop.quit();
                }
            });
        }
    });
    loop.exec();
    if (!all) {
        throw std::runtime_error("one of many ports was not answered");
    }
    Microseconds longest{};
    for (const auto& member : members) {
        longest = std::max(longest, member.longest);
    }
    figures.add("64 ports, longest exchange of all", who, "us", longest.count());
}

int measure(int argc, char** argv)
{
    // Before there are threads, as they are processes.
    const EchoDevice ownDevice;
    const EchoDevice qtDevice;
    const EchoDevice asioDevice;
    const EchoDevice libserialportDevice;
    const EchoDevice posixDevice;
    const EchoDevice threadsDevice;
    const EchoDevice pyserialDevice;
    std::vector<std::unique_ptr<EchoDevice>> devices;
    for (std::size_t i = 0; i < kManyPorts; ++i) {
        devices.push_back(std::make_unique<EchoDevice>());
    }

    const QCoreApplication application(argc, argv);
    Figures figures;
    OwnSystem system;
    Competitors competitors;
    competitors.push_back({"vorrano", std::make_unique<OwnPort>(system, ownDevice.node())});
    competitors.push_back({"Qt", std::make_unique<QtPort>(qtDevice.node())});
    competitors.push_back({"Asio", std::make_unique<AsioPort>(asioDevice.node())});
    competitors.push_back({"libserialport", std::make_unique<LibserialportPort>(libserialportDevice.node())});
    competitors.push_back({"bare POSIX", std::make_unique<PosixPort>(posixDevice.node())});
    competitors.push_back({"bare threads", std::make_unique<ThreadsPort>(threadsDevice.node())});
    competitors.push_back({"pyserial", std::make_unique<PyserialPort>(argv[1], pyserialDevice.node())});
    exchangeByTurns(competitors, kUnpaced, figures);
    followLastByte(competitors[0], ownDevice, figures);
    followLastByte(competitors[1], qtDevice, figures);
    followLastByte(competitors[2], asioDevice, figures);
    followLastByte(competitors[3], libserialportDevice, figures);
    followLastByte(competitors[4], posixDevice, figures);
    followLastByte(competitors[5], threadsDevice, figures);
    exchangeByTurns(competitors, kPaced, figures);
    competitors.clear();

    stream(system, ownDevice, posixDevice, asioDevice, figures);
    OwnPort own(system, ownDevice.node());
    idle(own, BarePoll(qtDevice.node()), figures);
    const auto makeOwn = [&](const auto& node) { return std::make_unique<OwnPort>(system, node); };
    const auto makeQt = [](const auto& node) { return std::make_unique<QtPort>(node); };
    const auto makeThreads = [](const auto& node) { return std::make_unique<ThreadsPort>(node); };
    for (int run = 0; run < kRuns; ++run) {
        many("vorrano", makeOwn, devices, figures);
        many("Qt", makeQt, devices, figures);
        many("bare threads", makeThreads, devices, figures);
    }
    figures.print();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_libraries PYSERIAL_SCRIPT\n");
        return 2;
    }
    try {
        return measure(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_libraries: %s\n", failure.what());
        return 2;
    }
}
