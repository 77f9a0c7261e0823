#include "QtProgram.h"

#include "platform/qt/QtApplication.h"

#include <QTimer>

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace vorrano::qt {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class MainLoop : public support::QtProgram {
protected:
    MainLoop()
    {
        subscription = centre.observe(platform::kApplicationWillTerminateNotification, observer,
                                      [this](const platform::Notification&) { order.emplace_back("terminating"); });
    }

    platform::Task note(std::string word)
    {
        return [this, word = std::move(word)] { order.push_back(word); };
    }

    std::vector<std::string> order;
    std::shared_ptr<int> observer = std::make_shared<int>(0);
    platform::Subscription subscription;
};

TEST_F(MainLoop, RunsWhatIsLaunchedFirstAndReturnsWhenItIsAskedToEnd)
{
    const int status = loop.run([this] {
        order.emplace_back("launched");
        loop.quit();
    });

    EXPECT_EQ(status, 0);
    EXPECT_THAT(order, ElementsAre("launched", "terminating"));
}

TEST_F(MainLoop, PostsWillTerminateThenRunsWhatWaitsThenTakesNothing)
{
    loop.run([this] {
        queue.async([this] {
            order.emplace_back("waiting");
            queue.async(note("of the waiting"));
        });
        loop.quit();
        loop.quit();
    });

    EXPECT_THAT(order, ElementsAre("terminating", "waiting", "of the waiting"));
    EXPECT_FALSE(queue.sync([] {}));
}

TEST_F(MainLoop, EndsWhenThePersonClosesTheLastWindow)
{
    std::shared_ptr<platform::Window> window;
    loop.run([&] {
        window = layouts.loadWindow("LoginViewController");
        window->show();
        QTimer::singleShot(0, &frame(*window), [&] { frame(*window).close(); });
    });

    EXPECT_EQ(timesLastClosed, 1);
    EXPECT_THAT(order, ElementsAre("terminating"));
}

TEST_F(MainLoop, DoesNotEndBetweenTwoWindows)
{
    std::shared_ptr<platform::Window> window;
    loop.run([&] {
        window = layouts.loadWindow("LoginViewController");
        window->show();
        window->close();
        window.reset();
        queue.after(20ms, [&] {
            order.emplace_back("alive");
            loop.quit();
        });
    });

    EXPECT_THAT(order, ElementsAre("alive", "terminating"));
}

class EndingSignal : public MainLoop, public ::testing::WithParamInterface<int> {};

TEST_P(EndingSignal, EndsTheProgramInOrder)
{
    const int status = loop.run([] { std::raise(GetParam()); });

    EXPECT_EQ(status, 0);
    EXPECT_THAT(order, ElementsAre("terminating"));
}

TEST_P(EndingSignal, EndsTheProgramWithAnAlertUp)
{
    loop.run([this] {
        whileUp([](QDialog&) { std::raise(GetParam()); });
        const int answer = alerts.runModal({"Go on?", {"Yes", "No"}, std::nullopt});
        order.push_back("answer " + std::to_string(answer));
        order.push_back("answer " + std::to_string(alerts.runModal({"Note", {"OK"}, "text"})));
    });

    EXPECT_THAT(order, ElementsAre("answer 0", "answer 0", "terminating"));
}

INSTANTIATE_TEST_SUITE_P(Each, EndingSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& test) { return std::string("Signal") + std::to_string(test.param); });

TEST_F(MainLoop, GivesTheSignalsBackAtItsEnd)
{
    const auto ownHandler = [](int) {};
    struct sigaction own = {};
    struct sigaction loops = {};
    own.sa_handler = ownHandler;
    sigaction(SIGTERM, &own, &loops);
    struct sigaction meanwhile = {};
    struct sigaction after = {};
    {
        support::FakeSystemLog ownLog;
        QtMainQueue ownQueue(ownLog);
        QtGate ownGate(ownQueue);
        const QtMainLoop other(ownQueue, ownGate, centre, ownLog);
        sigaction(SIGTERM, nullptr, &meanwhile);
    }
    sigaction(SIGTERM, &loops, &after);

    EXPECT_NE(meanwhile.sa_handler, own.sa_handler);
    EXPECT_EQ(after.sa_handler, own.sa_handler);
}

TEST_F(MainLoop, EndsWithAnOpenPanelUp)
{
    loop.run([this] {
        whileUp([this](QDialog&) { loop.quit(); });
        order.push_back("files " + std::to_string(openPanel.runModal().size()));
    });

    EXPECT_THAT(order, ElementsAre("files 0", "terminating"));
}

TEST_F(MainLoop, WaitsForTheEndOfAnActionThatPauses)
{
    loop.run([this] {
        QTimer::singleShot(5, QCoreApplication::instance(), [] { std::raise(SIGTERM); });
        for (int line = 0; line < 3; ++line) {
            pause.pause(30ms);
            order.push_back("line " + std::to_string(line));
        }
        order.push_back("answer " + std::to_string(alerts.runModal({"Finished", {"OK"}, "Success"})));
    });

    EXPECT_THAT(order, ElementsAre("line 0", "line 1", "line 2", "answer 0", "terminating"));
}

TEST_F(MainLoop, LetsABackgroundThreadGoThatWaitsForTheMainThread)
{
    std::thread waiting;
    std::atomic<bool> asked = false;
    loop.run([&] {
        waiting = std::thread([&] {
            asked = true;
            while (queue.sync([] {})) {
            }
        });
        EXPECT_TRUE(spinUntil([&] { return asked.load(); }));
        loop.quit();
    });

    waiting.join();
    EXPECT_THAT(order, ElementsAre("terminating"));
}

TEST_F(MainLoop, EndsWhenTheSessionAsks)
{
    loop.run([] { QCoreApplication::quit(); });

    EXPECT_THAT(order, ElementsAre("terminating"));
}

TEST_F(MainLoop, EndsThoughAnObserverOfTheEndThrows)
{
    const auto broken = centre.observe(platform::kApplicationWillTerminateNotification, observer,
                                       [](const platform::Notification&) { throw std::runtime_error("broken"); });

    loop.run([this] { loop.quit(); });

    EXPECT_THAT(log.lines(), ElementsAre("Uncaught exception: broken"));
}

TEST_F(MainLoop, WritesAnExceptionOfAnEventHandlerToTheLogAlsoInAnAlertsLoop)
{
    QObject thrower;
    const auto throwSoon = [&](const char* what) {
        QTimer::singleShot(0, &thrower, [what] { throw std::runtime_error(what); });
    };

    loop.run([&] {
        throwSoon("outside");
        whileUp([&](QDialog& box) {
            throwSoon("inside");
            QTimer::singleShot(5, &box, [&box] { box.close(); });
        });
        alerts.runModal({"Note", {"OK"}, "text"});
        order.emplace_back("went on");
        loop.quit();
    });

    EXPECT_THAT(support::applicationLog().lines(),
                ElementsAre("Uncaught exception: outside", "Uncaught exception: inside"));
    EXPECT_THAT(order, ElementsAre("went on", "terminating"));
}

} // namespace
} // namespace vorrano::qt
