#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace vorrano::stress {

// What did not hold, one text each.
//
// Threads: any.
class Breaches {
public:
    void add(const std::string& text);

    [[nodiscard]] bool any() const { return m_any; }
    [[nodiscard]] std::vector<std::string> all() const;

private:
    std::atomic<bool> m_any = false;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_texts;
};

} // namespace vorrano::stress
