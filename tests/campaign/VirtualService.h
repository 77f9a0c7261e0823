#pragma once

#include "simulator/service/SimulatedService.h"
#include "support/World.h"

#include <functional>
#include <optional>
#include <string>

namespace vorrano::campaign {

// What the web service does with a request, as its fetch sees it in the end.
enum class ServiceMood {
    Well,
    Refuses,        // nobody listens
    Silent,         // the connection stands, and nothing comes
    Slow,           // the answer comes after 5 s
    Cut,            // the connection ends within the body
    AnswersNothing, // an empty body
    ErrorPage,      // a page of text
    WrongShape,     // JSON of another shape
    Numbers,        // numbers for texts
    TooDeep,        // JSON that is nested too deeply
    Redirects,      // from one address to the next, without end
    Endless,        // a body without end
};

// The simulated web service behind the fetches of a world. Each answer takes its time, and is what the service's mood
// is by then.
//
// Threads: the world's; one of them runs at a time.
// Lifetime: ends before its world.
class VirtualService {
public:
    static constexpr std::chrono::milliseconds kAnswerTime{200};

    explicit VirtualService(support::World& world);
    VirtualService(const VirtualService&) = delete;
    VirtualService& operator=(const VirtualService&) = delete;
    ~VirtualService();

    [[nodiscard]] simulator::SimulatedService& service() { return m_service; }

    void setMood(ServiceMood mood) { m_mood = mood; }

    // Called once, when the next request has come; on its thread.
    void beforeNextAnswer(std::function<void()> told) { m_beforeNextAnswer = std::move(told); }

private:
    [[nodiscard]] std::optional<std::string> answer(const std::string& address);
    [[nodiscard]] std::optional<std::string> answerInMood(const std::string& address);
    void waitFor(support::Nanoseconds duration);

    support::World& m_world;
    simulator::SimulatedService m_service;
    ServiceMood m_mood = ServiceMood::Well;
    std::function<void()> m_beforeNextAnswer;
};

} // namespace vorrano::campaign
