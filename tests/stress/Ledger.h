#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace vorrano::stress {

// The numbers of a run.
struct Tally {
    std::uint64_t sent = 0;
    std::uint64_t refused = 0;
    std::uint64_t answered = 0;
    std::uint64_t timedOut = 0;
    std::uint64_t both = 0;
    std::uint64_t cleared = 0;
    std::uint64_t timeoutsOfNone = 0;
    std::uint64_t chunks = 0;

    Tally& operator+=(const Tally& other);
};

// The book of one port: every request, what became of it, and whether that was allowed.
//
// Threads: any. A breach is kept as a text.
class Ledger {
public:
    explicit Ledger(std::string name)
        : m_name(std::move(name))
    {}

    // A request of that sender's is about to be sent; its id ("SENDER.NUMBER").
    std::string begin(std::size_t sender, bool wantsReply);
    void sent(const std::string& id, bool accepted);

    // On the request queue: its evaluator was asked, with these bytes, and answered.
    void evaluated(const std::string& id, const std::string& bytes, bool answer);

    // At the device.
    void arrived(const std::string& id);

    // On the main thread.
    void data(const std::string& chunk);
    void response(const std::string& id, const std::string& bytes);
    void timeout(const std::string& id);
    void timeoutOfNone();

    // From now on no data may come, or may again.
    void setQuiet(bool quiet);

    // Requests that have neither been answered nor timed out nor been complete after their write.
    [[nodiscard]] std::size_t unfinished() const;

    // At the end: sums up, and adds what only shows then to the breaches.
    Tally close();
    [[nodiscard]] std::vector<std::string> breaches() const;

private:
    struct Request {
        std::size_t sender = 0;
        std::uint64_t number = 0;
        bool wantsReply = false;
        bool evaluated = false;
        bool accepted = false;  // the evaluator said yes
        bool answerDue = false; // with bytes
        int responses = 0;
        int timeouts = 0;
        int arrivals = 0;
    };

    Request& find(const std::string& id);
    void breach(const std::string& what, const std::string& id);
    void moveTo(const std::string& id, Request& request);
    static bool isFinished(const Request& request);

    const std::string m_name;
    mutable std::mutex m_mutex;
    std::map<std::string, Request> m_requests;
    std::map<std::size_t, std::uint64_t> m_lastNumber;
    std::map<std::size_t, std::uint64_t> m_lastPending;
    std::map<std::size_t, std::uint64_t> m_lastArrived;
    std::string m_pending;
    std::string m_heard;
    std::vector<std::string> m_breaches;
    Tally m_tally;
    bool m_quiet = false;
};

} // namespace vorrano::stress
