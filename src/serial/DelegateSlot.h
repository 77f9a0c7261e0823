#pragma once

#include "serial/SerialPortDelegate.h"

#include <atomic>
#include <functional>
#include <memory>

namespace vorrano::platform {
class MainQueue;
}

namespace vorrano::serial {

// The one delegate of a port, and the way to it.
//
// Threads: delegate() and set() on the main thread; everything else on any. Off the main thread only the set of
// callbacks is read, one atomic word. The delegate is looked up on the main thread when a callback is due: one that is
// gone by then is skipped, one that took its place is called instead.
// Lifetime: a part of its port. A callback that is on its way holds the port.
class DelegateSlot {
public:
    using Call = std::function<void(SerialPortDelegate& delegate, SerialPort& port)>;

    DelegateSlot(SerialPort& port, platform::MainQueue& mainQueue);
    DelegateSlot(const DelegateSlot&) = delete;
    DelegateSlot& operator=(const DelegateSlot&) = delete;

    [[nodiscard]] std::shared_ptr<SerialPortDelegate> delegate() const { return m_delegate.lock(); }
    void set(std::weak_ptr<SerialPortDelegate> delegate);

    [[nodiscard]] bool implements(SerialPortCallback callback) const { return m_callbacks.load().contains(callback); }

    // Submits the call to the main queue if the delegate implements the callback.
    void post(SerialPortCallback callback, Call call) const;

    // Submits the call, and after it `afterwards`, which follows in every case: also when the delegate is gone by then
    // or throws. False, with nothing submitted, if the delegate does not implement the callback.
    [[nodiscard]] bool postThen(SerialPortCallback callback, Call call, std::function<void()> afterwards) const;

    // Reports an errno: inside the call on the main thread, else on the main queue.
    void notifyDelegateOfPosixError(int code) const;
    // With `waitUntilDone`, a background thread waits until the delegate has been called.
    void notifyDelegateOfPosixErrorWaitingUntilDone(int code, bool waitUntilDone) const;

private:
    void callNow(SerialPortCallback callback, const Call& call) const;

    SerialPort& m_port;
    platform::MainQueue& m_mainQueue;
    std::weak_ptr<SerialPortDelegate> m_delegate;      // main thread
    std::atomic<SerialPortCallbacks> m_callbacks = {}; // what other threads read of it
};

} // namespace vorrano::serial
