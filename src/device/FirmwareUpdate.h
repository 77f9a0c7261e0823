#pragma once

#include "device/DeviceCommand.h"
#include "device/LatestFirmware.h"
#include "device/UploadProgress.h"
#include "serial/SerialRequest.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::platform {
class Alerts;
class BusyDisplay;
class OpenPanel;
class Pause;
class StayAwake;
class View;
} // namespace vorrano::platform

namespace vorrano::device {

// The line to the device, as the update uses it: past the request queue.
class FirmwareLine {
public:
    FirmwareLine() = default;
    FirmwareLine(const FirmwareLine&) = delete;
    FirmwareLine& operator=(const FirmwareLine&) = delete;

    // Writes the command, and remembers it as the one that what comes next answers.
    virtual void writeQuery(DeviceCommand command) = 0;
    // Writes and notes that an acknowledgement is due; nothing waits for it.
    virtual void writeAwaitingAck(const serial::Bytes& data) = 0;

protected:
    ~FirmwareLine() = default;
};

// How far the dialogue with the bootloader has come: waiting for its prompt, for the prompt of the upload, or past
// both.
enum class BootloaderSequence { None, One, Two, Three };

// The update of the device's firmware: an optional check of the versions, the reset into the bootloader, and the upload
// of an image that the person has downloaded. The bootloader is answered through the tab's data callback.
//
// The step is never cleared: after an update that failed, the tab goes on taking every chunk for an answer to it.
// It is the controller's: choosing the tab again makes a new controller, which begins without a step.
// Controls: those of UploadProgress.
// Threads: the main thread, which the check and the upload hold with their pauses.
// Lifetime: its tab's, which is the line.
class FirmwareUpdate {
public:
    FirmwareUpdate(FirmwareLine& line, platform::View& view, platform::BusyDisplay& busyDisplay);

    void buttonUpdateFirmware();

    // Whether the device's version is being read for the check.
    [[nodiscard]] bool readVersion() const { return m_readVersion; }

    // The check, once the device has told its version: waits 1.5 s, then begins the update unless the versions are
    // equal. The service's answer is read after a fixed time, whether it has come or not; one that came and is too
    // short is a std::out_of_range, and leaves everything as it was at that point.
    void checkLatestFirmware(std::string_view deviceVersion);

    // A chunk that came while an update waits for the bootloader; none that is no UTF-8.
    void bootloaderDidAnswer(const std::optional<std::string>& chunk);

    [[nodiscard]] BootloaderSequence strBootloaderSequence() const { return m_bootloaderSequence; }
    [[nodiscard]] const std::filesystem::path& filename() const { return m_filename; }
    // The service's answer, or that of an earlier check; none before the first.
    [[nodiscard]] std::optional<std::string> data() const { return m_latestFirmware.answer(); }

private:
    [[nodiscard]] int ask(std::string question);
    void display(std::string_view messageText, std::string_view informativeText);
    void beginUpdate();
    void UpdateFirmwareResetAndEnterBootloader();
    void UpdateFirmwareWrite();
    void UpdateFirmwareWrite2();
    void writeImage();

    FirmwareLine& m_line;
    platform::BusyDisplay& m_busyDisplay;
    platform::Alerts& m_alerts;
    platform::OpenPanel& m_openPanel;
    platform::Pause& m_pause;
    platform::StayAwake& m_stayAwake;
    UploadProgress m_progress;
    LatestFirmware m_latestFirmware;
    bool m_readVersion = false;
    BootloaderSequence m_bootloaderSequence = BootloaderSequence::None;
    std::filesystem::path m_filename;
};

} // namespace vorrano::device
