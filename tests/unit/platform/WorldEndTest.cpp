#include "support/World.h"

#include "platform/MainThreadDeleter.h"
#include "platform/SerialQueue.h"

#include <array>
#include <memory>
#include <optional>

namespace vorrano::support {
namespace {

using namespace std::chrono_literals;

// What a port does with an open line: a task that never ends by itself, errors or not.
void readForever(World& world, int descriptor, const std::shared_ptr<int>& held)
{
    std::array<std::byte, 16> buffer{};
    while (*held == 0) {
        if (world.terminal.waitReadable(descriptor, 100ms).value > 0) {
            world.terminal.read(descriptor, buffer);
        }
    }
}

class WorldsEnd : public ::testing::Test {
protected:
    std::optional<World> world = std::make_optional<World>();
    std::shared_ptr<int> held = std::make_shared<int>(0);

    void end()
    {
        world.reset();
        EXPECT_EQ(held.use_count(), 1);
    }
};

TEST_F(WorldsEnd, EndsAReaderOfAnOpenLine)
{
    world->plugVorrano();
    const auto descriptor = world->terminal.open("/dev/cu.usbserial-A1B2").value;
    world->backgroundQueue.async([this, descriptor, kept = held] { readForever(*world, descriptor, kept); });
    world->advance(1s);

    end();
}

TEST_F(WorldsEnd, EndsAReaderOfALineThatIsGone)
{
    auto& line = world->plugVorrano();
    const auto descriptor = world->terminal.open(line.path()).value;
    world->backgroundQueue.async([this, descriptor, kept = held] { readForever(*world, descriptor, kept); });
    world->advance(1s);
    world->terminal.close(descriptor);
    line.unplug();

    end();
}

TEST_F(WorldsEnd, EndsAStalledWriteOfASerialQueueAndTheOneWhoWaitsForIt)
{
    auto& line = world->plugVorrano();
    const auto descriptor = world->terminal.open(line.path()).value;
    const auto queue = world->backgroundQueue.makeSerialQueue("queue");
    line.stall(TerminalCall::Write);
    world->backgroundQueue.async([this, queue, descriptor, kept = held] {
        const std::array bytes{std::byte{'8'}};
        queue->sync([&] { world->terminal.write(descriptor, bytes); });
    });
    world->run();
    ASSERT_EQ(line.stalled(TerminalCall::Write), 1);

    end();
}

TEST_F(WorldsEnd, ReleasesAWaitForTheMainThreadUnrun)
{
    bool ran = true;
    world->backgroundQueue.async([this, &ran, kept = held] { ran = world->mainQueue.sync([kept] {}); });
    const auto hold = std::make_optional(world->mainQueue.hold());
    world->run();

    end();

    EXPECT_FALSE(ran);
}

TEST_F(WorldsEnd, LetsGoOfWhatHasNotRun)
{
    struct Holder {
        std::shared_ptr<platform::SerialQueue> queue;
        std::shared_ptr<platform::Timer> timer;
        std::shared_ptr<int> kept;
    };
    const auto holder = std::make_shared<Holder>();
    holder->kept = held;
    holder->queue = world->backgroundQueue.makeSerialQueue("queue");
    holder->timer = holder->queue->makeTimer({1s, 0s}, [holder] {});
    holder->timer->start();
    holder->queue->async([holder] {});
    holder->queue->async([holder] {});
    world->mainQueue.async([holder] {});
    world->mainQueue.after(1s, [holder] {});
    world->backgroundQueue.async([holder] {});
    const std::weak_ptr<Holder> watched = holder;

    world.reset();

    EXPECT_EQ(holder.use_count(), 1);
}

TEST_F(WorldsEnd, DestroysOnTheMainThreadWhatABackgroundTaskHeldLast)
{
    struct Screen {
        World& world;
        bool& destroyedOnMain;
        ~Screen() { destroyedOnMain = world.mainQueue.isMainThread(); }
    };
    bool destroyedOnMain = false;
    auto screen = platform::destroyedOnMainThread(new Screen{*world, destroyedOnMain}, world->mainQueue);
    world->backgroundQueue.async(
        [this, kept = std::exchange(screen, nullptr)] { static_cast<void>(world->urlFetch.contentsOfUrl("")); });
    world->run();

    end();

    EXPECT_TRUE(destroyedOnMain);
}

TEST_F(WorldsEnd, TakesPartInNothingAfterwards)
{
    world->time.end();
    world->mainQueue.async([kept = held] {});
    world->mainQueue.after(1s, [kept = held] {});
    world->backgroundQueue.async([kept = held] {});
    world->backgroundQueue.makeSerialQueue("queue")->sync([kept = held] {});
    world->advance(1h);

    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(world->mainQueue.sync([] {}));
    end();
}

} // namespace
} // namespace vorrano::support
