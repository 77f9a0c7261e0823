#include "support/FakeAlerts.h"

#include "platform/ScopeExit.h"

#include <ostream>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::platform {

void PrintTo(const Alert& alert, std::ostream* out)
{
    *out << '"' << alert.messageText.value_or("(none)") << "\" / \"" << alert.informativeText.value_or("(none)") << '"';
    for (const auto& button : alert.buttons) {
        *out << " [" << button << ']';
    }
    *out << (alert.style == AlertStyle::Warning ? " warning" : "");
}

} // namespace vorrano::platform

namespace vorrano::support {

namespace {

// Runs the first of what the test wants to happen on the screen meanwhile.
void runFirst(std::deque<std::function<void()>>& meanwhile)
{
    if (!meanwhile.empty()) {
        const auto first = std::move(meanwhile.front());
        meanwhile.pop_front();
        first();
    }
}

} // namespace

FakeAlerts::FakeAlerts(FakeMainQueue& mainQueue)
    : m_mainQueue(mainQueue)
{}

int FakeAlerts::runModal(const platform::Alert& alert)
{
    EXPECT_TRUE(m_mainQueue.isMainThread()) << "alerts are the main thread's";
    if (m_ended) {
        return platform::kNoAnswer;
    }
    m_shown.push_back(alert);
    const auto hold = m_mainQueue.hold();
    ++m_up;
    const platform::ScopeExit gone([this] { --m_up; });
    runFirst(m_meanwhile);
    if (m_ended) {
        return platform::kNoAnswer;
    }
    if (m_answers.empty()) {
        return platform::kAlertFirstButton;
    }
    const auto answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

platform::Alert FakeAlerts::only() const
{
    EXPECT_EQ(m_shown.size(), 1U) << "alerts shown";
    return m_shown.size() == 1 ? m_shown.front() : platform::Alert{"not one alert was shown", {}, {}, {}};
}

void FakeAlerts::queueAnswer(int button) { m_answers.push_back(button); }

void FakeAlerts::whileUp(std::function<void()> meanwhile) { m_meanwhile.push_back(std::move(meanwhile)); }

FakeOpenPanel::FakeOpenPanel(FakeMainQueue& mainQueue)
    : m_mainQueue(mainQueue)
{}

std::vector<std::filesystem::path> FakeOpenPanel::runModal()
{
    EXPECT_TRUE(m_mainQueue.isMainThread()) << "panels are the main thread's";
    ++m_timesShown;
    const auto hold = m_mainQueue.hold();
    runFirst(m_meanwhile);
    if (m_answers.empty()) {
        return {};
    }
    auto answer = std::move(m_answers.front());
    m_answers.pop_front();
    return answer;
}

void FakeOpenPanel::queueFile(std::filesystem::path file) { m_answers.push_back({std::move(file)}); }

void FakeOpenPanel::queueCancel() { m_answers.emplace_back(); }

void FakeOpenPanel::whileUp(std::function<void()> meanwhile) { m_meanwhile.push_back(std::move(meanwhile)); }

} // namespace vorrano::support
