#pragma once

#include "platform/NetworkReachability.h"
#include "platform/UrlFetch.h"
#include "support/FakeMainQueue.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorrano::support {

// A web whose answers a test queues. A request without one waits for it, up to the 60 s after which a fetch gives up.
class FakeUrlFetch : public platform::UrlFetch {
public:
    explicit FakeUrlFetch(VirtualTime& time);

    [[nodiscard]] std::optional<std::string> contentsOfUrl(const std::string& address) override;
    void abort() override {}

    // The addresses asked for since the beginning or forget(), in order.
    [[nodiscard]] const std::vector<std::string>& requests() const { return m_requests; }
    void forget() { m_requests.clear(); }

    // Requests that have no answer yet.
    [[nodiscard]] std::size_t waiting() const { return m_tickets.size(); }

    // The answers of the next requests (or of those that wait), in order.
    void answer(std::string body);
    void answerNothing();
    void answerAfter(Nanoseconds delay, std::optional<std::string> body);

    // A service that answers every request from now on, in place of what is queued. It is called on the request's
    // thread, where it may wait.
    using Service = std::function<std::optional<std::string>(const std::string& address)>;
    void answerBy(Service service) { m_service = std::move(service); }

private:
    struct Answer {
        std::optional<std::string> body;
        Nanoseconds delay{};
    };

    VirtualTime& m_time;
    std::vector<std::string> m_requests;
    std::deque<Answer> m_answers;
    // One for each request that waits; the answers go in this order.
    std::deque<std::uint64_t> m_tickets;
    std::uint64_t m_lastTicket = 0;
    Service m_service;
};

// A network whose state a test sets; reachable at first.
class FakeReachability : public platform::NetworkReachability {
public:
    explicit FakeReachability(FakeMainQueue& mainQueue);

    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference> createWithName(const std::string& host) override;
    [[nodiscard]] std::unique_ptr<platform::ReachabilityReference>
    createWithAddress(const platform::SocketAddress& address) override;

    // The flags of every reference; none: the system does not tell them.
    void setFlags(std::optional<platform::ReachabilityFlags> flags);

    // The same, and tells the references that are scheduled, by the main queue.
    void change(platform::ReachabilityFlags flags);

    // What the program asked about, in order: a host name, or "a.b.c.d:port".
    [[nodiscard]] const std::vector<std::string>& created() const;

    // References that are alive; those that are scheduled.
    [[nodiscard]] int references() const;
    [[nodiscard]] int scheduled() const;

    // From now on: no reference can be made; no callback can be set; no reference can be scheduled.
    void refuseCreation(bool refused = true);
    void refuseCallback(bool refused = true);
    void refuseSchedule(bool refused = true);

private:
    struct State;
    class Reference;
    std::shared_ptr<State> m_state;
};

} // namespace vorrano::support
