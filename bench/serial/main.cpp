// The serial link against Qt's own serial port class, in the same run: exchanges with a reply of 19 bytes over a pty,
// at once and at the pace of the line; and what an open port costs while nothing happens.
//
// usage: bench_serial [exchanges per run]     ends with 1 when a limit is passed, with 2 when it could not measure
#include "BarePoll.h"
#include "Cost.h"
#include "EchoDevice.h"
#include "OwnPort.h"
#include "OwnSystem.h"
#include "QtPort.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <string_view>

namespace {

using namespace vorrano::bench;

constexpr int kRuns = 5;
// A run is made of slices of the one and the other in turn, so that both meet the same load of the computer.
constexpr int kSlices = 20;
constexpr double kHighestRatio = 2.0;
// A request is handed to a thread of the pool and its sender waits, which Qt's class does without. No line is as quick
// as these exchanges: at the pace of a line this can't be told from the noise.
constexpr double kHighestCpuRatio = 3.0;
// At the pace of the line: 21 ms each, so that there are fewer.
constexpr int kPacedSlices = 4;
constexpr int kPacedExchanges = 20;
constexpr double kHighestPacedRatio = 1.5;
constexpr double kHighestIdleShare = 0.004;
// The three in turn as well.
constexpr int kIdleSlices = 5;
constexpr std::chrono::milliseconds kIdleSlice{1000};

double median(std::array<double, kRuns> values)
{
    std::sort(values.begin(), values.end());
    return values[kRuns / 2];
}

bool judge(const char* what, double measured, double highest, const char* unit)
{
    const bool good = measured <= highest;
    std::printf("%-36s %.3f%s, at most %.3f%s%s\n", what, measured, unit, highest, unit, good ? "" : ": TOO MUCH");
    return good;
}

struct Ratios {
    double time = 0;
    double cpu = 0;
};

// Medians of ours over Qt's.
Ratios compare(Port& own, Port& qt, char request, int slices, int exchangesEach)
{
    std::array<double, kRuns> timeRatios{};
    std::array<double, kRuns> cpuRatios{};
    for (std::size_t run = 0; run < kRuns; ++run) {
        Cost ours;
        Cost theirs;
        for (int i = 0; i < slices; ++i) {
            ours += costOfExchanges(own, request, exchangesEach);
            theirs += costOfExchanges(qt, request, exchangesEach);
        }
        timeRatios[run] = ours.time / theirs.time;
        cpuRatios[run] = ours.cpu / theirs.cpu;
        const double exchanges = slices * exchangesEach;
        std::printf("run %zu: round trip %.1f us, Qt %.1f us; CPU %.1f us, Qt %.1f us\n", run + 1,
                    ours.time.count() / exchanges, theirs.time.count() / exchanges, ours.cpu.count() / exchanges,
                    theirs.cpu.count() / exchanges);
    }
    return {median(timeRatios), median(cpuRatios)};
}

bool compareRoundTrips(Port& own, Port& qt, int times)
{
    const auto [time, cpu] = compare(own, qt, kRequest, kSlices, times / kSlices + 1);
    const bool quick = judge("round trip against Qt, median of 5:", time, kHighestRatio, " times");
    const bool cheap = judge("CPU against Qt, median of 5:", cpu, kHighestCpuRatio, " times");
    return quick && cheap;
}

bool comparePaced(Port& own, Port& qt)
{
    const auto paced = compare(own, qt, kPacedRequest, kPacedSlices, kPacedExchanges);
    return judge("CPU at the line's pace against Qt:", paced.cpu, kHighestPacedRatio, " times");
}

// An open port against a closed one, and against the least that such a poll can cost on this computer: where that alone
// is more than the limit, the port may cost twice that.
bool measureIdle(Port& own, const BarePoll& bare)
{
    const auto idle = [&own] {
        return costOf(own, [] {
            QEventLoop loop;
            QTimer::singleShot(kIdleSlice, Qt::PreciseTimer, &loop, &QEventLoop::quit);
            loop.exec();
        });
    };
    Cost closed;
    Cost opened;
    Cost least;
    for (int i = 0; i < kIdleSlices; ++i) {
        closed += idle();
        least += costOf(own, [&] { bare.poll(kIdleSlice); });
        open(own);
        opened += idle();
        own.close();
    }
    const double share = opened.cpu / opened.time - closed.cpu / closed.time;
    const double leastShare = least.cpu / least.time;
    std::printf("the least that a poll costs here:    %.3f %% of a core\n", 100 * leastShare);
    return judge("an idle open port:", 100 * share, 100 * std::max(kHighestIdleShare, 2 * leastShare), " % of a core");
}

int measure(int argc, char** argv, const EchoDevice& ownDevice, const EchoDevice& qtDevice)
{
    int times = 3000;
    if (argc > 1) {
        const std::string_view given(argv[1]);
        std::from_chars(given.data(), given.data() + given.size(), times);
    }
    const QCoreApplication application(argc, argv);
    OwnSystem system;
    OwnPort own(system, ownDevice.node());
    QtPort qt(qtDevice.node());
    const bool roundTrips = compareRoundTrips(own, qt, std::max(times, 1));
    const bool paced = comparePaced(own, qt);
    const bool idle = measureIdle(own, BarePoll(qtDevice.node()));
    return roundTrips && paced && idle ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        // Before there are threads, as they are processes.
        const EchoDevice ownDevice;
        const EchoDevice qtDevice;
        return measure(argc, argv, ownDevice, qtDevice);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_serial: %s\n", failure.what());
        return 2;
    }
}
