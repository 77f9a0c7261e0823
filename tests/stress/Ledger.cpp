#include "stress/Ledger.h"

#include <charconv>
#include <utility>

namespace vorrano::stress {

namespace {

// More than may wait at a time: limits that differ by this tell their requests apart.
constexpr Number kDifferentLimits = 1000;

std::optional<Number> numberOf(const std::string& id)
{
    const auto dot = id.find('.');
    Number number = 0;
    const auto* const begin = id.data() + (dot == std::string::npos ? id.size() : dot + 1);
    const auto [end, error] = std::from_chars(begin, id.data() + id.size(), number);
    return error == std::errc() && end == id.data() + id.size() ? std::optional(number) : std::nullopt;
}

} // namespace

Tally& Tally::operator+=(const Tally& other)
{
    sent += other.sent;
    refused += other.refused;
    answered += other.answered;
    timedOut += other.timedOut;
    both += other.both;
    cleared += other.cleared;
    clearedNothing += other.clearedNothing;
    timeoutsOfNone += other.timeoutsOfNone;
    chunks += other.chunks;
    return *this;
}

Ledger::Ledger(std::string name, Breaches& breaches)
    : m_name(std::move(name))
    , m_breaches(breaches)
    , m_hearing(m_requests, [this](auto request, const auto& what) { lockedComplain(request, what); })
    , m_queue(m_requests, m_hearing, [this](auto request, const auto& what) { lockedComplain(request, what); })
{}

void Ledger::lockedComplain(std::optional<Number> request, const std::string& what)
{
    const auto whose =
        request ? "request " + std::to_string(m_requests[*request].sender) + "." + std::to_string(*request) + " " : "";
    complain(whose + what);
}

void Ledger::complain(const std::string& what) { m_breaches.add(m_name + ": " + what); }

Ledger::Begun Ledger::begin(std::size_t sender, RequestKind kind, std::chrono::milliseconds limit)
{
    const std::lock_guard lock(m_mutex);
    ++m_events;
    const auto number = m_requests.size();
    Request request;
    request.sender = sender;
    request.kind = kind;
    request.limit = limit + std::chrono::microseconds(number % kDifferentLimits);
    m_requests.push_back(request);
    return {number, std::to_string(sender) + "." + std::to_string(number), request.limit};
}

// What sendRequest() says: no only where the request was started inside and could not be written.
void Ledger::returned(Number number, bool accepted)
{
    const std::lock_guard lock(m_mutex);
    m_refused += accepted ? 0 : 1;
    const auto& request = m_requests[number];
    if (!request.isHandedOver) {
        lockedComplain(number, "is lost: it was sent, but never came to the queue");
    } else if (accepted == (request.isStartedBySend && !request.isWrittenBySend)) {
        lockedComplain(number, accepted ? "was accepted, but not written" : "was refused, but queued or written");
    }
}

void Ledger::stepBegins(const QueueStep& step)
{
    const std::lock_guard lock(m_mutex);
    ++m_events;
    m_queue.begin(step);
}

void Ledger::stepEnds()
{
    const std::lock_guard lock(m_mutex);
    m_queue.end();
}

Number Ledger::starts(std::chrono::nanoseconds limit)
{
    const std::lock_guard lock(m_mutex);
    return m_queue.starts(limit);
}

void Ledger::stopsTimer(Number request)
{
    const std::lock_guard lock(m_mutex);
    m_queue.stopsTimer(request);
}

void Ledger::writes(bool all)
{
    const std::lock_guard lock(m_mutex);
    m_queue.writes(all);
}

void Ledger::asks(Number request, const std::string& bytes, bool answer)
{
    const std::lock_guard lock(m_mutex);
    m_queue.asks(request, bytes, answer);
}

void Ledger::arrives(const std::string& id)
{
    const std::lock_guard lock(m_mutex);
    const auto number = numberOf(id);
    if (!number || *number >= m_requests.size() || !m_requests[*number].isStarted) {
        complain("the device got a request that was not started: " + id);
        return;
    }
    auto& request = m_requests[*number];
    const auto last = m_lastArrived.find(request.sender);
    if (last != m_lastArrived.end() && *number <= last->second) {
        lockedComplain(number, "was written again, or after a later one of its sender");
    }
    request.hasArrived = true;
    m_lastArrived[request.sender] = *number;
}

void Ledger::reads()
{
    const std::lock_guard lock(m_mutex);
    ++m_events;
    ++m_read;
}

void Ledger::data(const std::string& chunk)
{
    const std::lock_guard lock(m_mutex);
    ++m_events;
    m_hearing.data(chunk);
}

void Ledger::response(Number request, const std::string& bytes)
{
    const std::lock_guard lock(m_mutex);
    ++m_events;
    m_hearing.response(request, bytes);
}

void Ledger::timeout(std::optional<Number> request)
{
    const std::lock_guard lock(m_mutex);
    ++m_events;
    m_hearing.timeout(request);
}

void Ledger::setHasDescriptor(bool has)
{
    const std::lock_guard lock(m_mutex);
    m_hearing.setHasDescriptor(has);
}

std::size_t Ledger::unfinished() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests.size() - m_queue.counts().accepted - m_queue.counts().cleared;
}

bool Ledger::isSettled() const
{
    const std::lock_guard lock(m_mutex);
    const auto& queue = m_queue.counts();
    return m_requests.size() == queue.handedOver && m_queue.isAtRest() && m_hearing.isNothingDue() &&
           m_hearing.timeouts() == queue.followUps && m_read == queue.chunks && m_read == m_hearing.chunks();
}

std::uint64_t Ledger::events() const
{
    const std::lock_guard lock(m_mutex);
    return m_events;
}

std::string Ledger::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_queue.state();
}

void Ledger::drawBalance()
{
    const std::lock_guard lock(m_mutex);
    m_hearing.finish();
    for (Number number = 0; number < m_requests.size(); ++number) {
        judge(number);
    }
    const auto& queue = m_queue.counts();
    balance("requests sent, and handed to the queue", m_requests.size(), queue.handedOver);
    balance("requests handed to the queue, and started", queue.handedOver, queue.started);
    balance("requests started, and ended", queue.started, queue.accepted + queue.cleared);
    balance("time-outs that came, and that were told", queue.fired, m_hearing.timeouts());
    balance("time-outs told, and steps that followed", m_hearing.timeouts(), queue.followUps);
    balance("chunks read, and told", m_read, m_hearing.chunks());
    balance("chunks read, and taken by the queue", m_read, queue.chunks);
    if (!m_queue.isAtRest() || !m_hearing.isNothingDue()) {
        complain("does not come to rest: " + m_queue.state());
    }
}

Tally Ledger::tally() const
{
    const std::lock_guard lock(m_mutex);
    Tally tally;
    for (const auto& request : m_requests) {
        tally.both += request.isAnswered && request.isTimedOut ? 1 : 0;
        tally.cleared += request.isCleared && !request.isTimedOut ? 1 : 0;
    }
    tally.sent = m_requests.size();
    tally.refused = m_refused;
    tally.answered = m_hearing.answered();
    tally.timedOut = m_hearing.timeouts();
    tally.clearedNothing = m_queue.counts().clearedNothing;
    tally.timeoutsOfNone = m_hearing.timeoutsOfNone();
    tally.chunks = m_read;
    return tally;
}

void Ledger::balance(const std::string& what, std::uint64_t left, std::uint64_t right)
{
    if (left != right) {
        complain(what + ": " + std::to_string(left) + " and " + std::to_string(right));
    }
}

void Ledger::judge(Number number)
{
    const auto& request = m_requests[number];
    const auto isAsked = request.isAsked || (request.kind == RequestKind::Untested && request.isAccepted);
    const auto isWrittenInVain = request.isStarted && !request.isWritten;
    if (!isAsked && !isWrittenInVain && !request.isTimedOut) {
        lockedComplain(number, "is lost: neither asked, nor written in vain, nor timed out");
    }
    if (request.kind != RequestKind::WantsReply && request.hasArrived && request.isTimedOut) {
        lockedComplain(number, "wants no reply and arrived, but timed out");
    }
    if (request.hasArrived && !request.isWritten) {
        lockedComplain(number, "arrived, but was taken as not written");
    }
}

} // namespace vorrano::stress
