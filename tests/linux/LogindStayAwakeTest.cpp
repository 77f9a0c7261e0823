#include "platform/linux/LogindStayAwake.h"
#include "linux/EventLoop.h"
#include "linux/MockedLogind.h"
#include "linux/PrivateBus.h"

#include <chrono>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::LogindStayAwake;
using support::spinUntil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kHeld = "sleep:idle:handle-lid-switch:shutdown block";

} // namespace

// None of these runs the event loop while the computer is to stay awake, as an upload does not either.
class StayAwake : public testing::Test {
protected:
    support::MockedLogind logind;
    LogindStayAwake awake;
};

TEST_F(StayAwake, BlocksSleepIdlenessTheLidSwitchAndShutdown)
{
    ASSERT_THAT(logind.inhibitors(), IsEmpty());

    const auto token = awake.stayAwake("Water is being boiled");

    EXPECT_THAT(logind.inhibitors(), ElementsAre(kHeld));
    EXPECT_THAT(logind.reasons(), ElementsAre("Vorrano Setup: Water is being boiled"));
}

TEST_F(StayAwake, HoldsOnAfterLogindHasAnswered)
{
    const auto token = awake.stayAwake("Water is being boiled");

    // Each answer comes after that to the inhibitor, and the mock sees between two questions what was given back.
    for (int question = 0; question < 5; ++question) {
        EXPECT_THAT(logind.inhibitors(), ElementsAre(kHeld));
    }
}

TEST_F(StayAwake, GivesTheInhibitorBackWithItsToken)
{
    auto token = awake.stayAwake("Water is being boiled");
    ASSERT_THAT(logind.inhibitors(), ElementsAre(kHeld));

    token.reset();

    EXPECT_TRUE(spinUntil([&] { return logind.inhibitors().empty(); }));
}

TEST_F(StayAwake, GivesAnInhibitorBackThatIsGrantedAfterItsTokenHasGone)
{
    awake.stayAwake("Water is being boiled").reset();

    EXPECT_TRUE(spinUntil([&] { return logind.requests() == 1 && logind.inhibitors().empty(); }));
}

TEST_F(StayAwake, KeepsTheInhibitorOfOneTokenWhenAnotherGoes)
{
    auto first = awake.stayAwake("Water is being boiled");
    const auto second = awake.stayAwake("Tea is being brewed");
    ASSERT_THAT(logind.inhibitors(), ElementsAre(kHeld, kHeld));

    first.reset();

    EXPECT_TRUE(spinUntil([&] { return logind.inhibitors().size() < 2; }));
    EXPECT_THAT(logind.reasons(), ElementsAre("Vorrano Setup: Tea is being brewed"));
}

TEST_F(StayAwake, DoesNothingWhenLogindRefuses)
{
    logind.refuseInhibitors();

    auto token = awake.stayAwake("Water is being boiled");
    EXPECT_THAT(logind.inhibitors(), IsEmpty());
    token.reset();

    EXPECT_EQ(logind.requests(), 1);
}

TEST(StayAwakeWithoutLogind, DoesNothingAndStartsNothing)
{
    auto& bus = support::PrivateBus::instance();
    const QString service = QStringLiteral("org.freedesktop.login1");
    bus.forgetThatItWasAskedToStart(service);

    auto token = LogindStayAwake().stayAwake("Water is being boiled");

    EXPECT_FALSE(spinUntil([&] { return bus.wasAskedToStart(service); }, std::chrono::milliseconds(300)));
    token.reset();
    EXPECT_FALSE(QDBusConnection::systemBus().interface()->isServiceRegistered(service).value());
}

} // namespace vorrano
