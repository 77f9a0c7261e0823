#pragma once

#include "stress/Breaches.h"
#include "stress/Hearing.h"
#include "stress/QueueModel.h"
#include "stress/Requests.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace vorrano::stress {

// The numbers of a run.
struct Tally {
    std::uint64_t sent = 0;
    std::uint64_t refused = 0;
    std::uint64_t answered = 0;
    std::uint64_t timedOut = 0;
    std::uint64_t both = 0;
    std::uint64_t cleared = 0; // by the step that followed the time-out of another one
    std::uint64_t clearedNothing = 0;
    std::uint64_t timeoutsOfNone = 0;
    std::uint64_t chunks = 0;

    Tally& operator+=(const Tally& other);
};

// The book of one port: every request, every chunk and every step of its request queue, what became of it, and whether
// that was right. It is exact: it has no tolerance, and reads no clock. What does not hold is added to the breaches.
//
// Threads: any; each method is called where it says.
class Ledger {
public:
    Ledger(std::string name, Breaches& breaches);

    // Who sends: a request is about to be sent. Its limit is made a little longer, so that the limits of all requests
    // that wait differ, and each is known by its own.
    struct Begun {
        Number number = 0;
        std::string id; // "SENDER.NUMBER"
        std::chrono::microseconds limit{};
    };
    [[nodiscard]] Begun begin(std::size_t sender, RequestKind kind, std::chrono::milliseconds limit);
    void returned(Number request, bool accepted);

    // The request queue: around each step, and inside.
    void stepBegins(const QueueStep& step);
    void stepEnds();
    [[nodiscard]] Number starts(std::chrono::nanoseconds limit);
    void stopsTimer(Number request);
    void writes(bool all);
    void asks(Number request, const std::string& bytes, bool answer);

    // The device: the whole request has arrived.
    void arrives(const std::string& id);

    // A reader: a chunk was read.
    void reads();

    // The main thread.
    void data(const std::string& chunk);
    void response(Number request, const std::string& bytes);
    void timeout(std::optional<Number> request);
    void setHasDescriptor(bool has);

    // Any thread: something is wrong with the queue itself.
    void complain(const std::string& what);

    // Requests that have not ended.
    [[nodiscard]] std::size_t unfinished() const;
    // Nothing is under way: no request, no time-out, no chunk, no callback.
    [[nodiscard]] bool isSettled() const;
    // Grows with everything that happens.
    [[nodiscard]] std::uint64_t events() const;

    // What is under way, in words.
    [[nodiscard]] std::string state() const;

    // At the end, when it has settled: every request and every step has to be accounted for.
    void drawBalance();

    [[nodiscard]] Tally tally() const;

private:
    void balance(const std::string& what, std::uint64_t left, std::uint64_t right);
    void judge(Number number);
    void lockedComplain(std::optional<Number> request, const std::string& what);

    const std::string m_name;
    Breaches& m_breaches;
    mutable std::mutex m_mutex;
    Requests m_requests;
    Hearing m_hearing;
    QueueModel m_queue;
    std::map<std::size_t, Number> m_lastArrived; // by sender
    std::uint64_t m_refused = 0;
    std::uint64_t m_read = 0;
    std::uint64_t m_events = 0;
};

} // namespace vorrano::stress
