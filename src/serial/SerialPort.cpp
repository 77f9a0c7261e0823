#include "serial/SerialPort.h"

#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Platform.h"
#include "platform/SystemLog.h"
#include "serial/InAnyCase.h"
#include "serial/LivePortRegistry.h"
#include "serial/RequestQueue.h"

#include <functional>
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
    port->m_requests = port->makeRequestQueue();
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
    , m_delegate(*this, m_mainQueue)
{
    setIoKitDevice(device);
    m_options.set(&PortOptions::Values::baudRate, std::make_shared<const unsigned long>(kDefaultBaudRate));
}

SerialPort::~SerialPort()
{
    removeSerialPort(*this);
    // Only stores: the handle that was retained at creation stays retained.
    setIOKitDevice(0);
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

void SerialPort::setDelegate(std::weak_ptr<SerialPortDelegate> delegate) { m_delegate.set(std::move(delegate)); }

std::shared_ptr<RequestQueue> SerialPort::makeRequestQueue()
{
    const std::weak_ptr<SerialPort> weak = weak_from_this();
    const auto didReceiveData = [weak](const Bytes& chunk, bool mayHoldSecret) {
        if (const auto port = weak.lock()) {
            port->postData(chunk, mayHoldSecret);
        }
    };
    const auto write = [weak](const Bytes& data) {
        const auto port = weak.lock();
        return port && port->sendData(data);
    };
    const auto didReceiveResponse = [weak](const Bytes& response, const RequestQueue::Request& request) {
        if (const auto port = weak.lock()) {
            port->m_delegate.post(SerialPortCallback::DidReceiveResponseToRequest,
                                  [response, request](SerialPortDelegate& delegate, SerialPort& self) {
                                      delegate.serialPortDidReceiveResponseToRequest(self, response, request);
                                  });
        }
    };
    const auto didTimeout = [weak](const RequestQueue::Request& request, std::function<void()> next) {
        const auto port = weak.lock();
        return port && port->m_delegate.postThen(
                           SerialPortCallback::RequestDidTimeout,
                           [request](SerialPortDelegate& delegate, SerialPort& self) {
                               delegate.serialPortRequestDidTimeout(self, request);
                           },
                           std::move(next));
    };
    return std::make_shared<RequestQueue>(
        m_backgroundQueue.makeSerialQueue("com.vorrano.SerialPort.requestHandlingQueue"),
        RequestQueue::Events{didReceiveData, write, didReceiveResponse, didTimeout});
}

void SerialPort::postData(const Bytes& chunk, bool mayHoldSecret)
{
    m_delegate.post(SerialPortCallback::DidReceiveData,
                    [chunk, mayHoldSecret](SerialPortDelegate& delegate, SerialPort& self) {
                        self.m_isReceivedDataSecret = mayHoldSecret;
                        inAnyCase([&] { delegate.serialPortDidReceiveData(self, chunk); },
                                  [&] { self.m_isReceivedDataSecret = false; });
                    });
}

bool SerialPort::sendRequest(std::shared_ptr<SerialRequest> request)
{
    return request && m_requests->sendRequest(std::move(request));
}

bool SerialPort::sendData(const Bytes& data)
{
    const auto open = m_open.get();
    if (!open) {
        return false;
    }
    const auto outcome = open->write(data);
    if (outcome.error != 0) {
        m_delegate.notifyDelegateOfPosixError(outcome.error);
    }
    return outcome.complete;
}

void SerialPort::cleanup()
{
    m_systemLog.write("Cleanup is deprecated and was never intended to be called publicly. You should update your code "
                      "to avoid calling this method.");
    cleanupAfterSystemRemoval();
}

void SerialPort::cleanupAfterSystemRemoval() { cleanupAfterRemovalOfOpen(m_open.number()); }

// The poll and the hot-plug watch may both report the same removal. By the second report the delegate may have found
// the device again and opened it anew; that open has nothing to do with the removal.
void SerialPort::cleanupAfterRemovalOfOpen(std::uint64_t number)
{
    const auto tell = [number](SerialPortDelegate& delegate, SerialPort& self) {
        if (self.m_open.number() == number) {
            delegate.serialPortWasRemovedFromSystem(self);
        }
    };
    const auto close = [self = shared_from_this(), number] { self->closeOpen(number); };
    if (!m_delegate.postThen(SerialPortCallback::WasRemovedFromSystem, tell, close)) {
        close();
    }
}

} // namespace vorrano::serial
