#include "stress/Ledger.h"

#include <algorithm>
#include <utility>

namespace vorrano::stress {

namespace {

constexpr std::size_t kRemembered = 65'536;

} // namespace

Tally& Tally::operator+=(const Tally& other)
{
    sent += other.sent;
    refused += other.refused;
    answered += other.answered;
    timedOut += other.timedOut;
    both += other.both;
    cleared += other.cleared;
    timeoutsOfNone += other.timeoutsOfNone;
    chunks += other.chunks;
    return *this;
}

std::string Ledger::begin(std::size_t sender, bool wantsReply)
{
    const std::lock_guard lock(m_mutex);
    Request request;
    request.sender = sender;
    request.number = ++m_lastNumber[sender];
    request.wantsReply = wantsReply;
    const auto id = std::to_string(sender) + "." + std::to_string(request.number);
    m_requests.emplace(id, request);
    ++m_tally.sent;
    return id;
}

void Ledger::sent(const std::string& /*id*/, bool accepted)
{
    const std::lock_guard lock(m_mutex);
    m_tally.refused += accepted ? 0 : 1;
}

Ledger::Request& Ledger::find(const std::string& id)
{
    const auto known = m_requests.find(id);
    if (known == m_requests.end()) {
        breach("is unknown", id);
    }
    return known == m_requests.end() ? m_requests[id] : known->second;
}

void Ledger::breach(const std::string& what, const std::string& id)
{
    m_breaches.push_back(m_name + ": request " + id + " " + what);
}

void Ledger::evaluated(const std::string& id, const std::string& bytes, bool answer)
{
    const std::lock_guard lock(m_mutex);
    auto& request = find(id);
    if (m_pending != id) {
        moveTo(id, request);
    }
    if (request.accepted) {
        breach("is asked again after it accepted", id);
    }
    request.evaluated = true;
    request.accepted = answer;
    request.answerDue = answer && !bytes.empty();
}

// Another request is pending than the last time: that one's turn does not come again.
void Ledger::moveTo(const std::string& id, Request& request)
{
    if (request.evaluated) {
        breach("is pending a second time", id);
    }
    if (request.number <= m_lastPending[request.sender]) {
        breach("is pending after a later one of its sender", id);
    }
    m_lastPending[request.sender] = request.number;
    m_pending = id;
}

void Ledger::arrived(const std::string& id)
{
    const std::lock_guard lock(m_mutex);
    auto& request = find(id);
    if (++request.arrivals > 1) {
        breach("was written twice", id);
    }
    if (request.number <= m_lastArrived[request.sender]) {
        breach("was written after a later one of its sender", id);
    }
    m_lastArrived[request.sender] = request.number;
}

void Ledger::data(const std::string& chunk)
{
    const std::lock_guard lock(m_mutex);
    ++m_tally.chunks;
    m_heard += chunk;
    if (m_heard.size() > 2 * kRemembered) {
        m_heard.erase(0, m_heard.size() - kRemembered);
    }
    if (m_quiet) {
        m_breaches.push_back(m_name + ": data long after the close");
    }
    if (chunk.empty() || chunk.size() > 1024) {
        m_breaches.push_back(m_name + ": a chunk of " + std::to_string(chunk.size()) + " bytes");
    }
}

void Ledger::response(const std::string& id, const std::string& bytes)
{
    const std::lock_guard lock(m_mutex);
    auto& request = find(id);
    ++m_tally.answered;
    if (++request.responses > 1) {
        breach("is answered twice", id);
    }
    if (!request.answerDue) {
        breach("is answered, but accepted nothing", id);
    }
    if (m_heard.find(bytes) == std::string::npos) {
        breach("has a response that was not heard as data before", id);
    }
    // One that wants no reply, but could not be written, takes whatever comes.
    if (request.wantsReply && bytes.find("A" + id + "!") == std::string::npos) {
        breach("has somebody else's response", id);
    }
}

void Ledger::timeout(const std::string& id)
{
    const std::lock_guard lock(m_mutex);
    auto& request = find(id);
    ++m_tally.timedOut;
    if (++request.timeouts > 1) {
        breach("times out twice", id);
    }
    if (request.responses > 0) {
        breach("times out after its response", id);
    }
}

void Ledger::timeoutOfNone()
{
    const std::lock_guard lock(m_mutex);
    ++m_tally.timeoutsOfNone;
}

void Ledger::setQuiet(bool quiet)
{
    const std::lock_guard lock(m_mutex);
    m_quiet = quiet;
}

bool Ledger::isFinished(const Request& request)
{
    return request.accepted || request.timeouts > 0 || (!request.wantsReply && request.arrivals > 0);
}

std::size_t Ledger::unfinished() const
{
    const std::lock_guard lock(m_mutex);
    const auto isOpen = [](const auto& entry) { return !isFinished(entry.second); };
    return static_cast<std::size_t>(std::count_if(m_requests.begin(), m_requests.end(), isOpen));
}

Tally Ledger::close()
{
    const std::lock_guard lock(m_mutex);
    std::uint64_t unfinished = 0;
    for (const auto& [id, request] : m_requests) {
        if (request.answerDue && request.responses != 1) {
            breach("accepted, but was answered " + std::to_string(request.responses) + " times", id);
        }
        m_tally.both += request.responses > 0 && request.timeouts > 0 ? 1 : 0;
        unfinished += isFinished(request) ? 0 : 1;
    }
    // Whoever was cleared away was so by the deferred step of a time-out whose request had been answered meanwhile, or
    // of one that came without a request: by the timer of somebody who was cleared away before.
    m_tally.cleared = unfinished;
    if (unfinished > m_tally.both + m_tally.timeoutsOfNone || m_tally.timeoutsOfNone > unfinished) {
        m_breaches.push_back(m_name + ": " + std::to_string(unfinished) + " requests without an end, " +
                             std::to_string(m_tally.both) + " late replies, " + std::to_string(m_tally.timeoutsOfNone) +
                             " time-outs without a request");
    }
    return m_tally;
}

std::vector<std::string> Ledger::breaches() const
{
    const std::lock_guard lock(m_mutex);
    return m_breaches;
}

} // namespace vorrano::stress
