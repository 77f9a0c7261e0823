#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/Subscription.h"
#include "serial/ObserverList.h"
#include "serial/SerialPort.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::platform {
class NotificationCentre;
class PowerEvents;
} // namespace vorrano::platform

namespace vorrano::serial {

using SerialPorts = std::vector<std::shared_ptr<SerialPort>>;

// Posted by the manager; the user info holds one value, a SerialPorts under the key.
inline constexpr std::string_view kSerialPortWasConnectedNotification = "SerialPortWasConnectedNotification";
inline constexpr std::string_view kSerialPortWasDisconnectedNotification = "SerialPortWasDisconnectedNotification";
inline constexpr std::string_view kConnectedSerialPortsKey = "ConnectedSerialPortsKey";
inline constexpr std::string_view kDisconnectedSerialPortsKey = "DisconnectedSerialPortsKey";

// A change of the list: ports that came to stand at the indexes, or that stood there; a setting replaces all.
struct SerialPortsChange {
    enum class Kind { Setting, Insertion, Removal };
    Kind kind = Kind::Setting;
    std::vector<std::size_t> indexes; // ascending
    SerialPorts objects;              // one for each index
};

// What the registry's callbacks are given; they check that it is a SerialPortManager.
class CallbackContext {
public:
    CallbackContext() = default;
    CallbackContext(const CallbackContext&) = delete;
    CallbackContext& operator=(const CallbackContext&) = delete;
    virtual ~CallbackContext() = default;
    [[nodiscard]] virtual std::string description() const = 0;
};

// The list of the serial ports that exist right now, one per process. It follows hot-plug, closes open ports before the
// computer sleeps and opens them after it wakes, and treats all as removed when the program ends.
//
// Threads: the main thread. Notifications and observers are called inside the change.
// Lifetime: made by the first sharedSerialPortManager(), the only way to one; there is neither a second nor a copy.
class SerialPortManager : public CallbackContext, public std::enable_shared_from_this<SerialPortManager> {
public:
    [[nodiscard]] static std::shared_ptr<SerialPortManager> sharedSerialPortManager();

    // The program's end, or a test's: the next sharedSerialPortManager() makes another one.
    static void releaseShared();

    ~SerialPortManager() override;

    // The list itself, in the order of the registry, then of arrival.
    [[nodiscard]] const SerialPorts& availablePorts() const { return m_availablePorts; }
    void setAvailablePorts(SerialPorts ports);

    // Told after each change of the list.
    [[nodiscard]] platform::Subscription
    observeAvailablePorts(std::function<void(const SerialPortsChange& change)> told);

    // The list by its indexes. std::out_of_range for an index beyond its end; std::invalid_argument where indexes do
    // not ascend or there is not one for each port.
    [[nodiscard]] std::size_t countOfAvailablePorts() const { return m_availablePorts.size(); }
    [[nodiscard]] std::shared_ptr<SerialPort> objectInAvailablePortsAtIndex(std::size_t index) const;
    void insertAvailablePortsAtIndexes(const SerialPorts& ports, const std::vector<std::size_t>& indexes);
    void insertObjectInAvailablePortsAtIndex(const std::shared_ptr<SerialPort>& port, std::size_t index);
    void removeAvailablePortsAtIndexes(const std::vector<std::size_t>& indexes);
    void removeObjectFromAvailablePortsAtIndex(std::size_t index);

    // Devices have appeared: lists the ports that are not listed yet, then posts the notification of their connection,
    // even when no port is new.
    void serialPortsWerePublished(platform::DeviceIterator iterator);
    // Devices have gone: tells and closes their ports, takes them off the list, then posts their disconnection.
    void serialPortsWereTerminated(platform::DeviceIterator iterator);

    void systemWillSleep();
    void systemDidWake();

    // The ports that were closed for sleep.
    [[nodiscard]] const SerialPorts& portsToReopenAfterSleep() const { return m_portsToReopenAfterSleep; }

    // The lists of the two watches. A setter releases the old handle, stores and retains the new one; the same handle
    // again changes nothing.
    [[nodiscard]] platform::DeviceIterator portPublishedNotificationIterator() const { return m_publishedIterator; }
    void setPortPublishedNotificationIterator(platform::DeviceIterator iterator);
    [[nodiscard]] platform::DeviceIterator portTerminatedNotificationIterator() const { return m_terminatedIterator; }
    void setPortTerminatedNotificationIterator(platform::DeviceIterator iterator);

    [[nodiscard]] std::string description() const override;

private:
    SerialPortManager();
    void init();
    void retrieveAvailablePortsAndRegisterForChangeNotifications();
    void watchForTerminatedDevices();
    void registerForNotifications();
    void applicationWillTerminate();
    void replaceIterator(platform::DeviceIterator& stored, platform::DeviceIterator iterator);
    void releaseIfAny(platform::DeviceIterator iterator);
    void post(std::string_view name, std::string_view key, const SerialPorts& ports);
    void append(const SerialPorts& ports);
    void removeEqualTo(const SerialPorts& ports);

    platform::DeviceRegistry& m_deviceRegistry;
    platform::NotificationCentre& m_notificationCentre;
    platform::PowerEvents& m_powerEvents;
    SerialPorts m_availablePorts;
    SerialPorts m_portsToReopenAfterSleep;
    platform::DeviceIterator m_publishedIterator = 0;
    platform::DeviceIterator m_terminatedIterator = 0;
    ObserverList<SerialPortsChange> m_observers;
    platform::Subscription m_willTerminate;
    platform::Subscription m_willSleep;
    platform::Subscription m_didWake;
};

// What the registry's watches call. A context that is no manager is logged and nothing else happens.
void SerialPortManagerPortsPublishedNotificationCallback(CallbackContext* context, platform::DeviceIterator iterator);
void SerialPortManagerPortsTerminatedNotificationCallback(CallbackContext* context, platform::DeviceIterator iterator);

} // namespace vorrano::serial
