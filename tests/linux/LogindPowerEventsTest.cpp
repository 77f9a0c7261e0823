#include "platform/linux/LogindPowerEvents.h"
#include "linux/EventLoop.h"
#include "linux/HeldQueue.h"
#include "linux/MockedLogind.h"
#include "linux/PrivateBus.h"

#include <memory>
#include <stdexcept>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorrano {

using linux_platform::LogindPowerEvents;
using support::spinUntil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QString kService = "org.freedesktop.login1";

void atOnce(const platform::Task& task) { task(); }

} // namespace

class Logind : public testing::Test {
protected:
    [[nodiscard]] bool isDelaying() const { return logind.inhibitors() == std::vector<std::string>{"sleep delay"}; }

    // Subscribes to both, and waits until sleep is being delayed.
    void subscribe()
    {
        willSleep = power->onWillSleep([this] { told.emplace_back("sleep"); });
        didWake = power->onDidWake([this] { told.emplace_back("wake"); });
        ASSERT_TRUE(spinUntil([this] { return isDelaying(); }));
    }

    support::MockedLogind logind;
    std::vector<std::string> told;
    std::unique_ptr<LogindPowerEvents> power = std::make_unique<LogindPowerEvents>(atOnce);
    platform::Subscription willSleep;
    platform::Subscription didWake;
};

TEST_F(Logind, DelaysSleepWhileSomebodyListens)
{
    EXPECT_THAT(logind.inhibitors(), IsEmpty());

    subscribe();

    EXPECT_THAT(logind.inhibitors(), ElementsAre("sleep delay"));
}

TEST_F(Logind, LetsTheComputerSleepOnceTheHandlersHaveReturned)
{
    bool delaysDuringHandler = false;
    const auto observer = power->onWillSleep([&] {
        delaysDuringHandler = !spinUntil([&] { return logind.inhibitors().empty(); }, std::chrono::milliseconds(100));
    });
    subscribe();

    logind.sendPrepareForSleep(true);

    EXPECT_TRUE(spinUntil([&] { return logind.inhibitors().empty(); }));
    EXPECT_THAT(told, ElementsAre("sleep"));
    EXPECT_TRUE(delaysDuringHandler);
}

TEST_F(Logind, TellsOfTheWakingAndDelaysTheNextSleep)
{
    subscribe();
    logind.sendPrepareForSleep(true);
    ASSERT_TRUE(spinUntil([&] { return logind.inhibitors().empty(); }));

    logind.sendPrepareForSleep(false);

    EXPECT_TRUE(spinUntil([&] { return isDelaying(); }));
    EXPECT_THAT(told, ElementsAre("sleep", "wake"));
}

TEST_F(Logind, TellsEvenWhenItMayNotDelay)
{
    logind.refuseInhibitors();
    willSleep = power->onWillSleep([this] { told.emplace_back("sleep"); });
    ASSERT_TRUE(spinUntil([&] { return logind.requests() == 1; }));

    logind.sendPrepareForSleep(true);

    EXPECT_TRUE(spinUntil([&] { return !told.empty(); }));
}

TEST_F(Logind, GivesADelayBackThatIsGrantedAfterSleepBegan)
{
    logind.beginSleepBeforeGranting();

    willSleep = power->onWillSleep([this] { told.emplace_back("sleep"); });

    EXPECT_TRUE(spinUntil([&] { return !told.empty() && logind.inhibitors().empty(); }));
    EXPECT_EQ(logind.requests(), 1);
    EXPECT_THAT(told, ElementsAre("sleep"));
}

TEST_F(Logind, TellsItsSubscribersInTheOrderInWhichTheyCame)
{
    subscribe();
    const auto secondToSleep = power->onWillSleep([this] { told.emplace_back("sleep again"); });
    const auto secondToWake = power->onDidWake([this] { told.emplace_back("wake again"); });

    logind.sendPrepareForSleep(true);
    logind.sendPrepareForSleep(false);

    EXPECT_TRUE(spinUntil([&] { return told.size() == 4; }));
    EXPECT_THAT(told, ElementsAre("sleep", "sleep again", "wake", "wake again"));
}

TEST_F(Logind, KeepsSleepWaitingForADeliveryThatIsHeldBack)
{
    support::HeldQueue pause;
    power = std::make_unique<LogindPowerEvents>([&](platform::Task task) { pause.async(std::move(task)); });
    subscribe();

    logind.sendPrepareForSleep(true);
    logind.sendPrepareForSleep(false);
    ASSERT_TRUE(spinUntil([&] { return pause.size() == 2; }));
    EXPECT_THAT(told, IsEmpty());
    EXPECT_TRUE(isDelaying());
    pause.run();

    EXPECT_THAT(told, ElementsAre("sleep", "wake"));
    EXPECT_TRUE(spinUntil([&] { return isDelaying(); }));
}

TEST_F(Logind, LetsTheComputerSleepWhenAHandlerFails)
{
    support::HeldQueue queue;
    power = std::make_unique<LogindPowerEvents>([&](platform::Task task) { queue.async(std::move(task)); });
    const auto failing = power->onWillSleep([] { throw std::runtime_error("no"); });
    subscribe();

    logind.sendPrepareForSleep(true);
    ASSERT_TRUE(spinUntil([&] { return queue.size() == 1; }));
    EXPECT_THROW(queue.run(), std::runtime_error);

    EXPECT_TRUE(spinUntil([&] { return logind.inhibitors().empty(); }));
}

TEST_F(Logind, TellsAnEndedSubscriptionNothing)
{
    subscribe();
    platform::Subscription later;
    const auto first = power->onWillSleep([&] { later.reset(); });
    later = power->onWillSleep([this] { told.emplace_back("ended"); });
    willSleep.reset();

    logind.sendPrepareForSleep(true);

    EXPECT_TRUE(spinUntil([&] { return logind.inhibitors().empty(); }));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(Logind, DropsItsDelayWhenItGoes)
{
    subscribe();

    power.reset();

    EXPECT_TRUE(spinUntil([&] { return logind.inhibitors().empty(); }));
}

TEST_F(Logind, LeavesNothingDangerousBehindWhenItGoes)
{
    support::HeldQueue queue;
    power = std::make_unique<LogindPowerEvents>([&](platform::Task task) { queue.async(std::move(task)); });
    subscribe();
    logind.sendPrepareForSleep(true);
    ASSERT_TRUE(spinUntil([&] { return queue.size() == 1; }));

    power.reset();
    queue.run();
    willSleep.reset();

    EXPECT_THAT(told, IsEmpty());
}

TEST(WithoutLogind, NothingIsToldAndNothingIsStarted)
{
    auto& bus = support::PrivateBus::instance();
    int calls = 0;
    LogindPowerEvents power(atOnce);

    const auto subscription = power.onWillSleep([&] { ++calls; });

    EXPECT_FALSE(spinUntil([&] { return bus.wasAskedToStart(kService); }, std::chrono::milliseconds(300)));
    EXPECT_EQ(calls, 0);
    // The bus would have started it, had somebody asked.
    QDBusConnection::systemBus().interface()->startService(kService);
    EXPECT_TRUE(bus.wasAskedToStart(kService));
}

} // namespace vorrano
