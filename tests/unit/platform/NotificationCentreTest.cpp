#include "platform/NotificationCentre.h"

#include <any>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NotificationCentreTest : public ::testing::Test {
protected:
    NotificationCentre centre;
    std::shared_ptr<int> observer = std::make_shared<int>(0);
    std::vector<std::string> heard;

    NotificationCentre::Handler hear(std::string text)
    {
        return [this, text](const Notification&) { heard.push_back(text); };
    }
};

TEST_F(NotificationCentreTest, CallsTheObserversOfTheNameInTheOrderInWhichTheyBeganAndInsideThePost)
{
    const auto first = centre.observe("kettle", observer, hear("first"));
    const auto other = centre.observe("pan", observer, hear("other name"));
    const auto second = centre.observe("kettle", observer, hear("second"));

    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, ElementsAre("first", "second"));
}

TEST_F(NotificationCentreTest, HandsOverSenderAndUserInfo)
{
    const void* sender = nullptr;
    std::string value;
    const auto subscription = centre.observe("kettle", observer, [&](const Notification& notification) {
        sender = notification.sender;
        value = std::any_cast<std::string>(notification.userInfo.at("water"));
    });

    centre.post({"kettle", this, {{"water", std::string("hot")}}});

    EXPECT_EQ(sender, this);
    EXPECT_EQ(value, "hot");
}

TEST_F(NotificationCentreTest, ComparesNamesToTheLetter)
{
    const auto subscription = centre.observe("kettle", observer, hear("kettle"));

    centre.post({"Kettle", nullptr, {}});
    centre.post({"kettle ", nullptr, {}});
    centre.post({"", nullptr, {}});

    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(NotificationCentreTest, ADroppedSubscriptionHearsNoMore)
{
    auto subscription = std::make_optional(centre.observe("kettle", observer, hear("kettle")));

    subscription.reset();
    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(NotificationCentreTest, ASubscriptionThatIsKeptEndsWithItsObserver)
{
    centre.observe("kettle", observer, hear("kettle")).keep();

    centre.post({"kettle", nullptr, {}});
    observer.reset();
    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, ElementsAre("kettle"));
}

TEST_F(NotificationCentreTest, ADeadObserverIsSkippedAndItsHandlerLetGo)
{
    const auto held = std::make_shared<int>(0);
    const auto subscription = centre.observe("kettle", observer, [held](const Notification&) {});
    ASSERT_EQ(held.use_count(), 2);

    observer.reset();
    centre.post({"another", nullptr, {}});

    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(NotificationCentreTest, AnObserverThatDiesDuringThePostIsSkipped)
{
    auto second = std::make_shared<int>(0);
    const auto first = centre.observe("kettle", observer, [&](const Notification&) { second.reset(); });
    const auto other = centre.observe("kettle", second, hear("second"));

    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(NotificationCentreTest, AnObserverIsHeldWhileItsHandlerRuns)
{
    const std::weak_ptr<int> watched = observer;
    bool wasAlive = false;
    const auto subscription = centre.observe("kettle", observer, [&](const Notification&) {
        observer.reset();
        wasAlive = !watched.expired();
    });

    centre.post({"kettle", nullptr, {}});

    EXPECT_TRUE(wasAlive);
    EXPECT_TRUE(watched.expired());
}

TEST_F(NotificationCentreTest, OneThatBeginsDuringAPostHearsTheNextOne)
{
    std::vector<Subscription> later;
    const auto subscription = centre.observe("kettle", observer, [&](const Notification&) {
        heard.push_back("first");
        later.push_back(centre.observe("kettle", observer, hear("later")));
    });

    centre.post({"kettle", nullptr, {}});
    EXPECT_THAT(heard, ElementsAre("first"));
    heard.clear();
    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, ElementsAre("first", "later"));
}

TEST_F(NotificationCentreTest, OneThatEndsDuringAPostHearsNoMore)
{
    std::optional<Subscription> second;
    const auto first = centre.observe("kettle", observer, [&](const Notification&) { second.reset(); });
    second = centre.observe("kettle", observer, hear("second"));

    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(NotificationCentreTest, ASubscriptionMayBeDroppedByItsOwnHandler)
{
    const auto text = std::make_shared<std::string>("kettle");
    std::optional<Subscription> subscription;
    subscription = centre.observe("kettle", observer, [&, text](const Notification&) {
        subscription.reset();
        heard.push_back(*text);
    });

    centre.post({"kettle", nullptr, {}});
    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, ElementsAre("kettle"));
}

TEST_F(NotificationCentreTest, APostInsideAPostIsHeardAtOnce)
{
    const auto outer = centre.observe("kettle", observer, [&](const Notification&) {
        centre.post({"cup", nullptr, {}});
        heard.push_back("kettle");
    });
    const auto inner = centre.observe("cup", observer, hear("cup"));

    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, ElementsAre("cup", "kettle"));
}

TEST_F(NotificationCentreTest, ASubscriptionMayOutliveTheCentre)
{
    auto other = std::make_optional<NotificationCentre>();
    const auto subscription = other->observe("kettle", observer, hear("kettle"));

    other.reset();

    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(NotificationCentreTest, OneObserverMayObserveANameTwice)
{
    auto first = std::make_optional(centre.observe("kettle", observer, hear("first")));
    const auto second = centre.observe("kettle", observer, hear("second"));

    centre.post({"kettle", nullptr, {}});
    first.reset();
    centre.post({"kettle", nullptr, {}});

    EXPECT_THAT(heard, ElementsAre("first", "second", "second"));
}

} // namespace
} // namespace vorrano::platform
