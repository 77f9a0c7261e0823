#include "support/FakeNetwork.h"

#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

using namespace std::chrono_literals;

FakeUrlFetch::FakeUrlFetch(VirtualTime& time)
    : m_time(time)
{}

std::optional<std::string> FakeUrlFetch::contentsOfUrl(const std::string& address)
{
    EXPECT_FALSE(m_time.isMainThread()) << "a fetch blocks its thread, so it is no task for the main thread";
    m_requests.push_back(address);
    if (m_service) {
        auto body = m_service(address);
        return m_time.hasEnded() ? std::nullopt : std::move(body);
    }
    const auto turn = ++m_lastTicket;
    m_tickets.push_back(turn);
    const auto isAnswered = [&] { return m_tickets.front() == turn && !m_answers.empty(); };
    const auto waited = m_time.waitUntil(isAnswered, m_time.now() + 60s);
    std::erase(m_tickets, turn);
    if (waited != VirtualTime::Wait::Met) {
        return std::nullopt;
    }
    auto answer = std::move(m_answers.front());
    m_answers.pop_front();
    if (answer.delay > 0ns) {
        m_time.waitUntil([] { return false; }, m_time.now() + answer.delay);
    }
    return m_time.hasEnded() ? std::nullopt : std::move(answer.body);
}

void FakeUrlFetch::answer(std::string body) { answerAfter(0ns, std::move(body)); }

void FakeUrlFetch::answerNothing() { answerAfter(0ns, std::nullopt); }

void FakeUrlFetch::answerAfter(Nanoseconds delay, std::optional<std::string> body)
{
    m_answers.push_back({std::move(body), delay});
}

// What the references share with the network; they may outlive it.
struct FakeReachability::State {
    struct Link {
        std::function<void(platform::ReachabilityFlags)> told;
        bool scheduled = false;
    };

    explicit State(FakeMainQueue& queue)
        : mainQueue(queue)
    {}

    [[nodiscard]] std::vector<std::shared_ptr<Link>> alive() const
    {
        std::vector<std::shared_ptr<Link>> found;
        for (const auto& link : links) {
            if (auto held = link.lock()) {
                found.push_back(std::move(held));
            }
        }
        return found;
    }

    FakeMainQueue& mainQueue;
    std::optional<platform::ReachabilityFlags> flags = platform::kReachable;
    std::vector<std::string> created;
    std::vector<std::weak_ptr<Link>> links;
    bool refusesCreation = false;
    bool refusesCallback = false;
    bool refusesSchedule = false;
};

class FakeReachability::Reference : public platform::ReachabilityReference {
public:
    explicit Reference(std::shared_ptr<State> state)
        : m_state(std::move(state))
    {
        m_state->links.push_back(m_link);
    }

    std::optional<platform::ReachabilityFlags> flags() override { return m_state->flags; }

    bool setCallback(std::function<void(platform::ReachabilityFlags)> told) override
    {
        if (!m_state->refusesCallback) {
            m_link->told = std::move(told);
        }
        return !m_state->refusesCallback;
    }

    bool schedule() override
    {
        m_link->scheduled = !m_state->refusesSchedule;
        return m_link->scheduled;
    }

    void unschedule() override { m_link->scheduled = false; }

private:
    std::shared_ptr<State> m_state;
    std::shared_ptr<State::Link> m_link = std::make_shared<State::Link>();
};

FakeReachability::FakeReachability(FakeMainQueue& mainQueue)
    : m_state(std::make_shared<State>(mainQueue))
{}

std::unique_ptr<platform::ReachabilityReference> FakeReachability::createWithName(const std::string& host)
{
    m_state->created.push_back(host);
    if (host.empty() || m_state->refusesCreation) {
        return nullptr;
    }
    return std::make_unique<Reference>(m_state);
}

std::unique_ptr<platform::ReachabilityReference>
FakeReachability::createWithAddress(const platform::SocketAddress& address)
{
    std::string text;
    for (const auto part : address.address) {
        text += (text.empty() ? "" : ".") + std::to_string(part);
    }
    m_state->created.push_back(text + ":" + std::to_string(address.port));
    if (address.family != platform::SocketAddress{}.family || m_state->refusesCreation) {
        return nullptr;
    }
    return std::make_unique<Reference>(m_state);
}

void FakeReachability::setFlags(std::optional<platform::ReachabilityFlags> flags) { m_state->flags = flags; }

void FakeReachability::change(platform::ReachabilityFlags flags)
{
    setFlags(flags);
    for (const auto& link : m_state->alive()) {
        m_state->mainQueue.async([weak = std::weak_ptr(link), flags] {
            const auto alive = weak.lock();
            if (alive && alive->scheduled && alive->told) {
                const auto told = alive->told;
                told(flags);
            }
        });
    }
}

const std::vector<std::string>& FakeReachability::created() const { return m_state->created; }

int FakeReachability::references() const { return static_cast<int>(m_state->alive().size()); }

int FakeReachability::scheduled() const
{
    const auto links = m_state->alive();
    return static_cast<int>(
        std::count_if(links.begin(), links.end(), [](const auto& link) { return link->scheduled; }));
}

void FakeReachability::refuseCreation(bool refused) { m_state->refusesCreation = refused; }

void FakeReachability::refuseCallback(bool refused) { m_state->refusesCallback = refused; }

void FakeReachability::refuseSchedule(bool refused) { m_state->refusesSchedule = refused; }

} // namespace vorrano::support
