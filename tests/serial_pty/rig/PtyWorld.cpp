#include "serial_pty/rig/PtyWorld.h"

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>

namespace vorrano::pty_rig {

namespace {

std::size_t entriesOf(const char* folder)
{
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

std::size_t openFiles() { return entriesOf("/proc/self/fd"); }

std::size_t threads() { return entriesOf("/proc/self/task"); }

std::size_t threadsInTheEnd(std::size_t expected)
{
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    while (threads() != expected && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(1ms);
    }
    return threads();
}

} // namespace vorrano::pty_rig
