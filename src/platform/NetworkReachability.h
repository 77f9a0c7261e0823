#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorrano::platform {

// An IPv4 socket address: length 16, family 2.
struct SocketAddress {
    std::uint8_t length = 16;
    std::uint8_t family = 2;
    std::uint16_t port = 0;
    std::array<std::uint8_t, 4> address{};
};

using ReachabilityFlags = std::uint32_t;
inline constexpr ReachabilityFlags kTransientConnection = 1;
inline constexpr ReachabilityFlags kReachable = 2;
inline constexpr ReachabilityFlags kConnectionRequired = 4;
inline constexpr ReachabilityFlags kConnectionOnTraffic = 8;
inline constexpr ReachabilityFlags kInterventionRequired = 16;
inline constexpr ReachabilityFlags kConnectionOnDemand = 32;
inline constexpr ReachabilityFlags kIsLocalAddress = 65536;
inline constexpr ReachabilityFlags kIsDirect = 131072;

// How one host or address can be reached from here. Main thread. Dropping it ends the callbacks.
class ReachabilityReference {
public:
    ReachabilityReference() = default;
    ReachabilityReference(const ReachabilityReference&) = delete;
    ReachabilityReference& operator=(const ReachabilityReference&) = delete;
    virtual ~ReachabilityReference() = default;

    // None when the system does not tell.
    [[nodiscard]] virtual std::optional<ReachabilityFlags> flags() = 0;

    // Registers what to call when the flags change. It is called on the main queue, only between schedule() and
    // unschedule(). False when the system refuses.
    virtual bool setCallback(std::function<void(ReachabilityFlags)> told) = 0;
    virtual bool schedule() = 0;
    virtual void unschedule() = 0;
};

class NetworkReachability {
public:
    NetworkReachability() = default;
    NetworkReachability(const NetworkReachability&) = delete;
    NetworkReachability& operator=(const NetworkReachability&) = delete;
    virtual ~NetworkReachability() = default;

    // Null when the platform refuses (an empty name, another family).
    [[nodiscard]] virtual std::unique_ptr<ReachabilityReference> createWithName(const std::string& host) = 0;
    [[nodiscard]] virtual std::unique_ptr<ReachabilityReference> createWithAddress(const SocketAddress& address) = 0;
};

} // namespace vorrano::platform
