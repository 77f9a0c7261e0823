#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/Subscription.h"
#include "serial/CurrentOpen.h"
#include "serial/DelegateSlot.h"
#include "serial/ModemLines.h"
#include "serial/ObserverList.h"
#include "serial/PortOptions.h"
#include "serial/SerialPortDelegate.h"
#include "serial/SerialRequest.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vorrano::platform {
class BackgroundQueue;
class MainQueue;
class SystemLog;
class Terminal;
} // namespace vorrano::platform

namespace vorrano::serial {

class RequestQueue;

// For SerialPort::observe(): reported after every open() that failed, even with the same error as before.
inline constexpr std::string_view kOpenErrorKey = "openError";

// A serial port: opens and sets up its device, reads it in the background, writes, mirrors the modem lines, notices
// that the device is gone, and exchanges requests for responses, one at a time. It reports all of this to one delegate.
//
// There is one object per callout path: a caller that asks for the same path again gets the object that is alive.
//
// Threads: creation, the delegate and the device handles on the main thread; everything else on any, but sendRequest()
// not from inside a response evaluator. The delegate is called on the main thread only. open(), close(), sendData() and
// the setters do their system calls on the caller's thread. Of two closes, or two opens, at the same time one does the
// work; the other returns at once.
// Lifetime: kept by its holders, by the manager's list and, while it is open, by its reader; so an open port is not
// destroyed. Any thread may drop the last reference. The port then calls nobody, even if requests were pending.
// Errors: none is thrown. A system call that fails is reported to the delegate, once; nothing is tried again.
class SerialPort : public std::enable_shared_from_this<SerialPort> {
public:
    // Null when no present device has the path as its callout or its dial-in path.
    [[nodiscard]] static std::shared_ptr<SerialPort> serialPortWithPath(const std::string& path);
    [[nodiscard]] static std::shared_ptr<SerialPort> serialPortWithDevice(platform::DeviceHandle device);
    [[nodiscard]] static std::shared_ptr<SerialPort> initWithPath(const std::string& path);
    [[nodiscard]] static std::shared_ptr<SerialPort> initWithDevice(platform::DeviceHandle device);
    // A port of no path: always null.
    [[nodiscard]] static std::shared_ptr<SerialPort> init();

    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;
    ~SerialPort();

    // The ports that live, held weakly. A port adds itself when it is made and removes itself when it goes.
    static void addSerialPort(const std::shared_ptr<SerialPort>& port);
    static void removeSerialPort(const SerialPort& port);
    [[nodiscard]] static std::shared_ptr<SerialPort> existingPortWithPath(std::string_view path);

    // What the device registry says. The handle is counted for the caller; 0 when there is no such device.
    [[nodiscard]] static platform::DeviceHandle deviceFromBSDPath(const std::string& path);
    [[nodiscard]] static std::optional<std::string> stringPropertyOfForIOSerialKey(platform::DeviceHandle device,
                                                                                   std::string_view key);
    [[nodiscard]] static std::optional<std::string> bsdCalloutPathFromDevice(platform::DeviceHandle device);
    [[nodiscard]] static std::optional<std::string> bsdDialinPathFromDevice(platform::DeviceHandle device);
    [[nodiscard]] static std::optional<std::string> baseNameFromDevice(platform::DeviceHandle device);
    [[nodiscard]] static std::optional<std::string> serviceTypeFromDevice(platform::DeviceHandle device);
    [[nodiscard]] static std::optional<std::string> modemNameFromDevice(platform::DeviceHandle device);
    [[nodiscard]] static std::optional<std::string> suffixFromDevice(platform::DeviceHandle device);

    // The keys whose changes are changes of this key too: for "isOpen" it is "fileDescriptor".
    [[nodiscard]] static std::set<std::string> keyPathsForValuesAffectingValueForKey(std::string_view key);

    // Ports are equal by their paths; one without a path equals none.
    [[nodiscard]] bool isEqual(const SerialPort& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

    // The callout path; it stays with the device ("/dev/cu.usbserial-A1B2").
    [[nodiscard]] const std::string& path() const { return m_path; }
    // The device's tty name ("ttyUSB0").
    [[nodiscard]] const std::string& name() const { return m_name; }

    [[nodiscard]] platform::DeviceHandle IOKitDevice() const { return m_ioKitDevice; }
    // Two setters, one letter apart, that differ: the first releases the old handle and retains the new one, unless it
    // is the same; the second only stores.
    void setIoKitDevice(platform::DeviceHandle device);
    void setIOKitDevice(platform::DeviceHandle device);

    [[nodiscard]] std::shared_ptr<SerialPortDelegate> delegate() const { return m_delegate.delegate(); }
    void setDelegate(std::weak_ptr<SerialPortDelegate> delegate);

    // Opens for this process alone, applies the settings, drives RTS and DTR to theirs, and starts reading. Nothing
    // happens to an open port. A failure leaves the port closed.
    void open();

    // Restores the terminal's settings from before the open and closes. Returns whether the port is closed afterwards;
    // a failure leaves it open. Requests are left as they are: those with a time-out run out of time, the others stay.
    bool close();

    [[nodiscard]] bool isOpen() const { return fileDescriptor() != 0; }
    // 0 while closed.
    [[nodiscard]] int fileDescriptor() const;
    // The errno of the last open(), if that one failed. Any thread.
    [[nodiscard]] std::optional<int> openError() const;

    // Writes all bytes; blocks until they are out. False on a closed port, and when a write failed.
    bool sendData(const Bytes& data);

    // Queues the request behind the pending one, or writes it when there is none; waits until that is done. False when
    // the write failed: the request is pending all the same, and times out.
    bool sendRequest(std::shared_ptr<SerialRequest> request);

    // Inside serialPortDidReceiveData(): whether the chunk may hold a secret, that is (a part of) the response to a
    // request with isResponseSecret(). Such a chunk must reach no log. True while such a request is pending and, after
    // its time-out, until another request has been answered or the port was closed.
    [[nodiscard]] bool isReceivedDataSecret() const { return m_isReceivedDataSecret; }

    // The device is gone: tells the delegate, then closes the open that there is now, but no later one.
    void cleanupAfterSystemRemoval();
    // Deprecated, and logged as such: the same.
    void cleanup();

    // Applies the settings below to the open line. Each setter does so too, when the value is another one.
    void setPortOptions();

    // Another number object is another value, also when it holds the same rate. 19200 at first; null counts as 0.
    [[nodiscard]] std::shared_ptr<const unsigned long> baudRate() const;
    void setBaudRate(std::shared_ptr<const unsigned long> baudRate);
    // 2 and more are two stop bits, anything less is one.
    [[nodiscard]] std::uint64_t numberOfStopBits() const;
    void setNumberOfStopBits(std::uint64_t numberOfStopBits);
    [[nodiscard]] SerialParity parity() const;
    void setParity(SerialParity parity);
    [[nodiscard]] bool shouldEchoReceivedData() const;
    void setShouldEchoReceivedData(bool echo);

    // Flow control. Changing one closes an open port, stores, and opens it again.
    [[nodiscard]] bool usesRTSCTSFlowControl() const;
    void setUsesRTSCTSFlowControl(bool uses);
    [[nodiscard]] bool usesDTRDSRFlowControl() const;
    void setUsesDTRDSRFlowControl(bool uses);
    [[nodiscard]] bool usesDCDOutputFlowControl() const;
    void setUsesDCDOutputFlowControl(bool uses);

    // Output lines: driven at once on an open port, else when it opens.
    [[nodiscard]] bool RTS() const { return m_lines.rts.isOn; }
    void setRTS(bool on);
    [[nodiscard]] bool DTR() const { return m_lines.dtr.isOn; }
    void setDTR(bool on);

    // Input lines, as the poll of every 10 ms saw them last. They change on the main thread.
    [[nodiscard]] bool CTS() const { return m_lines.cts.isOn; }
    [[nodiscard]] bool DSR() const { return m_lines.dsr.isOn; }
    [[nodiscard]] bool DCD() const { return m_lines.dcd.isOn; }

    // Calls back after each change of "fileDescriptor", "isOpen" (on the thread that opened or closed), "CTS", "DSR" or
    // "DCD" (main thread), and after each open() that failed ("openError", on the thread that opened). The subscription
    // may outlive the port.
    [[nodiscard]] platform::Subscription observe(std::string_view key, std::function<void()> told);

private:
    SerialPort(platform::DeviceHandle device, std::string path);
    [[nodiscard]] std::shared_ptr<RequestQueue> makeRequestQueue();

    void setUp(OpenPort& open);
    void applyOptions(const OpenPort& open);
    void startReadingAndPolling(const CurrentOpen::Pointer& open);
    bool closeOpen(std::optional<std::uint64_t> number);
    bool endClose(const CurrentOpen::Pointer& open);
    bool closeDescriptor(const CurrentOpen::Pointer& open);
    void cleanupAfterRemovalOfOpen(std::uint64_t number);

    void drive(OutputLine& line, bool on);
    void setFlowControl(bool PortOptions::Values::*flag, bool uses);

    // On the reader's and the poll's threads.
    void postData(const Bytes& chunk, bool mayHoldSecret);
    void mirrorLine(const OpenPort& open, InputLine& line, int lines);
    void didFailToReadLines(const OpenPort& open, int error);

    platform::Terminal& m_terminal;
    platform::MainQueue& m_mainQueue;
    platform::BackgroundQueue& m_backgroundQueue;
    platform::DeviceRegistry& m_deviceRegistry;
    platform::SystemLog& m_systemLog;

    const std::string m_path;
    const std::string m_name;
    platform::DeviceHandle m_ioKitDevice = 0;

    DelegateSlot m_delegate;
    ObserverList<std::string_view> m_observers;
    PortOptions m_options;
    CurrentOpen m_open;
    ModemLines m_lines;
    std::shared_ptr<RequestQueue> m_requests; // made right after the port, which it refers to
    bool m_isReceivedDataSecret = false;      // main thread
};

} // namespace vorrano::serial
