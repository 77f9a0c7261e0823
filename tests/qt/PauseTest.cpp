#include "QtProgram.h"

#include <QComboBox>
#include <QTimer>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

namespace vorrano::qt {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class Pause : public support::QtProgram {
protected:
    // Runs `act` in the midst of a pause.
    void whilePausing(std::function<void()> act)
    {
        QTimer::singleShot(5, &timerOfTheTest, std::move(act));
        pause.pause(60ms);
    }

    QObject timerOfTheTest;
    std::shared_ptr<platform::Window> window = shown("WifiSetupViewController");
    platform::View& view = *window->view();
};

TEST_F(Pause, IsNeverShorterThanAskedAndHardlyLonger)
{
    std::vector<std::chrono::nanoseconds> overshoots;
    for (int times = 0; times < 31; ++times) {
        const auto begin = Clock::now();
        pause.pause(20ms);
        overshoots.push_back(Clock::now() - begin - 20ms);
    }

    std::sort(overshoots.begin(), overshoots.end());
    EXPECT_GE(overshoots.front(), 0ns);
    EXPECT_LE(overshoots[overshoots.size() / 2], 500us);
}

TEST_F(Pause, OfNoLengthReturnsAtOnce)
{
    const auto begin = Clock::now();

    pause.pause(0ns);

    EXPECT_LT(Clock::now() - begin, 5ms);
}

TEST_F(Pause, RunsNoQueuedWorkAndNoTimerOfTheLogic)
{
    int ran = 0;
    queue.async([&] { ++ran; });
    queue.asyncPastAlerts([&] { ++ran; });
    queue.after(1ms, [&] { ++ran; });

    pause.pause(60ms);

    EXPECT_EQ(ran, 0);
    EXPECT_TRUE(spinUntil([&] { return ran == 3; }));
}

TEST_F(Pause, GoesOnPaintingTheWindow)
{
    class Painted : public QWidget {
    public:
        using QWidget::QWidget;
        int times = 0;

    protected:
        void paintEvent(QPaintEvent*) override { ++times; }
    };
    Painted painted(&frame(*window));
    painted.resize(20, 20);
    painted.show();
    EXPECT_TRUE(spinUntil([&] { return painted.times > 0; }));
    const int before = painted.times;

    whilePausing([&] { painted.update(); });

    EXPECT_GT(painted.times, before);
}

TEST_F(Pause, LetsTheSpinnerTurn)
{
    auto& spinner = view.progressIndicator("loginProgressIndicator");
    spinner.setHidden(false);
    spinner.startAnimation();
    auto& turning = widget<QWidget>(view, "loginProgressIndicator");
    const auto before = turning.grab().toImage();

    pause.pause(150ms);

    EXPECT_NE(turning.grab().toImage(), before);
}

TEST_F(Pause, DropsWhatComesOverTheBus)
{
    int heard = 0;
    const platform::Action count = [&](platform::Control&) { ++heard; };
    view.button("saveSSIDButton").onPress(count);
    view.textField("SSID").onChange(count);
    view.popUpButton("securityTypeButton").addItems({"Open", "WPA2"});
    view.popUpButton("securityTypeButton").onChoose(count);
    bool tried = false;

    whilePausing([&] {
        pressOverTheBus(widget<QWidget>(view, "saveSSIDButton"));
        writeOverTheBus(widget<QWidget>(view, "SSID"), QStringLiteral("Net"));
        widget<QComboBox>(view, "securityTypeButton").setCurrentIndex(1);
        tried = true;
    });
    runQueue();

    EXPECT_TRUE(tried);
    EXPECT_EQ(heard, 0);
    EXPECT_EQ(view.textField("SSID").text(), "");
    EXPECT_EQ(view.popUpButton("securityTypeButton").titleOfSelectedItem(), "Open");
}

TEST_F(Pause, LetsNobodyCloseTheWindow)
{
    whilePausing([&] { frame(*window).close(); });

    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(timesLastClosed, 0);
}

TEST_F(Pause, OfOneAfterTheOtherLetsNothingInBetween)
{
    int ran = 0;
    for (int times = 0; times < 5; ++times) {
        queue.async([&] { ++ran; });
        pause.pause(10ms);
        EXPECT_EQ(ran, 0);
    }
}

} // namespace
} // namespace vorrano::qt
