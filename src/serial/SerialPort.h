#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/Subscription.h"
#include "platform/Terminal.h"
#include "serial/ObserverList.h"
#include "serial/PortOptions.h"
#include "serial/SerialPortDelegate.h"
#include "serial/SerialRequest.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vorrano::platform {
class BackgroundQueue;
class MainQueue;
class SerialQueue;
class SystemLog;
class Timer;
} // namespace vorrano::platform

namespace vorrano::serial {

class PortLine;

// A serial port: opens and sets up its device, reads it in the background, writes, mirrors the modem lines, notices
// that the device is gone, and exchanges requests for responses, one at a time. One delegate hears about it.
//
// There is one object per callout path: who asks for a path again gets the object that lives.
//
// Threads: creation, the delegate and device handles on the main thread; everything else on any, sendRequest() not on
// the port's own request queue. Every callback of the delegate comes on the main thread. open(), close(), sendData()
// and the setters do their system calls on the caller's thread, sendRequest() too when nothing is under way. Of two
// closes, or two opens, at the same time one does the work; the other returns at once. Lifetime: kept by its holders,
// by the manager's list and, while it is open, by its reader: an open port is not destroyed. Any thread may drop the
// last reference; the port then calls nobody, whatever its requests still waited for. Errors: none is thrown. A failed
// system call is told to the delegate, once; nothing is tried again.
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

    [[nodiscard]] std::shared_ptr<SerialPortDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(std::weak_ptr<SerialPortDelegate> delegate);

    // Opens for this process alone, applies the settings, drives RTS and DTR to theirs, and starts reading. Nothing
    // happens to an open port. A failure leaves the port closed.
    void open();

    // Restores the terminal's settings from before the open and closes. Returns whether the port is closed afterwards;
    // a failure leaves it open. Requests are left as they are: they time out.
    bool close();

    [[nodiscard]] bool isOpen() const { return fileDescriptor() != 0; }
    // 0 while closed.
    [[nodiscard]] int fileDescriptor() const;

    // Writes all bytes; blocks until they are out. False on a closed port, and when a write failed.
    bool sendData(const Bytes& data);

    // Queues the request, or writes it when no other is pending; waits for that much. False when the write failed: the
    // request is pending nevertheless, and times out.
    bool sendRequest(std::shared_ptr<SerialRequest> request);

    // The device is gone: tells the delegate, then closes the open that there is now, but none of later.
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
    [[nodiscard]] bool RTS() const { return m_rts; }
    void setRTS(bool on);
    [[nodiscard]] bool DTR() const { return m_dtr; }
    void setDTR(bool on);

    // Input lines, as the poll of every 10 ms saw them last. They change on the main thread.
    [[nodiscard]] bool CTS() const { return m_cts; }
    [[nodiscard]] bool DSR() const { return m_dsr; }
    [[nodiscard]] bool DCD() const { return m_dcd; }

    // Calls back after each change of "fileDescriptor", "isOpen" (on the thread that opened or closed), "CTS", "DSR" or
    // "DCD" (main thread). The subscription may outlive the port.
    [[nodiscard]] platform::Subscription observe(std::string_view key, std::function<void()> told);

private:
    using LinePointer = std::shared_ptr<PortLine>;

    SerialPort(platform::DeviceHandle device, std::string path);

    // The delegate. post() asks whether the callback is implemented, then leaves it to the main queue; tell() makes the
    // call, on the main thread.
    [[nodiscard]] bool implements(SerialPortCallback callback) const { return m_callbacks.load().contains(callback); }
    void post(SerialPortCallback callback, std::function<void(SerialPortDelegate&)> call);
    void tell(SerialPortCallback callback, const std::function<void(SerialPortDelegate&)>& call) const;
    void notifyDelegateOfPosixError(int code);
    void postPosixError(int code);
    [[nodiscard]] SerialError posixError(int code) const;
    void notifyDelegateOfPosixErrorWaitingUntilDone(int code, bool waitUntilDone);

    // The line of the open that there is now, or null.
    [[nodiscard]] LinePointer currentLine() const;
    [[nodiscard]] bool isCurrent(const LinePointer& line) const { return currentLine() == line; }
    [[nodiscard]] LinePointer openLine();
    bool write(const Bytes& data, void (SerialPort::*tellOfError)(int));
    void setUp(const PortLine& line);
    void keepOriginalAttributes(const PortLine& line);
    [[nodiscard]] platform::TerminalAttributes originalAttributes() const;
    void applyOptions(const PortLine& line);
    void startReading(const LinePointer& line);
    void startPolling(const LinePointer& line);
    bool closeOpen(std::optional<std::uint64_t> number);
    [[nodiscard]] LinePointer beginClose(std::optional<std::uint64_t> number);
    bool endClose(const LinePointer& line);
    bool closeDescriptor(const LinePointer& line);
    void restoreAttributes(const PortLine& line) const;
    [[nodiscard]] std::uint64_t openNumber() const;
    void cleanupAfterRemovalOfOpen(std::uint64_t number);
    void setPinPollTimer(std::shared_ptr<platform::Timer> timer);
    void setFlowControl(bool PortOptions::*flag, bool uses);
    template <class Value>
    bool storeOption(Value PortOptions::*option, Value value);
    template <class Value>
    [[nodiscard]] Value option(Value PortOptions::*option) const;
    void driveLine(std::atomic<bool>& stored, bool on, int bit);

    void readUntilClosed(const LinePointer& line);
    void readChunk(const PortLine& line);
    void pollPins(const LinePointer& line, const std::weak_ptr<platform::Timer>& timer);
    void mirrorLine(const LinePointer& line, std::atomic<bool>& stored, bool on, std::string_view key);

    // On the request queue, but receiveData().
    void receiveData(Bytes data);
    void takeReceivedChunk();
    bool reallySendRequest(std::shared_ptr<SerialRequest> request);
    void sendNextRequest();
    void pendingRequestDidTimeout();
    void checkResponseToPendingRequestAndContinueIfValid();
    void startTimeout(std::chrono::duration<double> interval);
    void setPendingRequestTimeoutTimer(std::shared_ptr<platform::Timer> timer);
    [[nodiscard]] std::function<void()> onQueue(void (SerialPort::*step)());

    platform::Terminal& m_terminal;
    platform::MainQueue& m_mainQueue;
    platform::BackgroundQueue& m_backgroundQueue;
    platform::DeviceRegistry& m_deviceRegistry;
    platform::SystemLog& m_systemLog;

    const std::string m_path;
    const std::string m_name;
    platform::DeviceHandle m_ioKitDevice = 0;

    std::weak_ptr<SerialPortDelegate> m_delegate;      // main thread
    std::atomic<SerialPortCallbacks> m_callbacks = {}; // what is read of it elsewhere

    ObserverList<std::string_view> m_observers;
    std::atomic<bool> m_rts = false;
    std::atomic<bool> m_dtr = false;
    std::atomic<bool> m_cts = false;
    std::atomic<bool> m_dsr = false;
    std::atomic<bool> m_dcd = false;

    mutable std::mutex m_mutex; // of what follows; held for a look or an assignment only
    PortOptions m_options;
    LinePointer m_line;
    std::uint64_t m_opens = 0; // the number of the last open
    bool m_isOpening = false;
    bool m_isClosing = false;
    platform::TerminalAttributes m_originalPortAttributes;
    std::shared_ptr<platform::Timer> m_pinPollTimer;

    std::mutex m_receivedMutex;         // held while the delegate's callback of a chunk is posted
    std::deque<Bytes> m_receivedChunks; // in the order of those callbacks; the request queue takes them

    const std::shared_ptr<platform::SerialQueue> m_requestHandlingQueue; // of what follows
    Bytes m_receiveBuffer;
    std::deque<std::shared_ptr<SerialRequest>> m_requestsQueue;
    std::shared_ptr<SerialRequest> m_pendingRequest;
    std::shared_ptr<platform::Timer> m_pendingRequestTimeoutTimer;
};

} // namespace vorrano::serial
