#include "platform/MainThreadDeleter.h"

#include "support/World.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorrano::platform {
namespace {

using support::World;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MainThreadDeleterTest : public ::testing::Test {
protected:
    struct Screen {
        MainQueue& mainQueue;
        std::vector<std::string>& destroyed;
        std::string name;
        ~Screen() { destroyed.push_back(name + (mainQueue.isMainThread() ? " on main" : " elsewhere")); }
    };

    std::optional<World> world = std::make_optional<World>();
    std::vector<std::string> destroyed;

    std::shared_ptr<Screen> make(const std::string& name)
    {
        return platform::destroyedOnMainThread(new Screen{world->mainQueue, destroyed, name}, world->mainQueue);
    }
};

TEST_F(MainThreadDeleterTest, DestroysAtOnceOnTheMainThread)
{
    auto screen = make("screen");

    screen.reset();

    EXPECT_THAT(destroyed, ElementsAre("screen on main"));
}

TEST_F(MainThreadDeleterTest, HandsOverToTheMainThreadFromAnyOther)
{
    const auto hold = std::make_shared<std::optional<Subscription>>(world->mainQueue.hold());
    world->backgroundQueue.async([screen = make("screen")]() mutable { screen.reset(); });
    world->run();
    EXPECT_THAT(destroyed, IsEmpty());

    hold->reset();
    world->run();

    EXPECT_THAT(destroyed, ElementsAre("screen on main"));
}

TEST_F(MainThreadDeleterTest, DestroysWithThePlatformWhatTheQueueTakesNoMore)
{
    world->mainQueue.end();
    world->backgroundQueue.async([screen = make("screen")]() mutable { screen.reset(); });
    world->run();
    EXPECT_THAT(destroyed, IsEmpty());

    world.reset();

    EXPECT_THAT(destroyed, ElementsAre("screen on main"));
}

TEST_F(MainThreadDeleterTest, DestroysEachOnceInTheOrderOfHandingOver)
{
    world->backgroundQueue.async([first = make("first")]() mutable { first.reset(); });
    world->backgroundQueue.async([second = make("second")]() mutable { second.reset(); });

    world->run();
    destroyHandedOver();

    EXPECT_THAT(destroyed, ElementsAre("first on main", "second on main"));
}

TEST_F(MainThreadDeleterTest, LetsAnObjectHandOverAnotherWhileItGoes)
{
    struct Outer {
        std::shared_ptr<Screen> inner;
    };
    auto outer = platform::destroyedOnMainThread(new Outer{make("inner")}, world->mainQueue);
    world->backgroundQueue.async([given = std::exchange(outer, nullptr)]() mutable { given.reset(); });

    world->run();

    EXPECT_THAT(destroyed, ElementsAre("inner on main"));
}

} // namespace
} // namespace vorrano::platform
