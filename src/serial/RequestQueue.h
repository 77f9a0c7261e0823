#pragma once

#include "platform/Mutex.h"
#include "serial/SerialRequest.h"

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>

namespace vorrano::platform {
class SerialQueue;
class Timer;
} // namespace vorrano::platform

namespace vorrano::serial {

// The requests of a port: writes one at a time, gathers what comes back, asks the request whether that is its response,
// and gives up after its time limit.
//
// Threads: sendRequest() on any thread, but not in a step of the serial queue; the rest on any. All steps run on the
// serial queue, so the state has no lock. A step never waits for the main thread, and never calls the delegate.
// Lifetime: the steps and the timer hold the queue weakly; once it is gone they do nothing.
class RequestQueue : public std::enable_shared_from_this<RequestQueue> {
public:
    using Request = std::shared_ptr<SerialRequest>;

    // The port behind the queue. didReceiveData is called on the thread of receiveData(), the others on the serial
    // queue.
    struct Events {
        // Submits the delegate's callback for a chunk; on the thread of receiveData(), one chunk at a time.
        // `mayHoldSecret` from the start of a request whose response is secret until a request has been answered: while
        // it is pending, and after its time-out, as its response may be late.
        std::function<void(const Bytes& chunk, bool mayHoldSecret)> didReceiveData;
        // Writes all bytes; whether that succeeded.
        std::function<bool(const Bytes& data)> write;
        // The bytes are the request's response; there is one at least.
        std::function<void(const Bytes& response, const Request& request)> didReceiveResponse;
        // The request's time is over. Has the delegate told, and calls `next` afterwards in every case, on any thread;
        // false, without calling it, when nobody listens.
        std::function<bool(const Request& request, std::function<void()> next)> didTimeout;
    };

    RequestQueue(std::shared_ptr<platform::SerialQueue> serialQueue, Events events);
    RequestQueue(const RequestQueue&) = delete;
    RequestQueue& operator=(const RequestQueue&) = delete;
    ~RequestQueue();

    // Queues the request behind the pending one, or writes it; waits until that is done. False when the write failed:
    // the request is pending all the same.
    bool sendRequest(Request request);

    // Takes a chunk that was read. Chunks reach the buffer in the order in which their callbacks are submitted. When
    // the queue is idle, the response test runs inside the call; writing is left to another thread, so that the reader
    // never stops for it.
    void receiveData(Bytes chunk);

    // The line was closed: a late response does not come any more.
    void portWasClosed();

private:
    using Step = void (RequestQueue::*)();

    void takeChunk();
    bool reallySendRequest(Request request);
    void startTimeout(std::chrono::duration<double> interval);
    void checkResponseToPendingRequestAndContinueIfValid();
    void sendNextRequest();
    void sendNextRequestIfDue();
    void pendingRequestDidTimeout();
    void delegateWasToldOfTimeout();
    void forgetLateSecret();
    void setPendingRequestTimeoutTimer(std::shared_ptr<platform::Timer> timer);
    [[nodiscard]] std::function<void()> onQueue(Step step);

    const std::shared_ptr<platform::SerialQueue> m_serialQueue;
    const Events m_events;

    // Touched by steps only.
    Bytes m_receiveBuffer;
    std::deque<Request> m_requestsQueue;
    Request m_pendingRequest;
    std::shared_ptr<platform::Timer> m_pendingRequestTimeoutTimer;
    // The pending request has its response; the next one starts before any other step.
    bool m_isNextDue = false;

    // Written by steps, read by the port's readers.
    std::atomic<bool> m_mayReceiveSecret = false;

    platform::Mutex m_chunksMutex; // held while the callback of a chunk is submitted
    std::deque<Bytes> m_chunks VORRANO_GUARDED_BY(m_chunksMutex);
};

} // namespace vorrano::serial
