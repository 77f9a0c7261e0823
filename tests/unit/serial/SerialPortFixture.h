#pragma once

#include "serial/SerialPort.h"
#include "serial/SerialRequest.h"
#include "support/World.h"
#include "unit/serial/RecordingDelegate.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano::serial {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;
using support::TerminalCall;
using testing::ElementsAre;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

// One port on one line, with a delegate that hears everything.
//
// At its end every port has to be closed, and then nothing is left: no descriptor, no background task, no port.
class SerialPortFixture : public testing::Test {
protected:
    SerialPortFixture()
        : line(world.plugVorrano())
        , port(SerialPort::serialPortWithPath(line.path()))
        , delegate(std::make_shared<RecordingDelegate>(world.mainQueue))
    {
        port->setDelegate(delegate);
    }

    void TearDown() override
    {
        if (port) {
            port->close();
        }
        world.advance(300ms);
        EXPECT_EQ(world.terminal.descriptorsInUse(), 0U);
        EXPECT_EQ(world.time.backgroundTasks(), 0U);
        const std::weak_ptr<SerialPort> last = port;
        port.reset();
        world.run();
        EXPECT_TRUE(last.expired());
    }

    // Open, with the lines settled and nothing written down.
    void openQuietly()
    {
        port->open();
        world.advance(20ms);
        forget();
    }

    void forget()
    {
        delegate->forget();
        world.terminal.forgetCalls();
        line.forget();
    }

    // Does it on a background thread, as far as it goes.
    template <class Step>
    void inBackground(Step step)
    {
        world.backgroundQueue.async(step);
        world.run();
    }

    // What the line got, write by write.
    [[nodiscard]] Lines written() const
    {
        Lines texts;
        for (const auto& write : line.writes()) {
            texts.push_back(write.bytes);
        }
        return texts;
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

    support::World world;
    support::FakeLine& line;
    std::shared_ptr<SerialPort> port;
    std::shared_ptr<RecordingDelegate> delegate;
};

} // namespace vorrano::serial
