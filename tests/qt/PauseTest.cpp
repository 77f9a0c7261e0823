#include "QtProgram.h"

#include <QComboBox>
#include <QTimer>

#include <gmock/gmock.h>

#include <chrono>

namespace vorrano::qt {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class Pause : public support::QtProgram {
protected:
    // Pauses until the condition holds; nothing but the pauses handles any event.
    bool pausesUntil(const std::function<bool()>& condition)
    {
        const auto end = Clock::now() + 10s;
        while (!condition() && Clock::now() < end) {
            pause.pause(60ms);
        }
        return condition();
    }

    // Runs `act` in the midst of a pause.
    void whilePausing(const std::function<void()>& act)
    {
        bool acted = false;
        QTimer::singleShot(5, &timerOfTheTest, [&] {
            act();
            acted = true;
        });
        EXPECT_TRUE(pausesUntil([&] { return acted; }));
    }

    QObject timerOfTheTest;
    std::shared_ptr<platform::Window> window = shown("WifiSetupViewController");
    platform::View& view = *window->view();
};

TEST_F(Pause, IsNeverShorterThanAsked)
{
    for (int times = 0; times < 10; ++times) {
        const auto begin = Clock::now();

        pause.pause(20ms);

        EXPECT_GE(Clock::now() - begin, 20ms);
    }
}

TEST_F(Pause, ThatIsTooShortForItHandlesNoEvent)
{
    bool handled = false;
    QTimer::singleShot(0, &timerOfTheTest, [&] { handled = true; });

    pause.pause(0ns);
    pause.pause(1ms);

    EXPECT_FALSE(handled);
    EXPECT_TRUE(pausesUntil([&] { return handled; }));
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

    painted.update();

    EXPECT_TRUE(pausesUntil([&] { return painted.times > before; }));
}

TEST_F(Pause, LetsTheSpinnerTurn)
{
    auto& spinner = view.progressIndicator("loginProgressIndicator");
    spinner.setHidden(false);
    spinner.startAnimation();
    auto& turning = widget<QWidget>(view, "loginProgressIndicator");
    const auto before = turning.grab().toImage();

    EXPECT_TRUE(pausesUntil([&] { return turning.grab().toImage() != before; }));
}

TEST_F(Pause, DropsWhatComesOverTheBus)
{
    int heard = 0;
    const platform::Action count = [&](platform::Control&) { ++heard; };
    view.button("saveSSIDButton").onPress(count);
    view.textField("SSID").onChange(count);
    view.popUpButton("securityTypeButton").addItems({"Open", "WPA2"});
    view.popUpButton("securityTypeButton").onChoose(count);

    whilePausing([&] {
        pressOverTheBus(widget<QWidget>(view, "saveSSIDButton"));
        writeOverTheBus(widget<QWidget>(view, "SSID"), QStringLiteral("Net"));
        widget<QComboBox>(view, "securityTypeButton").setCurrentIndex(1);
    });
    runQueue();

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
