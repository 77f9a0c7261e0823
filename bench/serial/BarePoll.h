#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace vorrano::bench {

// Reads the modem lines every ten milliseconds while goesOn() is true. Blocks the calling thread.
void pollModemLines(int line, const std::function<bool()>& goesOn);

// The least that a poll of the modem lines can cost here: one thread that sleeps ten milliseconds, reads the lines, and
// does nothing else. What this computer charges for waking up a hundred times a second is in it.
//
// Threads: the thread it is made on, which poll() blocks.
class BarePoll {
public:
    explicit BarePoll(const std::string& node);
    BarePoll(const BarePoll&) = delete;
    BarePoll& operator=(const BarePoll&) = delete;
    ~BarePoll();

    void poll(std::chrono::milliseconds time) const;

private:
    int m_line;
};

} // namespace vorrano::bench
