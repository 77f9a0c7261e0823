#pragma once

#include "platform/linux/Routes.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vorrano::linux_platform {

// An IPv4 or IPv6 address: 4 or 16 bytes in network order.
using AddressBytes = std::vector<std::uint8_t>;

// Questions to the kernel. None when they can't be asked.
//
// Threads: any. They wait for the kernel alone.
[[nodiscard]] std::optional<std::vector<Link>> readLinks();

// The routes of both families.
[[nodiscard]] std::optional<std::vector<Route>> readRoutes();

// The route that the system chooses to an address; a refusing one when there is none.
[[nodiscard]] std::optional<Route> readRouteTo(const AddressBytes& address);

// Reports changes of links, addresses and routes.
//
// Threads: one.
class NetlinkMonitor {
public:
    NetlinkMonitor();
    NetlinkMonitor(const NetlinkMonitor&) = delete;
    NetlinkMonitor& operator=(const NetlinkMonitor&) = delete;
    ~NetlinkMonitor();

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

    // Readable when something has changed.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    // Forgets the changes so far.
    void drain() const;

private:
    int m_descriptor;
};

} // namespace vorrano::linux_platform
