#pragma once

#include "serial/SerialPort.h"
#include "serial_pty/rig/PtyWorld.h"
#include "stress/Device.h"
#include "stress/Ledger.h"
#include "stress/Schedule.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace vorrano::stress {

struct Order {
    std::uint64_t seed = 1;
    std::size_t ports = 64;
    std::size_t senders = 4;
    std::chrono::seconds duration{60};
};

// One run: ports that are opened, closed, re-optioned and hung up by the schedule, while several threads send.
class Run {
public:
    explicit Run(const Order& order);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    // The breaches; none when all held. Prints its numbers.
    [[nodiscard]] std::vector<std::string> go();

private:
    using Clock = std::chrono::steady_clock;
    class Listener;
    struct Line {
        std::unique_ptr<Ledger> ledger;
        std::shared_ptr<serial::SerialPort> port;
        std::shared_ptr<Listener> listener;
        bool shallBeOpen = true;
    };

    void runSchedule();
    void keepOpen();
    void begin(const Step& step);
    void later(Milliseconds at, std::function<void()> what);
    void runDue(Milliseconds last);
    [[nodiscard]] bool isTime(Milliseconds at) const;
    void hangUp(const Step& step);
    void closeForLong(const Step& step);
    void closeAndReopen(const Step& step);
    void applyOption(const Step& step);
    void send(std::size_t sender, std::size_t at, std::uint32_t draw);
    void sendUntilTheEnd(std::size_t sender);
    void stopSenders();
    bool letTheQueuesDrain();
    [[nodiscard]] std::vector<std::string> portsThatStandStill();
    void report(const Tally& tally, std::uint64_t print) const;

    const Order m_order;
    const std::vector<Step> m_schedule;
    std::vector<Line> m_lines;
    pty_rig::PtyWorld m_world;
    std::unique_ptr<Device> m_device;
    Clock::time_point m_begin;
    std::multimap<Milliseconds, std::function<void()>> m_due;
    std::mutex m_mutex;
    std::condition_variable m_stopChanged;
    bool m_stop = false;
    std::vector<std::thread> m_senders;
    std::uint64_t m_hangUps = 0;
};

} // namespace vorrano::stress
