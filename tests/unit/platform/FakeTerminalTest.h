#pragma once

#include "support/World.h"

#include <span>
#include <string>

#include <gtest/gtest.h>

namespace vorrano::support {

using namespace std::chrono_literals;
using platform::ApplyAttributes;
using platform::SystemResult;
using platform::TerminalAttributes;

// One line in a world, spoken to as the program does.
class FakeTerminalTest : public ::testing::Test {
protected:
    static inline const std::string kPath = "/dev/cu.usbserial-A1B2";
    World world;
    FakeTerminal& terminal = world.terminal;
    FakeLine& line = world.plugVorrano();

    int open() { return terminal.open(kPath).value; }

    SystemResult write(int descriptor, const std::string& bytes)
    {
        return terminal.write(descriptor, std::as_bytes(std::span(bytes)));
    }

    std::string read(int descriptor, std::size_t most = 1024)
    {
        std::string bytes(most, '\0');
        const auto count = terminal.read(descriptor, std::as_writable_bytes(std::span(bytes)));
        bytes.resize(count.failed() ? 0 : static_cast<std::size_t>(count.value));
        return bytes;
    }

    int waitInBackground(int descriptor, Nanoseconds& end)
    {
        int answer = -1;
        world.backgroundQueue.async([&] {
            answer = terminal.waitReadable(descriptor, 100ms).value;
            end = world.now();
        });
        world.advance(100ms);
        return answer;
    }
};

} // namespace vorrano::support
