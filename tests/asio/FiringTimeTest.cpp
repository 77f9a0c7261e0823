#include "platform/asio/TimerClock.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using vorrano::asio_platform::firingTime;
using vorrano::asio_platform::nextDueTime;
using TimePoint = vorrano::asio_platform::TimerClock::TimePoint;

TEST(FiringTime, IsTheDueTimeWithoutLeeway)
{
    EXPECT_EQ(firingTime(TimePoint(7ns), 0ns), TimePoint(7ns));
    EXPECT_EQ(firingTime(TimePoint(7ns), -5ns), TimePoint(7ns));
}

TEST(FiringTime, IsTheNextMultipleOfTheLeeway)
{
    EXPECT_EQ(firingTime(TimePoint(10ms), 5ms), TimePoint(10ms));
    EXPECT_EQ(firingTime(TimePoint(10ms + 1ns), 5ms), TimePoint(15ms));
    EXPECT_EQ(firingTime(TimePoint(14ms), 5ms), TimePoint(15ms));
    EXPECT_EQ(firingTime(TimePoint::max(), 200ms), TimePoint::max());
}

TEST(FiringTime, IsNeverEarlyAndNeverLateByTheLeewayOrMore)
{
    for (nanoseconds due = 0ns; due < 50us; due += 7ns) {
        const auto fires = firingTime(TimePoint(due), 1us);
        ASSERT_GE(fires, TimePoint(due));
        ASSERT_LT(fires, TimePoint(due + 1us));
    }
}

TEST(NextDueTime, KeepsToTheGridOfTheIntervalWhateverTheDelay)
{
    EXPECT_EQ(nextDueTime(TimePoint(20ms), 10ms, TimePoint(5ms)), TimePoint(20ms));
    EXPECT_EQ(nextDueTime(TimePoint(20ms), 10ms, TimePoint(20ms)), TimePoint(30ms));
    EXPECT_EQ(nextDueTime(TimePoint(20ms), 10ms, TimePoint(29ms)), TimePoint(30ms));
    EXPECT_EQ(nextDueTime(TimePoint(20ms), 10ms, TimePoint(65ms)), TimePoint(70ms));
    EXPECT_EQ(nextDueTime(TimePoint(20ms), nanoseconds::max(), TimePoint(21ms)), TimePoint::max());
}

} // namespace
