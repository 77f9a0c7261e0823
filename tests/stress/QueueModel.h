#pragma once

#include "stress/Hearing.h"
#include "stress/Requests.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::stress {

// What the request queue of a port has to do, followed step by step: which requests wait, which one is pending, whose
// timer runs, and what is due to the main thread. It complains of everything that the layer does otherwise.
//
// Threads: one at a time.
class QueueModel {
public:
    QueueModel(Requests& requests, Hearing& hearing, Complain complain);

    // Around each step of the queue.
    void begin(const QueueStep& step);
    void end();

    // Inside a step. A request of that limit starts: its number.
    [[nodiscard]] Number starts(std::chrono::nanoseconds limit);
    // The timer of a request is stopped, or dropped.
    void stopsTimer(Number request);
    // The pending request was written, the rest of it or less.
    void writes(bool all);
    // The response test of a request was asked, and has answered.
    void asks(Number request, const std::string& bytes, bool answer);

    // Nothing waits, is pending or may still time out.
    [[nodiscard]] bool isAtRest() const { return m_waiting.empty() && !m_pending && !m_timer; }
    // What is left, in words.
    [[nodiscard]] std::string state() const;

    struct Counts {
        std::uint64_t handedOver = 0;
        std::uint64_t started = 0;
        std::uint64_t accepted = 0;
        std::uint64_t cleared = 0;
        std::uint64_t clearedNothing = 0;
        std::uint64_t fired = 0;
        std::uint64_t followUps = 0;
        std::uint64_t chunks = 0;
    };
    [[nodiscard]] const Counts& counts() const { return m_counts; }

private:
    struct Pending {
        Number number = 0;
        bool isFirstTestDue = false;
        // What its response test was asked with last, and the chunks that it is made of.
        std::string bytes;
        std::vector<std::string> chunks;
    };
    struct CurrentStep {
        QueueStep step;
        std::optional<Number> pendingBefore;
        // The response came before, and the request that waits starts before the step does what it is there for.
        bool isStartDue = false;
        int asked = 0;
    };

    [[nodiscard]] std::optional<Number> pending() const;
    [[nodiscard]] bool isTested(Number request) const;
    [[nodiscard]] bool isSendOf(Number request) const;
    void handOver(Number request);
    void fire(Number request);
    void clear();
    void take();
    void accept();

    Requests& m_requests;
    Hearing& m_hearing;
    const Complain m_complain;
    Counts m_counts;
    std::deque<Number> m_waiting;
    std::optional<Pending> m_pending;
    std::optional<Number> m_timer; // whose it is
    bool m_isTimerStopped = false; // though that request has not ended
    CurrentStep m_step;
};

} // namespace vorrano::stress
