#include "serial_pty/rig/PtyWorld.h"

#include <filesystem>
#include <iterator>

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

} // namespace vorrano::pty_rig
