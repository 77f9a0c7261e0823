#include "serial/DelegateSlot.h"

#include "platform/MainQueue.h"
#include "serial/InAnyCase.h"
#include "serial/SerialPort.h"

#include <system_error>
#include <utility>

namespace vorrano::serial {

DelegateSlot::DelegateSlot(SerialPort& port, platform::MainQueue& mainQueue)
    : m_port(port)
    , m_mainQueue(mainQueue)
{}

void DelegateSlot::set(std::weak_ptr<SerialPortDelegate> delegate)
{
    const auto alive = delegate.lock();
    m_delegate = std::move(delegate);
    m_callbacks = alive ? alive->callbacks() : SerialPortCallbacks();
}

void DelegateSlot::post(SerialPortCallback callback, Call call) const
{
    if (implements(callback)) {
        m_mainQueue.async(
            [this, callback, call = std::move(call), port = m_port.shared_from_this()] { callNow(callback, call); });
    }
}

bool DelegateSlot::postThen(SerialPortCallback callback, Call call, std::function<void()> afterwards) const
{
    if (!implements(callback)) {
        return false;
    }
    m_mainQueue.async([this, callback, call = std::move(call), afterwards = std::move(afterwards),
                       port = m_port.shared_from_this()] { inAnyCase([&] { callNow(callback, call); }, afterwards); });
    return true;
}

void DelegateSlot::notifyDelegateOfPosixError(int code) const
{
    notifyDelegateOfPosixErrorWaitingUntilDone(code, false);
}

void DelegateSlot::notifyDelegateOfPosixErrorWaitingUntilDone(int code, bool waitUntilDone) const
{
    if (!implements(SerialPortCallback::DidEncounterError)) {
        return;
    }
    const SerialError error{code, std::generic_category().message(code), m_port.path()};
    const auto deliver = [this, error, port = m_port.shared_from_this()] {
        callNow(SerialPortCallback::DidEncounterError, [&](SerialPortDelegate& delegate, SerialPort& failing) {
            delegate.serialPortDidEncounterError(failing, error);
        });
    };
    if (m_mainQueue.isMainThread()) {
        deliver();
    } else if (waitUntilDone) {
        m_mainQueue.sync(deliver);
    } else {
        m_mainQueue.async(deliver);
    }
}

void DelegateSlot::callNow(SerialPortCallback callback, const Call& call) const
{
    const auto delegate = m_delegate.lock();
    if (delegate && delegate->callbacks().contains(callback)) {
        call(*delegate, m_port);
    }
}

} // namespace vorrano::serial
