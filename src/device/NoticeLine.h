#pragma once

#include <optional>
#include <string>

namespace vorrano::platform {
class Label;
}

namespace vorrano::device {

// A line that says what is wrong, and is hidden while nothing is. A screen reader reads out each text once.
//
// Threads: the main thread. Lifetime: the label outlives it.
class NoticeLine {
public:
    // Hides the label.
    explicit NoticeLine(platform::Label& label);

    // None hides the line.
    void show(const std::optional<std::string>& text);

private:
    platform::Label& m_label;
    std::optional<std::string> m_shown;
};

} // namespace vorrano::device
