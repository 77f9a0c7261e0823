#pragma once

#include "serial/SerialPort.h"
#include "stress/Breaches.h"
#include "stress/Device.h"
#include "stress/Ledger.h"
#include "stress/Schedule.h"
#include "stress/Stillness.h"
#include "stress/StressWorld.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vorrano::stress {

struct Order {
    std::uint64_t seed = 1;
    std::size_t ports = 64;
    std::size_t senders = 4;
    std::chrono::seconds duration{60};
    Break breaks = Break::Nothing;
};

// One run: ports that are opened, closed, re-optioned and hung up by the schedule, while several threads send. It ends
// early when something does not hold.
class Run {
public:
    explicit Run(const Order& order);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    // The breaches; none when all held. Prints its numbers.
    [[nodiscard]] std::vector<std::string> go();

private:
    using Clock = std::chrono::steady_clock;
    class Listener;
    struct Line {
        std::unique_ptr<Ledger> ledger;
        std::shared_ptr<serial::SerialPort> port;
        std::shared_ptr<Listener> listener;
        Stillness stillness;
        bool shallBeOpen = true;
    };

    void runSchedule();
    [[nodiscard]] bool goesOn();
    void keepOpen();
    void begin(const Step& step);
    void later(Milliseconds at, std::function<void()> what);
    void runDue(Milliseconds last);
    [[nodiscard]] bool isTime(Milliseconds at) const;
    void hangUp(const Step& step);
    void closeFor(const Step& step);
    void applyOption(const Step& step);
    void sendUnlessBusy(std::size_t sender, std::size_t at, std::uint32_t draw);
    void send(std::size_t sender, std::size_t at, std::uint32_t draw);
    [[nodiscard]] serial::ResponseEvaluator testOf(Ledger& ledger, const Ledger::Begun& begun, RequestKind kind);
    void settle();
    void sendOnceMore();
    void closePorts();
    void drawBalance();
    void letPortsGo();
    void report(std::uint64_t print) const;

    const Order m_order;
    const std::vector<Step> m_schedule;
    Breaches m_breaches;
    std::vector<Line> m_lines;
    StressWorld m_world;
    Rounds m_rounds{m_world.loop};
    std::unique_ptr<Device> m_device;
    Clock::time_point m_begin;
    std::multimap<Milliseconds, std::function<void()>> m_due;
    std::uint64_t m_hangUps = 0;
};

} // namespace vorrano::stress
