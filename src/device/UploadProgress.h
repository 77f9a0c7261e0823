#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace vorrano::platform {
class Label;
class Pause;
class ProgressBar;
class View;
} // namespace vorrano::platform

namespace vorrano::device {

// How far an upload has come, for a person to read. The time that is left is rounded to 5 s, from an hour on to a
// minute, and never to nothing. Any thread.
[[nodiscard]] std::string uploadProgressText(std::size_t line, std::size_t lines, std::chrono::nanoseconds left);

// Shows how much of an image has gone out: a bar, and a line with the time that is left. The time comes from what the
// lines so far took, a pause at least each. A screen reader reads the line out when it appears, and then with each
// tenth of the image, but not within 10 s of the time before.
//
// Controls: uploadProgressBar and uploadProgressLabel, hidden except during an upload.
// Threads: the main thread. Lifetime: the view and the pause, whose clock it reads, outlive it.
class UploadProgress {
public:
    UploadProgress(platform::View& view, const platform::Pause& pause);

    // An upload of that many lines (1 or more), each of which takes `pace` at least.
    void begin(std::size_t lines, std::chrono::nanoseconds pace);
    // The next line goes out.
    void nextLine();
    void end();

private:
    [[nodiscard]] std::chrono::nanoseconds timeLeft() const;
    [[nodiscard]] bool isAnnouncementDue() const;
    void setHidden(bool hidden);

    platform::ProgressBar& m_bar;
    platform::Label& m_label;
    const platform::Pause& m_pause;
    std::chrono::nanoseconds m_pace{};
    std::chrono::nanoseconds m_begin{};
    std::chrono::nanoseconds m_lastAnnouncement{};
    std::size_t m_lines = 0;
    // The line that goes out; 1 is the first.
    std::size_t m_line = 0;
};

} // namespace vorrano::device
