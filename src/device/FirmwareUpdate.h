#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::platform {
class Alerts;
class BackgroundQueue;
class Control;
class MainQueue;
class OpenPanel;
class Pause;
class StayAwake;
class UrlFetch;
} // namespace vorrano::platform

namespace vorrano::device {

class DeviceTabController;

// What the service answered about the latest firmware. Any thread: it is written by a task that may outlive the tab, or
// come to its end during a later check.
class FirmwareAnswer {
public:
    [[nodiscard]] std::optional<std::string> text() const;
    void setText(std::optional<std::string> text);

private:
    mutable std::mutex m_mutex;
    std::optional<std::string> m_text;
};

// How far the dialogue with the bootloader has come: waiting for its prompt, for the prompt of the upload, or past
// both.
enum class BootloaderSequence { None, One, Two, Three };

// The update of the device's firmware: an optional check of the versions, the reset into the bootloader, and the upload
// of an image that the person has downloaded. The bootloader is answered through the tab's data callback.
//
// The step is never cleared: after an update that came to nothing the tab goes on to read every chunk as at that step.
// It is the controller's: choosing the tab again makes a new controller, which begins without a step.
// Threads: the main thread, which the check and the upload hold with their pauses.
// Lifetime: its tab's.
class FirmwareUpdate {
public:
    explicit FirmwareUpdate(DeviceTabController& tab);

    void buttonUpdateFirmware(platform::Control& sender);

    // Whether the device's version is being read for the check.
    [[nodiscard]] bool readVersion() const { return m_readVersion; }

    // The check, once the device has told its version: waits 1.5 s, then begins the update unless the versions are
    // equal. The service's answer is read after a fixed time, whether it has come or not; one that came and is too
    // short is a std::out_of_range, and leaves everything as it was at that point.
    void checkLatestFirmware(std::string_view deviceVersion);

    void beginUpdate();

    // A chunk that came while an update waits for the bootloader; none that is no UTF-8.
    void bootloaderDidAnswer(const std::optional<std::string>& chunk);

    void UpdateFirmwareResetAndEnterBootloader();
    void UpdateFirmwareWrite();
    void UpdateFirmwareWrite2();

    [[nodiscard]] BootloaderSequence strBootloaderSequence() const { return m_bootloaderSequence; }
    [[nodiscard]] const std::filesystem::path& filename() const { return m_filename; }
    // The service's answer, or that of an earlier check; none before the first.
    [[nodiscard]] std::optional<std::string> data() const { return m_data->text(); }

private:
    [[nodiscard]] int ask(std::string question);
    void fetchLatestFirmware(std::int32_t whole);
    void writeImage();

    DeviceTabController& m_tab;
    platform::Alerts& m_alerts;
    platform::OpenPanel& m_openPanel;
    platform::Pause& m_pause;
    platform::StayAwake& m_stayAwake;
    platform::BackgroundQueue& m_backgroundQueue;
    platform::MainQueue& m_mainQueue;
    platform::UrlFetch& m_urlFetch;
    bool m_readVersion = false;
    BootloaderSequence m_bootloaderSequence = BootloaderSequence::None;
    std::filesystem::path m_filename;
    std::shared_ptr<FirmwareAnswer> m_data = std::make_shared<FirmwareAnswer>();
};

} // namespace vorrano::device
