#pragma once

#include "platform/NetworkReachability.h"

#include <memory>
#include <string>
#include <string_view>

namespace vorrano::platform {
class NotificationCentre;
class SystemLog;
} // namespace vorrano::platform

namespace vorrano::web {

enum class NetworkStatus { NotReachable = 0, ReachableByLocalNetwork = 1, ReachableDirectly = 2 };

// Posted with the Reachability as its sender when the flags have changed and the notifier runs.
inline constexpr std::string_view kNetworkReachabilityChangedNotification = "kNetworkReachabilityChangedNotification";

// What the flags mean for a network beyond the link, and for the local one.
[[nodiscard]] NetworkStatus statusOfNetworkFlags(platform::ReachabilityFlags flags);
[[nodiscard]] NetworkStatus statusOfLocalWiFiFlags(platform::ReachabilityFlags flags);

// The log's line about flags.
[[nodiscard]] std::string flagLine(platform::ReachabilityFlags flags, std::string_view label);

// Whether, and how, a host or an address can be reached from this machine.
//
// Threads: the main thread. Lifetime: its end stops the notifier.
class Reachability {
public:
    // Each is null when the platform refuses.
    [[nodiscard]] static std::unique_ptr<Reachability> reachabilityWithHostName(const std::string& hostName);
    [[nodiscard]] static std::unique_ptr<Reachability> reachabilityWithAddress(const platform::SocketAddress& address);
    // 0.0.0.0: any network at all.
    [[nodiscard]] static std::unique_ptr<Reachability> reachabilityForInternetConnection();
    // 169.254.0.0: the link-local network; its status is the local network's.
    [[nodiscard]] static std::unique_ptr<Reachability> reachabilityForLocalWiFi();

    Reachability(const Reachability&) = delete;
    Reachability& operator=(const Reachability&) = delete;
    ~Reachability();

    // True when the notifier runs: the system reports changes, and somebody observes them.
    bool startNotifier();
    void stopNotifier();

    // NotReachable when the flags are not known.
    [[nodiscard]] NetworkStatus currentReachabilityStatus();
    [[nodiscard]] bool connectionRequired();

    [[nodiscard]] bool alwaysReturnLocalWiFiStatus() const { return m_alwaysReturnLocalWiFiStatus; }

private:
    explicit Reachability(std::unique_ptr<platform::ReachabilityReference> reference);
    [[nodiscard]] static std::unique_ptr<Reachability> over(std::unique_ptr<platform::ReachabilityReference> reference);

    [[nodiscard]] NetworkStatus networkStatusForFlags(platform::ReachabilityFlags flags);
    [[nodiscard]] NetworkStatus localWiFiStatusForFlags(platform::ReachabilityFlags flags);

    platform::NotificationCentre& m_notificationCentre;
    platform::SystemLog& m_systemLog;
    std::unique_ptr<platform::ReachabilityReference> m_reference;
    bool m_alwaysReturnLocalWiFiStatus = false;
};

// The test before every call: true exactly when no network is reachable, or that can't be told. Main thread.
[[nodiscard]] bool isNetworkConnectionNotReachable();

} // namespace vorrano::web
