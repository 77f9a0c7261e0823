#pragma once

#include "platform/Alerts.h"
#include "platform/OpenPanel.h"
#include "support/FakeMainQueue.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <vector>

namespace vorrano::platform {

// How a failed comparison shows an alert.
void PrintTo(const Alert& alert, std::ostream* out);

} // namespace vorrano::platform

namespace vorrano::support {

// Alerts that a test answers. An alert takes no time, unless whileUp() lets something happen in it.
class FakeAlerts : public platform::Alerts {
public:
    explicit FakeAlerts(FakeMainQueue& mainQueue);

    int runModal(const platform::Alert& alert) override;

    // All alerts since the beginning or forget(), in order.
    [[nodiscard]] const std::vector<platform::Alert>& shown() const { return m_shown; }

    // The one alert shown; fails the test if there was none, or more.
    [[nodiscard]] platform::Alert only() const;
    void forget() { m_shown.clear(); }

    // The answer of the next alert that has none yet; without one an alert answers kAlertFirstButton.
    void queueAnswer(int button);
    void forgetAnswers() { m_answers.clear(); }

    // Runs inside the next alert that has none yet, with the main queue held: the test may let time pass in it.
    void whileUp(std::function<void()> meanwhile);
    [[nodiscard]] bool isUp() const { return m_up > 0; }

    // The program is ending: alerts answer kNoAnswer at once.
    void end() { m_ended = true; }

private:
    FakeMainQueue& m_mainQueue;
    std::vector<platform::Alert> m_shown;
    std::deque<int> m_answers;
    std::deque<std::function<void()>> m_meanwhile;
    int m_up = 0;
    bool m_ended = false;
};

// An open panel that a test answers; without an answer the person cancels.
class FakeOpenPanel : public platform::OpenPanel {
public:
    explicit FakeOpenPanel(FakeMainQueue& mainQueue);

    [[nodiscard]] std::vector<std::filesystem::path> runModal() override;

    // What the person chooses in the next panel that has no answer yet.
    void queueFile(std::filesystem::path file);
    void queueCancel();
    void whileUp(std::function<void()> meanwhile);

    // How often it was shown.
    [[nodiscard]] int timesShown() const { return m_timesShown; }

private:
    FakeMainQueue& m_mainQueue;
    std::deque<std::vector<std::filesystem::path>> m_answers;
    std::deque<std::function<void()>> m_meanwhile;
    int m_timesShown = 0;
};

} // namespace vorrano::support
