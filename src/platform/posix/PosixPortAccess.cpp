#include "platform/posix/PosixPortAccess.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorrano::posix_platform {

namespace {

namespace fs = std::filesystem;

// Goes through a folder until the entry is found that is looked for; an empty path when there is none. A folder of
// /proc may vanish or be closed to us at any moment, which ends the walk.
template <class IsWanted>
fs::path findIn(const fs::path& folder, IsWanted isWanted)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (isWanted(entry->path())) {
            return entry->path();
        }
    }
    return {};
}

bool isDevice(const fs::path& file, dev_t device)
{
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && S_ISCHR(status.st_mode) && status.st_rdev == device;
}

bool isProcess(const std::string& name)
{
    return name.find_first_not_of("0123456789") == std::string::npos && name != std::to_string(::getpid());
}

// Whether the file descriptor, a link in /proc, is that device. Its name is looked at first: to ask a file of another
// kind for its status may take a while, for instance on a network.
bool isOpenOn(const fs::path& descriptor, const std::string& nodeName, dev_t device)
{
    std::error_code error;
    return fs::read_symlink(descriptor, error).filename() == nodeName && isDevice(descriptor, device);
}

// A process may call itself anything.
std::string nameOf(const fs::path& process)
{
    std::string name;
    std::getline(std::ifstream(process / "comm"), name);
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; };
    std::replace_if(name.begin(), name.end(), isControl, '?');
    return name;
}

} // namespace

PosixPortAccess::PosixPortAccess(const platform::DeviceRegistry& registry)
    : m_registry(registry)
{}

bool PosixPortAccess::isPermitted(const std::string& path) const
{
    const auto node = m_registry.nodeOfCalloutPath(path);
    return node && ::faccessat(AT_FDCWD, node->c_str(), R_OK | W_OK, AT_EACCESS) == 0;
}

std::optional<std::string> PosixPortAccess::programThatUses(const std::string& path) const
{
    const auto node = m_registry.nodeOfCalloutPath(path);
    struct stat status {};
    if (!node || ::stat(node->c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return std::nullopt;
    }
    const auto nodeName = fs::path(*node).filename().string();
    const auto isOpen = [&](const fs::path& descriptor) { return isOpenOn(descriptor, nodeName, status.st_rdev); };
    const auto process = findIn("/proc", [&](const fs::path& candidate) {
        return isProcess(candidate.filename()) && !findIn(candidate / "fd", isOpen).empty();
    });
    const auto name = process.empty() ? std::string() : nameOf(process);
    return name.empty() ? std::nullopt : std::optional(name);
}

} // namespace vorrano::posix_platform
