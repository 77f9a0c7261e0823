#include "platform/linux/Netlink.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <memory>

#include <libmnl/libmnl.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vorrano::linux_platform {

namespace {

using Take = std::function<void(const nlmsghdr&)>;

constexpr int kAttempts = 3;
constexpr std::size_t kAnswerSize = 32 * 1024;

struct CloseSocket {
    void operator()(mnl_socket* socket) const { mnl_socket_close(socket); }
};

// A request of the given type with the record of that type in front; attributes may follow.
template <typename Record>
class Request {
public:
    Request(std::uint16_t type, unsigned flags)
        : m_header(mnl_nlmsg_put_header(m_bytes.data()))
        , m_record(static_cast<Record*>(mnl_nlmsg_put_extra_header(m_header, sizeof(Record))))
    {
        m_header->nlmsg_type = type;
        m_header->nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | flags);
        m_header->nlmsg_seq = 1;
    }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    [[nodiscard]] nlmsghdr& header() { return *m_header; }
    [[nodiscard]] Record& record() { return *m_record; }

private:
    alignas(nlmsghdr) std::array<char, 256> m_bytes{};
    nlmsghdr* m_header;
    Record* m_record;
};

int takeOne(const nlmsghdr* message, void* take)
{
    (*static_cast<const Take*>(take))(*message);
    return MNL_CB_OK;
}

// Sends the request and takes the messages of the answer: 0, or the errno of the failure or refusal.
int ask(const nlmsghdr& request, const Take& take)
{
    const std::unique_ptr<mnl_socket, CloseSocket> socket(mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC));
    if (!socket || mnl_socket_bind(socket.get(), 0, MNL_SOCKET_AUTOPID) < 0 ||
        mnl_socket_sendto(socket.get(), &request, request.nlmsg_len) < 0) {
        return errno;
    }
    std::vector<char> answer(kAnswerSize);
    const auto port = mnl_socket_get_portid(socket.get());
    int outcome = MNL_CB_OK;
    while (outcome == MNL_CB_OK) {
        const auto size = mnl_socket_recvfrom(socket.get(), answer.data(), answer.size());
        if (size < 0) {
            return errno;
        }
        outcome = mnl_cb_run(answer.data(), static_cast<std::size_t>(size), request.nlmsg_seq, port, takeOne,
                             const_cast<Take*>(&take));
    }
    return outcome == MNL_CB_STOP ? 0 : errno;
}

// A dump that changed while it was made comes with EINTR.
template <typename Value, typename Record>
std::optional<std::vector<Value>> dump(Request<Record>& request, Value (*parse)(const nlmsghdr&))
{
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::vector<Value> values;
        const int error = ask(request.header(), [&](const nlmsghdr& message) { values.push_back(parse(message)); });
        if (error == 0) {
            return values;
        }
        if (error != EINTR) {
            break;
        }
    }
    return std::nullopt;
}

Link linkFrom(const nlmsghdr& message)
{
    const auto& record = *static_cast<const ifinfomsg*>(mnl_nlmsg_get_payload(&message));
    const bool isUp = (record.ifi_flags & IFF_UP) != 0 && (record.ifi_flags & IFF_LOWER_UP) != 0;
    return {static_cast<std::uint32_t>(record.ifi_index), isUp, (record.ifi_flags & IFF_LOOPBACK) != 0};
}

RouteKind kindOf(unsigned char type)
{
    switch (type) {
    case RTN_LOCAL:
        return RouteKind::Local;
    case RTN_UNICAST:
    case RTN_BROADCAST:
    case RTN_ANYCAST:
    case RTN_MULTICAST:
        return RouteKind::Forwarded;
    default:
        return RouteKind::Refusing;
    }
}

struct RouteAttributes {
    std::optional<std::uint32_t> table;
    Hop hop;
    std::vector<Hop> hops;
};

// Both the attributes of a route and those of one of its hops.
int takeRouteAttribute(const nlattr* attribute, void* data);

std::vector<Hop> hopsFrom(const nlattr& attribute)
{
    std::vector<Hop> hops;
    const auto* bytes = static_cast<const char*>(mnl_attr_get_payload(&attribute));
    std::size_t left = mnl_attr_get_payload_len(&attribute);
    while (left >= sizeof(rtnexthop)) {
        const auto& entry = *reinterpret_cast<const rtnexthop*>(bytes);
        if (entry.rtnh_len < sizeof(rtnexthop) || entry.rtnh_len > left) {
            break;
        }
        RouteAttributes own;
        mnl_attr_parse_payload(bytes + sizeof(rtnexthop), entry.rtnh_len - sizeof(rtnexthop), takeRouteAttribute, &own);
        own.hop.link = static_cast<std::uint32_t>(entry.rtnh_ifindex);
        own.hop.isDead = (entry.rtnh_flags & RTNH_F_DEAD) != 0;
        hops.push_back(own.hop);
        const auto step = std::min<std::size_t>(left, RTNH_ALIGN(entry.rtnh_len));
        bytes += step;
        left -= step;
    }
    return hops;
}

int takeRouteAttribute(const nlattr* attribute, void* data)
{
    auto& attributes = *static_cast<RouteAttributes*>(data);
    switch (mnl_attr_get_type(attribute)) {
    case RTA_TABLE:
        attributes.table = mnl_attr_get_u32(attribute);
        break;
    case RTA_OIF:
        attributes.hop.link = mnl_attr_get_u32(attribute);
        break;
    case RTA_GATEWAY:
    case RTA_VIA:
        attributes.hop.hasGateway = true;
        break;
    case RTA_MULTIPATH:
        attributes.hops = hopsFrom(*attribute);
        break;
    default:
        break;
    }
    return MNL_CB_OK;
}

Route routeFrom(const nlmsghdr& message)
{
    const auto& record = *static_cast<const rtmsg*>(mnl_nlmsg_get_payload(&message));
    RouteAttributes attributes;
    attributes.hop.isDead = (record.rtm_flags & RTNH_F_DEAD) != 0;
    mnl_attr_parse(&message, sizeof(rtmsg), takeRouteAttribute, &attributes);
    Route route;
    route.kind = kindOf(record.rtm_type);
    route.isMainDefault = record.rtm_dst_len == 0 && attributes.table.value_or(record.rtm_table) == RT_TABLE_MAIN;
    route.hops = attributes.hops.empty() ? std::vector{attributes.hop} : attributes.hops;
    return route;
}

} // namespace

std::optional<std::vector<Link>> readLinks()
{
    Request<ifinfomsg> request(RTM_GETLINK, NLM_F_DUMP);
    return dump(request, linkFrom);
}

std::optional<std::vector<Route>> readRoutes()
{
    Request<rtmsg> request(RTM_GETROUTE, NLM_F_DUMP);
    request.record().rtm_family = AF_INET;
    auto routes = dump(request, routeFrom);
    request.record().rtm_family = AF_INET6;
    // A kernel without IPv6 has no such routes.
    const auto more = dump(request, routeFrom);
    if (routes && more) {
        routes->insert(routes->end(), more->begin(), more->end());
    }
    return routes;
}

std::optional<Route> readRouteTo(const AddressBytes& address)
{
    Request<rtmsg> request(RTM_GETROUTE, NLM_F_ACK);
    request.record().rtm_family = address.size() == 4 ? AF_INET : AF_INET6;
    request.record().rtm_dst_len = static_cast<unsigned char>(address.size() * 8);
    mnl_attr_put(&request.header(), RTA_DST, address.size(), address.data());
    std::optional<Route> route;
    const int error = ask(request.header(), [&](const nlmsghdr& message) { route = routeFrom(message); });
    if (route) {
        return route;
    }
    const bool isRefusal = error == ENETUNREACH || error == EHOSTUNREACH || error == EACCES || error == EINVAL;
    return isRefusal ? std::optional(Route{RouteKind::Refusing, false, {}}) : std::nullopt;
}

NetlinkMonitor::NetlinkMonitor()
    : m_descriptor(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE))
{
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    if (isOpen() && bind(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(m_descriptor);
        m_descriptor = -1;
    }
}

NetlinkMonitor::~NetlinkMonitor()
{
    if (isOpen()) {
        close(m_descriptor);
    }
}

// Events that were lost count as one that was read.
void NetlinkMonitor::drain() const
{
    std::array<char, 8192> bytes{};
    while (recv(m_descriptor, bytes.data(), bytes.size(), 0) >= 0 || errno == ENOBUFS || errno == EINTR) {
    }
}

} // namespace vorrano::linux_platform
