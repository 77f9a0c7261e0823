#include "platform/Subscription.h"

#include <optional>
#include <utility>

namespace vorrano::platform {
namespace {

class SubscriptionTest : public ::testing::Test {
protected:
    int ends = 0;
    Subscription made = Subscription([this] { ++ends; });
};

TEST_F(SubscriptionTest, EndsWhenItIsDropped)
{
    {
        const auto dropped = std::move(made);
        EXPECT_EQ(ends, 0);
    }

    EXPECT_EQ(ends, 1);
}

TEST_F(SubscriptionTest, EndsOnceOnly)
{
    made.reset();
    made.reset();

    EXPECT_EQ(ends, 1);
}

TEST_F(SubscriptionTest, AMovedFromOneEndsNothing)
{
    auto moved = std::move(made);

    made.reset(); // NOLINT(bugprone-use-after-move): what is left is an empty subscription
    EXPECT_EQ(ends, 0);
    moved.reset();

    EXPECT_EQ(ends, 1);
}

TEST_F(SubscriptionTest, OneThatIsReplacedEndsAtOnce)
{
    int otherEnds = 0;

    made = Subscription([&] { ++otherEnds; });
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(otherEnds, 0);
    made = Subscription();

    EXPECT_EQ(ends, 1);
    EXPECT_EQ(otherEnds, 1);
}

TEST_F(SubscriptionTest, AssignedToItselfItStands)
{
    auto& same = made;

    made = std::move(same);

    EXPECT_EQ(ends, 0);
    made.reset();
    EXPECT_EQ(ends, 1);
}

TEST_F(SubscriptionTest, OneThatIsKeptEndsNothing)
{
    made.keep();
    made.reset();

    EXPECT_EQ(ends, 0);
}

TEST_F(SubscriptionTest, AnEmptyOneEndsNothing)
{
    Subscription empty;

    EXPECT_NO_THROW(empty.reset());
}

TEST_F(SubscriptionTest, MayBeResetInsideItsOwnEnd)
{
    std::optional<Subscription> subscription;
    subscription.emplace([&] {
        ++ends;
        subscription->reset();
    });

    subscription->reset();

    EXPECT_EQ(ends, 1);
}

} // namespace
} // namespace vorrano::platform
