#include "platform/MainThreadDeleter.h"

#include "support/World.h"

#include <memory>
#include <optional>
#include <thread>
#include <utility>

using namespace vorrano;

namespace {

struct Witness {
    std::optional<std::thread::id>& destroyedOn;
    ~Witness() { destroyedOn = std::this_thread::get_id(); }
};

struct MainThreadDeleterTest : testing::Test {
    std::optional<std::thread::id> destroyedOn;
    support::World world;

    std::shared_ptr<Witness> makeWitness()
    {
        return {new Witness{destroyedOn}, platform::MainThreadDeleter<Witness>(world.mainQueue)};
    }
};

} // namespace

TEST_F(MainThreadDeleterTest, DestroysAtOnceOnTheMainThread)
{
    auto witness = makeWitness();

    witness.reset();

    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

TEST_F(MainThreadDeleterTest, HandsWhatIsLetGoInTheBackgroundToTheMainThread)
{
    bool letGo = false;
    world.backgroundQueue.async([witness = makeWitness(), &letGo]() mutable {
        witness.reset();
        letGo = true;
    });
    const auto hold = std::make_optional(world.mainQueue.hold());

    world.run();

    EXPECT_TRUE(letGo);
    EXPECT_FALSE(destroyedOn.has_value());
}

TEST_F(MainThreadDeleterTest, DestroysItThereWhenItsTurnHasCome)
{
    world.backgroundQueue.async([witness = makeWitness()]() mutable { witness.reset(); });

    world.run();

    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

TEST(MainThreadDeleterAtTheEnd, LeavesNothingBehindWhenTheMainQueueTakesNoMore)
{
    std::optional<std::thread::id> destroyedOn;
    {
        support::World world;
        std::shared_ptr<Witness> witness(new Witness{destroyedOn},
                                         platform::MainThreadDeleter<Witness>(world.mainQueue));
        world.backgroundQueue.async([held = std::move(witness)]() mutable { held.reset(); });
        world.mainQueue.end();

        world.run();
        EXPECT_FALSE(destroyedOn.has_value());
    }

    EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}
