#include "serial/SerialPortManager.h"

#include "platform/Mutex.h"
#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "platform/PowerEvents.h"
#include "platform/SystemLog.h"

#include <algorithm>
#include <utility>

namespace vorrano::serial {

using platform::DeviceEvent;
using platform::DeviceIterator;

namespace {

using Callback = void (*)(CallbackContext*, DeviceIterator);
using Handler = void (SerialPortManager::*)(DeviceIterator);

platform::Mutex s_sharedMutex;
std::shared_ptr<SerialPortManager> s_shared VORRANO_GUARDED_BY(s_sharedMutex);

// What a watch calls as long as the manager lives.
std::function<void(DeviceIterator)> toldTo(Callback callback, std::weak_ptr<SerialPortManager> manager)
{
    return [callback, manager = std::move(manager)](DeviceIterator iterator) {
        if (const auto alive = manager.lock()) {
            callback(alive.get(), iterator);
        }
    };
}

void forward(CallbackContext* context, DeviceIterator iterator, Handler handler, const std::string& signature)
{
    if (auto* const manager = dynamic_cast<SerialPortManager*>(context)) {
        (manager->*handler)(iterator);
        return;
    }
    platform::Platform::current().systemLog.write(
        "Unexpected context object " + (context != nullptr ? context->description() : "(null)") + " in " + signature +
        ". Context object should be an instance of SerialPortManager");
}

bool containsEqual(const SerialPorts& ports, const SerialPort& port)
{
    return std::any_of(ports.begin(), ports.end(), [&port](const auto& other) { return other->isEqual(port); });
}

} // namespace

void SerialPortManagerPortsPublishedNotificationCallback(CallbackContext* context, DeviceIterator iterator)
{
    forward(context, iterator, &SerialPortManager::serialPortsWerePublished,
            "void SerialPortManagerPortsPublishedNotificationCallback(void *, io_iterator_t)");
}

void SerialPortManagerPortsTerminatedNotificationCallback(CallbackContext* context, DeviceIterator iterator)
{
    forward(context, iterator, &SerialPortManager::serialPortsWereTerminated,
            "void SerialPortManagerPortsTerminatedNotificationCallback(void *, io_iterator_t)");
}

std::shared_ptr<SerialPortManager> SerialPortManager::sharedSerialPortManager()
{
    const platform::MutexLock lock(s_sharedMutex);
    if (!s_shared) {
        s_shared = std::shared_ptr<SerialPortManager>(new SerialPortManager);
        s_shared->init();
    }
    return s_shared;
}

void SerialPortManager::releaseShared()
{
    std::shared_ptr<SerialPortManager> released;
    const platform::MutexLock lock(s_sharedMutex);
    released.swap(s_shared);
}

SerialPortManager::SerialPortManager()
    : m_deviceRegistry(platform::Platform::current().deviceRegistry)
    , m_notificationCentre(platform::Platform::current().notificationCentre)
    , m_powerEvents(platform::Platform::current().powerEvents)
{}

SerialPortManager::~SerialPortManager()
{
    setPortPublishedNotificationIterator(0);
    setPortTerminatedNotificationIterator(0);
}

void SerialPortManager::init()
{
    retrieveAvailablePortsAndRegisterForChangeNotifications();
    registerForNotifications();
}

void SerialPortManager::retrieveAvailablePortsAndRegisterForChangeNotifications()
{
    const auto watch = m_deviceRegistry.watch(
        DeviceEvent::Published, toldTo(SerialPortManagerPortsPublishedNotificationCallback, weak_from_this()));
    if (!watch.registered) {
        releaseIfAny(watch.iterator);
        return;
    }
    setPortPublishedNotificationIterator(watch.iterator);
    SerialPorts ports;
    while (const auto device = m_deviceRegistry.next(watch.iterator)) {
        if (auto port = SerialPort::serialPortWithDevice(device)) {
            ports.push_back(std::move(port));
        }
        m_deviceRegistry.release(device);
    }
    // The property has counted it for itself.
    m_deviceRegistry.release(watch.iterator);
    setAvailablePorts(std::move(ports));
    watchForTerminatedDevices();
}

void SerialPortManager::watchForTerminatedDevices()
{
    const auto watch = m_deviceRegistry.watch(
        DeviceEvent::Terminated, toldTo(SerialPortManagerPortsTerminatedNotificationCallback, weak_from_this()));
    if (!watch.registered) {
        releaseIfAny(watch.iterator);
        return;
    }
    setPortTerminatedNotificationIterator(watch.iterator);
    while (const auto device = m_deviceRegistry.next(watch.iterator)) {
        m_deviceRegistry.release(device);
    }
    m_deviceRegistry.release(watch.iterator);
}

void SerialPortManager::registerForNotifications()
{
    const auto self = weak_from_this();
    m_willTerminate = m_notificationCentre.observe(platform::kApplicationWillTerminateNotification, self,
                                                   [self](const platform::Notification& /*notification*/) {
                                                       if (const auto manager = self.lock()) {
                                                           manager->applicationWillTerminate();
                                                       }
                                                   });
    m_willSleep = m_powerEvents.onWillSleep([this] { systemWillSleep(); });
    m_didWake = m_powerEvents.onDidWake([this] { systemDidWake(); });
}

void SerialPortManager::applicationWillTerminate()
{
    // A copy: a delegate may drop its port, and the list may change under the loop.
    for (const auto& port : SerialPorts(m_availablePorts)) {
        port->cleanupAfterSystemRemoval();
    }
    setAvailablePorts({});
}

void SerialPortManager::serialPortsWerePublished(DeviceIterator iterator)
{
    SerialPorts added;
    while (const auto device = m_deviceRegistry.next(iterator)) {
        const auto port = SerialPort::initWithDevice(device);
        if (!containsEqual(m_availablePorts, *port)) {
            added.push_back(port);
        }
        m_deviceRegistry.release(device);
    }
    append(added);
    post(kSerialPortWasConnectedNotification, kConnectedSerialPortsKey, added);
}

void SerialPortManager::serialPortsWereTerminated(DeviceIterator iterator)
{
    SerialPorts gone;
    while (const auto device = m_deviceRegistry.next(iterator)) {
        gone.push_back(SerialPort::initWithDevice(device));
        m_deviceRegistry.release(device);
    }
    for (const auto& port : gone) {
        port->cleanupAfterSystemRemoval();
    }
    removeEqualTo(gone);
    post(kSerialPortWasDisconnectedNotification, kDisconnectedSerialPortsKey, gone);
}

void SerialPortManager::systemWillSleep()
{
    for (const auto& port : SerialPorts(m_availablePorts)) {
        if (port->isOpen() && port->close()) {
            m_portsToReopenAfterSleep.push_back(port);
        }
    }
}

void SerialPortManager::systemDidWake()
{
    for (const auto& port : SerialPorts(m_portsToReopenAfterSleep)) {
        port->open();
        std::erase(m_portsToReopenAfterSleep, port);
    }
}

void SerialPortManager::post(std::string_view name, std::string_view key, const SerialPorts& ports)
{
    m_notificationCentre.post({std::string(name), this, {{std::string(key), ports}}});
}

void SerialPortManager::releaseIfAny(DeviceIterator iterator)
{
    if (iterator != 0) {
        m_deviceRegistry.release(iterator);
    }
}

void SerialPortManager::setPortPublishedNotificationIterator(DeviceIterator iterator)
{
    replaceIterator(m_publishedIterator, iterator);
}

void SerialPortManager::setPortTerminatedNotificationIterator(DeviceIterator iterator)
{
    replaceIterator(m_terminatedIterator, iterator);
}

void SerialPortManager::replaceIterator(DeviceIterator& stored, DeviceIterator iterator)
{
    if (iterator == stored) {
        return;
    }
    releaseIfAny(stored);
    stored = iterator;
    if (stored != 0) {
        m_deviceRegistry.retain(stored);
    }
}

std::string SerialPortManager::description() const { return "<SerialPortManager>"; }

} // namespace vorrano::serial
