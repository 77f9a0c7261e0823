#pragma once

#include "serial/SerialRequest.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace vorrano::serial {

class SerialPort;

enum class SerialPortCallback : std::uint32_t {
    WasRemovedFromSystem = 1,
    DidReceiveData = 2,
    DidReceiveResponseToRequest = 4,
    RequestDidTimeout = 8,
    DidEncounterError = 16,
    WasOpened = 32,
    WasClosed = 64,
};

// A set of callbacks, small enough for one atomic word.
class SerialPortCallbacks {
public:
    constexpr SerialPortCallbacks() = default;
    constexpr SerialPortCallbacks(std::initializer_list<SerialPortCallback> callbacks)
    {
        for (const auto callback : callbacks) {
            m_bits |= static_cast<std::uint32_t>(callback);
        }
    }
    [[nodiscard]] constexpr bool contains(SerialPortCallback callback) const
    {
        return (m_bits & static_cast<std::uint32_t>(callback)) != 0;
    }
    [[nodiscard]] static constexpr SerialPortCallbacks all()
    {
        using enum SerialPortCallback;
        return {WasRemovedFromSystem,
                DidReceiveData,
                DidReceiveResponseToRequest,
                RequestDidTimeout,
                DidEncounterError,
                WasOpened,
                WasClosed};
    }

private:
    std::uint32_t m_bits = 0;
};

// A failed system call of a port.
struct SerialError {
    static constexpr std::string_view kDomain = "NSPOSIXErrorDomain";
    int code = 0;            // errno
    std::string description; // the system's text for it
    std::string path;        // the port's

    friend bool operator==(const SerialError&, const SerialError&) = default;
};

// The object that a port reports to.
//
// Threads: everything on the main thread, in the order in which it happened; callbacks() too.
// Lifetime: a port holds its delegate weakly, and looks it up when a callback is due. One that is gone by then is
// skipped; one that took its place is called instead.
class SerialPortDelegate {
public:
    SerialPortDelegate() = default;
    SerialPortDelegate(const SerialPortDelegate&) = delete;
    SerialPortDelegate& operator=(const SerialPortDelegate&) = delete;
    virtual ~SerialPortDelegate() = default;

    // Those below that this delegate implements; no other is called. Asked when it becomes a port's delegate, and
    // before each callback.
    [[nodiscard]] virtual SerialPortCallbacks callbacks() const = 0;

    // The device is gone. The port closes right after this call, unless it has been opened anew by then. A removal
    // whose port was opened anew before this call was due is not reported: that open has nothing to do with it.
    virtual void serialPortWasRemovedFromSystem(SerialPort& /*port*/) {}

    // Every chunk that was read (at most 1024 bytes), request or not; before the response that it completes, whose
    // bytes are in the order of these calls.
    virtual void serialPortDidReceiveData(SerialPort& /*port*/, const Bytes& /*data*/) {}

    // What the request's evaluator accepted; never empty.
    virtual void serialPortDidReceiveResponseToRequest(SerialPort& /*port*/, const Bytes& /*response*/,
                                                       const std::shared_ptr<SerialRequest>& /*request*/)
    {}

    // The request is null when its timer fired after the request had been cleared away. That happens to a request B
    // that a late response to request A started while the time-out of A was on its way to the delegate: the step after
    // that time-out clears B.
    virtual void serialPortRequestDidTimeout(SerialPort& /*port*/, const std::shared_ptr<SerialRequest>& /*request*/) {}

    // An error of open(), close(), sendData() or a setter that was called on the main thread is reported inside that
    // call. Every other error is reported later, that of a request that could not be written too.
    virtual void serialPortDidEncounterError(SerialPort& /*port*/, const SerialError& /*error*/) {}

    virtual void serialPortWasOpened(SerialPort& /*port*/) {}
    virtual void serialPortWasClosed(SerialPort& /*port*/) {}
};

} // namespace vorrano::serial
