#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/SerialQueue.h"
#include "platform/Timer.h"
#include "serial/InAnyCase.h"
#include "serial/SerialPort.h"

#include <algorithm>
#include <chrono>
#include <utility>

// All of this but receiveData() and sendRequest() runs on the request queue; so it takes no lock, but for the chunks
// that readers hand over. An idle queue lends itself to the caller of sendRequest(), so that a request is written
// without waking a thread.
namespace vorrano::serial {

namespace {

// A quarter of what the clock can count: no sum with the time of day overflows.
constexpr std::chrono::duration<double> kLongestTimeout = std::chrono::nanoseconds::max() / 4;

} // namespace

bool SerialPort::sendRequest(std::shared_ptr<SerialRequest> request)
{
    if (!request) {
        return false;
    }
    bool accepted = false;
    m_requestHandlingQueue->syncInPlace([&] { accepted = reallySendRequest(std::move(request)); });
    return accepted;
}

bool SerialPort::reallySendRequest(std::shared_ptr<SerialRequest> request)
{
    if (m_pendingRequest) {
        m_requestsQueue.push_back(std::move(request));
        return true;
    }
    m_receiveBuffer.clear();
    m_pendingRequest = std::move(request);
    startTimeout(m_pendingRequest->timeoutInterval());
    if (!write(m_pendingRequest->dataToSend(), &SerialPort::postPosixError)) {
        // It stays pending, and times out.
        return false;
    }
    // Nobody's response test runs on the main thread, whoever sends from there.
    m_requestHandlingQueue->offMainThread(onQueue(&SerialPort::checkResponseToPendingRequestAndContinueIfValid));
    return true;
}

// Without a limit there is no new timer; one of an earlier request that was cleared away goes on.
void SerialPort::startTimeout(std::chrono::duration<double> interval)
{
    if (!(interval.count() > 0)) {
        return;
    }
    const auto limit = std::chrono::duration_cast<std::chrono::nanoseconds>(std::min(interval, kLongestTimeout));
    setPendingRequestTimeoutTimer(
        m_requestHandlingQueue->makeTimer({limit, limit, limit / 10}, onQueue(&SerialPort::pendingRequestDidTimeout)));
    m_pendingRequestTimeoutTimer->start();
}

void SerialPort::checkResponseToPendingRequestAndContinueIfValid()
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
        post(SerialPortCallback::DidReceiveResponseToRequest,
             [this, response, request = m_pendingRequest](SerialPortDelegate& delegate) {
                 delegate.serialPortDidReceiveResponseToRequest(*this, response, request);
             });
    }
    if (m_requestsQueue.empty()) {
        sendNextRequest();
    } else {
        // The next one is written, which may take its time: not on the reader's thread, which may be this one.
        m_requestHandlingQueue->continueOnPool(onQueue(&SerialPort::sendNextRequest));
    }
}

// It leaves a timer alone that still runs for the request it clears.
void SerialPort::sendNextRequest()
{
    m_pendingRequest = nullptr;
    if (m_requestsQueue.empty()) {
        return;
    }
    auto next = std::move(m_requestsQueue.front());
    m_requestsQueue.pop_front();
    reallySendRequest(std::move(next));
}

void SerialPort::pendingRequestDidTimeout()
{
    setPendingRequestTimeoutTimer(nullptr);
    if (!implements(SerialPortCallback::RequestDidTimeout)) {
        sendNextRequest();
        return;
    }
    // The request stays pending until the delegate has been told. A response that comes in meanwhile is delivered too,
    // and what it has started is then cleared away.
    m_mainQueue.async([self = shared_from_this(), request = m_pendingRequest] {
        const auto tellOfTimeout = [&] {
            self->tell(SerialPortCallback::RequestDidTimeout,
                       [&](SerialPortDelegate& delegate) { delegate.serialPortRequestDidTimeout(*self, request); });
        };
        inAnyCase(tellOfTimeout,
                  [&] { self->m_requestHandlingQueue->async(self->onQueue(&SerialPort::sendNextRequest)); });
    });
}

void SerialPort::receiveData(Bytes data)
{
    {
        // The reader of an ended open may hand over its last chunk while the next open's reader hands over its first:
        // one order for both, so that the buffer gets the bytes as the delegate hears them.
        const std::lock_guard lock(m_receivedMutex);
        post(SerialPortCallback::DidReceiveData,
             [this, data](SerialPortDelegate& delegate) { delegate.serialPortDidReceiveData(*this, data); });
        m_receivedChunks.push_back(std::move(data));
    }
    m_requestHandlingQueue->inPlaceOrAsync(onQueue(&SerialPort::takeReceivedChunk));
}

// The first chunk that is left, which another reader may have handed over. Each chunk has one such step.
void SerialPort::takeReceivedChunk()
{
    {
        const std::lock_guard lock(m_receivedMutex);
        m_receiveBuffer += m_receivedChunks.front();
        m_receivedChunks.pop_front();
    }
    checkResponseToPendingRequestAndContinueIfValid();
}

void SerialPort::setPendingRequestTimeoutTimer(std::shared_ptr<platform::Timer> timer)
{
    if (timer == m_pendingRequestTimeoutTimer) {
        return;
    }
    if (const auto old = std::exchange(m_pendingRequestTimeoutTimer, std::move(timer))) {
        old->cancel();
    }
}

// A step for the queue that does nothing once the port is gone.
std::function<void()> SerialPort::onQueue(void (SerialPort::*step)())
{
    return [port = weak_from_this(), step] {
        if (const auto self = port.lock()) {
            (*self.*step)();
        }
    };
}

} // namespace vorrano::serial
