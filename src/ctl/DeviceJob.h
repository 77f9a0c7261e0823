#pragma once

#include "ctl/Outcome.h"
#include "platform/MainQueue.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortDelegate.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace vorrano::platform {
class BackgroundQueue;
class PortAccess;
} // namespace vorrano::platform

namespace vorrano::ctl {

// The work at one device: opens its port, does what the subclass says, closes the port and reports.
//
// Every call of the port that may block runs on a background thread of the job's own, so that no device waits for
// another. There is one such call at a time.
// Threads: the main thread.
// Lifetime: held by its owner until it has reported.
class DeviceJob : public serial::SerialPortDelegate, public std::enable_shared_from_this<DeviceJob> {
public:
    using Told = std::function<void(const Outcome& outcome)>;

    DeviceJob(const DeviceJob&) = delete;
    DeviceJob& operator=(const DeviceJob&) = delete;
    ~DeviceJob() override;

    // Calls back once, on the main queue, when the port is closed again.
    void start(Told told);

    // Ends the work with that reason, if it has not ended.
    void stop(std::string why);

    [[nodiscard]] serial::SerialPort& port() const { return *m_port; }
    // Whether stopping now leaves the device without a firmware.
    [[nodiscard]] virtual bool isUploading() const { return false; }

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override { return serial::SerialPortCallbacks::all(); }
    void serialPortWasRemovedFromSystem(serial::SerialPort& port) override;
    void serialPortDidEncounterError(serial::SerialPort& port, const serial::SerialError& error) override;

protected:
    DeviceJob(std::shared_ptr<serial::SerialPort> port, const platform::PortAccess& portAccess);

    // The port is open.
    virtual void begin() = 0;

    // Runs the call on a background thread and then, on the main thread, `then` with its result, unless the work has
    // ended by then.
    using Call = std::function<bool(serial::SerialPort& port)>;
    void inBackground(Call call, std::function<void(bool result)> then);
    // The same for a call that writes: when it fails, the work ends.
    void write(Call call, std::function<void()> then);
    // Runs the task after that time, unless the work has ended by then.
    void after(std::chrono::nanoseconds delay, std::function<void()> task);

    void addValue(std::string name, Outcome::Value value);
    void finish();
    void fail(std::string why, ExitStatus status = ExitStatus::DeviceFailed);
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }
    // What a background call may look at.
    [[nodiscard]] const std::shared_ptr<std::atomic<bool>>& endedFlag() const { return m_endedFlag; }

private:
    void didOpen(bool isOpen);
    void failToOpen();
    void close();

    platform::MainQueue& m_mainQueue;
    platform::BackgroundQueue& m_backgroundQueue;
    const platform::PortAccess& m_portAccess;
    const std::shared_ptr<serial::SerialPort> m_port;
    const std::shared_ptr<std::atomic<bool>> m_endedFlag = std::make_shared<std::atomic<bool>>(false);
    serial::SerialError m_lastError;
    Outcome m_outcome;
    Told m_told;
    bool m_hasEnded = false;
};

} // namespace vorrano::ctl
