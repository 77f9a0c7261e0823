#include "web/Reachability.h"

#include "platform/NotificationCentre.h"
#include "platform/Platform.h"
#include "platform/SystemLog.h"

#include <utility>

namespace vorrano::web {

using platform::ReachabilityFlags;

namespace {

bool has(ReachabilityFlags flags, ReachabilityFlags bit) { return (flags & bit) != 0; }

} // namespace

NetworkStatus statusOfNetworkFlags(ReachabilityFlags flags)
{
    if (!has(flags, platform::kReachable)) {
        return NetworkStatus::NotReachable;
    }
    if (has(flags, platform::kIsDirect)) {
        return NetworkStatus::ReachableDirectly;
    }
    const bool connectsByItself =
        has(flags, platform::kConnectionOnTraffic) || has(flags, platform::kConnectionOnDemand);
    if (connectsByItself && !has(flags, platform::kInterventionRequired)) {
        return NetworkStatus::ReachableByLocalNetwork;
    }
    return has(flags, platform::kConnectionRequired) ? NetworkStatus::NotReachable
                                                     : NetworkStatus::ReachableByLocalNetwork;
}

NetworkStatus statusOfLocalWiFiFlags(ReachabilityFlags flags)
{
    return has(flags, platform::kReachable) && has(flags, platform::kIsDirect) ? NetworkStatus::ReachableByLocalNetwork
                                                                               : NetworkStatus::NotReachable;
}

std::string flagLine(ReachabilityFlags flags, std::string_view label)
{
    const auto mark = [flags](ReachabilityFlags bit, char letter) { return has(flags, bit) ? letter : '-'; };
    std::string line = "Reachability Flag Status: ";
    // The direct bit is shown at both ends: as the link's kind and as a flag.
    line += mark(platform::kIsDirect, 'W');
    line += mark(platform::kReachable, 'R');
    line += ' ';
    line += mark(platform::kTransientConnection, 't');
    line += mark(platform::kConnectionRequired, 'c');
    line += mark(platform::kConnectionOnTraffic, 'C');
    line += mark(platform::kInterventionRequired, 'i');
    line += mark(platform::kConnectionOnDemand, 'D');
    line += mark(platform::kIsLocalAddress, 'l');
    line += mark(platform::kIsDirect, 'd');
    line += ' ';
    line += label;
    return line;
}

Reachability::Reachability(std::unique_ptr<platform::ReachabilityReference> reference)
    : m_notificationCentre(platform::Platform::current().notificationCentre)
    , m_systemLog(platform::Platform::current().systemLog)
    , m_reference(std::move(reference))
{}

Reachability::~Reachability() { stopNotifier(); }

std::unique_ptr<Reachability> Reachability::over(std::unique_ptr<platform::ReachabilityReference> reference)
{
    if (!reference) {
        return nullptr;
    }
    return std::unique_ptr<Reachability>(new Reachability(std::move(reference)));
}

std::unique_ptr<Reachability> Reachability::reachabilityWithHostName(const std::string& hostName)
{
    return over(platform::Platform::current().reachability.createWithName(hostName));
}

std::unique_ptr<Reachability> Reachability::reachabilityWithAddress(const platform::SocketAddress& address)
{
    return over(platform::Platform::current().reachability.createWithAddress(address));
}

std::unique_ptr<Reachability> Reachability::reachabilityForInternetConnection()
{
    return reachabilityWithAddress(platform::SocketAddress{});
}

std::unique_ptr<Reachability> Reachability::reachabilityForLocalWiFi()
{
    platform::SocketAddress linkLocal;
    linkLocal.address = {169, 254, 0, 0};
    auto reachability = reachabilityWithAddress(linkLocal);
    if (reachability) {
        reachability->m_alwaysReturnLocalWiFiStatus = true;
    }
    return reachability;
}

bool Reachability::startNotifier()
{
    const auto told = [this](ReachabilityFlags) {
        m_notificationCentre.post({std::string(kNetworkReachabilityChangedNotification), this, {}});
    };
    return m_reference->setCallback(told) && m_reference->schedule();
}

void Reachability::stopNotifier() { m_reference->unschedule(); }

NetworkStatus Reachability::currentReachabilityStatus()
{
    const auto flags = m_reference->flags();
    if (!flags) {
        return NetworkStatus::NotReachable;
    }
    return m_alwaysReturnLocalWiFiStatus ? localWiFiStatusForFlags(*flags) : networkStatusForFlags(*flags);
}

bool Reachability::connectionRequired()
{
    const auto flags = m_reference->flags();
    return flags && has(*flags, platform::kConnectionRequired);
}

NetworkStatus Reachability::networkStatusForFlags(ReachabilityFlags flags)
{
    m_systemLog.write(flagLine(flags, "networkStatusForFlags"));
    return statusOfNetworkFlags(flags);
}

NetworkStatus Reachability::localWiFiStatusForFlags(ReachabilityFlags flags)
{
    m_systemLog.write(flagLine(flags, "localWiFiStatusForFlags"));
    return statusOfLocalWiFiFlags(flags);
}

bool isNetworkConnectionNotReachable()
{
    const auto reachability = Reachability::reachabilityForInternetConnection();
    return !reachability || reachability->currentReachabilityStatus() == NetworkStatus::NotReachable;
}

} // namespace vorrano::web
