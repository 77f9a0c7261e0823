#include "device/UploadProgress.h"

#include "device/FirmwareTexts.h"
#include "platform/Controls.h"
#include "platform/Layouts.h"
#include "platform/Pause.h"
#include "text/Text.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vorrano::device {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

namespace {

// Often enough to follow, and seldom enough to hear something else in between.
constexpr std::size_t kAnnouncements = 10;
constexpr auto kBetweenAnnouncements = 10s;
constexpr std::chrono::seconds kTimeStep = 5s;
constexpr std::chrono::seconds kLongTimeStep = 1min;

// One step at least.
std::chrono::seconds rounded(nanoseconds time, std::chrono::seconds step)
{
    return std::max(step, step * ((time + nanoseconds(step) / 2) / step));
}

// Nothing for a part of the time that is zero.
std::string part(std::int64_t value, std::string_view unit)
{
    return value == 0 ? std::string() : text::groupedDecimal(static_cast<std::uint64_t>(value)).append(unit);
}

std::string inWords(nanoseconds time)
{
    const auto seconds = rounded(time, time > 1h ? kLongTimeStep : kTimeStep);
    return part(seconds / 1h, firmware_text::kProgressHours) +
           part(seconds % 1h / 1min, firmware_text::kProgressMinutes) +
           part(seconds % 1min / 1s, firmware_text::kProgressSeconds);
}

} // namespace

std::string uploadProgressText(std::size_t line, std::size_t lines, nanoseconds left)
{
    return std::string(firmware_text::kProgressLine)
        .append(text::groupedDecimal(line))
        .append(firmware_text::kProgressOf)
        .append(text::groupedDecimal(lines))
        .append(firmware_text::kProgressAbout)
        .append(inWords(left))
        .append(firmware_text::kProgressLeft);
}

UploadProgress::UploadProgress(platform::View& view, const platform::Pause& pause)
    : m_bar(view.progressBar("uploadProgressBar"))
    , m_label(view.label("uploadProgressLabel"))
    , m_pause(pause)
{
    setHidden(true);
}

void UploadProgress::begin(std::size_t lines, nanoseconds pace)
{
    m_pace = pace;
    m_begin = m_pause.now();
    m_lines = lines;
    m_line = 0;
}

void UploadProgress::nextLine()
{
    ++m_line;
    m_bar.setProgress(m_line, m_lines);
    m_label.setText(uploadProgressText(m_line, m_lines, timeLeft()));
    if (m_line == 1) {
        m_lastAnnouncement = m_begin;
        setHidden(false);
    } else if (isAnnouncementDue()) {
        m_lastAnnouncement = m_pause.now();
        m_label.announce();
    }
}

void UploadProgress::end() { setHidden(true); }

nanoseconds UploadProgress::timeLeft() const
{
    const auto sent = static_cast<std::int64_t>(m_line) - 1;
    const auto perLine = sent == 0 ? m_pace : std::max(m_pace, (m_pause.now() - m_begin) / sent);
    return perLine * (static_cast<std::int64_t>(m_lines) - sent);
}

bool UploadProgress::isAnnouncementDue() const
{
    const auto tenth = [this](std::size_t line) { return line * kAnnouncements / m_lines; };
    return tenth(m_line) != tenth(m_line - 1) && m_pause.now() - m_lastAnnouncement >= kBetweenAnnouncements;
}

void UploadProgress::setHidden(bool hidden)
{
    m_bar.setHidden(hidden);
    m_label.setHidden(hidden);
}

} // namespace vorrano::device
