#include "campaign/VirtualService.h"

#include <utility>

namespace vorrano::campaign {

using namespace std::chrono_literals;

VirtualService::VirtualService(support::World& world)
    : m_world(world)
{
    m_world.urlFetch.answerBy([this](const std::string& address) { return answer(address); });
}

VirtualService::~VirtualService()
{
    m_world.urlFetch.answerBy([](const std::string&) { return std::nullopt; });
}

std::optional<std::string> VirtualService::answer(const std::string& address)
{
    if (const auto told = std::exchange(m_beforeNextAnswer, nullptr)) {
        told();
    }
    if (m_mood == ServiceMood::Refuses) {
        return std::nullopt;
    }
    waitFor(kAnswerTime);
    return answerInMood(address);
}

// A fetch gives up after 60 s without progress, 20 redirections or 64 MiB.
std::optional<std::string> VirtualService::answerInMood(const std::string& address)
{
    switch (m_mood) {
    case ServiceMood::Refuses:
    case ServiceMood::Cut:
        return std::nullopt;
    case ServiceMood::Silent:
        waitFor(60s);
        return std::nullopt;
    case ServiceMood::Redirects:
        waitFor(20 * kAnswerTime);
        return std::nullopt;
    case ServiceMood::Endless:
        waitFor(6s);
        return std::nullopt;
    case ServiceMood::AnswersNothing:
        return "";
    case ServiceMood::ErrorPage:
        return "<html><head><title>500</title></head><body>Something went wrong.</body></html>";
    case ServiceMood::WrongShape:
        return R"({"data":[]})";
    case ServiceMood::Numbers:
        return R"({"data":[{"Id":1234,"Email":5}]})";
    case ServiceMood::TooDeep:
        return std::string(600, '[') + std::string(600, ']');
    case ServiceMood::Slow:
        waitFor(5s);
        break;
    case ServiceMood::Well:
        break;
    }
    constexpr std::string_view kAuthority = "https://service.example";
    return m_service.answer(std::string_view(address).substr(kAuthority.size())).body;
}

void VirtualService::waitFor(support::Nanoseconds duration)
{
    m_world.time.waitUntil([] { return false; }, m_world.now() + duration);
}

} // namespace vorrano::campaign
