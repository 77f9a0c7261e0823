#include "serial/RequestQueue.h"

#include "platform/SerialQueue.h"

#include <algorithm>
#include <utility>

namespace vorrano::serial {

namespace {

// A quarter of what the clock can count: no sum with the time of day overflows.
constexpr std::chrono::duration<double> kLongestTimeout = std::chrono::nanoseconds::max() / 4;

} // namespace

RequestQueue::RequestQueue(std::shared_ptr<platform::SerialQueue> serialQueue, Events events)
    : m_serialQueue(std::move(serialQueue))
    , m_events(std::move(events))
{}

RequestQueue::~RequestQueue() { setPendingRequestTimeoutTimer(nullptr); }

bool RequestQueue::sendRequest(Request request)
{
    bool accepted = false;
    m_serialQueue->sync([&] {
        accepted = reallySendRequest(std::move(request));
        sendNextRequestIfDue();
    });
    return accepted;
}

void RequestQueue::receiveData(Bytes chunk)
{
    {
        // The reader of an ended open may bring its last chunk while the next open's reader brings its first. The lock
        // gives them one order, so that the buffer gets the bytes as the delegate hears them.
        const platform::MutexLock lock(m_chunksMutex);
        m_events.didReceiveData(chunk, m_mayReceiveSecret);
        m_chunks.push_back(std::move(chunk));
    }
    m_serialQueue->dispatch(onQueue(&RequestQueue::takeChunk));
}

// Takes the first chunk, which another reader may have brought. There is one such step for each chunk.
void RequestQueue::takeChunk()
{
    // Writes when a request is due, but never on the reader's thread: the request's own step waits in the queue then,
    // and a chunk's step runs in place only when nothing waits.
    sendNextRequestIfDue();
    {
        const platform::MutexLock lock(m_chunksMutex);
        // Without a pending request nobody looks at the buffer, and the next request starts with an empty one.
        if (m_pendingRequest) {
            m_receiveBuffer += m_chunks.front();
        }
        m_chunks.pop_front();
    }
    checkResponseToPendingRequestAndContinueIfValid();
    if (m_requestsQueue.empty()) {
        sendNextRequestIfDue();
    } else if (m_isNextDue) {
        // The next request is written, which may take its time: not on the reader's thread, which this may be.
        m_serialQueue->async(onQueue(&RequestQueue::sendNextRequestIfDue));
    }
}

bool RequestQueue::reallySendRequest(Request request)
{
    if (m_pendingRequest) {
        m_requestsQueue.push_back(std::move(request));
        return true;
    }
    m_receiveBuffer.clear();
    m_pendingRequest = std::move(request);
    if (m_pendingRequest->isResponseSecret()) {
        m_mayReceiveSecret = true;
    }
    startTimeout(m_pendingRequest->timeoutInterval());
    if (!m_events.write(m_pendingRequest->dataToSend())) {
        // The request stays pending, and times out.
        return false;
    }
    checkResponseToPendingRequestAndContinueIfValid();
    return true;
}

// Without a limit no timer is made; the timer of an earlier request that was cleared away goes on.
void RequestQueue::startTimeout(std::chrono::duration<double> interval)
{
    if (!(interval.count() > 0)) {
        return;
    }
    const auto limit = std::chrono::duration_cast<std::chrono::nanoseconds>(std::min(interval, kLongestTimeout));
    setPendingRequestTimeoutTimer(
        m_serialQueue->makeTimer({limit, limit / 10}, onQueue(&RequestQueue::pendingRequestDidTimeout)));
    m_pendingRequestTimeoutTimer->start();
}

void RequestQueue::checkResponseToPendingRequestAndContinueIfValid()
{
    if (!m_pendingRequest) {
        return;
    }
    const Bytes response = m_receiveBuffer;
    if (!m_pendingRequest->dataIsValidResponse(response)) {
        return;
    }
    setPendingRequestTimeoutTimer(nullptr);
    if (!response.empty()) {
        m_mayReceiveSecret = false;
        m_events.didReceiveResponse(response, m_pendingRequest);
    }
    m_isNextDue = true;
}

void RequestQueue::sendNextRequestIfDue()
{
    // A request that needs no response is complete at once and makes the next one due.
    while (std::exchange(m_isNextDue, false)) {
        sendNextRequest();
    }
}

// Clears whatever is pending, answered or not. A timer that still runs for it is left alone.
void RequestQueue::sendNextRequest()
{
    m_pendingRequest = nullptr;
    if (m_requestsQueue.empty()) {
        return;
    }
    auto next = std::move(m_requestsQueue.front());
    m_requestsQueue.pop_front();
    reallySendRequest(std::move(next));
}

void RequestQueue::pendingRequestDidTimeout()
{
    setPendingRequestTimeoutTimer(nullptr);
    // The request stays pending until delegateWasToldOfTimeout(). A response that comes before that is delivered too
    // and starts the next request, which delegateWasToldOfTimeout() then clears.
    if (!m_events.didTimeout(m_pendingRequest, [queue = weak_from_this()] {
            if (const auto self = queue.lock()) {
                self->m_serialQueue->async(self->onQueue(&RequestQueue::delegateWasToldOfTimeout));
            }
        })) {
        delegateWasToldOfTimeout();
    }
}

void RequestQueue::delegateWasToldOfTimeout()
{
    sendNextRequestIfDue();
    sendNextRequest();
    sendNextRequestIfDue();
}

void RequestQueue::portWasClosed() { m_serialQueue->async(onQueue(&RequestQueue::forgetLateSecret)); }

void RequestQueue::forgetLateSecret()
{
    if (!m_pendingRequest || !m_pendingRequest->isResponseSecret()) {
        m_mayReceiveSecret = false;
    }
}

void RequestQueue::setPendingRequestTimeoutTimer(std::shared_ptr<platform::Timer> timer)
{
    if (timer == m_pendingRequestTimeoutTimer) {
        return;
    }
    if (const auto old = std::exchange(m_pendingRequestTimeoutTimer, std::move(timer))) {
        old->cancel();
    }
}

// A task for the serial queue that does nothing once this object is gone.
std::function<void()> RequestQueue::onQueue(Step step)
{
    return [queue = weak_from_this(), step] {
        if (const auto self = queue.lock()) {
            (*self.*step)();
        }
    };
}

} // namespace vorrano::serial
