#include "device/FirmwareUpdate.h"

#include "device/DeviceTexts.h"
#include "device/FirmwareImage.h"
#include "device/FirmwareTexts.h"
#include "device/FirmwareVersion.h"
#include "platform/BusyDisplay.h"
#include "platform/OkAlert.h"
#include "platform/OpenPanel.h"
#include "platform/Pause.h"
#include "platform/Platform.h"
#include "platform/ScopeExit.h"
#include "platform/StayAwake.h"
#include "text/Text.h"
#include "web/ServiceAddress.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace vorrano::device {

using platform::Platform;

namespace {

constexpr std::chrono::milliseconds kCheckPause{500};

std::string proceedQuestion()
{
    return std::string(firmware_text::kProceedQuestionBegin)
        .append(web::kDownloadSite)
        .append(firmware_text::kProceedQuestionEnd);
}

} // namespace

FirmwareUpdate::FirmwareUpdate(FirmwareLine& line, platform::View& view, platform::BusyDisplay& busyDisplay)
    : m_line(line)
    , m_busyDisplay(busyDisplay)
    , m_alerts(Platform::current().alerts)
    , m_openPanel(Platform::current().openPanel)
    , m_pause(Platform::current().pause)
    , m_stayAwake(Platform::current().stayAwake)
    , m_progress(view, m_pause)
{}

int FirmwareUpdate::ask(std::string question)
{
    return m_alerts.runModal({std::move(question),
                              {std::string(firmware_text::kYes), std::string(firmware_text::kNo)},
                              std::nullopt,
                              platform::AlertStyle::Warning});
}

void FirmwareUpdate::display(std::string_view messageText, std::string_view informativeText)
{
    m_alerts.runModal(platform::okAlert(messageText, informativeText));
}

void FirmwareUpdate::buttonUpdateFirmware()
{
    const auto answer = ask(std::string(firmware_text::kPcConnectedQuestion));
    if (answer == platform::kAlertSecondButton) {
        m_readVersion = false;
        m_busyDisplay.start();
        beginUpdate();
    } else if (answer == platform::kAlertFirstButton) {
        m_busyDisplay.start();
        m_readVersion = true;
        m_line.writeQuery(DeviceCommand::FirmwareVersion);
    }
}

void FirmwareUpdate::checkLatestFirmware(std::string_view deviceVersion)
{
    m_pause.pause(kCheckPause);
    const double version = text::doubleValue(deviceVersion);
    const auto whole = wholeVersion(version);
    m_latestFirmware.fetch(whole);
    m_pause.pause(kCheckPause);
    const double latest = latestVersion(m_latestFirmware.answer(), whole);
    m_pause.pause(kCheckPause);
    if (version == latest) {
        display(firmware_text::kUpToDate, firmware_text::kLatestVersion);
        m_busyDisplay.stop();
    } else {
        beginUpdate();
    }
    m_readVersion = false;
}

void FirmwareUpdate::beginUpdate()
{
    const auto answer = ask(proceedQuestion());
    if (answer == platform::kAlertSecondButton) {
        m_busyDisplay.stop();
        return;
    }
    if (answer != platform::kAlertFirstButton) {
        return;
    }
    // A panel that was cancelled leaves the progress display on.
    for (const auto& file : m_openPanel.runModal()) {
        m_filename = file;
        m_bootloaderSequence = BootloaderSequence::One;
        UpdateFirmwareResetAndEnterBootloader();
    }
}

void FirmwareUpdate::bootloaderDidAnswer(const std::optional<std::string>& chunk)
{
    if (m_bootloaderSequence == BootloaderSequence::One) {
        if (chunk == kBootloaderPrompt) {
            UpdateFirmwareWrite();
        } else {
            display(firmware_text::kNoBootloader, device_text::kError);
        }
    } else if (m_bootloaderSequence == BootloaderSequence::Two) {
        if (chunk == kUploadPrompt) {
            UpdateFirmwareWrite2();
        } else {
            display(firmware_text::kNoUpload, device_text::kError);
        }
    }
}

void FirmwareUpdate::UpdateFirmwareResetAndEnterBootloader()
{
    try {
        m_line.writeAwaitingAck(bytesOf(DeviceCommand::ResetDevice));
        m_line.writeAwaitingAck(bytesOf(DeviceCommand::EnterBootloader));
    } catch (const std::exception&) {
        display(firmware_text::kProblemEnteringBootloader, device_text::kError);
    }
}

void FirmwareUpdate::UpdateFirmwareWrite()
{
    try {
        m_bootloaderSequence = BootloaderSequence::Two;
        m_line.writeAwaitingAck(bytesOf(DeviceCommand::StartUpload));
    } catch (const std::exception&) {
        display(firmware_text::kProblemUploading, device_text::kError);
    }
}

void FirmwareUpdate::UpdateFirmwareWrite2()
{
    try {
        m_bootloaderSequence = BootloaderSequence::Three;
        const auto awake = m_stayAwake.stayAwake(firmware_text::kUploading);
        writeImage();
    } catch (const std::exception&) {
        display(firmware_text::kProblemDuringImage, device_text::kError);
    }
    // Said after a failure too.
    display(firmware_text::kFinished, device_text::kSuccess);
    m_busyDisplay.stop();
}

void FirmwareUpdate::writeImage()
{
    const auto image = readFirmwareImage(m_filename);
    if (!image) {
        return;
    }
    m_progress.begin(linesOfImage(*image).size(), kPauseAfterLine);
    const platform::ScopeExit over([this] { m_progress.end(); });
    sendImage(*image, {.write = [this](const std::string& character) { m_line.writeAwaitingAck(character); },
                       .pause =
                           [this] {
                               // Showing the progress is a part of the pause; half of it is for the windows.
                               const auto end = m_pause.now() + kPauseAfterLine;
                               m_progress.nextLine();
                               m_pause.pause(std::max(end - m_pause.now(), kPauseAfterLine / 2));
                           }});
}

} // namespace vorrano::device
