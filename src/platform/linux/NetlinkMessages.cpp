#include "platform/linux/NetlinkMessages.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <libmnl/libmnl.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace vorrano::linux_platform {

namespace {

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

template <class Record>
const Record* recordOf(const nlmsghdr& message)
{
    const bool isWhole = mnl_nlmsg_get_payload_len(&message) >= sizeof(Record);
    return isWhole ? static_cast<const Record*>(mnl_nlmsg_get_payload(&message)) : nullptr;
}

std::uint32_t numberOr(std::uint32_t otherwise, const nlattr& attribute)
{
    return mnl_attr_get_payload_len(&attribute) >= sizeof otherwise ? mnl_attr_get_u32(&attribute) : otherwise;
}

struct RouteAttributes {
    std::uint32_t table = RT_TABLE_UNSPEC;
    Hop hop;
    std::vector<Hop> hops;
};

int takeHopAttribute(const nlattr* attribute, void* data)
{
    auto& hop = *static_cast<Hop*>(data);
    switch (mnl_attr_get_type(attribute)) {
    case RTA_OIF:
        hop.link = numberOr(hop.link, *attribute);
        break;
    case RTA_GATEWAY:
    case RTA_VIA:
        hop.hasGateway = true;
        break;
    default:
        break;
    }
    return MNL_CB_OK;
}

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
        Hop hop;
        mnl_attr_parse_payload(bytes + sizeof(rtnexthop), entry.rtnh_len - sizeof(rtnexthop), takeHopAttribute, &hop);
        hop.link = static_cast<std::uint32_t>(entry.rtnh_ifindex);
        hop.isDead = (entry.rtnh_flags & RTNH_F_DEAD) != 0;
        hops.push_back(hop);
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
        attributes.table = numberOr(attributes.table, *attribute);
        break;
    case RTA_MULTIPATH:
        attributes.hops = hopsFrom(*attribute);
        break;
    default:
        return takeHopAttribute(attribute, &attributes.hop);
    }
    return MNL_CB_OK;
}

} // namespace

bool areWholeMessages(std::span<const char> bytes)
{
    while (bytes.size() >= sizeof(nlmsghdr)) {
        nlmsghdr header{};
        std::memcpy(&header, bytes.data(), sizeof header);
        // Its length as such first: the largest ones have nothing to be padded to.
        if (header.nlmsg_len < sizeof header || header.nlmsg_len > bytes.size() ||
            MNL_ALIGN(header.nlmsg_len) > bytes.size()) {
            return false;
        }
        bytes = bytes.subspan(MNL_ALIGN(header.nlmsg_len));
    }
    return bytes.empty();
}

std::optional<Link> linkFrom(const nlmsghdr& message)
{
    const auto* record = recordOf<ifinfomsg>(message);
    if (record == nullptr) {
        return std::nullopt;
    }
    const bool isUp = (record->ifi_flags & IFF_UP) != 0 && (record->ifi_flags & IFF_LOWER_UP) != 0;
    return Link{static_cast<std::uint32_t>(record->ifi_index), isUp, (record->ifi_flags & IFF_LOOPBACK) != 0};
}

std::optional<Route> routeFrom(const nlmsghdr& message)
{
    const auto* record = recordOf<rtmsg>(message);
    if (record == nullptr) {
        return std::nullopt;
    }
    RouteAttributes attributes;
    attributes.table = record->rtm_table;
    attributes.hop.isDead = (record->rtm_flags & RTNH_F_DEAD) != 0;
    mnl_attr_parse(&message, sizeof(rtmsg), takeRouteAttribute, &attributes);
    Route route;
    route.kind = kindOf(record->rtm_type);
    route.isMainDefault = record->rtm_dst_len == 0 && attributes.table == RT_TABLE_MAIN;
    route.hops = attributes.hops.empty() ? std::vector{attributes.hop} : attributes.hops;
    return route;
}

} // namespace vorrano::linux_platform
