#pragma once

#include "serial/SerialPort.h"
#include "serial/SerialRequest.h"
#include "serial_pty/rig/Pty.h"
#include "serial_pty/rig/PtyWorld.h"
#include "unit/serial/RecordingDelegate.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano::serial {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

// A port on a real pty, in the threads of the real program.
//
// At its end no file and no thread is left over.
class SerialPtyFixture : public testing::Test {
protected:
    static constexpr const char* kPath = "/dev/cu.usbserial-A1B2";

    SerialPtyFixture()
        : m_filesBefore(pty_rig::openFiles())
        , m_threadsBefore(pty_rig::threads())
        , world(std::make_unique<pty_rig::PtyWorld>())
        , pty(std::make_unique<pty_rig::Pty>())
    {
        world->devices.set(kPath, pty->node());
        port = SerialPort::serialPortWithPath(kPath);
        delegate = std::make_shared<RecordingDelegate>(world->loop);
        port->setDelegate(delegate);
    }

    void TearDown() override
    {
        EXPECT_TRUE(port->close());
        world->loop.drain();
        const std::weak_ptr<SerialPort> last = port;
        port.reset();
        EXPECT_TRUE(world->loop.runUntil([&] { return last.expired(); }));
        world->loop.drain();
        pty.reset();
        world.reset();
        EXPECT_EQ(pty_rig::openFiles(), m_filesBefore);
        EXPECT_EQ(pty_rig::threadsInTheEnd(m_threadsBefore), m_threadsBefore);
    }

    // A pty has no modem lines; with some a port on it behaves like one on an adapter.
    void giveModemLines(int lines = 0)
    {
        world->terminal.linesOfALineWithout = [lines] { return lines; };
    }

    void hangUp()
    {
        world->devices.remove(kPath);
        pty->hangUp();
    }

    // Another pty under the same name.
    void plugAgain()
    {
        pty = std::make_unique<pty_rig::Pty>();
        world->devices.set(kPath, pty->node());
    }

    // Runs the main loop until the delegate has heard that line so often.
    bool hears(const std::string& line, std::ptrdiff_t times = 1)
    {
        return world->loop.runUntil([&] {
            const auto& heard = delegate->heard();
            return std::count(heard.begin(), heard.end(), line) >= times;
        });
    }

    // Runs the main loop until the device has received at least that many bytes; what it has received.
    std::string received(std::size_t count)
    {
        std::string all;
        world->loop.runUntil([&] {
            all += pty->receive();
            return all.size() >= count;
        });
        return all;
    }

    [[nodiscard]] static std::shared_ptr<SerialRequest> request(Bytes data, std::chrono::duration<double> limit,
                                                                ResponseEvaluator evaluator = {})
    {
        return SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(std::move(data), {}, limit,
                                                                                            std::move(evaluator));
    }

    [[nodiscard]] static ResponseEvaluator endsWith(const std::string& end)
    {
        return [end](const Bytes& bytes) { return bytes.ends_with(end); };
    }

private:
    const std::size_t m_filesBefore;
    const std::size_t m_threadsBefore;

protected:
    std::unique_ptr<pty_rig::PtyWorld> world;
    std::unique_ptr<pty_rig::Pty> pty;
    std::shared_ptr<SerialPort> port;
    std::shared_ptr<RecordingDelegate> delegate;
};

} // namespace vorrano::serial
