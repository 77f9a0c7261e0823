#pragma once

#include "stress/Requests.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::stress {

// What the main thread has to hear of a port, and hears: the responses and time-outs that the request queue made due,
// in that order; every chunk; and the chunks that a request was asked with, one after the other, before its response.
//
// Threads: one at a time.
class Hearing {
public:
    Hearing(Requests& requests, Complain complain);

    // The queue made it due. A request without a response test takes one chunk, whatever it is: no bytes are given.
    void expectResponse(Number request, std::optional<std::string> bytes);
    // Of the request that was pending, or of none.
    void expectTimeout(std::optional<Number> request);
    // The request has ended; it was asked with these chunks. Without: one chunk, which its response shows.
    void expectRun(Number request, std::optional<std::vector<std::string>> chunks);

    // On the main thread.
    void response(Number request, const std::string& bytes);
    void timeout(std::optional<Number> request);
    void data(const std::string& chunk);
    // All its descriptors are gone; or there is one.
    void setHasDescriptor(bool has) { m_hasDescriptor = has; }

    // At the end: looks for what was asked, but not answered.
    void finish();

    [[nodiscard]] bool isNothingDue() const { return m_due.empty(); }
    [[nodiscard]] std::uint64_t chunks() const { return m_chunks; }
    [[nodiscard]] std::uint64_t answered() const { return m_answered; }
    [[nodiscard]] std::uint64_t timeouts() const { return m_timeouts; }
    [[nodiscard]] std::uint64_t timeoutsOfNone() const { return m_timeoutsOfNone; }

private:
    enum class DueKind { Response, Timeout };
    struct Due {
        DueKind kind = DueKind::Response;
        std::optional<Number> request;
        std::optional<std::string> bytes;
    };
    struct Run {
        Number request = 0;
        std::optional<std::vector<std::string>> chunks;
    };

    [[nodiscard]] std::optional<Due> take(DueKind kind, std::optional<Number> request);
    void matchRunsUntil(Number request, const std::string& bytes);
    void match(const Run& run, const std::vector<std::string>& chunks);

    Requests& m_requests;
    const Complain m_complain;
    std::deque<Due> m_due;
    std::deque<Run> m_runs;
    std::deque<std::string> m_heard; // and not in a run yet
    bool m_hasDescriptor = false;
    std::uint64_t m_chunks = 0;
    std::uint64_t m_answered = 0;
    std::uint64_t m_timeouts = 0;
    std::uint64_t m_timeoutsOfNone = 0;
};

} // namespace vorrano::stress
