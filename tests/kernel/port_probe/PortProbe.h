#pragma once

#include "platform/Subscription.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortDelegate.h"
#include "serial/SerialPortManager.h"

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vorrano::kernel_test {

struct ProbeWorld;

// A serial port on a string: does what it is told line by line, and writes down what comes of it, one line each. Bytes
// are in hexadecimal.
//
//     port PATH                    is this callout path's port from now on        "port 1" ("port 0": there is none)
//     watch                        has a port manager, which follows hot-plug     "watching"
//     open
//     close                                                                       "close 1"
//     baud N, stopbits N, parity none|odd|even
//     rtscts|dtrdsr|dcdout 0|1
//     rts|dtr 0|1
//     send BYTES                   on the main thread                             "sent 1"
//     fill COUNT                   the same with so many bytes                    "sent 1"
//     fillAside COUNT              the same on a background thread                "sent 1"
//     request BYTES SECONDS COUNT  is answered by so many bytes
//
// Heard at any time: "opened", "closed", "removed", "error ERRNO", "data BYTES", "response BYTES", "timeout", "CTS 1"
// (also DSR, DCD), and with a manager "connected PATH same" (or other, when the port is another object) and
// "disconnected PATH".
//
// Threads: the main thread.
class PortProbe : public serial::SerialPortDelegate, public std::enable_shared_from_this<PortProbe> {
public:
    explicit PortProbe(ProbeWorld& world);

    void obey(const std::string& line);

    // Closes the port and lets go of everything.
    void end();

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override { return serial::SerialPortCallbacks::all(); }
    void serialPortWasRemovedFromSystem(serial::SerialPort& port) override;
    void serialPortDidReceiveData(serial::SerialPort& port, const serial::Bytes& data) override;
    void serialPortDidReceiveResponseToRequest(serial::SerialPort& port, const serial::Bytes& response,
                                               const std::shared_ptr<serial::SerialRequest>& request) override;
    void serialPortRequestDidTimeout(serial::SerialPort& port,
                                     const std::shared_ptr<serial::SerialRequest>& request) override;
    void serialPortDidEncounterError(serial::SerialPort& port, const serial::SerialError& error) override;
    void serialPortWasOpened(serial::SerialPort& port) override;
    void serialPortWasClosed(serial::SerialPort& port) override;

private:
    using Verb = std::function<void(std::istream&)>;

    void addVerbs();
    void addSettings();
    void takePort(const std::string& path);
    void watch();
    void mirror(const char* key, bool (serial::SerialPort::*line)() const);
    void fillAside(std::size_t count);
    void request(const serial::Bytes& bytes, double seconds, std::size_t count);

    ProbeWorld& m_world;
    std::map<std::string, Verb, std::less<>> m_verbs;
    std::shared_ptr<serial::SerialPort> m_port;
    std::shared_ptr<serial::SerialPortManager> m_manager;
    std::vector<platform::Subscription> m_subscriptions;
};

} // namespace vorrano::kernel_test
