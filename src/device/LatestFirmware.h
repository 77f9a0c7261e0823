#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vorrano::platform {
class BackgroundQueue;
class MainQueue;
class UrlFetch;
} // namespace vorrano::platform

namespace vorrano::device {

// What the service says about the latest firmware.
//
// Threads: the main thread. An answer is stored as it comes, also in the middle of a pause of the main thread.
// Lifetime: a fetch under way outlives it.
class LatestFirmware {
public:
    LatestFirmware();
    LatestFirmware(const LatestFirmware&) = delete;
    LatestFirmware& operator=(const LatestFirmware&) = delete;
    ~LatestFirmware();

    // Asks the service about devices of that whole version. Returns at once; an earlier answer stays until this one
    // has come.
    void fetch(std::int32_t wholeVersion);

    // The text of the last answer that came; none before the first, or when it was no text.
    [[nodiscard]] std::optional<std::string> answer() const;

private:
    class Answer;

    platform::BackgroundQueue& m_backgroundQueue;
    platform::MainQueue& m_mainQueue;
    platform::UrlFetch& m_urlFetch;
    std::shared_ptr<Answer> m_answer;
};

} // namespace vorrano::device
