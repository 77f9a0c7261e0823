#include "platform/linux/NetlinkMessages.h"

#include <array>
#include <cstring>
#include <string>

#include <gtest/gtest.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace vorrano {

using linux_platform::areWholeMessages;
using linux_platform::linkFrom;
using linux_platform::routeFrom;
using linux_platform::RouteKind;

namespace {

template <class Value>
std::string bytesOf(const Value& value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string attribute(int type, const std::string& payload)
{
    auto bytes =
        bytesOf(rtattr{static_cast<unsigned short>(RTA_LENGTH(payload.size())), static_cast<unsigned short>(type)});
    bytes += payload;
    bytes.resize(RTA_ALIGN(bytes.size()));
    return bytes;
}

std::string number(std::uint32_t value) { return bytesOf(value); }

std::string hop(int link, const std::string& attributes = {})
{
    rtnexthop record{};
    record.rtnh_len = static_cast<unsigned short>(sizeof record + attributes.size());
    record.rtnh_ifindex = link;
    return bytesOf(record) + attributes;
}

// A default route of the main table.
rtmsg defaultRoute()
{
    rtmsg record{};
    record.rtm_family = AF_INET;
    record.rtm_table = RT_TABLE_MAIN;
    record.rtm_type = RTN_UNICAST;
    return record;
}

// A message with that payload, and zeros behind it that are none of it.
class Message {
public:
    explicit Message(const std::string& payload)
    {
        m_header.nlmsg_len = static_cast<std::uint32_t>(NLMSG_LENGTH(payload.size()));
        std::memcpy(m_bytes.data(), &m_header, sizeof m_header);
        std::memcpy(m_bytes.data() + NLMSG_HDRLEN, payload.data(), payload.size());
    }
    [[nodiscard]] const nlmsghdr& operator*() const { return *reinterpret_cast<const nlmsghdr*>(m_bytes.data()); }

private:
    nlmsghdr m_header{};
    alignas(nlmsghdr) std::array<char, 4096> m_bytes{};
};

std::string withLength(std::uint32_t length, std::size_t payload)
{
    nlmsghdr header{};
    header.nlmsg_len = length;
    return bytesOf(header) + std::string(payload, '\0');
}

} // namespace

TEST(NetlinkMessages, AreWholeWhenEachHasWhatItsLengthSays)
{
    EXPECT_TRUE(areWholeMessages({}));
    EXPECT_TRUE(areWholeMessages(withLength(16, 0)));
    EXPECT_TRUE(areWholeMessages(withLength(20, 4) + withLength(16, 0)));
    EXPECT_TRUE(areWholeMessages(withLength(18, 4) + withLength(16, 0)));
}

TEST(NetlinkMessages, AreNotWholeWhereALengthIsNoneOrLeadsBehindTheBytes)
{
    EXPECT_FALSE(areWholeMessages(std::string(15, '\0')));
    EXPECT_FALSE(areWholeMessages(withLength(15, 0)));
    EXPECT_FALSE(areWholeMessages(withLength(17, 0)));
    EXPECT_FALSE(areWholeMessages(withLength(16, 0) + withLength(20, 3)));
    EXPECT_FALSE(areWholeMessages(withLength(0xFF00026D, 64)));
    EXPECT_FALSE(areWholeMessages(withLength(0xFFFFFFFF, 64)));
    EXPECT_FALSE(areWholeMessages(withLength(16, 3)));
}

TEST(NetlinkMessages, AreNotWholeWithoutThePaddingOfTheLast)
{
    EXPECT_FALSE(areWholeMessages(withLength(18, 2)));
    EXPECT_FALSE(areWholeMessages(withLength(16, 0) + withLength(19, 3)));
}

TEST(NetlinkMessage, SaysWhetherALinkIsUpAndTheLoopback)
{
    ifinfomsg record{};
    record.ifi_index = 3;
    record.ifi_flags = IFF_UP | IFF_LOWER_UP | IFF_LOOPBACK;

    const auto link = linkFrom(*Message(bytesOf(record)));

    ASSERT_TRUE(link.has_value());
    EXPECT_EQ(link->index, 3U);
    EXPECT_TRUE(link->isUp);
    EXPECT_TRUE(link->isLoopback);
}

TEST(NetlinkMessage, SaysWhereARouteLeads)
{
    const auto route = routeFrom(
        *Message(bytesOf(defaultRoute()) + attribute(RTA_OIF, number(7)) + attribute(RTA_GATEWAY, number(0x0101A8C0))));

    ASSERT_TRUE(route.has_value());
    EXPECT_EQ(route->kind, RouteKind::Forwarded);
    EXPECT_TRUE(route->isMainDefault);
    ASSERT_EQ(route->hops.size(), 1U);
    EXPECT_EQ(route->hops[0].link, 7U);
    EXPECT_TRUE(route->hops[0].hasGateway);
}

TEST(NetlinkMessage, NamesEachHopOfARoute)
{
    const auto hops = hop(4) + hop(5, attribute(RTA_GATEWAY, number(1)));

    const auto route = routeFrom(*Message(bytesOf(defaultRoute()) + attribute(RTA_MULTIPATH, hops)));

    ASSERT_TRUE(route.has_value());
    ASSERT_EQ(route->hops.size(), 2U);
    EXPECT_EQ(route->hops[0].link, 4U);
    EXPECT_FALSE(route->hops[0].hasGateway);
    EXPECT_EQ(route->hops[1].link, 5U);
    EXPECT_TRUE(route->hops[1].hasGateway);
}

TEST(NetlinkMessage, ThatIsTooShortForItsRecordSaysNothing)
{
    for (std::size_t length = 0; length < sizeof(ifinfomsg); ++length) {
        EXPECT_EQ(linkFrom(*Message(std::string(length, '\0'))).has_value(), false) << length;
    }
    for (std::size_t length = 0; length < sizeof(rtmsg); ++length) {
        EXPECT_EQ(routeFrom(*Message(std::string(length, '\0'))).has_value(), false) << length;
    }
}

TEST(NetlinkMessage, SaysNothingByAnAttributeThatIsTooShortForItsNumber)
{
    const auto route = routeFrom(*Message(bytesOf(defaultRoute()) + attribute(RTA_OIF, "\x07") +
                                          attribute(RTA_TABLE, "\x01\x01") + attribute(RTA_TABLE, "")));

    ASSERT_TRUE(route.has_value());
    EXPECT_TRUE(route->isMainDefault);
    ASSERT_EQ(route->hops.size(), 1U);
    EXPECT_EQ(route->hops[0].link, 0U);
}

TEST(NetlinkMessage, KnowsNoHopsInsideAHop)
{
    std::string hops = hop(1);
    for (int depth = 0; depth < 100; ++depth) {
        hops = hop(2, attribute(RTA_MULTIPATH, hops) + attribute(RTA_OIF, number(9)));
    }

    const auto route = routeFrom(*Message(bytesOf(defaultRoute()) + attribute(RTA_MULTIPATH, hops)));

    ASSERT_TRUE(route.has_value());
    ASSERT_EQ(route->hops.size(), 1U);
    EXPECT_EQ(route->hops[0].link, 2U);
}

TEST(NetlinkMessage, EndsItsHopsAtOneThatIsLongerThanWhatIsLeft)
{
    auto tooLong = hop(5);
    tooLong[0] = 100;

    const auto route = routeFrom(*Message(bytesOf(defaultRoute()) + attribute(RTA_MULTIPATH, hop(4) + tooLong)));

    ASSERT_TRUE(route.has_value());
    ASSERT_EQ(route->hops.size(), 1U);
    EXPECT_EQ(route->hops[0].link, 4U);
}

} // namespace vorrano
