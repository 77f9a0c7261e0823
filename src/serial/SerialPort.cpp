#include "serial/SerialPort.h"

#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "serial/LivePortRegistry.h"
#include "serial/PortLine.h"

#include <functional>
#include <system_error>
#include <utility>

namespace vorrano::serial {

namespace {

constexpr unsigned long kDefaultBaudRate = 19200;

} // namespace

std::shared_ptr<SerialPort> SerialPort::serialPortWithPath(const std::string& path) { return initWithPath(path); }

std::shared_ptr<SerialPort> SerialPort::serialPortWithDevice(platform::DeviceHandle device)
{
    return initWithDevice(device);
}

std::shared_ptr<SerialPort> SerialPort::init() { return initWithPath({}); }

std::shared_ptr<SerialPort> SerialPort::initWithPath(const std::string& path)
{
    const auto device = deviceFromBSDPath(path);
    return device == 0 ? nullptr : initWithDevice(device);
}

std::shared_ptr<SerialPort> SerialPort::initWithDevice(platform::DeviceHandle device)
{
    const auto path = bsdCalloutPathFromDevice(device).value_or("");
    if (auto existing = existingPortWithPath(path)) {
        return existing;
    }
    std::shared_ptr<SerialPort> port(new SerialPort(device, path));
    addSerialPort(port);
    return port;
}

SerialPort::SerialPort(platform::DeviceHandle device, std::string path)
    : m_terminal(platform::Platform::current().terminal)
    , m_mainQueue(platform::Platform::current().mainQueue)
    , m_backgroundQueue(platform::Platform::current().backgroundQueue)
    , m_deviceRegistry(platform::Platform::current().deviceRegistry)
    , m_systemLog(platform::Platform::current().systemLog)
    , m_path(std::move(path))
    , m_name(modemNameFromDevice(device).value_or(""))
    , m_requestHandlingQueue(m_backgroundQueue.makeSerialQueue("com.vorrano.SerialPort.requestHandlingQueue"))
{
    setIoKitDevice(device);
    m_options.baudRate = std::make_shared<const unsigned long>(kDefaultBaudRate);
}

SerialPort::~SerialPort()
{
    removeSerialPort(*this);
    // Only stores: the handle that was retained at the beginning stays retained.
    setIOKitDevice(0);
    setPinPollTimer(nullptr);
    setPendingRequestTimeoutTimer(nullptr);
}

void SerialPort::addSerialPort(const std::shared_ptr<SerialPort>& port) { livePortRegistry().add(port); }

void SerialPort::removeSerialPort(const SerialPort& port) { livePortRegistry().remove(port); }

std::shared_ptr<SerialPort> SerialPort::existingPortWithPath(std::string_view path)
{
    return livePortRegistry().existingPortWithPath(path);
}

std::set<std::string> SerialPort::keyPathsForValuesAffectingValueForKey(std::string_view key)
{
    if (key == "isOpen") {
        return {"fileDescriptor"};
    }
    return {};
}

platform::Subscription SerialPort::observe(std::string_view key, std::function<void()> told)
{
    auto keys = keyPathsForValuesAffectingValueForKey(key);
    keys.emplace(key);
    return m_observers.add([keys = std::move(keys), told = std::move(told)](std::string_view changed) {
        if (keys.count(std::string(changed)) > 0) {
            told();
        }
    });
}

bool SerialPort::isEqual(const SerialPort& other) const { return !m_path.empty() && m_path == other.path(); }

std::size_t SerialPort::hash() const { return std::hash<std::string>()(m_path); }

std::string SerialPort::description() const { return m_name; }

void SerialPort::setIoKitDevice(platform::DeviceHandle device)
{
    if (device == m_ioKitDevice) {
        return;
    }
    if (m_ioKitDevice != 0) {
        m_deviceRegistry.release(m_ioKitDevice);
    }
    if (device != 0) {
        m_deviceRegistry.retain(device);
    }
    m_ioKitDevice = device;
}

void SerialPort::setIOKitDevice(platform::DeviceHandle device) { m_ioKitDevice = device; }

void SerialPort::setDelegate(std::weak_ptr<SerialPortDelegate> delegate)
{
    const auto alive = delegate.lock();
    m_delegate = std::move(delegate);
    m_callbacks = alive ? alive->callbacks() : SerialPortCallbacks();
}

void SerialPort::post(SerialPortCallback callback, std::function<void(SerialPortDelegate&)> call)
{
    if (implements(callback)) {
        m_mainQueue.async(
            [self = shared_from_this(), callback, call = std::move(call)] { self->tell(callback, call); });
    }
}

void SerialPort::tell(SerialPortCallback callback, const std::function<void(SerialPortDelegate&)>& call) const
{
    const auto delegate = m_delegate.lock();
    if (delegate && delegate->callbacks().contains(callback)) {
        call(*delegate);
    }
}

SerialError SerialPort::posixError(int code) const { return {code, std::generic_category().message(code), m_path}; }

// Never inside the call, on the main thread neither: for a step of the request queue, which nobody may be called from.
void SerialPort::postPosixError(int code)
{
    post(SerialPortCallback::DidEncounterError, [this, error = posixError(code)](SerialPortDelegate& delegate) {
        delegate.serialPortDidEncounterError(*this, error);
    });
}

void SerialPort::notifyDelegateOfPosixError(int code) { notifyDelegateOfPosixErrorWaitingUntilDone(code, false); }

void SerialPort::notifyDelegateOfPosixErrorWaitingUntilDone(int code, bool waitUntilDone)
{
    if (!implements(SerialPortCallback::DidEncounterError)) {
        return;
    }
    const auto deliver = [self = shared_from_this(), error = posixError(code)] {
        self->tell(SerialPortCallback::DidEncounterError,
                   [&](SerialPortDelegate& delegate) { delegate.serialPortDidEncounterError(*self, error); });
    };
    if (m_mainQueue.isMainThread()) {
        deliver();
    } else if (waitUntilDone) {
        m_mainQueue.sync(deliver);
    } else {
        m_mainQueue.async(deliver);
    }
}

} // namespace vorrano::serial
