#include "stress/Hearing.h"

#include <algorithm>
#include <utility>

namespace vorrano::stress {

namespace {

constexpr std::size_t kLargestChunk = 1024;

} // namespace

Hearing::Hearing(Requests& requests, Complain complain)
    : m_requests(requests)
    , m_complain(std::move(complain))
{}

void Hearing::expectResponse(Number request, std::optional<std::string> bytes)
{
    m_due.push_back({DueKind::Response, request, std::move(bytes)});
}

void Hearing::expectTimeout(std::optional<Number> request)
{
    m_due.push_back({DueKind::Timeout, request, std::nullopt});
}

void Hearing::expectRun(Number request, std::optional<std::vector<std::string>> chunks)
{
    if (!chunks || !chunks->empty()) {
        m_runs.push_back({request, std::move(chunks)});
    }
}

void Hearing::response(Number request, const std::string& bytes)
{
    ++m_answered;
    m_requests[request].isAnswered = true;
    const auto due = take(DueKind::Response, request);
    if (due && due->bytes && *due->bytes != bytes) {
        m_complain(request, "has a response that is not what it accepted");
    }
    matchRunsUntil(request, bytes);
}

void Hearing::timeout(std::optional<Number> request)
{
    ++m_timeouts;
    m_timeoutsOfNone += request ? 0 : 1;
    if (request) {
        m_requests[*request].isTimedOut = true;
    }
    static_cast<void>(take(DueKind::Timeout, request));
}

// What is told has to be the first of what is due.
std::optional<Hearing::Due> Hearing::take(DueKind kind, std::optional<Number> request)
{
    const auto* const what = kind == DueKind::Response ? "is answered" : "times out";
    if (m_due.empty()) {
        m_complain(request, std::string(what) + " though nothing is due");
        return std::nullopt;
    }
    auto due = std::move(m_due.front());
    m_due.pop_front();
    if (due.kind != kind || due.request != request) {
        m_complain(request, std::string(what) + " out of its turn");
        return std::nullopt;
    }
    return due;
}

void Hearing::data(const std::string& chunk)
{
    ++m_chunks;
    m_heard.push_back(chunk);
    if (!m_hasDescriptor) {
        m_complain(std::nullopt, "data after the reader has left");
    }
    if (chunk.empty() || chunk.size() > kLargestChunk) {
        m_complain(std::nullopt, "a chunk of " + std::to_string(chunk.size()) + " bytes");
    }
}

// The chunks of a response, and of all that ended before it, were told before it.
void Hearing::matchRunsUntil(Number request, const std::string& bytes)
{
    auto isLast = false;
    while (!m_runs.empty() && !isLast) {
        const auto run = std::move(m_runs.front());
        m_runs.pop_front();
        isLast = run.request == request;
        match(run, run.chunks.value_or(std::vector<std::string>{bytes}));
    }
}

// The first place where the chunks fit is good enough: their true place is there or later, so no later run loses a
// chunk.
void Hearing::match(const Run& run, const std::vector<std::string>& chunks)
{
    const auto place = std::search(m_heard.begin(), m_heard.end(), chunks.begin(), chunks.end());
    if (place == m_heard.end()) {
        m_complain(run.request, "was asked with chunks that were not heard so, one after the other");
        return;
    }
    m_heard.erase(m_heard.begin(), place + static_cast<std::ptrdiff_t>(chunks.size()));
}

void Hearing::finish()
{
    for (const auto& run : std::exchange(m_runs, {})) {
        if (run.chunks) {
            match(run, *run.chunks);
        }
    }
}

} // namespace vorrano::stress
