#include "web/Reachability.h"

#include "support/World.h"

#include <any>
#include <map>

using namespace vorrano;
using web::NetworkStatus;
using web::Reachability;

namespace {

struct ReachabilityTest : testing::Test {
    support::World world;

    [[nodiscard]] NetworkStatus statusFor(std::optional<platform::ReachabilityFlags> flags)
    {
        world.reachability.setFlags(flags);
        return Reachability::reachabilityForInternetConnection()->currentReachabilityStatus();
    }
};

struct StatusCase {
    const char* name;
    platform::ReachabilityFlags flags;
    int network;
    int localWiFi;
};

class StatusOfFlags : public testing::TestWithParam<StatusCase> {};

} // namespace

TEST_P(StatusOfFlags, IsTheTables)
{
    EXPECT_EQ(static_cast<int>(web::statusOfNetworkFlags(GetParam().flags)), GetParam().network);
    EXPECT_EQ(static_cast<int>(web::statusOfLocalWiFiFlags(GetParam().flags)), GetParam().localWiFi);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StatusOfFlags,
    testing::Values(StatusCase{"None", 0, 0, 0},
                    StatusCase{"AllButReachable", 1 + 4 + 8 + 16 + 32 + 65536 + 131072, 0, 0},
                    StatusCase{"ReachableAlone", 2, 1, 0}, StatusCase{"ConnectionRequired", 2 + 4, 0, 0},
                    StatusCase{"ConnectionOnTraffic", 2 + 4 + 8, 1, 0},
                    StatusCase{"ConnectionOnDemand", 2 + 4 + 32, 1, 0},
                    StatusCase{"ConnectionOnTrafficWithIntervention", 2 + 4 + 8 + 16, 0, 0},
                    StatusCase{"ConnectionOnDemandWithIntervention", 2 + 4 + 32 + 16, 0, 0},
                    StatusCase{"InterventionWhereNoConnectionIsRequired", 2 + 8 + 16, 1, 0},
                    StatusCase{"InterventionAlone", 2 + 16, 1, 0}, StatusCase{"Transient", 2 + 1, 1, 0},
                    StatusCase{"LocalAddress", 2 + 65536, 1, 0}, StatusCase{"Direct", 2 + 131072, 2, 1},
                    StatusCase{"DirectThoughAConnectionIsRequired", 2 + 4 + 131072, 2, 1},
                    StatusCase{"DirectButNotReachable", 131072, 0, 0}),
    [](const auto& given) { return given.param.name; });

TEST(FlagLine, ShowsEachBitInItsPlaceAndTheDirectOneTwice)
{
    EXPECT_EQ(web::flagLine(0, "label"), "Reachability Flag Status: -- ------- label");
    EXPECT_EQ(web::flagLine(2, "label"), "Reachability Flag Status: -R ------- label");
    EXPECT_EQ(web::flagLine(1, "label"), "Reachability Flag Status: -- t------ label");
    EXPECT_EQ(web::flagLine(4, "label"), "Reachability Flag Status: -- -c----- label");
    EXPECT_EQ(web::flagLine(8, "label"), "Reachability Flag Status: -- --C---- label");
    EXPECT_EQ(web::flagLine(16, "label"), "Reachability Flag Status: -- ---i--- label");
    EXPECT_EQ(web::flagLine(32, "label"), "Reachability Flag Status: -- ----D-- label");
    EXPECT_EQ(web::flagLine(65536, "label"), "Reachability Flag Status: -- -----l- label");
    EXPECT_EQ(web::flagLine(131072, "label"), "Reachability Flag Status: W- ------d label");
    EXPECT_EQ(web::flagLine(1 + 2 + 4 + 8 + 16 + 32 + 65536 + 131072, "networkStatusForFlags"),
              "Reachability Flag Status: WR tcCiDld networkStatusForFlags");
}

TEST_F(ReachabilityTest, Flags2AloneGive1) { EXPECT_EQ(statusFor(2), NetworkStatus::ReachableByLocalNetwork); }

TEST_F(ReachabilityTest, Flags2And4Give0) { EXPECT_EQ(statusFor(2 + 4), NetworkStatus::NotReachable); }

TEST_F(ReachabilityTest, Flags2And4And8Give1)
{
    EXPECT_EQ(statusFor(2 + 4 + 8), NetworkStatus::ReachableByLocalNetwork);
}

TEST_F(ReachabilityTest, Flags2And4And8And16Give0)
{
    EXPECT_EQ(statusFor(2 + 4 + 8 + 16), NetworkStatus::NotReachable);
}

TEST_F(ReachabilityTest, Flags2And131072Give2) { EXPECT_EQ(statusFor(2 + 131072), NetworkStatus::ReachableDirectly); }

TEST_F(ReachabilityTest, FlagsThatCantBeHadGive0AndNoLine)
{
    EXPECT_EQ(statusFor(std::nullopt), NetworkStatus::NotReachable);
    EXPECT_TRUE(world.log.lines().empty());
}

TEST_F(ReachabilityTest, LogsTheFlagsWithTheNameOfTheirReading)
{
    world.reachability.setFlags(2 + 131072);
    const auto internet = Reachability::reachabilityForInternetConnection();
    const auto localWiFi = Reachability::reachabilityForLocalWiFi();

    EXPECT_EQ(internet->currentReachabilityStatus(), NetworkStatus::ReachableDirectly);
    EXPECT_EQ(localWiFi->currentReachabilityStatus(), NetworkStatus::ReachableByLocalNetwork);

    EXPECT_EQ(world.log.lines(),
              (std::vector<std::string>{"Reachability Flag Status: WR ------d networkStatusForFlags",
                                        "Reachability Flag Status: WR ------d localWiFiStatusForFlags"}));
}

TEST_F(ReachabilityTest, AsksAboutTheAddressesOfItsKinds)
{
    const auto internet = Reachability::reachabilityForInternetConnection();
    const auto localWiFi = Reachability::reachabilityForLocalWiFi();
    const auto host = Reachability::reachabilityWithHostName("host.example");
    platform::SocketAddress socketAddress;
    socketAddress.port = 80;
    socketAddress.address = {192, 0, 2, 7};
    const auto address = Reachability::reachabilityWithAddress(socketAddress);

    EXPECT_EQ(world.reachability.created(),
              (std::vector<std::string>{"0.0.0.0:0", "169.254.0.0:0", "host.example", "192.0.2.7:80"}));
    EXPECT_FALSE(internet->alwaysReturnLocalWiFiStatus());
    EXPECT_TRUE(localWiFi->alwaysReturnLocalWiFiStatus());
    EXPECT_FALSE(host->alwaysReturnLocalWiFiStatus());
    EXPECT_FALSE(address->alwaysReturnLocalWiFiStatus());
}

TEST_F(ReachabilityTest, IsNullWhereThePlatformRefuses)
{
    world.reachability.refuseCreation();

    EXPECT_EQ(Reachability::reachabilityForInternetConnection(), nullptr);
    EXPECT_EQ(Reachability::reachabilityForLocalWiFi(), nullptr);
    EXPECT_EQ(Reachability::reachabilityWithHostName("host.example"), nullptr);
    EXPECT_EQ(Reachability::reachabilityWithAddress({}), nullptr);
}

TEST_F(ReachabilityTest, ReleasesItsReferenceAtItsEnd)
{
    auto reachability = Reachability::reachabilityForInternetConnection();
    ASSERT_EQ(world.reachability.references(), 1);

    reachability.reset();

    EXPECT_EQ(world.reachability.references(), 0);
}

TEST_F(ReachabilityTest, TellsWhetherAConnectionIsRequired)
{
    const auto reachability = Reachability::reachabilityForInternetConnection();

    world.reachability.setFlags(2);
    EXPECT_FALSE(reachability->connectionRequired());
    world.reachability.setFlags(2 + 4);
    EXPECT_TRUE(reachability->connectionRequired());
    world.reachability.setFlags(std::nullopt);
    EXPECT_FALSE(reachability->connectionRequired());
}

TEST_F(ReachabilityTest, PostsANotificationForEachChangeWhileTheNotifierRuns)
{
    const auto observer = std::make_shared<int>();
    std::vector<const void*> senders;
    const auto subscription = world.notificationCentre.observe(
        "kNetworkReachabilityChangedNotification", observer,
        [&senders](const platform::Notification& notification) { senders.push_back(notification.sender); });
    const auto reachability = Reachability::reachabilityForInternetConnection();

    world.reachability.change(0);
    world.run();
    EXPECT_TRUE(senders.empty());

    EXPECT_TRUE(reachability->startNotifier());
    world.reachability.change(2);
    world.run();
    EXPECT_EQ(senders, std::vector<const void*>{reachability.get()});

    reachability->stopNotifier();
    world.reachability.change(0);
    world.run();
    EXPECT_EQ(senders.size(), 1U);
}

TEST_F(ReachabilityTest, StartsTheNotifierOnlyWhenBothStepsSucceed)
{
    const auto reachability = Reachability::reachabilityForInternetConnection();

    world.reachability.refuseCallback();
    EXPECT_FALSE(reachability->startNotifier());
    EXPECT_EQ(world.reachability.scheduled(), 0);
    world.reachability.refuseCallback(false);
    world.reachability.refuseSchedule();
    EXPECT_FALSE(reachability->startNotifier());
    world.reachability.refuseSchedule(false);
    EXPECT_TRUE(reachability->startNotifier());
}

TEST_F(ReachabilityTest, StopsTheNotifierAtItsEnd)
{
    const auto observer = std::make_shared<int>();
    int told = 0;
    const auto subscription = world.notificationCentre.observe(web::kNetworkReachabilityChangedNotification, observer,
                                                               [&told](const platform::Notification&) { ++told; });
    auto reachability = Reachability::reachabilityForInternetConnection();
    ASSERT_TRUE(reachability->startNotifier());
    world.reachability.change(0);

    reachability.reset();
    world.run();

    EXPECT_EQ(told, 0);
    EXPECT_EQ(world.reachability.scheduled(), 0);
}

TEST_F(ReachabilityTest, WithNoNetworkInterfaceUpTheNetworkIsNotReachable)
{
    world.reachability.setFlags(0);

    EXPECT_TRUE(web::isNetworkConnectionNotReachable());
}

TEST_F(ReachabilityTest, IsReachableByEitherStatusButNone)
{
    world.reachability.setFlags(2);
    EXPECT_FALSE(web::isNetworkConnectionNotReachable());
    world.reachability.setFlags(2 + 131072);
    EXPECT_FALSE(web::isNetworkConnectionNotReachable());
    EXPECT_EQ(world.reachability.created(), (std::vector<std::string>{"0.0.0.0:0", "0.0.0.0:0"}));
    EXPECT_EQ(world.reachability.references(), 0);
}

TEST_F(ReachabilityTest, IsNotReachableWhereThatCantBeTold)
{
    world.reachability.setFlags(std::nullopt);
    EXPECT_TRUE(web::isNetworkConnectionNotReachable());
    world.reachability.setFlags(2);
    world.reachability.refuseCreation();
    EXPECT_TRUE(web::isNetworkConnectionNotReachable());
}
