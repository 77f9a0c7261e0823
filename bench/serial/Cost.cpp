#include "Cost.h"

#include <QEventLoop>
#include <QTimer>

#include <stdexcept>

namespace vorrano::bench {

namespace {

using Done = std::function<void(bool)>;

Cost costOfWork(const Port& port, const std::function<void(Done)>& work)
{
    bool wentWell = false;
    const auto cost = costOf(port, [&] {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] {
            work([&](bool well) {
                wentWell = well;
                loop.quit();
            });
        });
        loop.exec();
    });
    if (!wentWell) {
        throw std::runtime_error("a request was not answered");
    }
    return cost;
}

} // namespace

Cost& Cost::operator+=(const Cost& other)
{
    time += other.time;
    cpu += other.cpu;
    return *this;
}

Cost costOf(const Port& port, const std::function<void()>& wait)
{
    const auto begun = std::chrono::steady_clock::now();
    const auto cpuBefore = port.cpuTime();
    wait();
    return {std::chrono::steady_clock::now() - begun, port.cpuTime() - cpuBefore};
}

Cost costOfExchanges(Port& port, char request, int times)
{
    const auto measure = [&](int exchanges) {
        return costOfWork(port, [&](Done done) { port.exchange(request, exchanges, std::move(done)); });
    };
    open(port);
    measure(1);
    const auto cost = measure(times);
    port.close();
    return cost;
}

Cost costOfStream(StreamPort& port)
{
    return costOfWork(port, [&](Done done) { port.receiveStream(std::move(done)); });
}

void open(Port& port)
{
    if (!port.open()) {
        throw std::runtime_error("the port does not open");
    }
}

} // namespace vorrano::bench
