#include "platform/linux/Netlink.h"

#include "platform/linux/NetlinkMessages.h"

#include <array>
#include <cerrno>
#include <functional>
#include <memory>
#include <span>
#include <utility>

#include <libmnl/libmnl.h>
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
        if (!areWholeMessages(std::span(answer).first(static_cast<std::size_t>(size)))) {
            return EBADMSG;
        }
        outcome = mnl_cb_run(answer.data(), static_cast<std::size_t>(size), request.nlmsg_seq, port, takeOne,
                             const_cast<Take*>(&take));
    }
    return outcome == MNL_CB_STOP ? 0 : errno;
}

// A dump that changed while it was made comes with EINTR.
template <typename Value, typename Record>
std::optional<std::vector<Value>> dump(Request<Record>& request, std::optional<Value> (*read)(const nlmsghdr&))
{
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::vector<Value> values;
        const int error = ask(request.header(), [&](const nlmsghdr& message) {
            if (auto value = read(message)) {
                values.push_back(*std::move(value));
            }
        });
        if (error == 0) {
            return values;
        }
        if (error != EINTR) {
            break;
        }
    }
    return std::nullopt;
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
