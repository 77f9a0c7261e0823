#include "platform/linux/NetlinkReachability.h"

#include "platform/linux/Netlink.h"

#include <chrono>
#include <future>
#include <utility>

#include <QSocketNotifier>
#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>

namespace vorrano::linux_platform {

namespace {

using platform::ReachabilityFlags;
using platform::ReachabilityReference;
using Flags = std::optional<ReachabilityFlags>;

constexpr std::chrono::seconds kLongestLookUp{1};

Flags flagsOfDefaultRoutesNow()
{
    const auto routes = readRoutes();
    const auto links = readLinks();
    return routes && links ? Flags(flagsOfDefaultRoutes(*routes, *links)) : std::nullopt;
}

Flags flagsOfAddress(const AddressBytes& address)
{
    const auto route = readRouteTo(address);
    const auto links = readLinks();
    return route && links ? Flags(flagsOfRoute(*route, *links)) : std::nullopt;
}

std::optional<AddressBytes> addressOf(const sockaddr& address)
{
    const auto bytesAt = [](const auto& field) {
        const auto* first = reinterpret_cast<const std::uint8_t*>(&field);
        return AddressBytes(first, first + sizeof(field));
    };
    if (address.sa_family == AF_INET) {
        return bytesAt(reinterpret_cast<const sockaddr_in&>(address).sin_addr);
    }
    if (address.sa_family == AF_INET6) {
        return bytesAt(reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
    }
    return std::nullopt;
}

// Those of the first address that can be reached; a host without addresses can't be.
Flags flagsOfHost(const std::string& host)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) {
        return 0;
    }
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> all(found, freeaddrinfo);
    Flags flags = 0;
    for (const auto* entry = found; entry != nullptr && flags == Flags(0); entry = entry->ai_next) {
        if (const auto address = addressOf(*entry->ai_addr)) {
            flags = flagsOfAddress(*address);
        }
    }
    return flags;
}

using Read = std::function<Flags()>;

// How to find the flags: at once on the calling thread, or by waiting for name servers.
struct Target {
    Read read;
    bool waits = false;
};

// Reports changes for as long as it lives.
class Notifier : public std::enable_shared_from_this<Notifier> {
public:
    using Told = std::function<void(ReachabilityFlags)>;

    Notifier(platform::MainQueue& mainQueue, platform::BackgroundQueue& backgroundQueue, Target target, Told told)
        : m_mainQueue(mainQueue)
        , m_backgroundQueue(backgroundQueue)
        , m_target(std::move(target))
        , m_told(std::move(told))
    {}

    [[nodiscard]] bool start(Flags current)
    {
        if (!m_monitor.isOpen()) {
            return false;
        }
        m_last = current;
        m_notifier = std::make_unique<QSocketNotifier>(m_monitor.descriptor(), QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] {
            m_monitor.drain();
            look();
        });
        return true;
    }

    void setTold(Told told) { m_told = std::move(told); }

private:
    void look()
    {
        if (!m_target.waits) {
            take(m_target.read());
            return;
        }
        m_backgroundQueue.async([weak = weak_from_this(), read = m_target.read, &mainQueue = m_mainQueue] {
            mainQueue.async([weak, flags = read()] {
                if (const auto self = weak.lock()) {
                    self->take(flags);
                }
            });
        });
    }

    void take(Flags flags)
    {
        if (std::exchange(m_last, flags) == flags) {
            return;
        }
        m_mainQueue.async([weak = weak_from_this(), flags] {
            const auto self = weak.lock();
            if (self && self->m_told) {
                const auto told = self->m_told;
                told(flags.value_or(0));
            }
        });
    }

    platform::MainQueue& m_mainQueue;
    platform::BackgroundQueue& m_backgroundQueue;
    const Target m_target;
    Told m_told;
    Flags m_last;
    const NetlinkMonitor m_monitor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

class Reference final : public ReachabilityReference {
public:
    Reference(platform::MainQueue& mainQueue, platform::BackgroundQueue& backgroundQueue, Target target)
        : m_mainQueue(mainQueue)
        , m_backgroundQueue(backgroundQueue)
        , m_target(std::move(target))
    {}

    [[nodiscard]] Flags flags() override
    {
        if (!m_target.waits) {
            return m_target.read();
        }
        const auto answer = std::make_shared<std::promise<Flags>>();
        auto future = answer->get_future();
        m_backgroundQueue.async([answer, read = m_target.read] { answer->set_value(read()); });
        return future.wait_for(kLongestLookUp) == std::future_status::ready ? future.get() : std::nullopt;
    }

    bool setCallback(std::function<void(ReachabilityFlags)> told) override
    {
        m_told = std::move(told);
        if (m_notifier) {
            m_notifier->setTold(m_told);
        }
        return true;
    }

    bool schedule() override
    {
        m_notifier = std::make_shared<Notifier>(m_mainQueue, m_backgroundQueue, m_target, m_told);
        if (!m_notifier->start(flags())) {
            m_notifier.reset();
        }
        return m_notifier != nullptr;
    }

    void unschedule() override { m_notifier.reset(); }

private:
    platform::MainQueue& m_mainQueue;
    platform::BackgroundQueue& m_backgroundQueue;
    const Target m_target;
    std::function<void(ReachabilityFlags)> m_told;
    std::shared_ptr<Notifier> m_notifier;
};

} // namespace

NetlinkReachability::NetlinkReachability(platform::MainQueue& mainQueue, platform::BackgroundQueue& backgroundQueue)
    : m_mainQueue(mainQueue)
    , m_backgroundQueue(backgroundQueue)
{}

std::unique_ptr<ReachabilityReference> NetlinkReachability::createWithName(const std::string& host)
{
    if (host.empty()) {
        return nullptr;
    }
    return std::make_unique<Reference>(m_mainQueue, m_backgroundQueue,
                                       Target{[host] { return flagsOfHost(host); }, true});
}

std::unique_ptr<ReachabilityReference> NetlinkReachability::createWithAddress(const platform::SocketAddress& address)
{
    const platform::SocketAddress kind;
    if (address.length != kind.length || address.family != kind.family) {
        return nullptr;
    }
    const AddressBytes bytes(address.address.begin(), address.address.end());
    const bool isAny = bytes == AddressBytes(4, 0);
    Target target{isAny ? Read(flagsOfDefaultRoutesNow) : Read([bytes] { return flagsOfAddress(bytes); }), false};
    return std::make_unique<Reference>(m_mainQueue, m_backgroundQueue, std::move(target));
}

} // namespace vorrano::linux_platform
