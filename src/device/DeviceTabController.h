#pragma once

#include "device/DeviceExchange.h"
#include "device/NoticeLine.h"
#include "device/VorranoPort.h"
#include "platform/ActionOf.h"
#include "platform/BusyDisplay.h"
#include "platform/Layouts.h"
#include "platform/Subscription.h"
#include "serial/SerialPortDelegate.h"
#include "serial/SerialRequest.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::platform {
class Alerts;
class NotificationCentre;
} // namespace vorrano::platform

namespace vorrano::serial {
class SerialPort;
class SerialPortManager;
} // namespace vorrano::serial

namespace vorrano::device {

class RefusedPort;

// What the tabs that talk to the device have in common: the connection to its port, the progress display, the alerts.
//
// The port is the first listed whose path contains kVorranoPath, else the first listed. There is one port object for
// each path, so tabs share it, and it has one delegate: the tab that took it last. A tab without a port takes
// input as usual, but its bytes go nowhere, and an action that waits for a reply leaves it dimmed.
//
// Controls: the label connectionNoticeLabel, shown while the tab's commands reach no Vorrano; in a tab that uses the
// progress display, loginProgressIndicator.
// A Vorrano's port that could not be opened is tried again every second, see RefusedPort.
// Threads: the main thread; the last reference may fall on any.
// Lifetime: the setup window's, until the tab is chosen again. Destruction neither closes the port nor takes it away
// from its delegate, as another tab may have both by then.
class DeviceTabController : public serial::SerialPortDelegate,
                            public std::enable_shared_from_this<DeviceTabController> {
public:
    DeviceTabController(const DeviceTabController&) = delete;
    DeviceTabController& operator=(const DeviceTabController&) = delete;
    ~DeviceTabController() override;

    [[nodiscard]] const std::shared_ptr<platform::View>& view() const { return m_view; }

    // Connects. The caller's, once it has stored the controller.
    virtual void awakeFromNib();

    // None while there is no port to take.
    [[nodiscard]] const std::shared_ptr<serial::SerialPort>& serialPort() const { return m_serialPort; }
    [[nodiscard]] const DeviceExchange& exchange() const { return m_exchange; }

    void serialPortWasRemovedFromSystem(serial::SerialPort& port) override;

protected:
    // Loads the view of that layout.
    explicit DeviceTabController(std::string_view layoutName);

    // Looks for the port again, takes it, opens it at 9600 baud and empties the incoming buffer.
    void initializeSerialPortForCommunication();

    // Of the device's port among the manager's; 0 when there is none.
    [[nodiscard]] virtual std::size_t indexOfDevice();

    // Takes another port than the one held: closes the old port and clears its delegate, and becomes the delegate of
    // the new one.
    void setSerialPort(std::shared_ptr<serial::SerialPort> port);

    // Connects anew whenever a serial device is plugged in, for as long as the token and the tab live.
    [[nodiscard]] platform::Subscription observeConnections();

    // Dims the view and shows the spinner, or undoes it. The control is the one that began the action; none of the tabs
    // keeps it, so what stops the display has null.
    void displayAndStartProgressIndicator(platform::Control& sender);
    void hideAndStopProgressIndicator(platform::Control* sender);
    [[nodiscard]] platform::BusyDisplay& busyDisplay() { return m_busyDisplay; }

    // An error; nothing for an absent message.
    void displayAlertWithMessage(std::optional<std::string_view> message);

    // A title, a text and an "OK".
    void displayAlert(std::optional<std::string_view> messageText, std::string_view informativeText);

    // Queues a request with the tabs' time limit, 2.0 s. Without an evaluator it is complete once it is written.
    void sendRequest(serial::Bytes data, serial::ResponseEvaluator evaluator = {});

    // Exchanges: each starts the progress display, remembers the command and queues its requests all at once; the
    // command's reply test, in the last of them, ends it. A free text goes out with its end mark, a character without.
    void query(platform::Control& sender, DeviceCommand command);
    void send(platform::Control& sender, DeviceCommand command, std::string argument);

    // Sends the reset, waits for nothing, and says that it is finished. The command remembered stays the one before.
    void reset(platform::Control& sender, DeviceCommand command, std::string_view finished);

    // Writes past the request queue; what comes back is only data.
    void write(const serial::Bytes& data);

    // Presses of the layout's button go to the action, ask the device that, or reset it, while the tab lives.
    template <class Tab>
    void connect(std::string_view button, void (Tab::*action)(platform::Control&))
    {
        m_view->button(button).onPress(handler(action));
    }
    void connectQuery(std::string_view button, DeviceCommand command);
    void connectReset(std::string_view button, DeviceCommand command, std::string_view finished);
    template <class Tab>
    [[nodiscard]] platform::Action handler(void (Tab::*action)(platform::Control&))
    {
        return platform::actionOf(weak_from_this(), [action](DeviceTabController& self, platform::Control& sender) {
            (static_cast<Tab&>(self).*action)(sender);
        });
    }

    DeviceExchange m_exchange;

private:
    void submit(const std::vector<std::shared_ptr<serial::SerialRequest>>& requests);
    void updateConnectionNotice();

    platform::Alerts& m_alerts;
    platform::NotificationCentre& m_notificationCentre;
    std::shared_ptr<platform::View> m_view;
    NoticeLine m_connectionNotice;
    platform::BusyDisplay m_busyDisplay;
    std::shared_ptr<serial::SerialPortManager> m_portManager;
    // As of the last look at the list. It keeps a removed port alive, with its requests, until the next one.
    std::vector<std::shared_ptr<serial::SerialPort>> m_availablePorts;
    std::shared_ptr<serial::SerialPort> m_serialPort;
    std::shared_ptr<RefusedPort> m_refusedPort;
    platform::Subscription m_listObservation;
};

} // namespace vorrano::device
