#include "platform/posix/PosixPortAccess.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

#include <grp.h>
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

constexpr gid_t kRootsGroup = 0;

// None for a number without a name, and while the list of groups can't be read.
std::optional<std::string> nameOfGroup(gid_t number)
{
    struct group record {};
    struct group* found = nullptr;
    // Holds the group's members too, which may be thousands.
    std::vector<char> texts(1024);
    int error = 0;
    while ((error = ::getgrgid_r(number, &record, texts.data(), texts.size(), &found)) == ERANGE) {
        texts.resize(texts.size() * 2);
    }
    return error == 0 && found != nullptr ? std::optional<std::string>(found->gr_name) : std::nullopt;
}

} // namespace

struct PosixPortAccess::Device {
    std::string node;
    struct stat status {};
};

PosixPortAccess::PosixPortAccess(const platform::DeviceRegistry& registry)
    : m_registry(registry)
{}

std::optional<PosixPortAccess::Device> PosixPortAccess::deviceOf(const std::string& path) const
{
    const auto node = m_registry.nodeOfCalloutPath(path);
    Device device{node.value_or(""), {}};
    if (::stat(device.node.c_str(), &device.status) != 0 || !S_ISCHR(device.status.st_mode)) {
        return std::nullopt;
    }
    return device;
}

bool PosixPortAccess::isPermitted(const std::string& path) const
{
    const auto node = m_registry.nodeOfCalloutPath(path);
    return node && ::access(node->c_str(), R_OK | W_OK) == 0;
}

std::optional<std::string> PosixPortAccess::groupThatMayUse(const std::string& path) const
{
    const auto device = deviceOf(path);
    constexpr mode_t kReadAndWrite = S_IRGRP | S_IWGRP;
    if (!device || (device->status.st_mode & kReadAndWrite) != kReadAndWrite || device->status.st_gid == kRootsGroup) {
        return std::nullopt;
    }
    return nameOfGroup(device->status.st_gid);
}

std::optional<std::string> PosixPortAccess::programThatUses(const std::string& path) const
{
    const auto device = deviceOf(path);
    if (!device) {
        return std::nullopt;
    }
    const auto nodeName = fs::path(device->node).filename().string();
    const auto isOpen = [&](const fs::path& descriptor) {
        return isOpenOn(descriptor, nodeName, device->status.st_rdev);
    };
    const auto process = findIn("/proc", [&](const fs::path& candidate) {
        return isProcess(candidate.filename()) && !findIn(candidate / "fd", isOpen).empty();
    });
    const auto name = process.empty() ? std::string() : nameOf(process);
    return name.empty() ? std::nullopt : std::optional(name);
}

} // namespace vorrano::posix_platform
