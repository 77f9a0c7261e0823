#include "stress/QueueModel.h"

#include <utility>

namespace vorrano::stress {

QueueModel::QueueModel(Requests& requests, Hearing& hearing, Complain complain)
    : m_requests(requests)
    , m_hearing(hearing)
    , m_complain(std::move(complain))
{}

std::optional<Number> QueueModel::pending() const
{
    return m_pending ? std::optional(m_pending->number) : std::nullopt;
}

bool QueueModel::isTested(Number request) const { return m_requests[request].kind != RequestKind::Untested; }

void QueueModel::begin(const QueueStep& step)
{
    if (m_pending && std::exchange(m_pending->isFirstTestDue, false)) {
        m_complain(m_pending->number, "was written, but not asked before the next step");
    }
    m_step = {step, pending(), !m_pending && !m_waiting.empty(), 0};
    switch (step.kind) {
    case StepKind::Send:
        handOver(step.request);
        break;
    case StepKind::Chunk:
        ++m_counts.chunks;
        take();
        break;
    case StepKind::Timeout:
        fire(step.request);
        break;
    case StepKind::FollowUp:
        ++m_counts.followUps;
        if (!m_step.isStartDue) {
            clear();
        }
        break;
    case StepKind::Other:
        break;
    }
}

void QueueModel::end()
{
    if (m_step.step.kind == StepKind::FollowUp && m_step.isStartDue) {
        clear();
    }
    const auto [step, before, wasStartDue, asked] = std::exchange(m_step, {});
    if (step.kind == StepKind::Chunk && before && isTested(*before) && asked != 1) {
        m_complain(before, "is asked " + std::to_string(asked) + " times for one chunk");
    }
    if (step.kind == StepKind::Send && !m_pending && !m_waiting.empty()) {
        m_complain(m_waiting.front(), "does not start though nothing is pending");
    }
    if (std::exchange(m_isTimerStopped, false)) {
        m_complain(m_timer, "has a timer that was stopped before its end");
    }
}

void QueueModel::handOver(Number request)
{
    if (std::exchange(m_requests[request].isHandedOver, true)) {
        m_complain(request, "is queued twice");
    }
    ++m_counts.handedOver;
    m_waiting.push_back(request);
}

Number QueueModel::starts(std::chrono::nanoseconds limit)
{
    if (m_waiting.empty()) {
        m_complain(std::nullopt, "a request starts though none waits");
        return 0;
    }
    const auto request = m_waiting.front();
    m_waiting.pop_front();
    // The limits of those that wait differ.
    if (std::chrono::round<std::chrono::microseconds>(limit) != m_requests[request].limit) {
        m_complain(request, "is lost: a later one starts in its turn");
    }
    if (m_pending && m_step.step.kind == StepKind::FollowUp && std::exchange(m_step.isStartDue, false)) {
        clear();
    }
    if (m_pending) {
        m_complain(m_pending->number, "is pending while the next one starts");
    }
    m_requests[request].isStarted = true;
    m_requests[request].isStartedBySend = isSendOf(request);
    ++m_counts.started;
    m_pending = Pending{request, false, {}, {}};
    m_timer = request;
    m_isTimerStopped = false;
    return request;
}

// In the step that starts the next request the old one's timer may go before.
void QueueModel::stopsTimer(Number request)
{
    if (m_step.step.kind == StepKind::Chunk && m_step.isStartDue && pending() == request) {
        take();
    } else if (m_timer == request) {
        m_isTimerStopped = true;
    }
}

bool QueueModel::isSendOf(Number request) const
{
    return m_step.step.kind == StepKind::Send && m_step.step.request == request;
}

void QueueModel::writes(bool all)
{
    if (!m_pending) {
        m_complain(std::nullopt, "a request is written that is not pending");
        return;
    }
    const auto number = m_pending->number;
    m_requests[number].isWritten = all;
    m_requests[number].isWrittenBySend = all && isSendOf(number);
    if (all && isTested(number)) {
        m_pending->isFirstTestDue = true;
    } else if (all) {
        accept();
    }
}

void QueueModel::asks(Number request, const std::string& bytes, bool answer)
{
    if (pending() != request) {
        m_complain(request, "is asked, but not pending");
        return;
    }
    ++m_step.asked;
    m_requests[request].isAsked = true;
    auto& known = m_pending->bytes;
    if (std::exchange(m_pending->isFirstTestDue, false)) {
        if (!bytes.empty()) {
            m_complain(request, "is asked with bytes before it is asked without");
        }
    } else if (bytes.size() <= known.size() || !bytes.starts_with(known)) {
        m_complain(request, "is asked with bytes that do not continue those before");
    } else {
        m_pending->chunks.push_back(bytes.substr(known.size()));
        known = bytes;
    }
    if (answer) {
        accept();
    }
}

// A chunk is the response of a request without a response test that could not be written.
void QueueModel::take()
{
    if (m_pending && !isTested(m_pending->number)) {
        const auto request = m_pending->number;
        accept();
        m_hearing.expectRun(request, std::nullopt);
        m_hearing.expectResponse(request, std::nullopt);
    }
}

// Ends the pending request, and stops whatever timer there is.
void QueueModel::accept()
{
    const auto ended = *std::exchange(m_pending, std::nullopt);
    m_timer.reset();
    m_requests[ended.number].isAccepted = true;
    ++m_counts.accepted;
    m_hearing.expectRun(ended.number, ended.chunks);
    if (!ended.bytes.empty()) {
        m_hearing.expectResponse(ended.number, ended.bytes);
    }
}

// The time-out is that of whatever is pending, or of none.
void QueueModel::fire(Number request)
{
    ++m_counts.fired;
    if (m_timer != request) {
        m_complain(request, "has a timer that fires after its end");
    }
    m_timer.reset();
    m_hearing.expectTimeout(pending());
}

// The step that follows a time-out clears whatever is pending by then. A timer that still runs goes on.
void QueueModel::clear()
{
    if (!m_pending) {
        ++m_counts.clearedNothing;
        return;
    }
    const auto ended = *std::exchange(m_pending, std::nullopt);
    ++m_counts.cleared;
    m_requests[ended.number].isCleared = true;
    m_hearing.expectRun(ended.number, ended.chunks);
}

std::string QueueModel::state() const
{
    std::string text = std::to_string(m_waiting.size()) + " requests wait, ";
    text += m_pending ? std::to_string(m_pending->number) + " is pending, " : "none is pending, ";
    return text + (m_timer ? "the timer of " + std::to_string(*m_timer) + " has not fired" : "no timer runs");
}

} // namespace vorrano::stress
